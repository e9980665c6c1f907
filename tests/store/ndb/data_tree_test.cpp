// Data trees, written and read back.
#include <gtest/gtest.h>

#include <algorithm>
#include <map>

#include "store/format/block.h"
#include "store/format/little_endian.h"
#include "store/ndb/data_tree_reader.h"
#include "store/ndb/data_tree_writer.h"
#include "store/ndb/ndb_writer.h"
#include "store/support/failures.h"
#include "store/support/test_files.h"

namespace velmora::ndb {
namespace {

constexpr std::size_t kXBlockBytes = kMaxXEntries * kMaxBlockData;

class DataTrees : public testing::Test {
 protected:
  DataTree Written(std::span<const std::byte> bytes, std::size_t piece) {
    DataTreeWriter writer(*ndb_);
    for (std::size_t at = 0; at < bytes.size(); at += piece) {
      writer.Append(bytes.subspan(at, std::min(piece, bytes.size() - at)));
    }
    EXPECT_EQ(writer.Size(), bytes.size());
    return writer.Finish();
  }

  std::vector<std::byte> Content(const DataTree& tree) {
    DataTreeReader reader = DataTreeReader::Open(*ndb_, tree.bid);
    EXPECT_EQ(reader.Size(), tree.size);
    return reader.ReadAll(tree.size);
  }

  InternalHead Head(Bid bid) {
    std::vector<std::byte> block;
    ndb_->ReadBlock(bid, block);
    return DecodeInternalHead(block);
  }

  platform::MemoryFile file_;
  std::unique_ptr<NdbWriter> ndb_ = NdbWriter::Create(file_);
};

TEST_F(DataTrees, OfNoBytesHaveNoBlock) {
  EXPECT_EQ(Written({}, 1).bid, kNoBid);
  EXPECT_EQ(ndb_->WriteData({}).bid, kNoBid);
  EXPECT_EQ(ndb_->BlockCount(), 0u);
  DataTreeReader reader = DataTreeReader::Open(*ndb_, kNoBid);
  EXPECT_EQ(reader.Size(), 0u);
  EXPECT_TRUE(reader.ReadAll(0).empty());
}

TEST_F(DataTrees, OfUpToABlockAreThatBlock) {
  for (const std::size_t size : {1u, 48u, 49u, 8175u, 8176u}) {
    const std::vector<std::byte> bytes = test::Noise(size);
    const DataTree tree = Written(bytes, 1000);
    EXPECT_FALSE(IsInternal(tree.bid));
    EXPECT_EQ(tree.size, size);
    EXPECT_EQ(Content(tree), bytes);
    EXPECT_EQ(Content(ndb_->WriteData(bytes)), bytes);
  }
}

TEST_F(DataTrees, OfMoreThanABlockHaveAnXBlock) {
  for (const std::size_t size : std::initializer_list<std::size_t>{8177, 2 * kMaxBlockData, kXBlockBytes}) {
    const std::vector<std::byte> bytes = test::Noise(size);
    const DataTree tree = Written(bytes, 100000);
    const InternalHead head = Head(tree.bid);
    EXPECT_EQ(head.btype, BlockType::kDataTree);
    EXPECT_EQ(head.cLevel, 1);
    EXPECT_EQ(head.cEnt, (size + kMaxBlockData - 1) / kMaxBlockData);
    EXPECT_EQ(head.lcbTotal, size);
    EXPECT_EQ(Content(tree), bytes);
  }
}

TEST_F(DataTrees, OfMoreThanAFullXBlockHaveAnXXBlockOverFullXBlocks) {
  const std::vector<std::byte> bytes = test::Noise(2 * kXBlockBytes + 3 * kMaxBlockData + 5);
  const DataTree tree = Written(bytes, 1 << 20);
  const InternalHead head = Head(tree.bid);
  EXPECT_EQ(head.cLevel, 2);
  EXPECT_EQ(head.cEnt, 3);
  EXPECT_EQ(head.lcbTotal, bytes.size());
  std::vector<std::byte> root;
  ndb_->ReadBlock(tree.bid, root);
  EXPECT_EQ(Head(LoadBid(root, 8)).lcbTotal, kXBlockBytes);
  EXPECT_EQ(Head(LoadBid(root, 24)).cEnt, 4);
  EXPECT_EQ(Head(LoadBid(root, 24)).lcbTotal, 3 * kMaxBlockData + 5);
  EXPECT_EQ(Content(tree), bytes);
}

TEST_F(DataTrees, AreTheSameWhateverThePieces) {
  const std::vector<std::byte> bytes = test::Noise(5 * kMaxBlockData + 77);
  for (const std::size_t piece :
       std::initializer_list<std::size_t>{1000, kMaxBlockData, kMaxBlockData + 1, 3 * kMaxBlockData, bytes.size()}) {
    EXPECT_EQ(Content(Written(bytes, piece)), bytes) << piece;
  }
}

TEST_F(DataTrees, AreReadFromAnyOffset) {
  const std::vector<std::byte> bytes = test::Noise(3 * kMaxBlockData + 100);
  const DataTree tree = Written(bytes, bytes.size());
  DataTreeReader reader = DataTreeReader::Open(*ndb_, tree.bid);
  for (const std::size_t offset : std::initializer_list<std::size_t>{0, 1, 8175, 8176, 16351, bytes.size() - 1}) {
    for (const std::size_t size : std::initializer_list<std::size_t>{1, 8176, 20000, bytes.size()}) {
      std::vector<std::byte> out(size);
      const std::size_t read = reader.ReadAt(offset, out);
      ASSERT_EQ(read, std::min(size, bytes.size() - offset));
      ASSERT_TRUE(std::equal(out.begin(), out.begin() + static_cast<std::ptrdiff_t>(read),
                             bytes.begin() + static_cast<std::ptrdiff_t>(offset)));
    }
  }
  std::byte byte;
  EXPECT_EQ(reader.ReadAt(bytes.size(), std::span(&byte, 1)), 0u);
  EXPECT_EQ(reader.ReadAt(~std::uint64_t{0}, std::span(&byte, 1)), 0u);
}

TEST_F(DataTrees, GiveABlockAwayAndReadItAgainForTheNext) {
  const std::vector<std::byte> bytes = test::Noise(kMaxBlockData + 100);
  DataTreeReader reader = DataTreeReader::Open(*ndb_, Written(bytes, bytes.size()).bid);
  const std::vector<std::byte> last(bytes.end() - 100, bytes.end());
  EXPECT_EQ(reader.TakeBlock(1), last);
  EXPECT_TRUE(std::ranges::equal(reader.Block(1), last));
  EXPECT_EQ(reader.TakeBlock(1), last);
  EXPECT_EQ(reader.ReadAll(bytes.size()), bytes);
}

TEST_F(DataTrees, ShowTheirBytesWhileTheyAreOneBlock) {
  const std::vector<std::byte> bytes = test::Noise(kMaxBlockData);
  DataTreeWriter writer(*ndb_);
  EXPECT_TRUE(writer.Buffered().empty());
  writer.Append(bytes);
  EXPECT_TRUE(std::ranges::equal(writer.Buffered(), bytes));
  EXPECT_EQ(ndb_->BlockCount(), 0u) << "a small value may still go to a heap";
  writer.Append(test::Bytes({1}));
  EXPECT_TRUE(writer.Buffered().empty());
}

TEST_F(DataTrees, GivenUpLeaveNothing) {
  {
    DataTreeWriter writer(*ndb_);
    writer.Append(test::Noise(10 * kMaxBlockData));
    EXPECT_GT(ndb_->BlockCount(), 0u);
  }
  EXPECT_EQ(ndb_->BlockCount(), 0u);
  const DataTree tree = Written(test::Noise(10 * kMaxBlockData), 5000);
  EXPECT_EQ(ndb_->BlockCount(), 11u);
  ndb_->Discard({tree.bid});
  EXPECT_EQ(ndb_->BlockCount(), 0u);
}

TEST_F(DataTrees, GivenUpAfterAFailingWriteRaiseItOnce) {
  test::FailingFile file(1'000'000);
  const auto ndb = NdbWriter::Create(file);
  const auto append = [&] {
    DataTreeWriter writer(*ndb);
    for (int i = 0; i < 300; ++i) writer.Append(test::Noise(kMaxBlockData));
  };
  EXPECT_EQ(test::FailureOf(append), FailureKind::kFull) << "of the write, and not of freeing what it left";
  EXPECT_EQ(test::FailureOf([&] { ndb->Commit(); }), FailureKind::kFull);
}

TEST_F(DataTrees, LargerThanTheir32BitSizeAreRefused) {
  DataTreeWriter writer(*ndb_);
  const std::vector<std::byte> bytes(1000);
  writer.Append(bytes);
  const std::byte* anywhere = bytes.data();
  EXPECT_EQ(test::FailureOf([&] { writer.Append(std::span(anywhere, NdbWriter::kMaxTreeSize - 999)); }),
            FailureKind::kNotSupported);
  EXPECT_EQ(writer.Size(), 1000u);
  EXPECT_EQ(ndb_->BlockCount(), 0u);
}

TEST_F(DataTrees, TooLargeForMemoryAreNotReadWhole) {
  const DataTree tree = Written(test::Noise(20000), 20000);
  DataTreeReader reader = DataTreeReader::Open(*ndb_, tree.bid);
  EXPECT_EQ(test::FailureOf([&] { static_cast<void>(reader.ReadAll(19999)); }), FailureKind::kNotSupported);
}

/// Blocks made up by a test.
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

  void AddXBlock(std::uint64_t bid, int level, std::uint32_t total, std::vector<std::uint64_t> children,
                 std::size_t cEnt) {
    std::vector<std::byte> block(8 + 8 * children.size());
    Encode(
        InternalHead{BlockType::kDataTree, static_cast<std::uint8_t>(level), static_cast<std::uint16_t>(cEnt), total},
        block);
    for (std::size_t i = 0; i < children.size(); ++i) Store<std::uint64_t>(block, 8 + 8 * i, children[i]);
    blocks[Bid{bid}] = block;
  }

  std::map<Bid, std::vector<std::byte>> blocks;
};

std::optional<FailureKind> OpeningFails(const BlockSource& source, std::uint64_t bid) {
  return test::FailureOf([&] { static_cast<void>(DataTreeReader::Open(source, Bid{bid})); });
}

TEST(DamagedDataTree, IsRefusedAtOpening) {
  MadeUpBlocks source;
  source.blocks[Bid{2}] = {};
  source.AddXBlock(6, 1, 100, {8}, 2);
  source.AddXBlock(10, 1, 100, {10}, 1);
  source.AddXBlock(14, 2, 100, {14}, 1);
  source.AddXBlock(18, 2, 100, {8}, 1);
  source.AddXBlock(22, 3, 100, {8}, 1);
  source.AddXBlock(26, 2, 100, {30}, 1);
  EXPECT_EQ(OpeningFails(source, 2), FailureKind::kCorrupt) << "empty block";
  EXPECT_EQ(OpeningFails(source, 6), FailureKind::kCorrupt) << "more entries than room";
  EXPECT_EQ(OpeningFails(source, 10), FailureKind::kCorrupt) << "an XBLOCK over an internal block";
  EXPECT_EQ(OpeningFails(source, 14), FailureKind::kCorrupt) << "an XXBLOCK over itself";
  EXPECT_EQ(OpeningFails(source, 18), FailureKind::kCorrupt) << "an XXBLOCK over data";
  EXPECT_EQ(OpeningFails(source, 22), FailureKind::kCorrupt) << "no such level";
  EXPECT_EQ(OpeningFails(source, 26), FailureKind::kNotFound) << "an XBLOCK that is not there";
  source.AddXBlock(34, 1, 200, {8, 12, 8}, 3);
  EXPECT_EQ(OpeningFails(source, 34), FailureKind::kCorrupt) << "a data block named twice";
}

TEST(DamagedDataTree, IsRefusedWhereItsBlocksDoNotAddUp) {
  MadeUpBlocks source;
  source.blocks[Bid{4}] = source.blocks[Bid{8}] = std::vector<std::byte>(100);
  source.AddXBlock(6, 1, 300, {4, 8}, 2);
  source.AddXBlock(10, 1, 150, {4, 8}, 2);
  DataTreeReader longer = DataTreeReader::Open(source, Bid{6});
  EXPECT_EQ(test::FailureOf([&] { static_cast<void>(longer.ReadAll(1000)); }), FailureKind::kCorrupt);
  std::byte byte;
  EXPECT_EQ(test::FailureOf([&] { static_cast<void>(longer.ReadAt(0, std::span(&byte, 1))); }), FailureKind::kCorrupt)
      << "a short block within";
  DataTreeReader shorter = DataTreeReader::Open(source, Bid{10});
  EXPECT_EQ(test::FailureOf([&] { static_cast<void>(shorter.ReadAll(1000)); }), FailureKind::kCorrupt);
}

TEST(DamagedDataTree, WhoseRootTellsOfMoreOrLessThanItsBlocksHoldIsNotReadToItsEndInSilence) {
  MadeUpBlocks source;
  source.blocks[Bid{4}] = std::vector<std::byte>(kMaxBlockData);
  source.blocks[Bid{8}] = std::vector<std::byte>(100);
  const std::size_t held = kMaxBlockData + 100;
  source.AddXBlock(6, 1, static_cast<std::uint32_t>(held + 50), {4, 8}, 2);
  source.AddXBlock(10, 1, static_cast<std::uint32_t>(held - 50), {4, 8}, 2);
  std::vector<std::byte> out(held);
  for (const std::uint64_t root : {6u, 10u}) {
    SCOPED_TRACE(root);
    DataTreeReader strict = DataTreeReader::Open(source, Bid{root});
    EXPECT_EQ(strict.ReadAt(0, out), held) << "nobody asked for the end yet";
    std::vector<std::byte> more(held + 1);
    EXPECT_EQ(test::FailureOf([&] { static_cast<void>(strict.ReadAt(0, more)); }), FailureKind::kCorrupt);
    Faults faults;
    DataTreeReader tolerant = DataTreeReader::Open(source, Bid{root}, &faults);
    EXPECT_EQ(tolerant.ReadAt(0, more), held);
    ASSERT_EQ(faults.Count(), 1u);
    EXPECT_EQ(faults.List()[0].object.kind, ObjectKind::kDataTree);
  }
}

}  // namespace
}  // namespace velmora::ndb
