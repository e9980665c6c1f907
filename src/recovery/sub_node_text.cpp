#include "recovery/sub_node_text.h"

#include "engine/block_reader.h"
#include "recovery/heap_text.h"
#include "recovery/value_stream.h"
#include "store/format/heap_format.h"
#include "store/format/prop_tag.h"

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

text::Text SubNodeText::ReadSubnodeString(PropType type, std::uint32_t value) {
  if (blockOfNid_.empty()) {
    for (const SubNodeEntry& entry : subNodes_) blockOfNid_.try_emplace(entry.nid, entry.bidData);
  }
  const auto entry = blockOfNid_.find(value);
  if (entry == blockOfNid_.end()) return {};
  const engine::BlockReader blocks(source_.store);
  const auto record = blocks.FindBlockOrLower(entry->second);
  if (!record) return {};
  const bool inflates = !engine::IsHeapSignature(messageBlock_.U16(kOffHeapWord));
  const auto block = ReadDataBlock(source_.store, *record, record->bid, source_.allowance, inflates);
  if (!block || !source_.allowance.TakeHeld(block->bytes.size())) return {};
  if (type == PropType::kString) return WithSinglePercents(WideText(ByteView(block->bytes)));
  if (type == PropType::kString8) return NarrowText(ByteView(block->bytes), source_.codePage);
  return {};
}

}  // namespace velmora::recovery
