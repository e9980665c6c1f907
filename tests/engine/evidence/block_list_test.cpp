#include "engine/evidence/block_list.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "engine/evidence/bid_set.h"
#include "engine/evidence/block_sorter.h"

namespace velmora::engine {
namespace {

FoundBlock BlockAt(std::uint64_t id, std::uint64_t offset) {
  return {.bid = Bid{id},
          .offset = offset,
          .cb = static_cast<std::uint16_t>(1 + id * 7 % 8176),
          .kind = static_cast<BlockKind>(id / 4 % 6),
          .grade = static_cast<Grade>(id / 20 % 4),
          .isNamed = id / 80 % 2 != 0};
}

/// One after another in ids and in the file.
std::vector<FoundBlock> InOrder(std::size_t count) {
  std::vector<FoundBlock> blocks;
  std::uint64_t offset = 0x4600;
  for (std::size_t i = 1; i <= count; ++i) {
    blocks.push_back(BlockAt(4 * i + (i % 9 == 0 ? 2 : 0), offset));
    offset += (std::uint64_t{blocks.back().cb} + 16 + 63) / 64 * 64;
  }
  return blocks;
}

std::vector<FoundBlock> AllOf(const BlockList& list) { return {list.begin(), list.end()}; }

TEST(BlockList, GivesBackWhatItTookOneByOneAndInARow) {
  for (const std::size_t count : {0u, 1u, 127u, 128u, 129u, 1000u}) {
    const std::vector<FoundBlock> blocks = InOrder(count);
    const BlockList list(blocks);
    ASSERT_EQ(list.size(), count);
    EXPECT_EQ(AllOf(list), blocks);
    for (std::size_t i = 0; i < count; ++i) ASSERT_EQ(list[i], blocks[i]);
  }
}

TEST(BlockList, LosesNothingOfTheWidestValues) {
  std::vector<FoundBlock> blocks;
  for (std::uint64_t i = 0; i < 300; ++i) {
    blocks.push_back({.bid = Bid{i < 150 ? 2 : UINT64_MAX - 601 + 2 * i},
                      .offset = i % 3 == 0 ? UINT64_MAX - i : i,
                      .cb = static_cast<std::uint16_t>(i % 2 == 0 ? 0xFFFF : 0),
                      .kind = static_cast<BlockKind>(0xFF - i % 256),
                      .grade = Grade::kHurt,
                      .isNamed = i % 5 == 0});
  }
  EXPECT_EQ(AllOf(BlockList(blocks)), blocks);
}

TEST(BlockList, FindsByIdTheFirstOfSeveralAndNoneBetween) {
  std::vector<FoundBlock> blocks;
  for (std::uint64_t i = 0; i < 1000; ++i) blocks.push_back(BlockAt(100 + i / 200 * 10, 64 * i));
  const BlockList list(blocks);
  for (std::uint64_t k = 0; k < 5; ++k) {
    EXPECT_EQ(list.NumberOf(Bid{100 + 10 * k}), 200 * k);
    EXPECT_EQ(list.FirstFrom(Bid{91 + 10 * k}), 200 * k);
    EXPECT_FALSE(list.NumberOf(Bid{101 + 10 * k}));
  }
  EXPECT_EQ(list.FirstFrom(Bid{141}), 1000u);
  EXPECT_FALSE(list.NumberOf(Bid{98}));
  EXPECT_FALSE(BlockList().NumberOf(Bid{4}));
}

TEST(BlockList, FindsTheFirstFromAnyIdHoweverUnevenlyTheyGrow) {
  std::mt19937_64 random(7);
  for (const int bits : {0, 2, 20, 52}) {
    const std::uint64_t widest = std::uint64_t{1} << bits;
    std::vector<FoundBlock> blocks;
    std::vector<std::uint64_t> asked{0, 1, UINT64_MAX};
    std::uint64_t id = 4;
    for (int i = 0; i < 1500; ++i) {
      id += i % 100 < 50 ? 4 : random() % (widest + 1);  // rows of one step, and ids that repeat
      blocks.push_back(BlockAt(id, 64));
      asked.insert(asked.end(), {id - 1, id, id + 1});
    }
    const BlockList list(blocks);
    for (const std::uint64_t one : asked) {
      const auto first = std::ranges::lower_bound(blocks, Bid{one}, {}, &FoundBlock::bid);
      ASSERT_EQ(list.FirstFrom(Bid{one}), static_cast<std::size_t>(first - blocks.begin())) << one;
    }
  }
}

TEST(BlockList, IsTakenFromTheFrontToTheLast) {
  const std::vector<FoundBlock> blocks = InOrder(1000);
  BlockList list(blocks);
  std::vector<FoundBlock> taken;
  std::vector<FoundBlock> some;
  while (list.TakeFirst(some)) {
    taken.insert(taken.end(), some.begin(), some.end());
    EXPECT_EQ(list.size(), 1000 - taken.size());
    if (!list.empty()) {
      EXPECT_EQ(list.FirstFrom(blocks[taken.size()].bid), 0u);
    }
  }
  EXPECT_EQ(taken, blocks);
}

TEST(BlockList, TakesSixBytesABlockOfAStoreInOrderAndEightWithoutOne) {
  std::vector<FoundBlock> blocks = InOrder(100'000);
  EXPECT_LE(BlockList(blocks).Memory(), 600'000u);
  std::mt19937 random(1);
  for (FoundBlock& block : blocks) block.offset = std::uint64_t{random()} % (50ull << 30) / 64 * 64;
  EXPECT_LE(BlockList(blocks).Memory(), 800'000u);
}

TEST(BlockSorter, MergesPiecesByIdThenTheProvenThenByPlace) {
  std::vector<FoundBlock> blocks = InOrder(1000);
  std::mt19937 random(7);
  for (std::uint64_t i = 0; i < 500; ++i) blocks.push_back(BlockAt(random() % 4000 / 2 * 2, random()));
  std::ranges::shuffle(blocks, random);
  std::vector<FoundBlock> expected = blocks;
  std::ranges::stable_sort(expected, {}, ByIdAndPlace);
  BlockSorter sorter;
  std::vector<FoundBlock> piece;
  for (const FoundBlock& block : blocks) {
    piece.push_back(block);
    if (piece.size() == 211) sorter.Take(piece);
  }
  EXPECT_EQ(piece.size(), 1500u % 211) << "what was taken is gone from the piece";
  sorter.Take(piece);
  EXPECT_EQ(AllOf(sorter.Merge()), expected);
  EXPECT_TRUE(sorter.Merge().empty());
}

TEST(BidSet, CountsEachIdOnceWhateverItsBitZero) {
  BidSet set;
  for (const std::uint64_t id : {4u, 5u, 6u, 1000u, 4u}) set.Insert(Bid{id});
  EXPECT_EQ(set.size(), 3u);
  EXPECT_TRUE(set.Contains(Bid{5}));
  EXPECT_TRUE(set.Contains(Bid{1001}));
  EXPECT_FALSE(set.Contains(Bid{8}));
  EXPECT_FALSE(set.Contains(Bid{4 + 128}));
  BidSet other;
  other.Insert(Bid{8});
  other.Insert(Bid{1000});
  set.Insert(other);
  EXPECT_EQ(set.size(), 4u);
  EXPECT_TRUE(set.Contains(Bid{8}));
  EXPECT_FALSE(set.Insert(Bid{9})) << "it was there";
  EXPECT_TRUE(set.Insert(Bid{10}));
}

}  // namespace
}  // namespace velmora::engine
