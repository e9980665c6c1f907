#include "engine/node_list.h"

#include <map>

#include "engine/run_fixture.h"

namespace velmora::engine {
namespace {

std::vector<NodeRecord> Settled(const std::vector<NodeRecord>& records) {
  NodeList list;
  for (const NodeRecord& record : records) list.Insert(record);
  list.Settle();
  return list.Records();
}

TEST(NodeListTest, NodesWithoutSubNodesComeFirstInOrderOfArrival) {
  EXPECT_EQ(Settled({{9, 1, 50, 0}, {8, 1, 0, 0}, {7, 1, 20, 0}, {6, 1, 0, 0}, {5, 1, 20, 0}}),
            (std::vector<NodeRecord>{{8, 1, 0, 0}, {6, 1, 0, 0}, {7, 1, 20, 0}, {5, 1, 20, 0}, {9, 1, 50, 0}}));
}

TEST(NodeListTest, ACopyRightBehindItsEqualIsDropped) {
  EXPECT_EQ(Settled({{1, 2, 3, 4}, {9, 9, 8, 9}, {1, 2, 3, 4}, {1, 2, 3, 4}}),
            (std::vector<NodeRecord>{{1, 2, 3, 4}, {9, 9, 8, 9}}));
}

TEST(NodeListTest, ACopyWithAnotherRecordOfTheSameSubNodesInBetweenStays) {
  EXPECT_EQ(Settled({{1, 2, 3, 4}, {5, 6, 3, 8}, {1, 2, 3, 4}}),
            (std::vector<NodeRecord>{{1, 2, 3, 4}, {5, 6, 3, 8}, {1, 2, 3, 4}}));
}

TEST(NodeListTest, RecordsThatDifferInOneFieldAreNoCopies) {
  const std::vector<NodeRecord> records = {{1, 2, 3, 4}, {1, 2, 3, 5}, {1, 7, 3, 5}, {6, 7, 3, 5}};
  EXPECT_EQ(Settled(records), records);
}

TEST(NodeListTest, ACopyFromAnUpperPageIsACopyAllTheSame) {
  EXPECT_EQ(Settled({{1, 2, 3, 4, true}, {1, 2, 3, 4, false}}).size(), 1u);
}

TEST(NodeListTest, WhatALeafHoldsTooIsALeafsRecordWhicheverCameFirst) {
  EXPECT_FALSE(Settled({{1, 2, 3, 4, true}, {1, 2, 3, 4, false}}).at(0).upperPage);
  EXPECT_FALSE(Settled({{1, 2, 3, 4, false}, {1, 2, 3, 4, true}}).at(0).upperPage);
  EXPECT_FALSE(Settled({{1, 2, 3, 4, true}, {1, 2, 3, 4, false}, {1, 2, 3, 4, true}}).at(0).upperPage);
  EXPECT_TRUE(Settled({{1, 2, 3, 4, true}, {1, 2, 3, 4, true}}).at(0).upperPage);
}

TEST(NodeListTest, ANodeIsFoundWhereverItArrivedAndOfSeveralTheFirstFromALeaf) {
  NodeList list;
  for (const NodeRecord& record : std::vector<NodeRecord>{{9, 1, 0, 1},
                                                          {4, 2, 0, 1},
                                                          {7, 3, 0, 1, true},
                                                          {7, 4, 0, 1},
                                                          {7, 5, 0, 1},
                                                          {2, 6, 0, 1},
                                                          {3, 7, 0, 1, true}}) {
    list.Insert(record);
  }
  list.Settle();
  for (const auto& [nid, bidData] : std::map<std::uint32_t, std::uint64_t>{{9, 1}, {4, 2}, {7, 4}, {2, 6}}) {
    ASSERT_NE(list.Find(nid), nullptr) << nid;
    EXPECT_EQ(Value(list.Find(nid)->bidData), bidData) << nid;
  }
  EXPECT_EQ(list.Find(3), nullptr) << "of an upper page alone";
  EXPECT_EQ(list.Find(5), nullptr);
}

}  // namespace
}  // namespace velmora::engine
