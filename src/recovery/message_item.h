// The item of a message: where it goes, what it becomes by its class, and when it is saved. Rules, in order:
//
//  1. PlaceMessage: an ordinary message goes to the folder of its node. One whose folder is not known has no place
//     (docs/fidelity.md#unknown-folder). A class of a special kind prefers a folder of that name below the folder of
//     its parent, then below the default folder of its kind, and makes one there where none is.
//  2. An orphan is placed by no class: it goes where all orphans go.
//  3. CreateItemForClass: a class that is not converted gives no item (docs/fidelity.md#refused-class); one that is
//     none gives none either, but an orphan becomes a mail (CreateFallbackMail); a damaged one a mail of that class.
//  4. A mail starts out as sent (docs/fidelity.md#sent), and is saved with its work record.
//  5. FinishItem: an item of another kind is saved behind the last record.
#pragma once

#include <array>
#include <cstdint>
#include <optional>

#include "recovery/item_converter.h"
#include "recovery/recovery_state.h"
#include "store/operations.h"

namespace velmora::recovery {

/// The items made of one message. One kind, unless the classes of a damaged message contradict each other.
struct MessageItems {
  std::array<bool, kItemKinds> kindSet{};
  std::array<output::Ref<output::RDOMail>, kItemKinds> items;
  output::Ref<output::RDOMail> createdMail;  ///< to be saved with the work record
  bool classRefused = false;

  bool IsKind(ItemKind kind) const { return kindSet[static_cast<std::size_t>(kind)]; }
  /// The kind that a record is offered to: the first one set.
  std::optional<ItemKind> Kind() const;
  output::Ref<output::RDOMail>& Item(ItemKind kind) { return items[static_cast<std::size_t>(kind)]; }
  const output::Ref<output::RDOMail>& Item(ItemKind kind) const { return items[static_cast<std::size_t>(kind)]; }
};

/// The folder of a message.
struct Placement {
  output::Ref<output::RDOFolder> folder;
  text::Text leaf;  ///< the name at the end of its path, as the source has it
};

/// The folder that was opened last: most messages lie in that of the message before, and it need not be found again.
struct OpenedFolder {
  std::uint32_t nid = 0;
  std::optional<Placement> placement;
};

/// Nothing when the message has no folder. Raises where a folder cannot be opened or made.
std::optional<Placement> PlaceMessage(const RecoveryRun& run, text::TextView messageClass, std::uint32_t folderNid,
                                      OpenedFolder& last);

/// False when the class is none or is refused.
bool CreateItemForClass(RecoveryState& state, const output::Ref<output::RDOFolder>& folder, text::TextView messageClass,
                        MessageItems& made);

/// The item of an orphan whose class could not be read.
void CreateFallbackMail(RecoveryState& state, const output::Ref<output::RDOFolder>& folder, MessageItems& made);

/// Saves an item of the six kinds that are no mail: was it saved? Nothing when there is none. A failing save loses
/// that item alone.
std::optional<bool> FinishItem(const RecoveryRun& run, const MessageItems& made);

}  // namespace velmora::recovery
