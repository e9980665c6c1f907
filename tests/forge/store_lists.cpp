// Values of many blocks and lists of sub-nodes: the blocks that name other blocks.
#include <algorithm>

#include "forge/store.h"

namespace velmora::forge {
namespace {

constexpr std::uint8_t kDataList = 1;
constexpr std::uint8_t kSubnodeList = 2;

}  // namespace

Bid Store::AddData(std::span<const std::byte> data, std::size_t pieceSize) {
  const std::size_t piece = pieceSize != 0 ? pieceSize : traits_.maxBlockData;
  std::vector<Bid> pieces;
  for (std::size_t at = 0; at < data.size(); at += piece) {
    pieces.push_back(AddBlock(data.subspan(at, std::min(piece, data.size() - at))));
  }
  if (pieces.empty()) return 0;
  return pieces.size() == 1 && pieceSize == 0 ? pieces.front() : AddChain(pieces, data.size());
}

Bid Store::AddTree(std::span<const std::byte> data) {
  std::vector<Bid> pieces;
  for (std::size_t at = 0; at < data.size(); at += traits_.maxBlockData) {
    pieces.push_back(AddBlock(data.subspan(at, std::min<std::size_t>(traits_.maxBlockData, data.size() - at))));
  }
  return AddChainOfChains(pieces, data.size(), 2, {});
}

Bid Store::AddDataBlocks(const std::vector<Bytes>& blocks) {
  std::vector<Bid> pieces;
  std::uint64_t total = 0;
  for (const Bytes& block : blocks) {
    pieces.push_back(AddBlock(block));
    total += block.size();
  }
  if (pieces.empty()) return 0;
  return pieces.size() == 1 ? pieces.front() : AddChain(pieces, total);
}

Bid Store::AddList(std::uint8_t type, std::uint8_t level, std::uint64_t count, std::uint64_t total,
                   const Bytes& entries, const BlockOptions& options) {
  Bytes block;
  Append(block, type, 1);
  Append(block, level, 1);
  Append(block, count, 2);
  // The head is 8 bytes, but for the lists of sub-nodes of the ANSI format.
  if (type == kDataList || traits_.wide) Append(block, total, 4);
  Append(block, entries);
  return AddInternalBlock(block, options);
}

Bid Store::AddChain(const std::vector<Bid>& pieces, std::uint64_t total, const BlockOptions& options) {
  const std::size_t capacity = (traits_.maxBlockData - 8) / traits_.idWidth;
  if (pieces.size() <= capacity) return AddList(kDataList, 1, pieces.size(), total, ListOf(pieces), options);
  return AddChainOfChains(pieces, total, capacity, options);
}

Bytes Store::ListOf(std::span<const Bid> bids) {
  Bytes entries;
  for (const Bid bid : bids) {
    CountReference(bid);
    Append(entries, bid, traits_.idWidth);
  }
  return entries;
}

Bid Store::AddChainOfChains(const std::vector<Bid>& pieces, std::uint64_t total, std::size_t piecesPerList,
                            const BlockOptions& options) {
  std::vector<Bid> lists;
  for (std::size_t at = 0; at < pieces.size(); at += piecesPerList) {
    const auto part = std::span(pieces).subspan(at, std::min(piecesPerList, pieces.size() - at));
    std::uint64_t partTotal = 0;
    for (const Bid bid : part) {
      const auto found = blockIndex_.find(bid);
      if (found != blockIndex_.end()) partTotal += blocks_[found->second].inflatedSize;
    }
    lists.push_back(AddList(kDataList, 1, part.size(), partTotal, ListOf(part), {}));
  }
  return AddList(kDataList, 2, lists.size(), total, ListOf(lists), options);
}

Bid Store::AddSubnodes(const std::vector<Subnode>& subnodes, const BlockOptions& options) {
  if (subnodes.empty()) return 0;
  const std::size_t width = traits_.idWidth;
  const std::size_t capacity = (traits_.maxBlockData - (traits_.wide ? 8 : 4)) / (3 * width);
  const auto addLeaf = [&](std::span<const Subnode> part, const BlockOptions& leafOptions) {
    Bytes entries;
    for (const Subnode& subnode : part) {
      CountReference(subnode.bidData);
      CountReference(subnode.bidSub);
      NoteNid(subnode.nid);
      for (const std::uint64_t field : {Bid{subnode.nid}, subnode.bidData, subnode.bidSub})
        Append(entries, field, width);
    }
    return AddList(kSubnodeList, 0, part.size(), 0, entries, leafOptions);
  };
  if (subnodes.size() <= capacity) return addLeaf(subnodes, options);

  Bytes branches;
  std::size_t leaves = 0;
  for (std::size_t at = 0; at < subnodes.size(); at += capacity, ++leaves) {
    const auto part = std::span(subnodes).subspan(at, std::min(capacity, subnodes.size() - at));
    const Bid leaf = addLeaf(part, {});
    CountReference(leaf);
    Append(branches, part.front().nid, width);
    Append(branches, leaf, width);
  }
  return AddList(kSubnodeList, 1, leaves, 0, branches, options);
}

}  // namespace velmora::forge
