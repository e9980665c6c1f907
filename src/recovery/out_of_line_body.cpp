#include <utility>

#include "recovery/heap_text.h"
#include "recovery/item_steps.h"
#include "recovery/property_ids.h"
#include "recovery/value_stream.h"

namespace velmora::recovery {

using output::Field;

namespace {

/// Beyond this size a mail of the older formats is delivered with its plain body.
constexpr std::uint32_t kPlainFirstAbove = 4u << 20;

/// `missing` gets what of the body is not in the text.
text::Text ReadBody(ItemRun& items, const engine::BlockRecord& record, const BodySlot& slot, text::Text& missing) {
  const text::CodePage& codePage = *items.state.codePage;
  BlockChain chain;
  if (BuildBlockChain(items.engine, record, items.state.allowance, chain)) {
    text::Text body = ReadStreamAsText(items.engine, chain, slot.tag, codePage, items.state.allowance);
    missing = MissingOf(chain, chain.read);
    return body;
  }
  const auto block = ReadDataBlock(items.engine, record, slot.bid, items.state.allowance);
  if (!block || !items.state.allowance.TakeHeld(block->bytes.size())) return {};
  missing = MissingOf(chain, block->bytes.size());
  const bool wide = slot.tag == kPlainBodyId && items.engine.layout.wideFormat;
  return CopyHeapText(ByteView(block->bytes), wide, BodyCodePage(slot.tag, codePage));
}

Field FieldOf(std::uint16_t tag) {
  switch (tag) {
    case kHtmlBodyId:
      return Field::HTMLBody;
    case kRtfBodyId:
      return Field::RTFBody;
    default:
      return Field::Body;
  }
}

}  // namespace

void ReadOutOfLineBody(ItemRun& items) {
  const bool plainFirst =
      items.engine.layout.formatId != FORMAT_UNICODE_4K && items.message.messageSize > kPlainFirstAbove;
  for (std::size_t kind = plainFirst ? kPlainBody : kHtmlBody; kind <= kPlainBody; ++kind) {
    const BodySlot& slot = items.bodySlots[kind];
    const auto record = items.blocks.FindBlockOrLower(slot.bid);
    if (!record) continue;
    if (record->offset == 0 || record->size == 0) return;
    text::Text missing;
    text::Text body = ReadBody(items, *record, slot, missing);
    const bool delivered = !body.empty();
    items.message.Item(ItemKind::kMail)->Put(FieldOf(slot.tag), std::move(body));
    if (!delivered) continue;
    items.message.losses.bodyTaken = static_cast<BodyKind>(kind);
    items.message.losses.bodyMissing = std::move(missing);
    return;
  }
}

}  // namespace velmora::recovery
