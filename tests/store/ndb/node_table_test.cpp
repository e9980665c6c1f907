#include "store/ndb/node_table.h"

#include <gtest/gtest.h>

namespace velmora::ndb {
namespace {

std::vector<std::uint32_t> List(const NodeTable& table) {
  std::vector<std::uint32_t> nids;
  table.ForEach([&](const NodeEntry& node) { nids.push_back(Value(node.nid)); });
  return nids;
}

TEST(NodeTable, ListsNodesOfAllTypesByAscendingId) {
  NodeTable table;
  for (const std::uint32_t nid : {0x200044u, 0x8022u, 0x21u, 0x200024u, 0x802Du, 0x122u, 0x802Eu, 0x61u})
    table.Set({Nid{nid}});
  EXPECT_EQ(List(table), (std::vector<std::uint32_t>{0x21, 0x61, 0x122, 0x8022, 0x802D, 0x802E, 0x200024, 0x200044}));
  EXPECT_EQ(table.Count(), 8u);
}

TEST(NodeTable, KeepsTreesAndParent) {
  NodeTable table;
  const NodeEntry node{Nid{0x200024}, {Bid{0x1'FFFFFFF8}, Bid{0x1'FFFFFFF2}}, Nid{0x8022}};
  table.Set(node);
  EXPECT_EQ(table.Find(Nid{0x200024}), node);
  EXPECT_FALSE(table.Find(Nid{0x200044}));
}

TEST(NodeTable, ReplacesANode) {
  NodeTable table;
  table.Set({Nid{0x21}, {Bid{4}}});
  table.Set({Nid{0x21}, {Bid{8}, Bid{6}}, Nid{0x122}});
  EXPECT_EQ(table.Count(), 1u);
  EXPECT_EQ(table.Find(Nid{0x21}), (NodeEntry{Nid{0x21}, {Bid{8}, Bid{6}}, Nid{0x122}}));
}

TEST(NodeTable, ForgetsARemovedNodeAndTakesItBack) {
  NodeTable table;
  for (const std::uint32_t nid : {0x21u, 0x61u, 0x122u}) table.Set({Nid{nid}, {Bid{4}}});
  table.Remove(Nid{0x61});
  table.Remove(Nid{0x61});
  table.Remove(Nid{0x9999});
  EXPECT_EQ(List(table), (std::vector<std::uint32_t>{0x21, 0x122}));
  EXPECT_FALSE(table.Find(Nid{0x61}));
  EXPECT_EQ(table.Count(), 2u);
  table.Set({Nid{0x61}, {Bid{8}}});
  EXPECT_EQ(table.Count(), 3u);
  table.Remove(Nid{0x21});
  table.Compact();
  EXPECT_EQ(List(table), (std::vector<std::uint32_t>{0x61, 0x122}));
}

}  // namespace
}  // namespace velmora::ndb
