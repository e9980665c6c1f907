#include <algorithm>

#include "engine/evidence_pass.h"

namespace velmora::engine {
namespace {

/// Two bits a method: enough for the kinds of data, of which there are three. Lists are the same under each.
constexpr unsigned kKindBits = 2;
constexpr unsigned kKindMask = (1u << kKindBits) - 1;
constexpr unsigned kListMark = 1u << (kKindBits * kMethods.size());
static_assert(static_cast<unsigned>(BlockKind::kTable) <= kKindMask);

/// Ids that lists may name, for each block that was found and in all.
constexpr std::size_t kNamesOfBlock = 4;
constexpr std::size_t kNamesAtLeast = std::size_t{1} << 20;

bool IsHeap(BlockKind kind) { return kind == BlockKind::kPropertyContext || kind == BlockKind::kTable; }

}  // namespace

void SlotMap::Take(std::uint64_t offset, std::uint64_t size) {
  const std::uint64_t end = std::min<std::uint64_t>((offset + size) / slot_, taken_.size());
  for (std::uint64_t slot = (offset + slot_ - 1) / slot_; slot < end; ++slot) taken_[slot] = true;
}

bool SlotMap::IsFree(std::uint64_t offset, std::uint64_t size) const {
  const std::uint64_t end = std::min<std::uint64_t>((offset + size + slot_ - 1) / slot_, taken_.size());
  for (std::uint64_t slot = offset / slot_; slot < end; ++slot) {
    if (taken_[slot]) return false;
  }
  return true;
}

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

void Finds::TakeWhole(const SeenTrailer& seen, std::uint64_t offset, Grade grade, std::span<const std::byte> stored) {
  const Kinds kinds = KindsOf(stored, seen.trailer, *layout);
  for (std::size_t i = 0; i < kinds.size(); ++i) votes[i] += IsHeap(kinds[i]) ? 1 : 0;
  if (kinds[0] == BlockKind::kList || kinds[0] == BlockKind::kSubnodes) Name(stored);
  whole.push_back(
      {.bid = seen.trailer.bid, .offset = offset, .cb = seen.trailer.cb, .kind = PackKinds(kinds), .grade = grade});
  taken.Take(offset, BlockSizeOnDisk(seen.trailer.cb, *layout));
  NoteEnd(offset + BlockSizeOnDisk(seen.trailer.cb, *layout));
}

void Finds::TakeHurt(const SeenTrailer& seen, std::span<const std::byte> stored) {
  hurt.push_back({.bid = seen.trailer.bid,
                  .offset = seen.start,
                  .cb = seen.trailer.cb,
                  .kind = PackKinds(KindsOf(stored, seen.trailer, *layout)),
                  .grade = Grade::kHurt});
}

void Finds::TakePage(const FoundPage& page) {
  pages.push_back(page);
  if (page.grade == Grade::kHurt) return;
  ++wholePages;
  NoteEnd(page.offset + layout->pageSize);
  if (page.grade == Grade::kProven) taken.Take(page.offset, layout->pageSize);
}

void Finds::NoteEnd(std::uint64_t itsEnd) {
  end = std::max(end, itsEnd);
  usedAheadOfLast = usedSlots;
}

// Lists of a sound store name each block about once. More names than that are of a store made to do harm, and those
// beyond it are left out.
void Finds::Name(std::span<const std::byte> list) {
  if (named.size() >= namesAtMost_) {
    std::ranges::sort(named);
    named.erase(std::ranges::unique(named).begin(), named.end());
    if (named.size() > kNamesOfBlock * whole.size() + kNamesAtLeast) return;
    namesAtMost_ = std::max(namesAtMost_, 2 * named.size());
  }
  ForEachReference(InternalBlock(list, *layout), [this](Bid bid) { named.push_back(Canonical(bid)); });
}

}  // namespace velmora::engine
