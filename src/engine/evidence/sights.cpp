#include "engine/evidence/sights.h"

#include <algorithm>

namespace velmora::engine {
namespace {

/// Two bits a method: enough for the kinds of data, of which there are four. Lists are the same under each.
constexpr unsigned kKindBits = 2;
constexpr unsigned kKindMask = (1u << kKindBits) - 1;
constexpr unsigned kListMark = 1u << (kKindBits * kMethods.size());
static_assert(static_cast<unsigned>(BlockKind::kPacked) == kKindMask);

/// Ids that lists may name, for each block that was found and in all.
constexpr std::size_t kNamesOfBlock = 4;
constexpr std::size_t kNamesAtLeast = std::size_t{1} << 20;

/// Content that hardly comes out of decoding by the wrong method.
bool IsTelling(BlockKind kind) {
  return kind == BlockKind::kPropertyContext || kind == BlockKind::kTable || kind == BlockKind::kPacked;
}

}  // namespace

BlockKind PackKinds(const Kinds& kinds) {
  unsigned packed = 0;
  if (static_cast<unsigned>(kinds[0]) > kKindMask)
    return BlockKind{static_cast<std::uint8_t>(kListMark | static_cast<unsigned>(kinds[0]))};
  for (std::size_t i = 0; i < kinds.size(); ++i) packed |= static_cast<unsigned>(kinds[i]) << (kKindBits * i);
  return BlockKind{static_cast<std::uint8_t>(packed)};
}

BlockKind UnpackKind(BlockKind packed, CryptMethod method) {
  const auto bits = static_cast<unsigned>(packed);
  if ((bits & kListMark) != 0) return BlockKind{static_cast<std::uint8_t>(bits & ~kListMark)};
  return BlockKind{static_cast<std::uint8_t>(bits >> (kKindBits * static_cast<unsigned>(method)) & kKindMask)};
}

void Sights::TakeWhole(const SeenTrailer& seen, std::uint64_t offset, Grade grade, std::span<const std::byte> stored,
                       std::uint64_t usedUpToIt) {
  const Kinds kinds = KindsAtSight(stored, seen.trailer, *layout);
  for (std::size_t i = 0; i < kinds.size(); ++i) votes[i] += IsTelling(kinds[i]) ? 1 : 0;
  if ((kinds[0] == BlockKind::kList || kinds[0] == BlockKind::kSubnodes) && MayName()) {
    ForEachReference(InternalBlock(stored, *layout), [this](Bid bid) { named.Insert(bid); });
  }
  whole.push_back(
      {.bid = seen.trailer.bid, .offset = offset, .cb = seen.trailer.cb, .kind = PackKinds(kinds), .grade = grade});
  ++wholeBlocks;
  hasMovedBlocks = hasMovedBlocks || grade == Grade::kMoved;
  NoteEnd(offset + BlockSizeOnDisk(seen.trailer.cb, *layout), usedUpToIt);
}

void Sights::TakeHurt(const SeenTrailer& seen, std::span<const std::byte> stored) {
  hurt.push_back({.bid = seen.trailer.bid,
                  .offset = seen.start,
                  .cb = seen.trailer.cb,
                  .kind = PackKinds(KindsOf(stored, seen.trailer, *layout)),
                  .grade = Grade::kHurt});
}

void Sights::TakePage(const FoundPage& page) {
  pages.push_back(page);
  if (page.grade == Grade::kHurt) return;
  ++wholePages;
  NoteEnd(page.offset + layout->pageSize, usedSlots);
}

void Sights::Add(const Sights& behind) {
  if (MayName()) named.Insert(behind.named);
  pages.insert(pages.end(), behind.pages.begin(), behind.pages.end());
  whole.insert(whole.end(), behind.whole.begin(), behind.whole.end());
  hurt.insert(hurt.end(), behind.hurt.begin(), behind.hurt.end());
  for (std::size_t i = 0; i < votes.size(); ++i) votes[i] += behind.votes[i];
  wholePages += behind.wholePages;
  wholeBlocks += behind.wholeBlocks;
  hasMovedBlocks = hasMovedBlocks || behind.hasMovedBlocks;
  NoteEnd(behind.end, usedSlots + behind.usedAheadOfLast);
  usedSlots += behind.usedSlots;
}

void Sights::NoteEnd(std::uint64_t itsEnd, std::uint64_t usedUpToIt) {
  if (itsEnd <= end) return;
  end = itsEnd;
  usedAheadOfLast = usedUpToIt;
}

// Lists of a sound store name each block about once. More names than that are of a store made to do harm, and those
// beyond it are left out.
bool Sights::MayName() const { return named.size() <= kNamesOfBlock * wholeBlocks + kNamesAtLeast; }

}  // namespace velmora::engine
