// The default folders of a store, and where the store notes which folder is the one of a kind.
#pragma once

#include <array>

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

  /// Puts the entry ids into the properties of the root folder, where Outlook looks for them. That of the
  /// deleted items is a property of the store instead.
  void PutIntoRoot(const Uid& recordKey, PropertyBag& root) const;

  /// Takes them from there.
  void ReadFromRoot(const Uid& recordKey, ltp::PropertyContext& root);

 private:
  static constexpr std::size_t kKinds = 10;
  std::array<Nid, kKinds> folders_{};
};

}  // namespace velmora::messaging
