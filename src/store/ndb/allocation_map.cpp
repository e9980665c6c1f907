#include "store/ndb/allocation_map.h"

#include <algorithm>
#include <bit>
#include <cassert>

namespace velmora::ndb {
namespace {

constexpr std::uint32_t kSlotsPerPage = kPageSize / kSlotSize;
constexpr std::uint32_t kMaxSlots = kMaxBlockSize / kSlotSize;

constexpr AllocationMap::Bits kFull = [] {
  AllocationMap::Bits bits{};
  bits.fill(0xFF);
  return bits;
}();

std::uint32_t SlotOf(std::uint64_t ib) { return static_cast<std::uint32_t>((ib - kFirstArea) / kSlotSize); }
std::uint64_t OffsetOf(std::uint32_t slot) { return kFirstArea + std::uint64_t{slot} * kSlotSize; }

/// 64 bits of a map; the first slot in the highest bit.
std::uint64_t WordOf(const AllocationMap::Bits& bits, std::uint32_t word) {
  std::uint64_t value = 0;
  for (std::uint32_t i = 0; i < 8; ++i) value = value << 8 | bits[word * 8 + i];
  return value;
}

/// The first slot from `slot` on that is used (or free); kSlotsPerArea when there is none.
std::uint32_t Next(const AllocationMap::Bits& bits, std::uint32_t slot, bool used) {
  while (slot < kSlotsPerArea) {
    const std::uint64_t word = used ? WordOf(bits, slot / 64) : ~WordOf(bits, slot / 64);
    const std::uint64_t rest = word & (~std::uint64_t{0} >> slot % 64);
    if (rest != 0) return slot / 64 * 64 + static_cast<std::uint32_t>(std::countl_zero(rest));
    slot = (slot / 64 + 1) * 64;
  }
  return kSlotsPerArea;
}

}  // namespace

std::span<const PageType> MapPagesOf(std::uint32_t area) {
  using enum PageType;
  static constexpr std::array kWithFMap = {kAMap, kPMap, kFMap};
  static constexpr std::array kWithFPMap = {kAMap, kPMap, kFPMap, kFPMap};
  if (area % 8 != 0) return std::span(kWithFMap).first(1);
  if (area >= 128 && (area - 128) % kMapBytes == 0) return kWithFMap;
  if (area >= 8192 && (area - 8192) % 31744 == 0) return kWithFPMap;
  return std::span(kWithFMap).first(2);
}

AllocationMap::AllocationMap(std::uint32_t maxAreas) : maxAreas_(maxAreas) { AddArea(); }

std::optional<std::uint64_t> AllocationMap::Allocate(std::uint32_t slots, std::uint32_t alignment) {
  assert(slots > 0 && slots <= kMaxSlots && alignment > 0 && alignment <= kSlotsPerPage);
  const auto aligned = [alignment](const Run& run) { return (run.first + alignment - 1) / alignment * alignment; };
  for (;;) {
    Run* best = nullptr;
    for (Run& run : openRuns_) {
      const bool fits = aligned(run) + slots <= run.first + run.count;
      if (fits && (best == nullptr || run.count < best->count)) best = &run;
    }
    if (best == nullptr) {
      if (!OpenRunOf(slots + alignment - 1)) return std::nullopt;
      continue;
    }
    const Run before = *best;
    const std::uint32_t first = aligned(before);
    best->count = first - before.first;
    AddOpenRun({first + slots, before.first + before.count - first - slots});
    return OffsetOf(first);
  }
}

void AllocationMap::Free(std::uint64_t ib, std::uint32_t slots) { AddOpenRun({SlotOf(ib), slots}); }

void AllocationMap::FreeWithCommit(std::uint64_t ib, std::uint32_t slots) {
  const std::uint32_t first = SlotOf(ib);
  if (!freedWithCommit_.empty()) {
    Run& last = freedWithCommit_.back();
    if (last.first + last.count == first) {
      last.count += slots;
      return;
    }
  }
  freedWithCommit_.push_back({first, slots});
}

void AllocationMap::Settle() {
  for (const Run& run : openRuns_) Mark(run, false);
  for (const Run& run : freedWithCommit_) Mark(run, false);
  openRuns_.clear();
  freedWithCommit_.clear();
  searchSlot_ = 0;
}

const AllocationMap::Bits& AllocationMap::AreaBits(std::uint32_t area) const {
  return areas_[area].bits == nullptr ? kFull : *areas_[area].bits;
}

std::uint64_t AllocationMap::FreeBytes() const {
  std::uint64_t slots = 0;
  for (const Area& area : areas_) slots += area.freeSlots;
  return slots * kSlotSize;
}

bool AllocationMap::OpenRunOf(std::uint32_t slots) {
  if (const std::optional<Run> run = FindFreeRun(slots)) {
    Mark(*run, true);
    AddOpenRun(*run);
    return true;
  }
  if (AreaCount() == maxAreas_) return false;
  AddArea();
  return true;
}

void AllocationMap::AddOpenRun(Run run) {
  // Runs of two areas never meet, as an area begins with its map.
  std::erase_if(openRuns_, [&run](const Run& open) {
    if (open.count == 0) return true;
    if (run.count == 0 || (open.first + open.count != run.first && run.first + run.count != open.first)) return false;
    run = {std::min(open.first, run.first), open.count + run.count};
    return true;
  });
  if (run.count == 0) return;
  if (openRuns_.size() == kMaxOpenRuns) {
    const auto smallest = std::min_element(openRuns_.begin(), openRuns_.end(),
                                           [](const Run& a, const Run& b) { return a.count < b.count; });
    if (smallest->count < run.count) std::swap(*smallest, run);
    Mark(run, false);
    return;
  }
  openRuns_.push_back(run);
}

std::optional<AllocationMap::Run> AllocationMap::FindFreeRun(std::uint32_t slots) {
  while (searchSlot_ / kSlotsPerArea < AreaCount()) {
    const std::uint32_t area = searchSlot_ / kSlotsPerArea;
    const std::uint32_t base = area * kSlotsPerArea;
    if (areas_[area].freeSlots >= slots) {
      const Bits& bits = AreaBits(area);
      const std::uint32_t first = Next(bits, searchSlot_ - base, false);
      const std::uint32_t end = Next(bits, first, true);
      searchSlot_ = base + end;
      if (end - first >= slots) return Run{base + first, end - first};
      if (end < kSlotsPerArea) continue;
    }
    searchSlot_ = base + kSlotsPerArea;
  }
  return std::nullopt;
}

void AllocationMap::AddArea() {
  const std::uint32_t base = AreaCount() * kSlotsPerArea;
  const auto reserved = static_cast<std::uint32_t>(MapPagesOf(AreaCount()).size()) * kSlotsPerPage;
  areas_.emplace_back();
  AddOpenRun({base + reserved, kSlotsPerArea - reserved});
}

void AllocationMap::Mark(Run run, bool used) {
  if (run.count == 0) return;
  Area& area = areas_[run.first / kSlotsPerArea];
  if (area.bits == nullptr) area.bits = std::make_unique<Bits>(kFull);
  const std::uint32_t first = run.first % kSlotsPerArea;
  for (std::uint32_t slot = first; slot < first + run.count; ++slot) {
    const auto mask = static_cast<std::uint8_t>(0x80 >> slot % 8);
    std::uint8_t& byte = (*area.bits)[slot / 8];
    assert(((byte & mask) != 0) != used);
    byte = static_cast<std::uint8_t>(byte ^ mask);
  }
  area.freeSlots = static_cast<std::uint16_t>(used ? area.freeSlots - run.count : area.freeSlots + run.count);
  if (area.freeSlots == 0) area.bits.reset();
}

}  // namespace velmora::ndb
