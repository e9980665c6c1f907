#include "engine/blocks_ahead.h"

#include <algorithm>

#include "engine/read_runs.h"
#include "store/format/block.h"
#include "store/format/checksum.h"
#include "store/format/inflate.h"

namespace velmora::engine {
namespace {

/// Lists above lists above lists, in messages within messages.
constexpr int kMostLevels = 32;

/// Bytes of memory for contents of packed blocks that are taken together.
constexpr std::size_t kInflatedAtOnce = std::size_t{256} << 10;

/// Two messages that lie no farther apart than this may have between them what is theirs.
constexpr std::uint64_t kSpanOfMessage = 256 << 10;

}  // namespace

BlocksAhead::BlocksAhead(const ProvenStore& store, std::span<const ndb::NodeTrees> messages, bool keepStored)
    : store_(store), keepStored_(keepStored), pieces_(store.Bytes()) {
  std::vector<Wanted> wanted;
  for (const ndb::NodeTrees& trees : messages) {
    Ask(trees.bidData, Part::kObject, wanted);
    Ask(trees.bidSub, Part::kSubnodes, wanted);
  }
  for (int level = 0; level < kMostLevels && !wanted.empty(); ++level) {
    const std::vector<Placed> placed = Place(wanted);
    Read(placed, level == 0);
    for (const Placed& one : placed) Take(one);
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
  if (bid != kNoBid && asked_.Insert(bid)) wanted.push_back({bid, part});
}

/// Those of the wanted that are whole and were read or have room, by their places.
std::vector<BlocksAhead::Placed> BlocksAhead::Place(std::span<const Wanted> wanted) {
  std::vector<Placed> placed;
  for (const auto& [bid, part] : wanted) {
    const std::optional<FoundBlock> block = store_.Found().Find(bid);
    if (!block || !IsWhole(*block)) continue;
    const std::size_t size = BlockSizeOnDisk(block->cb, store_.Format());
    if (!pieces_.Holds(block->offset, size)) {
      if (size > bytesLeft_) {
        isFull_ = true;
        continue;
      }
      bytesLeft_ -= size;
    }
    placed.push_back({*block, part});
  }
  std::ranges::sort(placed, {}, Begin);
  return placed;
}

/// Those of the blocks that no piece holds yet.
void BlocksAhead::Read(std::span<const Placed> placed, bool withWhatLiesBetween) {
  std::vector<Placed> missing;
  std::ranges::copy_if(placed, std::back_inserter(missing),
                       [&](const Placed& one) { return !pieces_.Holds(Begin(one), End(one) - Begin(one)); });
  const auto readRuns = [&](auto at, auto last, std::uint64_t widestGap) {
    while (at != last) {
      const std::uint64_t begin = Begin(*at);
      const std::uint64_t limit = pieces_.NextBegin(begin);
      const auto atLimit = std::partition_point(at, last, [&](const Placed& one) { return Begin(one) < limit; });
      std::uint64_t end = 0;
      at = EndOfRun(
          at, std::max(atLimit, std::next(at)), Begin, [this](const Placed& one) { return End(one); }, end, widestGap);
      pieces_.Read(begin, end);
    }
  };
  const auto strewn = missing.begin() + (withWhatLiesBetween ? TakeGaps(missing) : 0);
  readRuns(missing.begin(), strewn, kSpanOfMessage);
  readRuns(strewn, missing.end(), kWidestGap);
}

/// Of blocks in the order of the file, those that are read with all that lies between them, as far as there is room for
/// it; none where they stand far apart for the most part.
std::ptrdiff_t BlocksAhead::TakeGaps(std::span<const Placed> blocks) {
  if (blocks.empty()) return 0;
  std::uint64_t between = 0;
  std::uint64_t taken = 0;
  std::ptrdiff_t count = 0;
  for (std::size_t i = 1; i < blocks.size(); ++i) {
    const std::uint64_t gap = Begin(blocks[i]) - std::min(Begin(blocks[i]), End(blocks[i - 1]));
    if (gap <= kSpanOfMessage) between += gap;
    if (between > bytesLeft_) continue;
    taken = between;
    count = static_cast<std::ptrdiff_t>(i) + 1;
  }
  if (between < (End(blocks.back()) - Begin(blocks.front())) / 2) return 0;
  bytesLeft_ -= static_cast<std::size_t>(taken);
  if (taken < between) isFull_ = true;
  return count;
}

/// A block that lies in another one is left: to decode it in its place would change the other.
void BlocksAhead::Take(const Placed& placed) {
  const Generation& layout = store_.Format();
  const FoundBlock& found = placed.block;
  const std::span<std::byte> onDisk = pieces_.Claim(found.offset, BlockSizeOnDisk(found.cb, layout));
  if (onDisk.empty()) return;
  const auto stored = onDisk.first(found.cb);
  const BlockTrailer trailer = DecodeBlockTrailer(onDisk.last(layout.blockTrailerSize), layout);
  if (trailer.dwCRC != WeakCrc(stored)) return;
  Block block{found.bid, stored, false, trailer.dwCRC};
  if (keepStored_ && placed.part == Part::kValue && !IsInternal(found.bid)) {
    block.isEncoded = true;
  } else if (!IsInternal(found.bid)) {
    DecodeBlock(store_.Found().encoding, found.bid, stored);
    if (trailer.cbInflated != found.cb) {
      const auto content = RoomFor(trailer.cbInflated);
      if (!content || !Inflate(stored, *content)) return;
      block.bytes = *content;
    }
  }
  blocks_.push_back(block);
}

/// Memory for the content of a packed block; nothing where that would be too much.
std::optional<std::span<std::byte>> BlocksAhead::RoomFor(std::size_t size) {
  if (size > inflatedLeft_) {
    isFull_ = true;
    return std::nullopt;
  }
  inflatedLeft_ -= size;
  if (inflated_.empty() || size > room_.size()) {
    const std::size_t bytes = std::max(size, kInflatedAtOnce);
    room_ = {inflated_.emplace_back(std::make_unique_for_overwrite<std::byte[]>(bytes)).get(), bytes};
  }
  const auto content = room_.first(size);
  room_ = room_.subspan(size);
  return content;
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
