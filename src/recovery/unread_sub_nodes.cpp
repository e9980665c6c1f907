#include "recovery/unread_sub_nodes.h"

#include "engine/block_reader.h"
#include "recovery/block_fault.h"

namespace velmora::recovery {
namespace {

constexpr std::uint16_t kUpperLevel = 0x0102;  ///< block type 2, level 1: pairs of a sub-node id and a block of entries

}  // namespace

UnreadSubNodes ReadUnreadSubNodes(const engine::ScannedStore& store, std::uint32_t bidSub, const SubNodeList& read,
                                  ContentAllowance& allowance) {
  // A list of several entries is one: an upper level never looks like that.
  if (bidSub == 0 || read.size() > 1) return {};
  const engine::BlockReader blocks(store);
  const auto record = blocks.FindBlockOrLower(bidSub);
  if (!record) return {{}, TextOf(BlockFault::NotFound(bidSub))};
  const bool allowed = allowance.TakeBytes(record->size);
  const auto bytes = allowed ? blocks.ReadChunk(record->offset, record->size) : std::nullopt;
  if (!bytes) return {{}, TextOf(BlockFault::Of(BlockFault::Cause::kNotRead, *record))};

  const ByteView block(*bytes);
  const std::uint32_t width = store.layout.Pitch();
  if (block.U16(0) != kUpperLevel) {
    if (block.U16(2) * 3u * width <= block.Size()) return {};
    return {{}, u"its data block " + HexOf(record->bid) + u" claims more entries than it can hold"};
  }
  UnreadSubNodes unread{{}, u"the list of its sub-nodes has an upper level, which is not read"};
  const std::uint64_t count = block.U16(2);
  for (std::uint64_t at = width; at < width * (1 + 2 * count) && at < block.Size(); at += 2ull * width) {
    const auto leaf = blocks.FindBlockOrLower(block.U32(at + width));
    if (!leaf || !allowance.TakeBytes(leaf->size)) continue;
    const SubNodeList entries = ReadSubNodeList(store, leaf->bid);
    unread.entries.insert(unread.entries.end(), entries.begin(), entries.end());
  }
  return unread;
}

}  // namespace velmora::recovery
