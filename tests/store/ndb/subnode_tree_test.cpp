#include <gtest/gtest.h>

#include <map>

#include "store/format/block.h"
#include "store/format/little_endian.h"
#include "store/ndb/ndb_writer.h"
#include "store/ndb/subnode_tree_writer.h"
#include "store/support/failures.h"
#include "store/support/test_files.h"

namespace velmora::ndb {
namespace {

class SubnodeTrees : public testing::Test {
 protected:
  WrittenNode Made(std::size_t size) {
    const DataTree tree = ndb_->WriteData(test::Noise(size));
    return {{tree.bid}, tree.size};
  }

  SubnodeTree Written(std::size_t count, const WrittenNode& node) {
    SubnodeTreeWriter writer(*ndb_);
    for (std::size_t i = count; i-- > 0;) writer.Add(NidOf(i), node);
    return writer.Finish();
  }

  static Nid NidOf(std::size_t i) { return MakeNid(NidType::kAttachment, static_cast<std::uint32_t>(0x401 + i)); }

  InternalHead Head(Bid bid) {
    std::vector<std::byte> block;
    ndb_->ReadBlock(bid, block);
    return DecodeInternalHead(block);
  }

  platform::MemoryFile file_;
  std::unique_ptr<NdbWriter> ndb_ = NdbWriter::Create(file_);
};

TEST_F(SubnodeTrees, OfNoneHaveNoBlock) {
  EXPECT_EQ(SubnodeTreeWriter(*ndb_).Finish().bid, kNoBid);
  EXPECT_TRUE(ListSubnodes(*ndb_, kNoBid).empty());
  EXPECT_FALSE(FindSubnode(*ndb_, Bid{0}, Nid{0x8025}));
}

TEST_F(SubnodeTrees, AreOneLeafUpTo340AndAnIndexAbove) {
  const WrittenNode node = Made(10);
  for (const std::size_t count : {1u, 2u, 339u, 340u, 341u, 680u, 1000u}) {
    const SubnodeTree tree = Written(count, node);
    EXPECT_EQ(tree.dataSize, count * 10);
    const InternalHead head = Head(tree.bid);
    EXPECT_EQ(head.btype, BlockType::kSubnodeTree);
    EXPECT_EQ(head.cLevel, count > 340 ? 1 : 0);
    EXPECT_EQ(head.cEnt, count > 340 ? (count + 339) / 340 : count);
    EXPECT_EQ(head.lcbTotal, 0u) << "padding";
    const auto entries = ListSubnodes(*ndb_, tree.bid);
    ASSERT_EQ(entries.size(), count);
    for (std::size_t i = 0; i < count; ++i) EXPECT_EQ(entries[i], (SubnodeEntry{NidOf(i), node.trees}));
    EXPECT_EQ(FindSubnode(*ndb_, tree.bid, NidOf(count - 1)), (SubnodeEntry{NidOf(count - 1), node.trees}));
    EXPECT_FALSE(FindSubnode(*ndb_, tree.bid, NidOf(count)));
    EXPECT_FALSE(FindSubnode(*ndb_, tree.bid, Nid{1}));
  }
}

TEST_F(SubnodeTrees, RefuseTwoEntriesOfOneIdAndEntriesWithoutData) {
  SubnodeTreeWriter writer(*ndb_);
  writer.Add(Nid{0x8025}, Made(1));
  writer.Add(Nid{0x8025}, Made(2));
  EXPECT_EQ(test::FailureOf([&] { static_cast<void>(writer.Finish()); }), FailureKind::kCorrupt);
  writer.Add(Nid{0x8025}, {});
  EXPECT_EQ(test::FailureOf([&] { static_cast<void>(writer.Finish()); }), FailureKind::kCorrupt);
  EXPECT_EQ(writer.Finish().bid, kNoBid) << "the writer is empty after a failure";
}

TEST_F(SubnodeTrees, RefuseMoreEntriesThanTwoLevelsHold) {
  SubnodeTreeWriter writer(*ndb_);
  const WrittenNode node = Made(1);
  for (std::size_t i = 0; i <= SubnodeTreeWriter::kMaxEntries; ++i) writer.Add(NidOf(i), node);
  EXPECT_EQ(test::FailureOf([&] { static_cast<void>(writer.Finish()); }), FailureKind::kNotSupported);
}

TEST_F(SubnodeTrees, CountTheDataOfAllThatIsBelow) {
  SubnodeTreeWriter inner(*ndb_);
  inner.Add(Nid{0x803F}, Made(20000));
  inner.Add(Nid{0x805F}, Made(5));
  const SubnodeTree below = inner.Finish();
  const DataTree own = ndb_->WriteData(test::Noise(100));
  SubnodeTreeWriter outer(*ndb_);
  outer.Add(Nid{0x8025}, {{own.bid, below.bid}, own.size + below.dataSize});
  outer.Add(Nid{0x8045}, {{own.bid, below.bid}, own.size + below.dataSize});
  const SubnodeTree tree = outer.Finish();
  EXPECT_EQ(tree.dataSize, 2u * (100 + 20000 + 5));
  EXPECT_EQ(DataSizeOf(*ndb_, {own.bid, tree.bid}), 100 + tree.dataSize);
  EXPECT_EQ(DataSizeOf(*ndb_, {}), 0u);
}

/// Sub-node blocks made up by a test.
class MadeUpBlocks : public BlockSource {
 public:
  const Generation& Format() const override { return generations::kUnicode; }
  bool FindBlock(Bid bid, std::vector<std::byte>& out) const override {
    const auto block = blocks.find(bid);
    if (block == blocks.end()) return false;
    out = block->second;
    return true;
  }
  std::optional<NodeEntry> FindNode(Nid) const override { return std::nullopt; }

  void Add(std::uint64_t bid, int level, std::vector<std::uint64_t> words, std::size_t cEnt) {
    std::vector<std::byte> block(8 + 8 * words.size());
    Encode(InternalHead{BlockType::kSubnodeTree, static_cast<std::uint8_t>(level), static_cast<std::uint16_t>(cEnt)},
           block);
    for (std::size_t i = 0; i < words.size(); ++i) Store<std::uint64_t>(block, 8 + 8 * i, words[i]);
    blocks[Bid{bid}] = block;
  }

  std::map<Bid, std::vector<std::byte>> blocks;
};

TEST(DamagedSubnodeTree, IsRefused) {
  MadeUpBlocks source;
  source.Add(6, 1, {0x8025, 6}, 1);      // an index over itself
  source.Add(10, 0, {0x8025, 4, 0}, 2);  // more entries than room
  source.Add(14, 2, {0x8025, 4, 0}, 1);  // no such level
  source.Add(18, 1, {0x8025, 4}, 1);     // an index over a data block
  source.blocks[Bid{22}] = {};
  for (const std::uint64_t bid : {6, 10, 14, 18, 22, 4}) {
    EXPECT_EQ(test::FailureOf([&] { static_cast<void>(ListSubnodes(source, Bid{bid})); }), FailureKind::kCorrupt)
        << bid;
    EXPECT_EQ(test::FailureOf([&] { static_cast<void>(FindSubnode(source, Bid{bid}, Nid{0x8025})); }),
              FailureKind::kCorrupt)
        << bid;
  }
  EXPECT_EQ(test::FailureOf([&] { static_cast<void>(ListSubnodes(source, Bid{26})); }), FailureKind::kNotFound);
}

TEST(DamagedSubnodeTree, ThatNestsInItselfIsNotMeasured) {
  MadeUpBlocks source;
  source.Add(6, 0, {0x8025, 0, 6, 0x8045, 0, 6}, 2);
  EXPECT_EQ(test::FailureOf([&] { static_cast<void>(DataSizeOf(source, {kNoBid, Bid{6}})); }), FailureKind::kCorrupt);
}

TEST(SubnodeTree, MeasuresATreeThatIsSharedAtEveryLevelInOneWalk) {
  MadeUpBlocks source;
  source.blocks[Bid{4}] = std::vector<std::byte>(1);
  source.Add(6, 0, {0x8025, 4, 0, 0x8045, 4, 0}, 2);
  for (std::uint64_t bid = 10; bid < 10 + 4 * 40; bid += 4)
    source.Add(bid, 0, {0x8025, 0, bid - 4, 0x8045, 0, bid - 4}, 2);
  EXPECT_EQ(DataSizeOf(source, {kNoBid, Bid{10 + 4 * 39}}), std::uint64_t{2} << 40);
}

TEST(SubnodeTree, IgnoresTheHighHalfOfAnId) {
  MadeUpBlocks source;
  source.Add(6, 0, {0xDEADBEEF'00008025, 4, 0}, 1);
  EXPECT_EQ(FindSubnode(source, Bid{6}, Nid{0x8025}), (SubnodeEntry{Nid{0x8025}, {Bid{4}}}));
}

}  // namespace
}  // namespace velmora::ndb
