#include "engine/packed_list.h"

#include <gtest/gtest.h>

#include <random>

namespace velmora::engine {
namespace {

/// Numbers for numbers.
struct AsTheyAre {
  using Key = std::uint64_t;
  static PackedFields Of(const PackedFields& fields) { return fields; }
  static PackedFields BlockOf(const PackedFields& fields) { return fields; }
};
using List = PackedList<PackedFields, AsTheyAre>;

std::vector<PackedFields> AllOf(const List& list) { return {list.begin(), list.end()}; }

/// A number of at most so many bits.
std::uint64_t Any(std::mt19937_64& random, unsigned bits) { return bits == 0 ? 0 : random() >> (64 - bits); }

TEST(PackedList, LosesNothingWhateverTheWidthsOfItsFields) {
  std::mt19937_64 random(3);
  for (unsigned bits = 0; bits <= 64; ++bits) {
    for (const unsigned others : {0u, 1u, 7u, 14u, 33u, 64u}) {
      std::vector<PackedFields> blocks;
      for (int i = 0; i < 130; ++i) {
        blocks.push_back({.key = Any(random, bits),
                          .offset = Any(random, others),
                          .marks = Any(random, 64 - bits),
                          .size = static_cast<std::uint32_t>(Any(random, std::min(32u, others)))});
      }
      std::ranges::stable_sort(blocks, {}, &PackedFields::key);
      const List list(blocks);
      ASSERT_EQ(AllOf(list), blocks) << bits << " bits of keys, others of " << others;
      for (std::size_t i = 0; i < blocks.size(); ++i) {
        ASSERT_EQ(list.KeyOf(i), blocks[i].key);
        const auto first = std::ranges::lower_bound(blocks, blocks[i].key, {}, &PackedFields::key);
        ASSERT_EQ(list.NumberOf(blocks[i].key), static_cast<std::size_t>(first - blocks.begin()));
      }
    }
  }
}

TEST(PackedList, LosesNothingOfNumbersThatAreAllOnes) {
  for (const std::uint64_t first : {UINT64_MAX, std::uint64_t{0}}) {
    std::vector<PackedFields> blocks;
    for (int i = 0; i < 128; ++i) {
      blocks.push_back({.key = i == 0 ? first : UINT64_MAX,
                        .offset = i % 2 == 0 ? UINT64_MAX : 0,
                        .marks = UINT64_MAX,
                        .size = UINT32_MAX});
    }
    EXPECT_EQ(AllOf(List(blocks)), blocks);
  }
}

TEST(PackedList, KeepsTheOrderInWhichBlocksOfOneKeyAreAdded) {
  for (const std::size_t count : {2u, 127u, 128u, 129u, 257u, 1000u}) {
    std::vector<PackedFields> blocks{{.key = 7, .offset = 1}};
    for (std::size_t i = 0; i < count; ++i) blocks.push_back({.key = 8, .offset = (i * 37 % count) * 64});
    blocks.push_back({.key = 9, .offset = 2});
    const List list(blocks);
    EXPECT_EQ(AllOf(list), blocks);
    EXPECT_EQ(list.FirstFrom(8), 1u);
    EXPECT_EQ(list.FirstFrom(9), count + 1);
    EXPECT_EQ(list.FirstFrom(10), count + 2);
  }
}

TEST(PackedList, ASeekerFindsTheFirstOfEachKeyInWhateverOrderTheyAreSought) {
  std::mt19937_64 random(5);
  std::vector<PackedFields> blocks;
  for (std::uint64_t key = 1; key < 400; key += 1 + random() % 2) {
    for (std::uint64_t n = random() % 3; n > 0; --n) blocks.push_back({.key = key, .offset = n});
  }
  const List list(blocks);
  List::Seeker seeker(list);
  std::uint64_t key = 0;
  for (int i = 0; i < 20000; ++i) {
    key = random() % 8 == 0 ? random() % 402 : key + random() % 3;  // far, or the same, the next or the one behind it
    ASSERT_EQ(seeker.NumberOf(key), list.NumberOf(key)) << key;
  }
}

TEST(PackedList, ASeekerOfAnEmptyListFindsNothing) {
  const List list;
  EXPECT_EQ(List::Seeker(list).NumberOf(0), std::nullopt);
}

TEST(PackedList, GivesTheMemoryOfWhatIsTakenBack) {
  List list;
  for (std::uint64_t i = 0; i < 128 * 100; ++i) list.Add({.key = i, .offset = i * 64, .size = 100});
  const std::size_t ofAll = list.Memory();
  std::vector<PackedFields> some;
  for (int i = 0; i < 50; ++i) ASSERT_TRUE(list.TakeFirst(some));
  EXPECT_LE(list.Memory(), ofAll * 2 / 3);
  while (list.TakeFirst(some)) {
  }
  EXPECT_TRUE(list.empty());
  EXPECT_LE(list.Memory(), ofAll / 3) << "what tells of the groups is left";
}

}  // namespace
}  // namespace velmora::engine
