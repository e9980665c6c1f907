// The interface between the walk over a message's records and the converters of the kinds of item.
// Recovery calls converters through it alone.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <optional>

#include "engine/block_record.h"
#include "engine/heap_evidence.h"
#include "engine/run.h"
#include "recovery/named_prop_map.h"
#include "store/format/byte_view.h"
#include "store/format/prop_tag.h"
#include "store/operations.h"
#include "text/code_page.h"

namespace velmora::recovery {

using velmora::ItemKind;
inline constexpr std::size_t kItemKinds = 7;

/// The place of the page map at which start and end of the allocation that `hid` names stand. The block index
/// of the identifier is not masked out, so an identifier into a later block of the heap gives a place far
/// behind this one.
constexpr std::uint32_t HeapPosition(std::uint16_t ibHnpm, std::uint32_t hid) { return ibHnpm + 2u + (hid >> 4); }

/// The decoded and inflated block of the message under work, and what stands around it.
struct MessageBlock {
  ByteView bytes;              ///< readBuffer
  engine::BlockRecord record;  ///< its `size` is the size after inflation
  std::uint16_t heapPageMapOffset = 0;

  /// The place in `bytes` at which the page map holds start and end of the allocation that `value` names.
  /// For an inline value it means nothing but is formed and tested all the same.
  std::uint32_t Position(std::uint32_t value) const { return HeapPosition(heapPageMapOffset, value); }
};

/// Types of the numbers and flags that the kinds of item have: the record itself holds the value.
constexpr bool IsNumberType(PropType type) {
  return type == PropType::kBoolean || type == PropType::kInteger16 || type == PropType::kInteger32;
}

/// Per-message working values of the mail converter, cleared at the start of each message.
struct MailState {
  bool fromSeen = false;
  bool toSeen = false;
  bool subjectShown = false;
  std::uint16_t importanceSeen = 3;
  std::uint16_t sensitivitySeen = 4;
  std::uint16_t flagIconSeen = 7;
};

/// Values that live outside the message's own block, as the sub-node list of the message gives them.
class SubNodeValues {
 public:
  virtual ~SubNodeValues() = default;

  /// The text of the sub-node whose id is `value`, a string of either width; empty when there is none.
  virtual text::Text ReadSubnodeString(PropType type, std::uint32_t value) = 0;
};

/// What a converter may use of the run.
struct ConversionScope {
  engine::StoreKind storeKind = engine::StoreKind::kNone;
  bool wideFormat = false;
  const text::CodePage* codePage = nullptr;  ///< never null during a run
  const NamedPropMap* namedProps = nullptr;  ///< never null during a run
  const engine::RunContext* run = nullptr;   ///< for the messages of the panes
  SubNodeValues* subNodes = nullptr;         ///< of the message under work
  MailState* mail = nullptr;                 ///< of the message under work
  text::Text currentFolderName;              ///< leaf of the folder that took the message under work
};

/// Turns the records of one kind of item into writes through the output operations.
class ItemConverter {
 public:
  virtual ~ItemConverter() = default;

  /// One record behind the class record. Raises output::OutputFailure where the kind lets a failure pass.
  virtual void ApplyProperty(ConversionScope& scope, const MessageBlock& block, const PropertyRecord& record,
                             const output::Ref<output::RDOMail>& item) = 0;

  /// The field that such a record fills; nothing for one that fills none. It only serves the report.
  virtual std::optional<output::Field> FieldOf(const ConversionScope& scope, const PropertyRecord& record) const = 0;
};

/// One converter a kind, indexed by ItemKind; none is null.
using ItemConverters = std::array<std::unique_ptr<ItemConverter>, kItemKinds>;

}  // namespace velmora::recovery
