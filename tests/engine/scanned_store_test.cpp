#include "engine/scanned_store.h"

#include <thread>

#include "engine/bad_disk.h"
#include "engine/run_fixture.h"
#include "engine/steps.h"
#include "store/ndb/data_tree_reader.h"
#include "store/support/failures.h"

namespace velmora::engine {
namespace {

using forge::Format;

/// A block of the store and what was put into it.
struct Content {
  forge::Bid bid;
  forge::Bytes data;
};

class ScannedStoreTest : public RunTest {
 protected:
  std::unique_ptr<const ScannedStore> Scan(const forge::Image& image) {
    scan_ = {};
    scan_.outputFolder = folder_;
    Attach(image.bytes, image.format);
    return Scan();
  }

  std::unique_ptr<const ScannedStore> Scan() {
    ScanNodePages(scan_, run_);
    ScanBlockPages(scan_, run_);
    return FinishScan(scan_, run_);
  }

  static std::optional<forge::Bytes> Read(const ScannedStore& store, std::uint64_t bid) {
    return IfReadable([&] {
      forge::Bytes block;
      store.ReadBlock(Bid{bid}, block);
      return block;
    });
  }

  static std::optional<FailureKind> FailureOf(const ScannedStore& store, std::uint64_t bid) {
    forge::Bytes block;
    return test::FailureOf([&] { store.ReadBlock(Bid{bid}, block); });
  }
};

forge::Bytes Heap() {
  forge::Bytes data = forge::Noise(100, 1);
  forge::Put(data, 2, 0xBCEC, 2);
  return data;
}

/// A heap that tells the encoding, and blocks of many sizes, some of which shrink where a store packs its blocks.
std::vector<Content> FillWithBlocks(forge::Store& store, std::uint32_t blocks) {
  std::vector<Content> contents = {{store.AddBlock(Heap()), Heap()}};
  store.AddNode(0x8042, contents[0].bid, 0, 0x122);
  const std::uint32_t most = store.traits().maxBlockData;
  for (std::uint32_t i = 1; i < blocks; ++i) {
    const std::size_t size = i == 1 ? most : 1 + i * 977 % most;
    forge::Bytes data = i % 3 == 0 ? forge::Bytes(size, std::byte{7}) : forge::Noise(size, i);
    contents.push_back({store.AddBlock(data), data});
  }
  return contents;
}

class EveryFormatScannedStoreTest : public ScannedStoreTest, public testing::WithParamInterface<Format> {};

TEST_P(EveryFormatScannedStoreTest, EveryBlockComesOutAsItWasPutIn) {
  for (const auto encoding : {forge::Encoding::kNone, forge::Encoding::kPermute, forge::Encoding::kCyclic}) {
    for (const bool compressed : {false, true}) {
      forge::Store forged({.format = GetParam(), .encoding = encoding, .compressed = compressed});
      const auto contents = FillWithBlocks(forged, 40);
      const forge::Bytes list = forge::Noise(48, 5);
      const forge::Bid internal = forged.AddInternalBlock(list);
      const auto store = Scan(forged.Finish());
      EXPECT_EQ(static_cast<int>(store->blockEncoding), static_cast<int>(encoding));
      for (const Content& content : contents) ASSERT_EQ(Read(*store, content.bid), content.data) << content.bid;
      EXPECT_EQ(Read(*store, internal), list) << "never encoded";
      EXPECT_EQ(Read(*store, contents[1].bid | 1), contents[1].data) << "bit 0 does not count";
      EXPECT_EQ(FailureOf(*store, 0), FailureKind::kNotFound);
      EXPECT_EQ(FailureOf(*store, 0x7FFFFFC), FailureKind::kNotFound);
    }
  }
}

TEST_P(EveryFormatScannedStoreTest, ALongValueIsReadThroughItsLists) {
  forge::Store forged({.format = GetParam()});
  FillWithBlocks(forged, 2);
  const forge::Bytes value = forge::Noise(9 * forged.traits().maxBlockData, 3);
  const forge::Bid list = forged.AddData(value);
  forged.AddNode(0x200024, list, 0, 0x8042);
  const auto store = Scan(forged.Finish());
  const auto node = store->FindNode(Nid{0x200024});
  ASSERT_TRUE(node);
  EXPECT_EQ(ndb::DataTreeReader::Open(*store, node->trees.bidData).ReadAll(value.size()), value);
}

TEST_P(EveryFormatScannedStoreTest, ABlockThatDoesNotProveItselfIsCorrupt) {
  forge::Store forged({.format = GetParam()});
  const auto contents = FillWithBlocks(forged, 4);
  const forge::Bid other = forged.AddBlock(Heap(), {.trailerId = 0x4444});
  auto image = forged.Finish();
  forge::BreakData(image, image.Block(contents[2].bid), 0);
  const auto store = Scan(image);
  EXPECT_EQ(FailureOf(*store, contents[2].bid), FailureKind::kCorrupt);
  EXPECT_EQ(FailureOf(*store, other), FailureKind::kCorrupt);
  EXPECT_EQ(Read(*store, contents[3].bid), contents[3].data);
}

TEST_P(EveryFormatScannedStoreTest, TwoThreadsReadWhatOneReads) {
  forge::Store forged({.format = GetParam(), .compressed = true});
  const auto contents = FillWithBlocks(forged, 300);
  const auto image = forged.Finish();
  const auto store = Scan(image);

  const auto readAll = [&] {
    std::vector<std::optional<forge::Bytes>> blocks;
    for (const Content& content : contents) blocks.push_back(Read(*store, content.bid));
    for (const auto& node : image.nodes) EXPECT_TRUE(store->FindNode(Nid{static_cast<std::uint32_t>(node.nid)}));
    return blocks;
  };
  const auto alone = readAll();
  for (std::size_t i = 0; i < contents.size(); ++i) ASSERT_EQ(alone[i], contents[i].data);
  std::vector<std::optional<forge::Bytes>> first, second;
  std::thread one([&] { first = readAll(); });
  std::thread two([&] { second = readAll(); });
  one.join();
  two.join();
  EXPECT_EQ(first, alone);
  EXPECT_EQ(second, alone);
}

INSTANTIATE_TEST_SUITE_P(Scan, EveryFormatScannedStoreTest,
                         testing::Values(Format::kAnsi, Format::kUnicode, Format::kUnicode4k), FormatName);

TEST_F(ScannedStoreTest, AReadErrorIsListedWithItsRangeWhicheverThreadMeetsIt) {
  forge::Store forged;
  const auto contents = FillWithBlocks(forged, 200);
  const auto image = forged.Finish();
  const auto& first = image.Block(contents[10].bid);
  const auto& second = image.Block(contents[150].bid);
  Attach(image.bytes);
  Found().source.Open(std::make_unique<BadDisk>(
      std::make_unique<platform::MemoryFile>(image.bytes),
      std::vector<BadPlace>{{first.offset, first.offset + 1}, {second.offset, second.offset + 1}}));
  const auto store = Scan();
  // The scan gives up 4096 bytes at a time, counted from where it begins.
  std::map<std::uint64_t, std::uint64_t> expected;
  for (const auto* block : {&first, &second}) {
    const std::uint64_t begin = 18432 + (block->offset - 18432) / 4096 * 4096;
    expected[begin] = begin + 4096;
  }
  EXPECT_EQ(store->source.Unread().Ranges(), expected);
  ASSERT_TRUE(store->source.FirstFailure());
  EXPECT_EQ(store->source.FirstFailure()->message, "bad sector");

  const auto readAll = [&] {
    for (const Content& content : contents) {
      const bool isBad = content.bid == contents[10].bid || content.bid == contents[150].bid;
      if (!isBad) {
        EXPECT_TRUE(Read(*store, content.bid));
      }
      if (isBad) {
        EXPECT_EQ(FailureOf(*store, content.bid), FailureKind::kInputOutput);
      }
    }
  };
  std::thread one(readAll);
  std::thread two(readAll);
  one.join();
  two.join();
  EXPECT_EQ(store->source.Unread().Ranges(), expected) << "known already";
}

TEST_F(ScannedStoreTest, TwoBlocksWhoseIdsShareTheirLowHalfAreToldApart) {
  constexpr std::uint64_t kHigh = 0x7'0000'0000;
  forge::Store forged;
  const auto contents = FillWithBlocks(forged, 2);
  const forge::Bytes high = forge::Noise(300, 8);
  forged.AddBlock(high, {.bid = contents[1].bid | kHigh});
  const auto store = Scan(forged.Finish());
  EXPECT_EQ(Read(*store, contents[1].bid), contents[1].data);
  EXPECT_EQ(Read(*store, contents[1].bid | kHigh), high);
  EXPECT_EQ(FailureOf(*store, contents[1].bid | 2 * kHigh), FailureKind::kNotFound);
  EXPECT_EQ(store->index.Find(LowBid(Bid{contents[1].bid}))->size, contents[1].data.size())
      << "the rules know the low half: the first of the two";
}

TEST_F(ScannedStoreTest, ANodeIsFoundWithItsWholeBlockIds) {
  forge::Store forged;
  FillWithBlocks(forged, 2);
  forged.AddNode(0x200024, 0x3'0000'0004, 0x5'0000'0006, 0x8042);
  const auto store = Scan(forged.Finish());
  const auto node = store->FindNode(Nid{0x200024});
  ASSERT_TRUE(node);
  EXPECT_EQ(*node, (ndb::NodeEntry{Nid{0x200024}, {Bid{0x3'0000'0004}, Bid{0x5'0000'0006}}, Nid{0x8042}}));
  EXPECT_FALSE(store->FindNode(Nid{0x200044}));
}

TEST_F(ScannedStoreTest, OfAnUpperPageThereIsNoNode) {
  NodeList& nodes = Found().nodes;
  nodes.Insert({0x41, 4, 0, 0, true});
  nodes.Insert({0x61, 8, 0, 0});
  nodes.Insert({0x61, 12, 6, 0});
  nodes.Settle();
  EXPECT_FALSE(Found().FindNode(Nid{0x41}));
  EXPECT_EQ(Found().FindNode(Nid{0x61})->trees.bidData, Bid{8}) << "the first of the list";
}

}  // namespace
}  // namespace velmora::engine
