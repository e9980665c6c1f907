#include "recovery/body_reader.h"

#include <utility>

#include "recovery/heap_text.h"
#include "recovery/property_context.h"
#include "recovery/value_stream.h"

namespace velmora::recovery {

using output::Field;

namespace {

/// Beyond this size a mail of the older formats is delivered with its plain body.
constexpr std::uint32_t kPlainFirstAbove = 4u << 20;

Field FieldOf(std::uint16_t tag) {
  switch (tag) {
    case IdOf(tag::kHtml):
      return Field::HTMLBody;
    case IdOf(tag::kRtfCompressed):
      return Field::RTFBody;
    default:
      return Field::Body;
  }
}

text::Text CopyBodyText(const ValueSource& source, ByteView bytes, std::uint16_t tag) {
  const bool wide = tag == IdOf(tag::kBody) && source.store.layout.wideFormat;
  return CopyHeapText(bytes, wide, BodyCodePage(tag, source.codePage));
}

Body ReadInLineBody(const ValueSource& source, const MessageBlock& block, std::uint32_t value, BodyKind kind,
                    const BodySlot& slot) {
  Body body;
  const auto range = ReadHeapRange(block.bytes, block.Position(value));
  body.inBounds = range.has_value();
  if (!range || range->start >= range->end || range->end >= block.bytes.Size()) return body;
  if (!source.allowance.TakeText(range->end - range->start)) return body;

  text::Text text = CopyBodyText(source, range->In(block.bytes), slot.tag);
  if (!text.empty()) body.taken = kind;
  if (slot.value != value) body.missing = u"the bytes of another body stand in its place";
  body.writes.push_back({FieldOf(slot.tag), std::move(text)});
  return body;
}

/// What a slot gives, from its block; `missing` gets what is not in it.
Body::Write ReadSlot(const ValueSource& source, const engine::BlockRecord& record, const BodySlot& slot,
                     text::Text& missing) {
  Body::Write write{FieldOf(slot.tag), {}};
  const bool isHtml = write.field == Field::HTMLBody;
  BlockChain chain;
  if (BuildBlockChain(source.store, record, source.allowance, chain)) {
    if (isHtml) write.bytes = ReadStreamAsBytes(source.store, chain, source.allowance);
    if (!isHtml) write.text = ReadStreamAsText(source.store, chain, slot.tag, source.codePage, source.allowance);
    missing = MissingOf(chain, chain.read);
    return write;
  }
  const auto block = ReadDataBlock(source.store, record, slot.bid, source.allowance);
  if (!block || !source.allowance.TakeHeld(block->bytes.size())) return write;
  missing = MissingOf(chain, block->bytes.size());
  if (isHtml) write.bytes = UpToNul(ByteView(block->bytes));
  if (!isHtml) write.text = CopyBodyText(source, ByteView(block->bytes), slot.tag);
  return write;
}

}  // namespace

Body ReadOutOfLineBody(const ValueSource& source, const BodyProperties& properties) {
  Body body;
  const bool plainFirst =
      source.store.layout.formatId != FORMAT_UNICODE_4K && properties.messageSize > kPlainFirstAbove;
  for (const BodyKind kind : {kHtmlBody, kPlainBody}) {
    if (plainFirst && kind == kHtmlBody) continue;
    const BodySlot& slot = properties.slots[kind];
    const auto record = engine::BlockReader(source.store).FindBlockOrLower(slot.bid);
    if (!record) continue;
    if (record->offset == 0 || record->size == 0) break;
    text::Text missing;
    body.writes.push_back(ReadSlot(source, *record, slot, missing));
    if (body.writes.back().Empty()) continue;
    body.taken = kind;
    body.missing = std::move(missing);
    break;
  }
  return body;
}

Body ReadBody(const ValueSource& source, const MessageBlock& block, BodyProperties properties,
              const SubNodeList& subNodes) {
  if (properties.lastValue == 0) return {};
  if (!IsSubNodeValue(properties.lastValue)) {
    for (const BodyKind kind : {kPlainBody, kRtfBody}) {
      const BodySlot& slot = properties.slots[kind];
      if (slot.tag != 0) return ReadInLineBody(source, block, properties.lastValue, kind, slot);
    }
    return {};
  }
  for (const SubNodeEntry& entry : subNodes) {
    for (BodySlot& slot : properties.slots) {
      if (slot.value == entry.nid) slot.bid = entry.bidData;
    }
  }
  return ReadOutOfLineBody(source, properties);
}

}  // namespace velmora::recovery
