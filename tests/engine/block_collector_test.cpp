#include "engine/block_collector.h"

#include <algorithm>
#include <optional>

#include "engine/run_fixture.h"
#include "engine/steps.h"
#include "forge/checksum.h"

namespace velmora::engine {
namespace {

using forge::Format;

/// A store of one block, at the place and with the trailer that a sound store gives it.
class BlockCollectorTest : public RunTest {
 protected:
  /// The block of that data, classified in a store of which nothing is known yet.
  bool Classify(const forge::Bytes& data, forge::StoreOptions options = {}, forge::BlockOptions block = {}) {
    forge::Store store(options);
    const forge::Bid bid = store.AddBlock(data, block);
    image_ = store.Finish();
    return ClassifyAgain(bid);
  }

  bool ClassifyAgain(forge::Bid bid) {
    const auto storeKind = Found().storeKind;
    Attach(image_.bytes, image_.format);
    if (storeKind != StoreKind::kNone) Found().storeKind = storeKind;
    Found().orphans.assign(1, {});
    Found().orphanBlockCount = 0;
    window_.emplace(Found().source);
    const auto& placed = image_.Block(bid);
    return ClassifyBlock(scan_, *window_, {static_cast<std::uint32_t>(bid), placed.size, placed.offset});
  }

  forge::Image image_;
  std::optional<SourceWindow> window_;
};

forge::Bytes Heap(std::uint16_t signature = 0xBCEC, std::size_t size = 100) {
  forge::Bytes data = forge::Noise(size, 1);
  forge::Put(data, 2, signature, 2);
  return data;
}

TEST_F(BlockCollectorTest, AHeapThatNoNodeRefersToIsListed) {
  EXPECT_TRUE(Classify(Heap()));
  EXPECT_EQ(Found().orphanBlockCount, 1u);
  ASSERT_EQ(Found().orphans.size(), 2u) << "it and the empty element at the end";
  EXPECT_EQ(Found().orphans[0].bidData, 4u);
  EXPECT_EQ(Found().orphans[0].bidSub, 0u);
  EXPECT_EQ(Found().orphans[1].bidData, 0u);
}

TEST_F(BlockCollectorTest, TheFirstHeapTellsTheEncoding) {
  for (const auto encoding : {forge::Encoding::kNone, forge::Encoding::kPermute, forge::Encoding::kCyclic}) {
    for (const Format format : {Format::kAnsi, Format::kUnicode}) {
      scan_.encodingUnknown = true;
      Found().blockEncoding = CryptMethod::kNone;
      EXPECT_TRUE(Classify(Heap(), {.format = format, .encoding = encoding}));
      EXPECT_FALSE(scan_.encodingUnknown);
      EXPECT_EQ(static_cast<int>(Found().blockEncoding), static_cast<int>(encoding));
    }
  }
}

TEST_F(BlockCollectorTest, ABlockWithoutASoundTrailerTellsNoEncodingAndIsNotListed) {
  EXPECT_FALSE(Classify(Heap(), {}, {.trailerSignature = std::uint16_t{0x1234}}));
  EXPECT_TRUE(scan_.encodingUnknown);
  scan_.encodingUnknown = false;
  Found().blockEncoding = CryptMethod::kPermute;
  EXPECT_TRUE(ClassifyAgain(4)) << "but listed where the encoding is known";
}

TEST_F(BlockCollectorTest, TheTrailerOfA4kBlockIsNotWhereItIsLookedFor) {
  Found().storeKind = StoreKind::kOst;
  EXPECT_FALSE(Classify(Heap(), {.format = Format::kUnicode4k, .encoding = forge::Encoding::kNone}));
  EXPECT_TRUE(scan_.encodingUnknown);
}

TEST_F(BlockCollectorTest, ATrailerIsLookedForIn8176BytesBehindTheData) {
  for (const std::uint64_t slot : {8272u, 8288u}) {
    Canvas canvas;
    canvas.Put(64, Heap(0xBCEC, 112));
    canvas.Number(64 + slot, 112, 2);
    canvas.Number(64 + slot + 2, forge::Signature(64, 4), 2);
    canvas.Number(64 + slot + 8, 4, 8);
    Attach(canvas.bytes);
    scan_.encodingUnknown = true;
    Found().orphans.assign(1, {});
    SourceWindow window(Found().source);
    ClassifyBlock(scan_, window, {4, 112, 64});
    EXPECT_EQ(scan_.encodingUnknown, slot != 8272u);
  }
}

TEST_F(BlockCollectorTest, ABlockThatANodeRefersToIsNotListedButTellsTheEncoding) {
  NodeList nodes;
  nodes.Insert({0x21, 4, 6, 0});
  scan_.referencedIds.Build(nodes);
  EXPECT_FALSE(Classify(Heap()));
  EXPECT_FALSE(scan_.encodingUnknown);
  EXPECT_EQ(Found().orphans.size(), 1u);
}

TEST_F(BlockCollectorTest, ATableIsListedInAnOfflineStoreAlone) {
  scan_.encodingUnknown = false;
  Found().blockEncoding = CryptMethod::kPermute;
  EXPECT_FALSE(Classify(Heap(0x7CEC)));
  Found().storeKind = StoreKind::kOst;
  EXPECT_TRUE(ClassifyAgain(4));
  Found().storeKind = StoreKind::kPab;
  EXPECT_FALSE(ClassifyAgain(4));
}

TEST_F(BlockCollectorTest, DataThatIsNoHeapIsNotListed) {
  EXPECT_FALSE(Classify(forge::Noise(100, 1)));
  EXPECT_TRUE(scan_.encodingUnknown);
}

class EveryFormatClassifierTest : public BlockCollectorTest, public testing::WithParamInterface<Format> {
 protected:
  /// A list of sub-nodes, as a block of its own.
  bool ClassifyList(const std::vector<forge::Subnode>& subnodes) {
    forge::Store store({.format = GetParam()});
    const forge::Bid bid = store.AddSubnodes(subnodes);
    image_ = store.Finish();
    return ClassifyAgain(bid);
  }
};

TEST_P(EveryFormatClassifierTest, AListOfSubNodesIsListedOnlyWhereItsSizeIsThatOfItsEntries) {
  // A list is a head of one field's width and three fields an entry.
  EXPECT_TRUE(ClassifyList({{.nid = 0x671, .bidData = 8}, {.nid = 0x692, .bidData = 12}}));
  EXPECT_EQ(Found().orphans[0].bidSub, 6u);
  EXPECT_EQ(Found().orphans[0].bidData, 0u);
  EXPECT_EQ(Found().orphanBlockCount, 1u);
  forge::Patch(image_, image_.Block(6).offset + 2, forge::Bytes{std::byte{3}});
  EXPECT_FALSE(ClassifyAgain(6)) << "a count of three";
}

TEST_P(EveryFormatClassifierTest, AListThatDoesNotBeginWithTheAttachmentTableIsNotListed) {
  EXPECT_FALSE(ClassifyList({{.nid = 0x670, .bidData = 8}, {.nid = 0x671, .bidData = 12}}));
}

TEST_P(EveryFormatClassifierTest, AListThatANodeRefersToIsNotListed) {
  NodeList nodes;
  nodes.Insert({0x21, 4, 6, 0});
  scan_.referencedIds.Build(nodes);
  EXPECT_FALSE(ClassifyList({{.nid = 0x671, .bidData = 8}}));
}

INSTANTIATE_TEST_SUITE_P(Smart, EveryFormatClassifierTest,
                         testing::Values(Format::kAnsi, Format::kUnicode, Format::kUnicode4k), FormatName);

TEST_F(BlockCollectorTest, AnOffsetThatNoFileHasListsNothing) {
  Attach(forge::Bytes(100));
  scan_.encodingUnknown = false;
  SourceWindow window(Found().source);
  EXPECT_FALSE(ClassifyBlock(scan_, window, {4, 100, 0xFFFFFFFFFFFFFFF0}));
}

TEST_F(BlockCollectorTest, ASmartScanListsWhatTheNodesDoNotReferTo) {
  forge::Mailbox box({.format = Format::kUnicode});
  const auto inbox = box.AddFolder({.name = u"Inbox"});
  box.AddMessage(inbox, {.subject = u"Kept"});
  const auto lost = box.store().AddBlock(Heap());
  image_ = box.Finish();
  Attach(image_.bytes);
  run_.smartScan = true;
  ScanNodePages(scan_, run_);
  ScanBlockPages(scan_, run_);
  EXPECT_FALSE(scan_.encodingUnknown);
  EXPECT_EQ(Found().orphans.size(), Found().orphanBlockCount + 1);
  const auto listed = [&](std::uint64_t bid) {
    return std::any_of(Found().orphans.begin(), Found().orphans.end(),
                       [&](const OrphanBlock& orphan) { return orphan.bidData == bid; });
  };
  EXPECT_TRUE(listed(lost));
  for (const auto& node : image_.nodes) {
    EXPECT_FALSE(node.bidSub != 0 && listed(node.bidData));
  }
}

}  // namespace
}  // namespace velmora::engine
