#include "store/ndb/data_tree_reader.h"

#include <algorithm>
#include <cstring>

#include "store/format/block.h"
#include "store/format/failures.h"

namespace velmora::ndb {
namespace {

/// The entries of an XBLOCK (level 1) or XXBLOCK (2), and the bytes below.
struct XBlock {
  std::vector<Bid> bids;
  std::uint32_t lcbTotal = 0;
  std::uint8_t cLevel = 0;
};

Result<XBlock> DecodeXBlock(Bid bid, std::span<const std::byte> content) {
  const InternalHead head = DecodeInternalHead(content);
  if (head.btype != BlockType::kDataTree || EntrySize(head) == 0 || content.size() < InternalHead::kSize) {
    return Corrupt(Named("block", bid), static_cast<std::uint64_t>(head.btype), "no XBLOCK or XXBLOCK");
  }
  if (InternalHead::kSize + head.cEnt * kXEntrySize > content.size()) {
    return Corrupt(Named("block", bid), head.cEnt, "an XBLOCK has more entries than room");
  }
  XBlock block{{}, head.lcbTotal, head.cLevel};
  for (std::size_t i = 0; i < head.cEnt; ++i) {
    const Bid child = LoadBid(content, InternalHead::kSize + i * kXEntrySize);
    if (IsInternal(child) != (head.cLevel == 2)) {
      return Corrupt(Named("block", bid), Value(child), "an XBLOCK refers to a block of the wrong kind");
    }
    block.bids.push_back(child);
  }
  return block;
}

}  // namespace

Result<DataTreeReader> DataTreeReader::Open(const BlockSource& source, Bid bid) {
  DataTreeReader tree;
  tree.source_ = &source;
  if (bid == kNoBid) return tree;
  std::vector<std::byte> content;
  if (auto read = source.ReadBlock(bid, content); !read) return tl::unexpected(read.error());
  if (!IsInternal(bid)) {
    tree.size_ = content.size();
    tree.dataBids_ = {bid};
    tree.block_ = std::move(content);
    tree.blockIndex_ = 0;
    return tree;
  }
  Result<XBlock> root = DecodeXBlock(bid, content);
  if (!root) return tl::unexpected(root.error());
  tree.size_ = root->lcbTotal;
  if (root->cLevel == 1) {
    tree.dataBids_ = std::move(root->bids);
    return tree;
  }
  for (const Bid child : root->bids) {
    if (auto read = source.ReadBlock(child, content); !read) return tl::unexpected(read.error());
    const Result<XBlock> xblock = DecodeXBlock(child, content);
    if (!xblock) return tl::unexpected(xblock.error());
    if (xblock->cLevel != 1) return Corrupt(Named("block", child), xblock->cLevel, "an XXBLOCK below another");
    tree.dataBids_.insert(tree.dataBids_.end(), xblock->bids.begin(), xblock->bids.end());
  }
  return tree;
}

Result<std::span<const std::byte>> DataTreeReader::Block(std::size_t index) {
  if (index >= dataBids_.size()) return Corrupt("data tree", index, "the tree has no such block");
  if (index != blockIndex_) {
    blockIndex_ = SIZE_MAX;
    if (auto read = source_->ReadBlock(dataBids_[index], block_); !read) return tl::unexpected(read.error());
    blockIndex_ = index;
  }
  return std::span<const std::byte>(block_);
}

Result<std::size_t> DataTreeReader::ReadAt(std::uint64_t offset, std::span<std::byte> out) {
  std::size_t delivered = 0;
  while (delivered < out.size() && offset / kMaxBlockData < dataBids_.size()) {
    const auto index = static_cast<std::size_t>(offset / kMaxBlockData);
    const Result<std::span<const std::byte>> block = Block(index);
    if (!block) return tl::unexpected(block.error());
    if (index + 1 < dataBids_.size() && block->size() != kMaxBlockData) {
      return Corrupt(Named("block", dataBids_[index]), block->size(), "a data block within a tree is not full");
    }
    const auto within = static_cast<std::size_t>(offset % kMaxBlockData);
    if (within >= block->size()) break;
    const std::size_t count = std::min(block->size() - within, out.size() - delivered);
    std::memcpy(out.data() + delivered, block->data() + within, count);
    delivered += count;
    offset += count;
  }
  return delivered;
}

Result<std::vector<std::byte>> DataTreeReader::ReadAll(std::uint64_t limit) {
  if (size_ > limit) return Fail(FailureKind::kNotSupported, "data tree", size_, "the value is too large for memory");
  std::vector<std::byte> all;
  for (std::size_t i = 0; i < dataBids_.size(); ++i) {
    const Result<std::span<const std::byte>> block = Block(i);
    if (!block) return tl::unexpected(block.error());
    if (all.size() + block->size() > size_)
      return Corrupt("data tree", size_, "the blocks hold more than the tree says");
    all.insert(all.end(), block->begin(), block->end());
  }
  if (all.size() != size_) return Corrupt("data tree", size_, "the blocks hold less than the tree says");
  return all;
}

}  // namespace velmora::ndb
