#include "store/ndb/block_table.h"

#include <gtest/gtest.h>

namespace velmora::ndb {
namespace {

TEST(BlockTable, HandsOutIdsInStepsOfFourWithTheKindInBitOne) {
  BlockTable table;
  EXPECT_EQ(table.NextBid(false), Bid{4});
  EXPECT_EQ(table.NextBid(true), Bid{6});
  table.Append(true, 0x4800, 100);
  EXPECT_EQ(table.NextBid(false), Bid{8});
  EXPECT_EQ(table.BidNextB(), Bid{8});
}

TEST(BlockTable, KeepsPlaceSizeAndReferences) {
  BlockTable table;
  const std::uint64_t far = std::uint64_t{200} << 30;
  table.Append(false, far, 8176);
  EXPECT_TRUE(table.AddReference(Bid{4}));
  EXPECT_TRUE(table.AddReference(Bid{4}));
  EXPECT_EQ(table.DropReference(Bid{4}), 1);
  const auto block = table.Find(Bid{4});
  ASSERT_TRUE(block);
  EXPECT_EQ(block->ib, far);
  EXPECT_EQ(block->cb, 8176);
  EXPECT_EQ(block->references, 1);
}

TEST(BlockTable, FindsNoBlockOfAnotherKindOrThatIsGone) {
  BlockTable table;
  table.Append(false, 0x4800, 1);
  EXPECT_FALSE(table.Find(Bid{0}));
  EXPECT_FALSE(table.Find(Bid{6})) << "an internal block of that number";
  EXPECT_FALSE(table.Find(Bid{8}));
  EXPECT_FALSE(table.Find(Bid{~std::uint64_t{3}}));
  table.Remove(Bid{4});
  EXPECT_FALSE(table.Find(Bid{4}));
  EXPECT_EQ(table.Count(), 0u);
  EXPECT_EQ(table.NextBid(false), Bid{8}) << "the id is not used again";
}

TEST(BlockTable, CountsNoMoreReferencesThanTheFieldHolds) {
  BlockTable table;
  table.Append(false, 0x4800, 1);
  for (int i = 0; i < BlockTable::kMaxReferences; ++i) ASSERT_TRUE(table.AddReference(Bid{4}));
  EXPECT_FALSE(table.AddReference(Bid{4}));
  EXPECT_EQ(table.Find(Bid{4})->references + 1, 0xFFFF);
}

TEST(BlockTable, CountsReferencesOfEachBlockUpAndDownAgain) {
  BlockTable table;
  for (int i = 0; i < 3; ++i) table.Append(false, 0x4800, 1);
  for (int i = 1; i <= 6; ++i) {
    EXPECT_TRUE(table.AddReference(Bid{8}));
    EXPECT_EQ(table.Find(Bid{8})->references, i);
  }
  EXPECT_EQ(table.Find(Bid{4})->references, 0);
  EXPECT_EQ(table.Find(Bid{12})->references, 0);
  for (int i = 5; i >= 0; --i) {
    EXPECT_EQ(table.DropReference(Bid{8}), i);
    EXPECT_EQ(table.Find(Bid{8})->references, i);
  }
}

TEST(BlockTable, ListsBlocksByAscendingId) {
  BlockTable table;
  table.Append(false, 0x4800, 1);
  table.Append(true, 0x4840, 1);
  table.Append(false, 0x4880, 1);
  table.Remove(Bid{4});
  std::vector<Bid> bids;
  table.ForEach([&](Bid bid, const BlockTable::Block&) { bids.push_back(bid); });
  EXPECT_EQ(bids, (std::vector{Bid{10}, Bid{12}}));
}

}  // namespace
}  // namespace velmora::ndb
