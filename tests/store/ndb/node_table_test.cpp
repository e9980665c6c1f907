#include "store/ndb/node_table.h"

#include <gtest/gtest.h>

namespace velmora::ndb {
namespace {

std::vector<Nid> List(const NodeTable& table) {
  std::vector<Nid> nids;
  table.ForEach([&](const NodeEntry& node) {
    nids.push_back(node.nid);
    return true;
  });
  return nids;
}

TEST(NodeTable, ListsNodesOfAllTypesByAscendingId) {
  NodeTable table;
  for (const Nid nid : {0x200044u, 0x8022u, 0x21u, 0x200024u, 0x802Du, 0x122u, 0x802Eu, 0x61u}) table.Set({nid, {}, 0});
  EXPECT_EQ(List(table), (std::vector<Nid>{0x21, 0x61, 0x122, 0x8022, 0x802D, 0x802E, 0x200024, 0x200044}));
  EXPECT_EQ(table.Count(), 8u);
}

TEST(NodeTable, KeepsTreesAndParent) {
  NodeTable table;
  const NodeEntry node{0x200024, {0x1'FFFFFFF8, 0x1'FFFFFFF2}, 0x8022};
  table.Set(node);
  EXPECT_EQ(table.Find(0x200024), node);
  EXPECT_FALSE(table.Find(0x200044));
}

TEST(NodeTable, ReplacesANode) {
  NodeTable table;
  table.Set({0x21, {4, 0}, 0});
  table.Set({0x21, {8, 6}, 0x122});
  EXPECT_EQ(table.Count(), 1u);
  EXPECT_EQ(table.Find(0x21), (NodeEntry{0x21, {8, 6}, 0x122}));
}

TEST(NodeTable, ForgetsARemovedNodeAndTakesItBack) {
  NodeTable table;
  for (const Nid nid : {0x21u, 0x61u, 0x122u}) table.Set({nid, {4, 0}, 0});
  table.Remove(0x61);
  table.Remove(0x61);
  table.Remove(0x9999);
  EXPECT_EQ(List(table), (std::vector<Nid>{0x21, 0x122}));
  EXPECT_FALSE(table.Find(0x61));
  EXPECT_EQ(table.Count(), 2u);
  table.Set({0x61, {8, 0}, 0});
  EXPECT_EQ(table.Count(), 3u);
  table.Remove(0x21);
  table.Compact();
  EXPECT_EQ(List(table), (std::vector<Nid>{0x61, 0x122}));
}

}  // namespace
}  // namespace velmora::ndb
