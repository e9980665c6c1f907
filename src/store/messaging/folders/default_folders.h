// The default folders of a store, and where the store notes which folder is the one of a kind.
#pragma once

#include <array>
#include <utility>
#include <vector>

#include "store/format/classes.h"
#include "store/format/ids.h"
#include "store/format/prop_tag.h"
#include "store/ltp/property_context.h"
#include "store/messaging/objects/property_bag.h"
#include "store/messaging/values/identity.h"

namespace velmora::messaging {

/// Which folder is the default one of each kind; none where there is none. A kind that is none of the known
/// ones is kept nowhere.
class DefaultFolders {
 public:
  Nid Of(DefaultFolder kind) const;
  void Set(DefaultFolder kind, Nid folder);

  /// Those that are there.
  std::vector<std::pair<DefaultFolder, Nid>> All() const;

  /// Puts the entry ids into the properties of the root folder, where Outlook looks for them, and those of the folders
  /// that belong to sending and deleting into the properties of the store.
  void PutIntoRoot(const Uid& recordKey, PropertyBag& root) const;
  void PutIntoStore(const Uid& recordKey, PropertyBag& store) const;

  /// Whether the folder of that kind stands in the properties of the store.
  static bool IsOfStore(DefaultFolder kind);

  /// Takes them from there. What else names them, an inbox, may be read like a root.
  void ReadFromRoot(const Uid& recordKey, ltp::PropertyContext& root);
  void ReadFromStore(const Uid& recordKey, ltp::PropertyContext& store);

 private:
  static constexpr std::size_t kKinds = 14;
  std::array<Nid, kKinds> folders_{};
};

}  // namespace velmora::messaging
