#include "store/ndb/allocation_map.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>

#include "store/support/test_files.h"

namespace velmora::ndb {
namespace {

bool IsUsed(const AllocationMap& map, std::uint64_t ib) {
  const auto area = static_cast<std::uint32_t>((ib - kFirstArea) / kAreaSize);
  const auto slot = static_cast<std::uint32_t>((ib - kFirstArea) % kAreaSize / kSlotSize);
  return (map.AreaBits(area)[slot / 8] & (0x80 >> slot % 8)) != 0;
}

TEST(AllocationMap, BeginsBehindTheFirstMapPages) {
  AllocationMap map;
  EXPECT_EQ(map.Allocate(1), 0x4800u);
  EXPECT_EQ(map.Allocate(128), 0x4840u);
  EXPECT_EQ(map.FileSize(), 271360u);
}

TEST(AllocationMap, OfAnEmptyAreaHas3960FreeSlotsOr3952WithAPMap) {
  AllocationMap map;
  map.Settle();
  EXPECT_EQ(map.FreeSlots(0), 3952u);
  while (map.AreaCount() < 2) map.Allocate(128);
  map.Settle();
  EXPECT_EQ(map.FreeSlots(1), 3960u - 128);
}

TEST(AllocationMap, KeepsThePlacesOfAllMapPagesFree) {
  using enum PageType;
  const auto offsets = [](std::uint32_t area, PageType type) {
    std::vector<std::uint64_t> found;
    const auto pages = MapPagesOf(area);
    for (std::size_t i = 0; i < pages.size(); ++i) {
      if (pages[i] == type) found.push_back(AreaOffset(area) + i * kPageSize);
    }
    return found;
  };
  EXPECT_EQ(offsets(0, kPMap), std::vector<std::uint64_t>{0x4600});
  EXPECT_TRUE(offsets(7, kPMap).empty());
  EXPECT_EQ(offsets(8, kPMap), std::vector<std::uint64_t>{0x4600 + 0x1F0000});
  EXPECT_TRUE(offsets(120, kFMap).empty());
  EXPECT_EQ(offsets(128, kFMap), std::vector<std::uint64_t>{0x01F04800});
  EXPECT_EQ(offsets(624, kFMap), std::vector<std::uint64_t>{0x01F04800 + 0x7820000});
  EXPECT_TRUE(offsets(8184, kFPMap).empty());
  EXPECT_EQ(offsets(8192, kFPMap), (std::vector<std::uint64_t>{0x7C004800, 0x7C004A00}));
  EXPECT_EQ(offsets(8192 + 31744, kFPMap).front(), 0x7C004800 + 0x1E0800000);
  for (std::uint32_t area = 0; area < 45000; ++area) ASSERT_EQ(MapPagesOf(area)[0], kAMap);
}

TEST(AllocationMap, LeavesNoItemAcrossAreas) {
  AllocationMap map;
  std::uint64_t end = 0x4800;
  while (map.AreaCount() < 10000) {
    const std::uint64_t ib = map.Allocate(127).value();
    ASSERT_GE(ib, end);
    const std::uint64_t area = (ib - kFirstArea) / kAreaSize;
    const std::uint64_t maps = MapPagesOf(static_cast<std::uint32_t>(area)).size() * kPageSize;
    ASSERT_GE(ib - AreaOffset(static_cast<std::uint32_t>(area)), maps);
    end = ib + 127 * kSlotSize;
    ASSERT_EQ((end - 1 - kFirstArea) / kAreaSize, area);
  }
  EXPECT_GT(map.FileSize(), std::uint64_t{1} << 31);
}

TEST(AllocationMap, PutsPagesAtMultiplesOfTheirSize) {
  AllocationMap map;
  for (std::uint32_t slots = 1; slots < 60; ++slots) {
    map.Allocate(slots);
    EXPECT_EQ(*map.Allocate(8, 8) % kPageSize, 0u);
  }
}

TEST(AllocationMap, FillsTheGapBeforeAPageAndTheRestOfAnArea) {
  AllocationMap map;
  map.Allocate(1);
  map.Allocate(8, 8);
  EXPECT_EQ(map.Allocate(7), 0x4840u);
  const std::uint64_t first = map.Allocate(128).value();
  std::uint64_t last = first;
  while (map.AreaCount() == 1) last = map.Allocate(128).value();
  EXPECT_LT(map.Allocate(4).value(), last) << "the rest of area 0 is too short for 128 slots, not for 4";
}

TEST(AllocationMap, GivesUncommittedSpaceAwayAtOnce) {
  AllocationMap map;
  map.Allocate(10);
  const std::uint64_t ib = map.Allocate(20).value();
  map.Allocate(10);
  map.Free(ib, 20);
  EXPECT_EQ(map.Allocate(20), ib);
}

TEST(AllocationMap, GivesCommittedSpaceAwayAfterTheNextCommitAlone) {
  AllocationMap map;
  const std::uint64_t ib = map.Allocate(128).value();
  map.Settle();
  map.FreeWithCommit(ib, 128);
  for (int i = 0; i < 500; ++i) ASSERT_NE(map.Allocate(100), ib);
  map.Settle();
  EXPECT_EQ(map.Allocate(128), ib);
}

TEST(AllocationMap, JoinsFreedNeighbours) {
  AllocationMap map;
  std::vector<std::uint64_t> places;
  for (int i = 0; i < 4; ++i) places.push_back(map.Allocate(32).value());
  map.Allocate(1);
  for (const int i : {2, 0, 3, 1}) map.Free(places[static_cast<std::size_t>(i)], 32);
  EXPECT_EQ(map.Allocate(128), places[0]);
}

TEST(AllocationMap, TellsExactlyWhatIsInUseWhenSettled) {
  test::Random random(7);
  AllocationMap map;
  std::map<std::uint64_t, std::uint32_t> held;  // offset, slots
  for (int round = 0; round < 20; ++round) {
    for (int step = 0; step < 400; ++step) {
      if (random() % 3 != 0 || held.empty()) {
        const bool page = random() % 5 == 0;
        const std::uint32_t slots = page ? 8 : 1 + random() % 128;
        const std::uint64_t ib = map.Allocate(slots, page ? 8 : 1).value();
        const auto next = held.lower_bound(ib);
        ASSERT_TRUE(next == held.end() || next->first >= ib + slots * kSlotSize);
        ASSERT_TRUE(next == held.begin() || std::prev(next)->first + std::prev(next)->second * kSlotSize <= ib);
        held[ib] = slots;
      } else {
        const auto victim = std::next(held.begin(), static_cast<std::ptrdiff_t>(random() % held.size()));
        if (random() % 2 == 0) {
          map.Free(victim->first, victim->second);
        } else {
          map.FreeWithCommit(victim->first, victim->second);
        }
        held.erase(victim);
      }
    }
    map.Settle();
    std::uint64_t used = 0;
    for (const auto& [ib, slots] : held) {
      for (std::uint32_t i = 0; i < slots; ++i) ASSERT_TRUE(IsUsed(map, ib + i * kSlotSize));
      used += slots;
    }
    std::uint64_t all = 0;
    for (std::uint32_t area = 0; area < map.AreaCount(); ++area) {
      used += MapPagesOf(area).size() * 8;
      all += kSlotsPerArea;
    }
    ASSERT_EQ(map.FreeBytes(), (all - used) * kSlotSize);
  }
}

/// The others share those of a full one.
std::size_t AreasWithOwnBits(const AllocationMap& map) {
  std::map<const AllocationMap::Bits*, std::size_t> areasOf;
  for (std::uint32_t area = 0; area < map.AreaCount(); ++area) ++areasOf[&map.AreaBits(area)];
  return static_cast<std::size_t>(std::ranges::count_if(areasOf, [](const auto& of) { return of.second == 1; }));
}

TEST(AllocationMap, HoldsBitsOfAreasAloneThatHaveRoom) {
  AllocationMap map;
  const std::uint64_t first = map.Allocate(8).value();
  while (map.AreaCount() < 10) map.Allocate(8);
  map.Settle();
  EXPECT_EQ(AreasWithOwnBits(map), 1u) << "the last";
  map.Free(first, 8);
  map.Settle();
  EXPECT_EQ(AreasWithOwnBits(map), 2u);
  EXPECT_FALSE(IsUsed(map, first));
  EXPECT_TRUE(IsUsed(map, first + 8 * kSlotSize));
  while (map.FreeSlots(0) != 0) map.Allocate(8);
  map.Settle();
  EXPECT_EQ(AreasWithOwnBits(map), 1u);
  EXPECT_TRUE(IsUsed(map, first));
}

TEST(AllocationMap, EndsAtItsLargestSize) {
  static_assert(AreaOffset(kMaxAreas) / kSlotSize <= 0xFFFFFFFF, "a slot has a 32-bit number");
  AllocationMap map(3);
  std::size_t count = 0;
  while (map.Allocate(128)) ++count;
  EXPECT_EQ(map.AreaCount(), 3u);
  EXPECT_EQ(count, 3u * 30);
  EXPECT_TRUE(map.Allocate(16)) << "smaller items still find room";
}

}  // namespace
}  // namespace velmora::ndb
