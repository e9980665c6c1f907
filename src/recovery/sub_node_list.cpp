#include "recovery/sub_node_list.h"

#include "engine/block_reader.h"

namespace velmora::recovery {

SubNodeList ReadSubNodeList(const engine::ScannedStore& store, std::uint32_t bidSub) {
  const engine::BlockReader blocks(store);
  const auto record = blocks.FindBlockOrLower(bidSub);
  if (!record) return {};

  const SubNodeList emptyList(1);
  const auto bytes = blocks.ReadChunk(record->offset, record->size);  // stored plain, whatever the encoding
  if (!bytes) return emptyList;

  const ByteView block(*bytes);
  const std::uint32_t width = store.layout.idWidth;
  const std::uint32_t stride = store.layout.SubnodeEntrySize();
  const std::uint32_t count = block.U16(2);
  if (count * stride > block.Size()) return emptyList;

  SubNodeList list;
  list.reserve(count + 1u);
  std::uint32_t at = store.layout.subnodeHeadSize;
  do {
    list.push_back({block.U32(at), block.U32(at + width), block.U32(at + 2 * width)});
    at += stride;
  } while (list.size() < count);
  return list;
}

}  // namespace velmora::recovery
