#include "engine/evidence/slot_map.h"

#include <gtest/gtest.h>

namespace velmora::engine {
namespace {

constexpr std::uint64_t kFile = 10'000'000;

TEST(SlotMap, UnitsThatLieWhollyInARangeAreTakenAndCountedOnce) {
  SlotMap map(kFile, generations::kUnicode);
  map.Take(100, 200);  // 128 to 256: two units of 64
  EXPECT_EQ(map.Taken(), 2u);
  EXPECT_TRUE(map.IsFree(0, 128));
  EXPECT_FALSE(map.IsFree(0, 129));
  EXPECT_FALSE(map.IsFree(255, 1));
  EXPECT_TRUE(map.IsFree(256, 1000));
  map.Take(128, 192);
  EXPECT_EQ(map.Taken(), 3u);
}

TEST(SlotMap, ARangeMayReachOverSeveralPartsAndBeyondTheEnd) {
  SlotMap map(kFile, generations::kUnicode);
  map.Take(64, 3'000'000);
  EXPECT_EQ(map.Taken(), 3'000'000u / 64);
  EXPECT_TRUE(map.IsFree(0, 64));
  EXPECT_FALSE(map.IsFree(0, kFile));
  EXPECT_FALSE(map.IsFree(2'097'152 - 64, 128)) << "across two parts";
  EXPECT_TRUE(map.IsFree(3'100'000, kFile));
  map.Take(kFile - 64, 1'000'000);
  EXPECT_FALSE(map.IsFree(kFile - 64, 64));
  EXPECT_TRUE(map.IsFree(kFile + 64, 64)) << "there is no file";
}

TEST(SlotMap, AnotherGenerationHasUnitsOfAnotherSize) {
  SlotMap map(kFile, generations::kUnicode4k);
  map.Take(0, 2048);
  EXPECT_EQ(map.Taken(), 2048u / generations::kUnicode4k.slotSize);
}

}  // namespace
}  // namespace velmora::engine
