#include "store/ndb/data_tree_reader.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "store/format/block.h"
#include "store/format/failures.h"

namespace velmora::ndb {

DataTreeReader DataTreeReader::Open(const BlockSource& source, Bid bid, Faults* faults) {
  DataTreeReader tree;
  tree.source_ = &source;
  tree.faults_ = faults;
  if (bid == kNoBid) return tree;
  if (!IsInternal(bid)) {
    tree.dataBids_ = {bid};
    if (const auto size = source.SizeOf(bid)) {
      tree.size_ = *size;
      return tree;
    }
    source.ReadBlock(bid, tree.block_);
    tree.size_ = tree.block_.size();
    tree.blockIndex_ = 0;
    return tree;
  }
  std::vector<std::byte> content;
  source.ReadBlock(bid, content);
  const InternalBlock root(content, source.Format());
  if (!root.IsKnown() || root.Head().btype != BlockType::kDataTree) {
    RaiseCorrupt({ObjectKind::kBlock, bid}, static_cast<std::uint64_t>(root.Head().btype), "no XBLOCK or XXBLOCK");
  }
  tree.size_ = root.Head().lcbTotal;
  Seen seen;
  if (root.Head().cLevel == 1) {
    tree.AddBlocksOf(bid, content, seen);
  } else {
    tree.AddListsOf(bid, content, seen);
  }
  return tree;
}

void DataTreeReader::AddBlocksOf(Bid bid, std::span<const std::byte> content, Seen& seen) {
  const InternalBlock block(content, source_->Format());
  if (!block.IsKnown() || block.Head().btype != BlockType::kDataTree || block.Head().cLevel != 1) {
    RaiseCorrupt({ObjectKind::kBlock, bid}, block.Head().cLevel, "no XBLOCK where one belongs");
  }
  if (block.EntryCount() != block.Head().cEnt) {
    Note(faults_, Corrupt({ObjectKind::kBlock, bid}, block.Head().cEnt, "an XBLOCK has more entries than room"));
  }
  for (std::size_t i = 0; i < block.EntryCount(); ++i) {
    const Bid child = block.EntryBid(i, 0);
    const bool isSound = !IsInternal(child) && seen.insert(child).second;
    if (!isSound) {
      Note(faults_,
           Corrupt({ObjectKind::kBlock, bid}, Value(child), "an XBLOCK names an internal block, or a block twice"));
    }
    dataBids_.push_back(isSound ? child : kNoBid);
  }
}

// A list that is lost leaves the room of its blocks, as far as the size of the tree tells that there are more.
void DataTreeReader::AddListsOf(Bid bid, std::span<const std::byte> content, Seen& seen) {
  const Generation& format = source_->Format();
  const InternalBlock block(content, format);
  if (block.EntryCount() != block.Head().cEnt) {
    Note(faults_, Corrupt({ObjectKind::kBlock, bid}, block.Head().cEnt, "an XXBLOCK has more entries than room"));
  }
  const std::uint64_t blocksInAll = (size_ + format.maxBlockData - 1) / format.maxBlockData;
  std::vector<std::byte> list;
  for (std::size_t i = 0; i < block.EntryCount(); ++i) {
    const Bid child = block.EntryBid(i, 0);
    const std::size_t before = dataBids_.size();
    const bool isAdded = Tolerate(faults_, [&] {
      if (!IsInternal(child) || !seen.insert(child).second) {
        RaiseCorrupt({ObjectKind::kBlock, bid}, Value(child), "an XXBLOCK names a data block, or a block twice");
      }
      source_->ReadBlock(child, list);
      AddBlocksOf(child, list, seen);
    });
    if (isAdded) continue;
    const std::uint64_t missing = blocksInAll > before ? blocksInAll - before : 0;
    const std::uint64_t room = MaxInternalEntries(BlockType::kDataTree, 1, format);
    dataBids_.resize(before + static_cast<std::size_t>(std::min(missing, room)), kNoBid);
  }
}

const std::optional<Failure>& DataTreeReader::WhyLost(std::size_t index) {
  if (index == blockIndex_) return blockFailure_;
  blockIndex_ = index;
  blockFailure_.reset();
  const Bid bid = BidOf(index);
  try {
    if (index >= dataBids_.size()) {
      blockFailure_ = Corrupt(ObjectKind::kDataTree, index, "the tree has no such block");
    } else if (bid == kNoBid) {
      blockFailure_ = {FailureKind::kNotFound, ObjectKind::kDataTree, index, "the list that names the block is lost"};
    } else if (!source_->FindBlock(bid, block_)) {
      blockFailure_ = BlockSource::NoSuchBlock(bid);
    }
  } catch (const FailureError& failure) {
    blockFailure_ = failure.Cause();
  }
  return blockFailure_;
}

std::span<const std::byte> DataTreeReader::Block(std::size_t index) {
  if (const std::optional<Failure>& why = WhyLost(index)) throw FailureError(*why);
  return block_;
}

std::vector<std::byte> DataTreeReader::TakeBlock(std::size_t index) {
  static_cast<void>(Block(index));
  blockIndex_ = SIZE_MAX;
  return std::exchange(block_, {});
}

// A tolerant reader's block: what there is of it, with zeros up to the size that it must have.
std::span<const std::byte> DataTreeReader::BlockOrZeros(std::size_t index) {
  const std::optional<Failure>& why = WhyLost(index);
  const bool isLast = index + 1 == dataBids_.size();
  const std::uint64_t full = source_->Format().maxBlockData;
  if (!why && (isLast || block_.size() == full)) return block_;
  if (why) {
    Note(faults_, *why);
    block_.clear();
  } else {
    Note(faults_,
         Corrupt({ObjectKind::kBlock, dataBids_[index]}, block_.size(), "a data block within a tree is not full"));
    blockIndex_ = SIZE_MAX;  // what will stand there is no block of the store
  }
  const std::uint64_t rest = size_ > index * full ? size_ - index * full : 0;
  block_.resize(static_cast<std::size_t>(std::min(rest, full)));
  return block_;
}

std::size_t DataTreeReader::ReadAt(std::uint64_t from, std::span<std::byte> out) {
  std::size_t delivered = 0;
  std::uint64_t offset = from;
  if (dataBids_.empty()) return delivered;
  const std::uint64_t full = source_->Format().maxBlockData;
  while (delivered < out.size() && offset / full < dataBids_.size()) {
    const std::span<const std::byte> block = BlockOrZeros(static_cast<std::size_t>(offset / full));
    const auto within = static_cast<std::size_t>(offset % full);
    if (within >= block.size()) break;
    const std::size_t count = std::min(block.size() - within, out.size() - delivered);
    std::memcpy(out.data() + delivered, block.data() + within, count);
    delivered += count;
    offset += count;
  }
  if (delivered < out.size() && from <= size_) CheckEnd(offset);
  return delivered;
}

std::vector<std::byte> DataTreeReader::ReadAll(std::uint64_t limit) {
  if (size_ > limit) {
    Raise(FailureKind::kNotSupported, ObjectKind::kDataTree, size_, "the value is too large for memory");
  }
  std::vector<std::byte> all;
  for (std::size_t i = 0; i < dataBids_.size() && all.size() <= size_; ++i) {
    const std::span<const std::byte> block = faults_ == nullptr ? Block(i) : BlockOrZeros(i);
    all.insert(all.end(), block.begin(), block.end());
  }
  CheckEnd(all.size());
  all.resize(std::min<std::size_t>(all.size(), size_));
  return all;
}

void DataTreeReader::CheckEnd(std::uint64_t end) const {
  if (end == size_) return;
  Note(faults_, Corrupt(ObjectKind::kDataTree, size_, "the blocks hold more or less than the tree says"));
}

}  // namespace velmora::ndb
