#include "store/ndb/data_tree_reader.h"

#include <algorithm>
#include <cstring>

#include "store/format/block.h"
#include "store/format/failures.h"

namespace velmora::ndb {
Result<DataTreeReader> DataTreeReader::Open(const BlockSource& source, Bid bid, Faults* faults) {
  DataTreeReader tree;
  tree.source_ = &source;
  tree.faults_ = faults;
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
  const InternalBlock root(content, source.Format());
  if (!root.IsKnown() || root.Head().btype != BlockType::kDataTree) {
    return Corrupt(Named("block", bid), static_cast<std::uint64_t>(root.Head().btype), "no XBLOCK or XXBLOCK");
  }
  tree.size_ = root.Head().lcbTotal;
  Seen seen;
  auto added = root.Head().cLevel == 1 ? tree.AddBlocksOf(bid, content, seen) : tree.AddListsOf(bid, content, seen);
  if (!added) return tl::unexpected(added.error());
  return tree;
}

Result<void> DataTreeReader::AddBlocksOf(Bid bid, std::span<const std::byte> content, Seen& seen) {
  const InternalBlock block(content, source_->Format());
  if (!block.IsKnown() || block.Head().btype != BlockType::kDataTree || block.Head().cLevel != 1) {
    return Corrupt(Named("block", bid), block.Head().cLevel, "no XBLOCK where one belongs");
  }
  if (block.EntryCount() != block.Head().cEnt) {
    auto fault = Corrupt(Named("block", bid), block.Head().cEnt, "an XBLOCK has more entries than room");
    if (auto noted = Tolerate(faults_, bid, std::move(fault)); !noted) return noted;
  }
  for (std::size_t i = 0; i < block.EntryCount(); ++i) {
    const Bid child = block.EntryBid(i, 0);
    const bool isSound = !IsInternal(child) && seen.insert(child).second;
    if (!isSound) {
      auto fault = Corrupt(Named("block", bid), Value(child), "an XBLOCK names an internal block, or a block twice");
      if (auto noted = Tolerate(faults_, bid, std::move(fault)); !noted) return noted;
    }
    dataBids_.push_back(isSound ? child : kNoBid);
  }
  return {};
}

// A list that is lost leaves the room of its blocks, as far as the size of the tree tells that there are more.
Result<void> DataTreeReader::AddListsOf(Bid bid, std::span<const std::byte> content, Seen& seen) {
  const Generation& format = source_->Format();
  const InternalBlock block(content, format);
  if (block.EntryCount() != block.Head().cEnt) {
    auto fault = Corrupt(Named("block", bid), block.Head().cEnt, "an XXBLOCK has more entries than room");
    if (auto noted = Tolerate(faults_, bid, std::move(fault)); !noted) return noted;
  }
  const std::uint64_t blocksInAll = (size_ + format.maxBlockData - 1) / format.maxBlockData;
  std::vector<std::byte> list;
  for (std::size_t i = 0; i < block.EntryCount(); ++i) {
    const Bid child = block.EntryBid(i, 0);
    const std::size_t before = dataBids_.size();
    Result<void> added;
    if (!IsInternal(child) || !seen.insert(child).second) {
      added = Corrupt(Named("block", bid), Value(child), "an XXBLOCK names a data block, or a block twice");
    } else {
      added = source_->ReadBlock(child, list);
    }
    if (added) added = AddBlocksOf(child, list, seen);
    if (added) continue;
    if (auto noted = Tolerate(faults_, child, added.error()); !noted) return noted;
    const std::uint64_t missing = blocksInAll > before ? blocksInAll - before : 0;
    const std::uint64_t room = MaxInternalEntries(BlockType::kDataTree, 1, format);
    dataBids_.resize(before + static_cast<std::size_t>(std::min(missing, room)), kNoBid);
  }
  return {};
}

Result<std::span<const std::byte>> DataTreeReader::Block(std::size_t index) {
  if (index >= dataBids_.size()) return Corrupt("data tree", index, "the tree has no such block");
  if (index != blockIndex_) {
    Result<void> read = Fail(FailureKind::kNotFound, "data tree", index, "the list that names the block is lost");
    if (dataBids_[index] != kNoBid) read = source_->ReadBlock(dataBids_[index], block_);
    blockIndex_ = index;
    blockFailure_ = read ? std::nullopt : std::optional(read.error());
  }
  if (blockFailure_) return tl::unexpected(*blockFailure_);
  return std::span<const std::byte>(block_);
}

// A tolerant reader's block: what there is of it, with zeros up to the size that it must have.
Result<std::span<const std::byte>> DataTreeReader::BlockOrZeros(std::size_t index) {
  Result<std::span<const std::byte>> block = Block(index);
  const bool isLast = index + 1 == dataBids_.size();
  const std::uint64_t full = source_->Format().maxBlockData;
  if (block && (isLast || block->size() == full)) return block;
  if (block) {
    block = Corrupt(Named("block", dataBids_[index]), block->size(), "a data block within a tree is not full");
  }
  if (auto noted = Tolerate(faults_, dataBids_[index], block.error()); !noted) return tl::unexpected(noted.error());
  if (blockFailure_) {
    block_.clear();
  } else {
    blockIndex_ = SIZE_MAX;  // what will stand there is no block of the store
  }
  const std::uint64_t rest = size_ > index * full ? size_ - index * full : 0;
  block_.resize(static_cast<std::size_t>(std::min(rest, full)));
  return std::span<const std::byte>(block_);
}

Result<std::size_t> DataTreeReader::ReadAt(std::uint64_t offset, std::span<std::byte> out) {
  std::size_t delivered = 0;
  if (dataBids_.empty()) return delivered;
  const std::uint64_t full = source_->Format().maxBlockData;
  while (delivered < out.size() && offset / full < dataBids_.size()) {
    const Result<std::span<const std::byte>> block = BlockOrZeros(static_cast<std::size_t>(offset / full));
    if (!block) return tl::unexpected(block.error());
    const auto within = static_cast<std::size_t>(offset % full);
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
  for (std::size_t i = 0; i < dataBids_.size() && all.size() <= size_; ++i) {
    const Result<std::span<const std::byte>> block = faults_ == nullptr ? Block(i) : BlockOrZeros(i);
    if (!block) return tl::unexpected(block.error());
    all.insert(all.end(), block->begin(), block->end());
  }
  if (all.size() == size_) return all;
  auto fault = Corrupt("data tree", size_, "the blocks hold more or less than the tree says");
  if (auto noted = Tolerate(faults_, BidOf(0), std::move(fault)); !noted) return tl::unexpected(noted.error());
  all.resize(std::min<std::size_t>(all.size(), size_));
  return all;
}

}  // namespace velmora::ndb
