#include "engine/packed_sorter.h"

#include <gtest/gtest.h>

#include <random>

#include "engine/block_index.h"

namespace velmora::engine {
namespace {

std::uint32_t LowIdOf(const PlacedBlock& block) { return LowBid(block.bid); }
using Sorter = PackedSorter<PlacedBlocks, LowIdOf>;

std::vector<PlacedBlock> AllOf(const PlacedBlocks& list) { return {list.begin(), list.end()}; }

/// Ids of which each comes several times, with places that tell when.
std::vector<PlacedBlock> Repeated(std::size_t count, std::uint32_t ids) {
  std::mt19937 random(5);
  std::vector<PlacedBlock> blocks;
  for (std::size_t i = 0; i < count; ++i) {
    const std::uint64_t high = random() % 3;
    blocks.emplace_back(high << 32 | random() % ids, static_cast<std::uint32_t>(i % 8176), i * 64);
  }
  return blocks;
}

TEST(PackedSorter, KeepsTheOrderOfArrivalAmongEqualsOfOnePieceAndOfSeveral) {
  const std::vector<PlacedBlock> blocks = Repeated(20'000, 500);
  std::vector<PlacedBlock> expected = blocks;
  std::ranges::stable_sort(expected, {}, LowIdOf);
  for (const std::size_t ofPiece : {1'000u, 4'321u, 20'000u}) {
    Sorter sorter;
    std::vector<PlacedBlock> piece;
    for (const PlacedBlock& block : blocks) {
      piece.push_back(block);
      if (piece.size() == ofPiece) sorter.Take(piece);
    }
    sorter.Take(piece);
    ASSERT_EQ(AllOf(sorter.Merge()), expected) << ofPiece;
    EXPECT_TRUE(sorter.Merge().empty());
  }
}

TEST(PackedSorter, TakesPiecesThatAreSortedAndEmptyOnes) {
  const std::vector<PlacedBlock> even{{2, 1, 64}, {4, 1, 128}};
  const std::vector<PlacedBlock> odd{{1, 1, 192}, {4, 2, 256}, {5, 1, 320}};
  Sorter sorter;
  sorter.TakeSorted(PlacedBlocks(even));
  sorter.TakeSorted({});
  std::vector<PlacedBlock> none;
  sorter.Take(none);
  sorter.TakeSorted(PlacedBlocks(odd));
  std::vector<PlacedBlock> merged;
  sorter.Merge([&](const PlacedBlock& block) { merged.push_back(block); });
  EXPECT_EQ(merged, (std::vector<PlacedBlock>{odd[0], even[0], even[1], odd[1], odd[2]}));
}

TEST(PackedSorter, GivesMemoryBackWhileItMerges) {
  std::vector<PlacedBlock> blocks = Repeated(128'000, 1'000'000);
  Sorter sorter;
  std::vector<PlacedBlock> piece;
  for (const PlacedBlock& block : blocks) {
    piece.push_back(block);
    if (piece.size() == 12'800) sorter.Take(piece);
  }
  EXPECT_GT(sorter.Memory(), 128'000u * 4);
  EXPECT_LT(sorter.Memory(), 128'000u * 10);
  sorter.Merge([](const PlacedBlock&) {});
  EXPECT_LT(sorter.Memory(), 1'000u);
}

}  // namespace
}  // namespace velmora::engine
