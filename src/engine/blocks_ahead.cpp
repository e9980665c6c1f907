#include "engine/blocks_ahead.h"

#include <algorithm>

#include "engine/read_runs.h"
#include "store/format/block.h"
#include "store/format/checksum.h"

namespace velmora::engine {
namespace {

/// Lists above lists above lists, in messages within messages.
constexpr int kMostLevels = 32;

}  // namespace

BlocksAhead::BlocksAhead(const ProvenStore& store, std::span<const ndb::NodeTrees> messages, bool keepStored)
    : store_(store), keepStored_(keepStored) {
  std::vector<Wanted> wanted;
  for (const ndb::NodeTrees& trees : messages) {
    Ask(trees.bidData, Part::kObject, wanted);
    Ask(trees.bidSub, Part::kSubnodes, wanted);
  }
  for (int level = 0; level < kMostLevels && !wanted.empty() && !isFull_; ++level) {
    const std::vector<Placed> placed = Place(wanted);
    const auto beginOf = [](const Placed& one) { return one.block.offset; };
    const auto endOf = [&](const Placed& one) {
      return one.block.offset + BlockSizeOnDisk(one.block.cb, store_.Format());
    };
    for (auto at = placed.begin(); at != placed.end();) {
      std::uint64_t end = 0;
      const auto behind = EndOfRun(at, placed.end(), beginOf, endOf, end);
      Read({at, behind}, end);
      at = behind;
    }
    std::ranges::sort(blocks_, {}, &Block::bid);
    std::vector<Wanted> below;
    for (const Wanted& above : wanted) {
      if (IsInternal(above.bid)) AskBelow(above, below);
    }
    wanted = std::move(below);
  }
}

/// Once for each block, however many lists name it, and how often.
void BlocksAhead::Ask(Bid bid, Part part, std::vector<Wanted>& wanted) {
  if (bid != kNoBid && asked_.insert(Canonical(bid)).second) wanted.push_back({bid, part});
}

/// Those of the wanted that are whole and have room, by their places.
std::vector<BlocksAhead::Placed> BlocksAhead::Place(std::span<const Wanted> wanted) {
  std::vector<Placed> placed;
  for (const auto& [bid, part] : wanted) {
    const std::optional<FoundBlock> block = store_.Found().Find(bid);
    if (!block || !IsWhole(*block)) continue;
    const std::size_t size = BlockSizeOnDisk(block->cb, store_.Format());
    if (size > bytesLeft_) {
      isFull_ = true;
      break;
    }
    bytesLeft_ -= size;
    placed.push_back({*block, part});
  }
  std::ranges::sort(placed, {}, [](const Placed& one) { return one.block.offset; });
  return placed;
}

/// Blocks that one read takes, up to the offset `end`.
void BlocksAhead::Read(std::span<const Placed> run, std::uint64_t end) {
  const Generation& layout = store_.Format();
  const std::uint64_t start = run.front().block.offset;
  const auto length = static_cast<std::size_t>(end - start);
  const std::span bytes(runs_.emplace_back(std::make_unique_for_overwrite<std::byte[]>(length)).get(), length);
  const std::size_t read = store_.Bytes().ReadAround(start, bytes);
  for (const Placed& placed : run) {
    const auto at = static_cast<std::size_t>(placed.block.offset - start);
    const std::size_t size = BlockSizeOnDisk(placed.block.cb, layout);
    if (at + size <= read) Take(placed, bytes.subspan(at, size));
  }
}

void BlocksAhead::Take(const Placed& placed, std::span<std::byte> onDisk) {
  const Generation& layout = store_.Format();
  const FoundBlock& found = placed.block;
  const auto stored = onDisk.first(found.cb);
  const BlockTrailer trailer = DecodeBlockTrailer(onDisk.last(layout.blockTrailerSize), layout);
  if (trailer.dwCRC != WeakCrc(stored)) return;
  Block block{found.bid, stored, false, trailer.dwCRC};
  if (keepStored_ && placed.part == Part::kValue && !IsInternal(found.bid)) {
    block.isEncoded = true;
  } else if (layout.offInflatedSize == 0) {
    if (!IsInternal(found.bid)) DecodeBlock(store_.Found().encoding, found.bid, stored);
  } else {
    if (trailer.cbInflated > bytesLeft_) {
      isFull_ = true;
      return;
    }
    std::vector<std::byte> content(onDisk.begin(), onDisk.end());
    if (!UnpackBlock(content, found.bid, found.cb, store_.Found().encoding, layout)) return;
    bytesLeft_ -= std::min(bytesLeft_, content.size());
    block.bytes = inflated_.emplace_back(std::move(content));
  }
  blocks_.push_back(block);
}

void BlocksAhead::AskBelow(const Wanted& above, std::vector<Wanted>& below) {
  const Block* found = Among(above.bid);
  if (found == nullptr) return;
  const InternalBlock list(found->bytes, store_.Format());
  for (std::size_t i = 0; i < list.EntryCount(); ++i) {
    if (list.Head().btype == BlockType::kDataTree) {
      Ask(list.EntryBid(i, 0), above.part, below);
    } else if (list.Head().cLevel != 0) {
      Ask(list.EntryBid(i, 1), above.part, below);
    } else {
      const bool isValue = TypeOf(list.EntryNid(i)) == NidType::kLtp;
      Ask(list.EntryBid(i, 1), isValue ? Part::kValue : Part::kObject, below);
      Ask(list.EntryBid(i, 2), Part::kSubnodes, below);
    }
  }
}

const BlocksAhead::Block* BlocksAhead::Among(Bid bid) const {
  const auto found = std::ranges::lower_bound(blocks_, Canonical(bid), {}, &Block::bid);
  return found != blocks_.end() && found->bid == Canonical(bid) ? &*found : nullptr;
}

bool BlocksAhead::Find(Bid bid, std::vector<std::byte>& out) const {
  const Block* block = Among(bid);
  if (block == nullptr) return false;
  out.assign(block->bytes.begin(), block->bytes.end());
  if (block->isEncoded) DecodeBlock(store_.Found().encoding, block->bid, out);
  return true;
}

std::optional<StoredData> BlocksAhead::FindStored(Bid bid) const {
  const Block* block = Among(bid);
  if (block == nullptr || !block->isEncoded) return std::nullopt;
  return StoredData{block->bytes, block->crc};
}

}  // namespace velmora::engine
