#include <algorithm>
#include <utility>

#include "recovery/heap_text.h"
#include "recovery/item_steps.h"
#include "recovery/property_context.h"
#include "recovery/property_ids.h"
#include "recovery/value_stream.h"

namespace velmora::recovery {
namespace {

/// The bytes of a body in the message's own block; false when the place of the value lies outside of it.
bool ReadInLineBody(ItemRun& items, std::uint32_t value, BodyKind kind) {
  const BodySlot& slot = items.bodySlots[kind];
  const MessageBlock& block = items.message.block;
  const auto range = ReadHeapRange(block.bytes, block.Position(value));
  if (!range) return false;
  if (range->start >= range->end || range->end >= block.bytes.Size()) return true;
  if (!items.state.allowance.TakeText(range->end - range->start)) return true;

  const bool wide = slot.tag == kPlainBodyId && items.engine.layout.wideFormat;
  const text::CodePage& codePage = BodyCodePage(slot.tag, *items.state.codePage);
  const auto field = slot.tag == kPlainBodyId ? output::Field::Body : output::Field::RTFBody;
  text::Text body = CopyHeapText(range->In(block.bytes), wide, codePage);
  const bool delivered = !body.empty();
  items.message.Item(ItemKind::kMail)->Put(field, std::move(body));
  if (delivered) items.message.losses.bodyTaken = kind;
  if (slot.value != value) items.message.losses.bodyMissing = u"the bytes of another body stand in its place";
  return true;
}

}  // namespace

bool ProcessMessage(ItemRun& items, std::uint32_t bidData, std::uint32_t folderNid) {
  const std::uint32_t value = ParseMessage(items, bidData, folderNid);
  // The other kinds carry their body through their own converters.
  if (value == 0 || !items.message.IsKind(ItemKind::kMail)) return true;

  // The value is that of the last body property, whichever it was: a message with a plain and an RTF body in line
  // delivers the bytes of its RTF as the plain one.
  if (!IsSubNodeValue(value)) {
    for (const BodyKind kind : {kPlainBody, kRtfBody}) {
      if (items.bodySlots[kind].tag != 0) return ReadInLineBody(items, value, kind);
    }
    return true;
  }

  for (const SubNodeEntry& entry : items.subNodes) {
    for (BodySlot& slot : items.bodySlots) {
      if (slot.value == entry.nid) slot.bid = entry.bidData;
    }
  }
  ReadOutOfLineBody(items);
  return true;
}

}  // namespace velmora::recovery
