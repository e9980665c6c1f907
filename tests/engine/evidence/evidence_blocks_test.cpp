// Blocks handed out by what was found of them: whole ones for certain, others as far as their bytes go.
#include "engine/evidence/evidence_fixture.h"
#include "store/ndb/data_tree_reader.h"

namespace velmora::engine {
namespace {

using forge::Encoding;
using forge::Format;

class EvidenceBlocksTest : public EvidenceTest, public testing::WithParamInterface<std::tuple<Format, Encoding>> {
 protected:
  EvidenceBlocksTest() {
    content_ = forge::Bytes(3000, std::byte{7});  // shrinks where the format packs
    forge::Append(content_, forge::Noise(2000, 5));
    forge::Mailbox box({.format = std::get<0>(GetParam()),
                        .encoding = std::get<1>(GetParam()),
                        .compressed = std::get<0>(GetParam()) == Format::kUnicode4k},
                       {.tables = true});
    FillMailbox(box);
    bid_ = box.store().AddBlock(content_);
    box.store().AddNode(0x200FE4, bid_, 0, 0x8022);
    context_ = AddContext(box.store());
    image_ = box.Finish();
  }

  /// One that shrinks where the format packs.
  static forge::Bid AddContext(forge::Store& store) {
    return store.AddDataBlocks(forge::FormContext(store, {forge::Text(0x0037, std::u16string(500, u'x'))}).blocks);
  }

  forge::Bytes Read() {
    Judge(image_);
    const EvidenceBlocks blocks(*source_, evidence_, judgement_);
    std::vector<std::byte> content;
    failed_ = !blocks.TryBlock(velmora::Bid{bid_ | 1}, content);
    isTrusted_ = blocks.IsTrusted(velmora::Bid{bid_});
    return content;
  }

  forge::Bytes content_;
  forge::Bid bid_ = 0;
  forge::Bid context_ = 0;
  forge::Image image_;
  bool failed_ = false;
  bool isTrusted_ = false;
};

INSTANTIATE_TEST_SUITE_P(All, EvidenceBlocksTest,
                         testing::Combine(testing::Values(Format::kAnsi, Format::kUnicode, Format::kUnicode4k),
                                          testing::Values(Encoding::kNone, Encoding::kPermute, Encoding::kCyclic)));

TEST_P(EvidenceBlocksTest, AProvenBlockIsDecodedAndInflated) {
  EXPECT_EQ(Read(), content_);
  EXPECT_TRUE(isTrusted_);
}

TEST_P(EvidenceBlocksTest, OfAHurtBlockWhatIsThereIsHandedOutUntrusted) {
  const forge::PlacedBlock block = image_.Block(bid_);
  forge::BreakData(image_, block, block.size - 1u);
  const forge::Bytes read = Read();
  EXPECT_FALSE(failed_);
  EXPECT_FALSE(isTrusted_);
  ASSERT_GT(read.size(), 3000u);
  EXPECT_TRUE(std::equal(read.begin(), read.begin() + 3000, content_.begin()));
}

TEST_P(EvidenceBlocksTest, ABlockWhoseTrailerIsGoneIsHandedOutUntrusted) {
  forge::WipeTrailer(image_, image_.Block(bid_));
  EXPECT_EQ(Read(), content_);
  EXPECT_FALSE(isTrusted_);
}

TEST_F(EvidenceTest, OfABlockThatTheEndOfTheFileCutsTheBeginningIsHandedOut) {
  const forge::Bytes content = forge::Noise(5000, 5);
  forge::Store store({.encoding = Encoding::kNone, .fullLength = true});
  store.AddBlock(forge::Noise(100, 1));
  store.ListBlock({.bid = 0x800, .offset = 200000, .size = 5000});
  forge::Image image = store.Finish();
  forge::Patch(image, 200000, content);
  forge::Truncate(image, 200000 + 1234);
  Judge(image);
  const EvidenceBlocks blocks(*source_, evidence_, judgement_);
  std::vector<std::byte> read;
  ASSERT_TRUE(blocks.TryBlock(velmora::Bid{0x800}, read));
  EXPECT_FALSE(blocks.IsTrusted(velmora::Bid{0x800}));
  EXPECT_EQ(read, forge::Bytes(content.begin(), content.begin() + 1234));
}

TEST_F(EvidenceTest, ABlockThatWasWholeAndIsNotAnyMoreFails) {
  const forge::Image image = SampleImage();
  Judge(image);
  forge::Image changed = image;
  forge::BreakData(changed, image.blocks[20]);
  Source source;
  source.Open(std::make_unique<platform::MemoryFile>(changed.bytes));
  const EvidenceBlocks blocks(source, evidence_, judgement_);
  std::vector<std::byte> read;
  EXPECT_FALSE(blocks.TryBlock(velmora::Bid{image.blocks[20].bid}, read));
  EXPECT_TRUE(blocks.TryBlock(velmora::Bid{image.blocks[21].bid}, read));
}

TEST_P(EvidenceBlocksTest, WhatAPackedBlockIsIsToldOnceItIsAsked) {
  Judge(image_);
  const EvidenceBlocks blocks(*source_, evidence_, judgement_);
  const FoundBlock data = Block(bid_);
  const FoundBlock context = Block(context_);
  const bool isPacked = std::get<0>(GetParam()) == Format::kUnicode4k;
  EXPECT_EQ(data.kind, isPacked ? BlockKind::kPacked : BlockKind::kData);
  EXPECT_EQ(context.kind, isPacked ? BlockKind::kPacked : BlockKind::kPropertyContext);
  EXPECT_EQ(blocks.KindOf(data), BlockKind::kData);
  EXPECT_EQ(blocks.KindOf(context), BlockKind::kPropertyContext);
}

TEST_P(EvidenceBlocksTest, WhatAHurtBlockIsIsToldAsFarAsItGoes) {
  const forge::PlacedBlock block = image_.Block(context_);
  const bool isPacked = block.size != block.inflatedSize;
  forge::BreakData(image_, block, isPacked ? block.size - 1u : block.size / 2u);  // the sum of the stream, or the text
  Judge(image_);
  EXPECT_EQ(Block(context_).grade, Grade::kHurt);
  EXPECT_EQ(EvidenceBlocks(*source_, evidence_, judgement_).KindOf(Block(context_)), BlockKind::kPropertyContext);
}

TEST_P(EvidenceBlocksTest, APackedContextThatCannotBeReadAnyMoreIsTakenForDataAnotherWasToldBefore) {
  Judge(image_);
  forge::Image changed = image_;
  forge::BreakData(changed, image_.Block(context_));
  Source source;
  source.Open(std::make_unique<platform::MemoryFile>(changed.bytes));
  EXPECT_EQ(EvidenceBlocks(source, evidence_, judgement_).KindOf(Block(context_)),
            std::get<0>(GetParam()) == Format::kUnicode4k ? BlockKind::kData : BlockKind::kPropertyContext);
}

TEST_P(EvidenceBlocksTest, NodesAreFoundIfTheyAreLive) {
  Read();
  const EvidenceBlocks blocks(*source_, evidence_, judgement_);
  const auto node = blocks.FindNode(velmora::Nid{0x200FE4});
  ASSERT_TRUE(node);
  EXPECT_EQ(Value(node->trees.bidData), bid_);
  judgement_.nodes.front().standing = Standing::kDeleted;
  EXPECT_FALSE(blocks.FindNode(judgement_.nodes.front().node.nid));
  EXPECT_FALSE(blocks.FindNode(velmora::Nid{0x7FFFFFE4}));
}

TEST_P(EvidenceBlocksTest, ABlockThatIsNowhereIsNotFound) {
  Judge(image_);
  const EvidenceBlocks blocks(*source_, evidence_, judgement_);
  std::vector<std::byte> content;
  EXPECT_FALSE(blocks.FindBlock(velmora::Bid{0xABCDE0}, content));
}

}  // namespace
}  // namespace velmora::engine
