// Heaps, written and read back.
#include "store/ltp/heap.h"

#include <gtest/gtest.h>

#include "store/format/little_endian.h"
#include "store/ltp/heap_writer.h"
#include "store/ndb/data_tree_reader.h"
#include "store/ndb/ndb_writer.h"
#include "store/support/failures.h"
#include "store/support/test_files.h"

namespace velmora::ltp {
namespace {

class Heaps : public testing::Test {
 protected:
  std::vector<std::byte> Block(const ndb::DataTree& tree, std::size_t index) {
    auto reader = ndb::DataTreeReader::Open(*ndb_, tree.bid);
    const auto block = reader.Block(index);
    return {block.begin(), block.end()};
  }

  platform::MemoryFile file_;
  std::unique_ptr<ndb::NdbWriter> ndb_ = ndb::NdbWriter::Create(file_);
  HeapWriter writer_{*ndb_, ClientSig::kPropertyContext};
};

TEST_F(Heaps, OfOneBlockEndBehindThePageMap) {
  EXPECT_EQ(writer_.Add(test::Noise(8)), 0x20u);
  EXPECT_EQ(writer_.Add(test::Noise(3)), 0x40u);
  const ndb::DataTree tree = writer_.Finish(0x20);
  EXPECT_EQ(tree.size, 12u + 8 + 3 + 1 + 4 + 2 * 3);
  const std::vector<std::byte> block = Block(tree, 0);
  EXPECT_EQ(Load<std::uint16_t>(block, 0), 24) << "the even end of the items";
  EXPECT_EQ(Load<std::uint16_t>(block, 2), 0xBCEC);
  EXPECT_EQ(Load<std::uint32_t>(block, 4), 0x20u);
  EXPECT_EQ(Load<std::uint32_t>(block, 8), 0u) << "nearly empty";
  EXPECT_EQ(Load<std::uint32_t>(block, 24), 2u) << "cAlloc 2, cFree 0";
  EXPECT_EQ(Load<std::uint16_t>(block, 28), 12);
  EXPECT_EQ(Load<std::uint16_t>(block, 30), 20);
  EXPECT_EQ(Load<std::uint16_t>(block, 32), 23);
}

TEST_F(Heaps, TellHowFullTheyAre) {
  // Free bytes of 8176 behind the page map with one item, and the level of that.
  const std::pair<std::size_t, int> cases[] = {{3584, 0}, {3583, 1}, {2560, 1}, {2559, 2}, {2048, 2}, {1791, 4},
                                               {1024, 6}, {768, 7},  {512, 8},  {511, 9},  {256, 9},  {255, 10},
                                               {128, 10}, {127, 11}, {64, 11},  {32, 12},  {31, 13},  {16, 13},
                                               {15, 14},  {8, 14},   {7, 14},   {4, 14},   {3, 15},   {0, 15}};
  for (const auto& [free, level] : cases) {
    EXPECT_EQ(FillLevel(kMaxBlockData - free - 4 - 2 * 2, 1), level) << free;
  }
}

TEST_F(Heaps, StartANewBlockWhereAnItemDoesNotFitAnyMore) {
  // 12 + items + pad + 4 + 2 * (count + 1) must not exceed 8176.
  const std::size_t rest = 8176 - 12 - 2 * 3580 - 4 - 2 * 4;
  for (const std::size_t last : {rest, rest + 1}) {
    writer_.Add(test::Noise(3580));
    writer_.Add(test::Noise(3580));
    EXPECT_EQ(writer_.Add(test::Noise(last)), last == rest ? MakeHid(0, 3) : MakeHid(1, 1));
    const ndb::DataTree tree = writer_.Finish(0x20);
    EXPECT_EQ(tree.size, last == rest ? 8176u : 8176 + 2 + ((rest + 2) & ~1ul) + 4 + 4);
    EXPECT_EQ(Load<std::uint8_t>(Block(tree, 0), 8), last == rest ? 0x0F : 0x07);
  }
}

TEST_F(Heaps, HoldNoMoreItemsInABlockThanAnIdCanName) {
  for (int i = 0; i < 2047; ++i)
    EXPECT_EQ(writer_.Add(test::Bytes({i})), MakeHid(0, static_cast<std::uint32_t>(i + 1)));
  EXPECT_EQ(writer_.Add(test::Bytes({7})), MakeHid(1, 1));
  const ndb::DataTree tree = writer_.Finish(0x20);
  Heap heap = Heap::Open(*ndb_, tree.bid, ClientSig::kPropertyContext);
  EXPECT_EQ(heap.Item(MakeHid(0, 2047))[0], std::byte(2046 & 0xFF));
}

TEST_F(Heaps, KeepEveryItemOverManyBlocks) {
  // 300 blocks: fill levels in block 0 and in the heads of blocks 8, 136 and 264.
  std::vector<std::pair<Hid, std::vector<std::byte>>> items;
  test::Random random(5);
  for (std::uint32_t i = 0; writer_.Position().block < 300; ++i) {
    items.emplace_back(0, test::Noise(1 + random() % kMaxHeapItem, i));
    items.back().first = writer_.Add(items.back().second);
  }
  const HeapPosition end = writer_.Position();
  const ndb::DataTree tree = writer_.Finish(0x20);
  EXPECT_EQ(tree.size, end.HeapSize());
  Heap heap = Heap::Open(*ndb_, tree.bid, ClientSig::kPropertyContext);
  EXPECT_EQ(heap.UserRoot(), 0x20u);
  for (const auto& [hid, bytes] : items) ASSERT_TRUE(std::ranges::equal(heap.Item(hid), bytes)) << hid;

  std::vector<std::uint8_t> levels;
  for (std::size_t b = 0; b <= 300; ++b) {
    const std::vector<std::byte> block = Block(tree, b);
    ASSERT_EQ(block.size(), b < 300 ? 8176 : tree.size - 300 * 8176);
    const auto ibHnpm = Load<std::uint16_t>(block, 0);
    const auto count = Load<std::uint16_t>(block, ibHnpm);
    ASSERT_EQ(Load<std::uint16_t>(block, ibHnpm + 4), HeadSize(b));
    levels.push_back(FillLevel(Load<std::uint16_t>(block, ibHnpm + 4 + 2 * count), count));
  }
  const auto written = [&](std::size_t b) {
    const bool first = b < 8;
    const std::size_t holder = first ? 0 : b - (b - 8) % 128;
    const std::size_t nibble = b - holder;
    const auto byte = Load<std::uint8_t>(Block(tree, holder), (first ? 8 : 2) + nibble / 2);
    return nibble % 2 == 0 ? byte & 15 : byte >> 4;
  };
  for (std::size_t b = 0; b <= 300; ++b) ASSERT_EQ(written(b), levels[b]) << b;
  for (std::size_t b = 301; b < 264 + 128; ++b) ASSERT_EQ(written(b), 0) << "blocks that are not there";
}

TEST_F(Heaps, ThatEndWithABlockOfFillLevelsAreWhole) {
  for (const std::size_t blocks : {1u, 7u, 8u, 9u, 136u, 137u}) {
    while (writer_.Position().block < blocks) writer_.Add(test::Noise(3000));
    const Hid last = writer_.Add(test::Noise(77));
    const ndb::DataTree tree = writer_.Finish(0x20);
    Heap heap = Heap::Open(*ndb_, tree.bid, ClientSig::kPropertyContext);
    EXPECT_TRUE(std::ranges::equal(heap.Item(last), test::Noise(77))) << blocks;
  }
}

TEST_F(Heaps, TakeBackWhatBlockZeroHolds) {
  const Hid header = writer_.Add(test::Bytes({0, 0, 0, 0}));
  const Hid second = writer_.Add(test::Bytes({5, 6, 7, 8}));
  writer_.Patch(header, test::Bytes({1, 2}));
  while (writer_.Position().block < 3) writer_.Add(test::Noise(3000));
  writer_.Patch(second, test::Bytes({9}));
  const ndb::DataTree tree = writer_.Finish(0x20);
  Heap heap = Heap::Open(*ndb_, tree.bid, ClientSig::kPropertyContext);
  EXPECT_TRUE(std::ranges::equal(heap.Item(header), test::Bytes({1, 2, 0, 0})));
  EXPECT_TRUE(std::ranges::equal(heap.Item(second), test::Bytes({9, 6, 7, 8})));
}

TEST_F(Heaps, RefuseItemsOfNoBytesAndOfTooMany) {
  EXPECT_EQ(test::FailureOf([&] { writer_.Add({}); }), FailureKind::kCorrupt);
  EXPECT_EQ(test::FailureOf([&] { writer_.Add(test::Noise(3581)); }), FailureKind::kCorrupt);
  writer_.Add(test::Noise(3580));
}

TEST_F(Heaps, RefuseABlockTooMany) {
  HeapWriter small(*ndb_, ClientSig::kTableContext, 2);
  for (int i = 0; i < 4; ++i) small.Add(test::Noise(3580));
  EXPECT_EQ(test::FailureOf([&] { small.Add(test::Noise(3580)); }), FailureKind::kNotSupported);
  small.Add(test::Noise(100));  // what fits is still taken
}

TEST_F(Heaps, GivenUpLeaveNothing) {
  while (writer_.Position().block < 150) writer_.Add(test::Noise(3000));
  EXPECT_GT(ndb_->BlockCount(), 100u);
  writer_.Clear();
  EXPECT_EQ(ndb_->BlockCount(), 0u);
  EXPECT_EQ(writer_.Add(test::Noise(1)), 0x20u);
}

TEST_F(Heaps, OfAnotherKindAreRefused) {
  writer_.Add(test::Noise(8));
  const ndb::DataTree tree = writer_.Finish(0x20);
  EXPECT_FALSE(test::FailureOf([&] { static_cast<void>(Heap::Open(*ndb_, tree.bid, ClientSig::kPropertyContext)); }));
  EXPECT_EQ(test::FailureOf([&] { static_cast<void>(Heap::Open(*ndb_, tree.bid, ClientSig::kTableContext)); }),
            FailureKind::kCorrupt);
  const Bid noHeap = ndb_->WriteData(test::Noise(100)).bid;
  EXPECT_EQ(test::FailureOf([&] { static_cast<void>(Heap::Open(*ndb_, noHeap, ClientSig::kPropertyContext)); }),
            FailureKind::kCorrupt);
  EXPECT_EQ(test::FailureOf([&] { static_cast<void>(Heap::Open(*ndb_, kNoBid, ClientSig::kPropertyContext)); }),
            FailureKind::kCorrupt);
}

TEST_F(Heaps, RefuseIdsThatNameNoItem) {
  writer_.Add(test::Noise(8));
  const ndb::DataTree tree = writer_.Finish(0x20);
  Heap heap = Heap::Open(*ndb_, tree.bid, ClientSig::kPropertyContext);
  for (const Hid hid : {0u, 0x40u, 0x21u, 0x10020u, 0xFFFFFFE0u}) {
    EXPECT_EQ(test::FailureOf([&] { static_cast<void>(heap.Item(hid)); }), FailureKind::kCorrupt) << hid;
  }
}

TEST_F(Heaps, WithAnyPageMapAreReadWithinTheirBlock) {
  test::Random random(3);
  for (int round = 0; round < 2000; ++round) {
    std::vector<std::byte> block = test::Noise(12 + random() % 60, random());
    block[2] = std::byte{0xEC};
    block[3] = std::byte{0xBC};
    block[1] = std::byte{0};
    Heap heap = Heap::Open(*ndb_, ndb_->WriteData(block).bid, ClientSig::kPropertyContext);
    for (std::uint32_t item = 0; item < 40; ++item) {
      if (const auto bytes = heap.Find(MakeHid(0, item))) {
        ASSERT_LE(bytes->size(), block.size());
      }
    }
  }
}

}  // namespace
}  // namespace velmora::ltp
