#include "recovery/sub_node_text.h"

#include <algorithm>

#include "engine/block_reader.h"
#include "recovery/heap_text.h"
#include "recovery/property_context.h"
#include "recovery/property_ids.h"

namespace velmora::recovery {
namespace {

text::Text WithSinglePercents(const text::Text& text) {
  text::Text result;
  result.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    result.push_back(text[i]);
    if (text[i] == u'%' && i + 1 < text.size() && text[i + 1] == u'%') ++i;
  }
  return result;
}

}  // namespace

text::Text SubNodeText::ReadSubnodeString(std::uint16_t type, std::uint32_t value) {
  const auto entry = std::ranges::find(subNodes_, value, &SubNodeEntry::nid);
  if (entry == subNodes_.end()) return {};
  const engine::BlockReader blocks(engine_);
  const auto record = blocks.FindBlockOrLower(entry->bidData);
  if (!record || !allowance_.TakeBytes(record->size)) return {};
  auto bytes = blocks.ReadChunk(record->offset, record->size);
  if (!bytes) return {};
  blocks.DecodeBlock(record->bid, *bytes);
  if (!engine::IsHeapSignature(messageBlock_.U16(2))) InflateUnlessHeap(engine_, *bytes);

  if (type == kTypeUnicode) return WithSinglePercents(WideText(engine::ByteView(*bytes)));
  if (type == kTypeString8) return NarrowText(engine::ByteView(*bytes), codePage_);
  return {};
}

}  // namespace velmora::recovery
