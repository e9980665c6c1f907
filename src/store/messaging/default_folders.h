// The default folders of a store: what class each kind has, and where the store notes which folder it is.
#pragma once

#include <array>

#include "store/format/ids.h"
#include "store/format/prop_tag.h"
#include "store/ltp/property_context.h"
#include "store/messaging/entry_id.h"
#include "store/messaging/property_bag.h"
#include "store/operations.h"

namespace velmora::messaging {

/// Container class of a folder that nobody gave another.
inline constexpr text::TextView kMailContainerClass = u"IPF.Note";

/// Container class of a kind.
text::TextView ContainerClassOf(output::DefaultFolder kind);

/// Which folder is the default one of each kind; kNoNid where there is none. A kind that is none of the known
/// ones is kept nowhere.
class DefaultFolders {
 public:
  Nid Of(output::DefaultFolder kind) const;
  void Set(output::DefaultFolder kind, Nid folder);

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
