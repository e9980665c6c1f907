#include "engine/store_scan.h"

#include "engine/run_fixture.h"

namespace velmora::engine {
namespace {

ReferencedIds IdsOf(const std::vector<NodeRecord>& records) {
  NodeList nodes;
  for (const NodeRecord& record : records) nodes.Insert(record);
  nodes.Settle();
  ReferencedIds ids;
  ids.Build(nodes);
  return ids;
}

TEST(ReferencedIdsTest, BothBlocksOfANodeWithSubNodesAreReferenced) {
  const ReferencedIds ids = IdsOf({{0x21, 4, 6, 0}});
  EXPECT_TRUE(ids.IsReferencedId(4));
  EXPECT_TRUE(ids.IsReferencedId(6));
  EXPECT_FALSE(ids.IsReferencedId(5)) << "the low bit counts";
}

TEST(ReferencedIdsTest, TheDataOfANodeWithoutSubNodesCountsAsUnreferenced) {
  const ReferencedIds ids = IdsOf({{0x21, 4, 0, 0}, {0x61, 8, 10, 0}});
  EXPECT_FALSE(ids.IsReferencedId(4));
  EXPECT_TRUE(ids.IsReferencedId(8));
}

TEST(ReferencedIdsTest, Id0IsReferencedEvenWithoutATable) {
  EXPECT_TRUE(IdsOf({}).IsReferencedId(0));
  EXPECT_FALSE(IdsOf({}).IsReferencedId(4));
}

// Two chunks of 4000 ids, the second exactly full, so that nothing follows it.
TEST(ReferencedIdsTest, EveryIdOfATableOfWholeChunksIsFound) {
  std::vector<NodeRecord> nodes;
  for (std::uint32_t i = 0; i < 4000; ++i) nodes.push_back({i + 1, 9000 - 2 * i, 9001 - 2 * i, 0});
  const ReferencedIds ids = IdsOf(nodes);
  for (const NodeRecord& node : nodes) {
    ASSERT_TRUE(ids.IsReferencedId(LowBid(node.bidData)));
    ASSERT_TRUE(ids.IsReferencedId(LowBid(node.bidSub)));
  }
  EXPECT_FALSE(ids.IsReferencedId(1001));
  EXPECT_FALSE(ids.IsReferencedId(9002));
}

}  // namespace
}  // namespace velmora::engine
