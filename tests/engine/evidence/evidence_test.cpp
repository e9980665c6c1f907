// What one pass over a source proves: layout, encoding, pages and blocks.
#include "engine/evidence/evidence.h"

#include <algorithm>
#include <regex>
#include <string>

#include "engine/bad_disk.h"
#include "engine/evidence/evidence_fixture.h"

namespace velmora::engine {
namespace {

using forge::Encoding;
using forge::Format;

class EveryFormatTest : public EvidenceTest, public testing::WithParamInterface<std::tuple<Format, Encoding>> {
 protected:
  Format GivenFormat() const { return std::get<0>(GetParam()); }
  Encoding GivenEncoding() const { return std::get<1>(GetParam()); }

  /// Of the sample without its header, all is found as it stands there.
  void ExpectAllFound(const forge::Image& image, Grade pages = Grade::kProven) {
    ASSERT_NE(evidence_.layout, nullptr);
    EXPECT_EQ(evidence_.layout->formatId, IdOf(image.format));
    EXPECT_EQ(static_cast<int>(evidence_.encoding), static_cast<int>(GivenEncoding()));
    ASSERT_EQ(evidence_.blocks.size(), image.blocks.size());
    for (const forge::PlacedBlock& placed : image.blocks) {
      const FoundBlock& found = Block(placed.bid);
      EXPECT_EQ(found.offset, placed.offset);
      EXPECT_EQ(found.cb, placed.size);
      EXPECT_EQ(found.grade, Grade::kProven);
    }
    ASSERT_EQ(evidence_.pages.size(), image.pages.size());
    for (const forge::PlacedPage& placed : image.pages) {
      const auto found = std::ranges::find(evidence_.pages, placed.offset, &FoundPage::offset);
      ASSERT_NE(found, evidence_.pages.end());
      EXPECT_EQ(found->id, placed.pageId);
      EXPECT_EQ(static_cast<int>(found->type), static_cast<int>(placed.type));
      EXPECT_EQ(found->level, placed.level);
      EXPECT_EQ(found->grade, pages);
    }
    EXPECT_EQ(evidence_.failedBlocks, 0u);
  }
};

INSTANTIATE_TEST_SUITE_P(All, EveryFormatTest,
                         testing::Combine(testing::Values(Format::kAnsi, Format::kUnicode, Format::kUnicode4k),
                                          testing::Values(Encoding::kNone, Encoding::kPermute, Encoding::kCyclic)));

TEST_P(EveryFormatTest, TellsLayoutEncodingPagesAndBlocksWithoutAHeader) {
  forge::Image image = SampleImage(GivenFormat(), GivenEncoding());
  forge::WipeHeader(image);
  Find(image);
  EXPECT_FALSE(told_);
  ExpectAllFound(image);
}

TEST_P(EveryFormatTest, TellsTheSameWithoutAnyTree) {
  forge::Image image = SampleImage(GivenFormat(), GivenEncoding());
  forge::WipeTrees(image);
  image.pages.clear();
  Find(image);
  ExpectAllFound(image);
}

TEST_P(EveryFormatTest, PagesWhoseSignaturesAreSpoiltCountByTheirChecksums) {
  forge::Image image = SampleImage(GivenFormat(), GivenEncoding());
  for (const forge::PlacedPage& page : image.pages) forge::BreakSignature(image, page);
  Find(image);
  ExpectAllFound(image, Grade::kMoved);
}

TEST_P(EveryFormatTest, KnowsWhatBlocksAreAndWhichAnotherNames) {
  forge::Mailbox box({.format = GivenFormat(), .encoding = GivenEncoding()}, {.tables = true});
  FillMailbox(box);
  const auto added = box.AddMessage(forge::kTopFolder, {.subject = u"s",
                                                        .plain = u"a long one",
                                                        .plainPlace = forge::Place::kChain,
                                                        .recipients = {{u"One", u"one@example.org"}}});
  const forge::Bid chain = box.store().AddData(forge::Noise(200000, 1));
  forge::Image image = box.Finish();
  forge::WipeTrees(image);
  Find(image);
  EXPECT_EQ(Block(added.bidData).kind, BlockKind::kPropertyContext);
  EXPECT_FALSE(Block(added.bidData).isNamed);
  EXPECT_EQ(Block(added.bidSub).kind, BlockKind::kSubnodes);
  EXPECT_FALSE(Block(added.bidSub).isNamed);
  EXPECT_EQ(Block(chain).kind, BlockKind::kList);
  EXPECT_FALSE(Block(chain).isNamed);
  EXPECT_EQ(Block((chain & ~forge::Bid{2}) - 4).kind, BlockKind::kData);
  EXPECT_TRUE(Block((chain & ~forge::Bid{2}) - 4).isNamed) << "the last piece of the chain";
  EXPECT_EQ(Block(image.Node(0x802E).bidData).kind, BlockKind::kTable) << "contents of the top folder";
}

TEST_P(EveryFormatTest, BytesThatWereLostAreMadeUpForSoThatWhatIsBehindThemStandsWhereItWasWritten) {
  forge::Image image = SampleImage(GivenFormat(), GivenEncoding());
  const std::size_t count = image.blocks.size();
  // The last bytes first, so that the places of those ahead stay.
  for (const std::size_t at : {count - 1, count / 2, count / 4}) {
    const auto place = image.bytes.begin() + static_cast<std::ptrdiff_t>(image.blocks[at].offset + 3);
    image.bytes.erase(place, place + (at % 2 == 0 ? 1 : 2));
  }
  Find(image);
  for (std::size_t i = 0; i < count; ++i) {
    const bool isHurt = i == count - 1 || i == count / 2 || i == count / 4;
    if (isHurt && !evidence_.Find(velmora::Bid{image.blocks[i].bid})) continue;
    EXPECT_EQ(Block(image.blocks[i].bid).offset, image.blocks[i].offset);
    EXPECT_EQ(Block(image.blocks[i].bid).grade, isHurt ? Grade::kNamed : Grade::kProven);
  }
  EXPECT_EQ(evidence_.pages.size(), image.pages.size());
}

TEST_P(EveryFormatTest, BytesLostCloseToTheEndHideNothingBehindThem) {
  forge::Image image = SampleImage(GivenFormat(), GivenEncoding());
  const std::size_t at = image.blocks.size() * 9 / 10;
  image.bytes.erase(image.bytes.begin() + static_cast<std::ptrdiff_t>(image.blocks[at].offset));
  Find(image);
  for (std::size_t i = 0; i < image.blocks.size(); ++i) {
    if (i == at) continue;
    EXPECT_EQ(Block(image.blocks[i].bid).grade, Grade::kProven);
  }
  EXPECT_EQ(evidence_.pages.size(), image.pages.size());
}

/// A mailbox with texts of more lines in a block than are sought without a reason, some of which end with LF alone.
forge::Image StoreOfTexts(Format format, Encoding encoding) {
  forge::Mailbox box({.format = format, .encoding = encoding, .entriesPerPage = 5}, {.tables = true});
  FillMailbox(box, 40);
  for (std::uint32_t i = 0; i < 8; ++i) {
    std::string lines;
    for (int line = 0; line < 2000; ++line) lines += line == 900 ? "odd\n" : "Line\r\n";
    forge::Message message{.subject = u"Lines", .html = forge::ToBytes(lines), .htmlPlace = forge::Place::kChain};
    message.attachments = {{.name = u"a.bin", .data = forge::Noise(40'000, i), .place = forge::Place::kChain}};
    box.AddMessage(forge::kTopFolder, message);
  }
  return box.Finish();
}

TEST_P(EveryFormatTest, OfACopyInTextModeEachBlockAndPageIsAsItWas) {
  const forge::Image image = StoreOfTexts(GivenFormat(), GivenEncoding());
  forge::Image copy = image;
  const std::string text(reinterpret_cast<const char*>(image.bytes.data()), image.bytes.size());
  copy.bytes = forge::ToBytes(std::regex_replace(text, std::regex("\r\n"), "\n"));
  ASSERT_LT(copy.bytes.size(), image.bytes.size());
  Find(copy);
  ExpectAllFound(image);
  EXPECT_FALSE(evidence_.hasStrays);
  for (const forge::PlacedBlock& block : image.blocks) {
    std::vector<std::byte> restored(block.size);
    ASSERT_EQ(source_->Read(block.offset, restored), block.size);
    EXPECT_TRUE(std::ranges::equal(restored,
                                   std::span(image.bytes).subspan(static_cast<std::size_t>(block.offset), block.size)));
  }
}

TEST_P(EveryFormatTest, ABlockOfWhichTooManyWaysFitStaysHurt) {
  forge::Mailbox box({.format = GivenFormat(), .encoding = Encoding::kNone, .entriesPerPage = 5}, {.tables = true});
  FillMailbox(box);
  std::string lines;
  for (int line = 0; line < 1000; ++line) lines += line % 2 == 0 ? "a\n" : "b\r\n";
  const forge::Bid hurt = box.store().AddData(forge::ToBytes(lines));
  FillMailbox(box);
  const forge::Image image = box.Finish();
  forge::Image copy = image;
  const std::string text(reinterpret_cast<const char*>(image.bytes.data()), image.bytes.size());
  copy.bytes = forge::ToBytes(std::regex_replace(text, std::regex("\r\n"), "\n"));
  Find(copy);
  for (const forge::PlacedBlock& block : image.blocks) {
    if (block.bid == hurt) continue;
    EXPECT_EQ(Block(block.bid).grade, Grade::kProven);
  }
  EXPECT_EQ(Block(hurt).grade, Grade::kNamed);
}

TEST_P(EveryFormatTest, BlocksAndPagesThatWereMovedBySectorsAreFound) {
  forge::Image image = SampleImage(GivenFormat(), GivenEncoding());
  const std::uint64_t cut = image.blocks[image.blocks.size() / 2].offset / 512 * 512;
  image.bytes.insert(image.bytes.begin() + static_cast<std::ptrdiff_t>(cut), 1536, std::byte{0x5A});
  Find(image);
  for (const forge::PlacedBlock& block : image.blocks) {
    if (block.offset < cut && block.offset + block.placeSize > cut) continue;
    EXPECT_EQ(Block(block.bid).offset, block.offset + (block.offset < cut ? 0 : 1536));
    EXPECT_EQ(Block(block.bid).grade, block.offset < cut ? Grade::kProven : Grade::kMoved);
  }
  ASSERT_EQ(evidence_.pages.size(), image.pages.size());
  judgement_ = JudgeNodes(*source_, evidence_, told_, run_);
  EXPECT_EQ(Nodes({Standing::kLive}), LinesOf(image));
  EXPECT_TRUE(judgement_.nodesAreExact);
}

TEST_F(EvidenceTest, ABlockOfWhichABitIsWrongKeepsItsPlaceAndCountsAsFailed) {
  forge::Image image = SampleImage();
  const forge::PlacedBlock block = image.blocks[20];
  forge::BreakData(image, block);
  Find(image);
  EXPECT_EQ(Block(block.bid).grade, Grade::kHurt);
  EXPECT_EQ(Block(block.bid).offset, block.offset);
  EXPECT_EQ(evidence_.failedBlocks, 1u);
  EXPECT_EQ(evidence_.blocks.size(), image.blocks.size());
}

TEST_F(EvidenceTest, ABlockWithoutTrailerIsWhereTheBlockTreeNamesIt) {
  forge::Image image = SampleImage();
  const forge::PlacedBlock block = image.blocks[20];
  forge::WipeTrailer(image, block);
  Find(image);
  EXPECT_EQ(Block(block.bid).grade, Grade::kNamed);
  EXPECT_EQ(Block(block.bid).offset, block.offset);
  EXPECT_EQ(Block(block.bid).cb, block.size);
  EXPECT_EQ(evidence_.failedBlocks, 0u);

  forge::WipePages(image, forge::PageType::kBlocks);
  Find(image);
  EXPECT_FALSE(evidence_.Find(velmora::Bid{block.bid})) << "nothing tells of it any more";
}

TEST_F(EvidenceTest, ABlockThatTheTreeNamesWhereAnotherStandsIsNot) {
  forge::Store store;
  const forge::Bid first = store.AddBlock(forge::Noise(500, 1));
  store.ListBlock({.bid = 0x4444, .offset = store.End() - 64, .size = 20});
  const forge::Image image = store.Finish();
  Find(image);
  EXPECT_FALSE(evidence_.Find(velmora::Bid{0x4444}));
  EXPECT_EQ(Block(first).grade, Grade::kProven);
}

class SecondCopyTest : public EvidenceTest {
 protected:
  /// Two blocks of one id, of which the tree names one.
  forge::Image TwoOfAnId(bool namesFirst) {
    forge::Store store;
    for (std::uint32_t i = 0; i < 10; ++i) store.AddBlock(forge::Noise(100, i));
    store.AddBlock(forge::Noise(200, 50), {.bid = 0x100, .listed = namesFirst});
    store.AddBlock(forge::Noise(300, 51), {.bid = 0x100, .listed = !namesFirst});
    return store.Finish();
  }
};

TEST_F(SecondCopyTest, OfTwoBlocksOfAnIdTheOneThatTheTreeNamesCounts) {
  Find(TwoOfAnId(true));
  EXPECT_EQ(Block(0x100).cb, 200);
  Find(TwoOfAnId(false));
  EXPECT_EQ(Block(0x100).cb, 300);
}

TEST_F(SecondCopyTest, WithoutATreeTheFirstInTheFileCounts) {
  forge::Image image = TwoOfAnId(false);
  forge::WipePages(image, forge::PageType::kBlocks);
  Find(image);
  EXPECT_EQ(Block(0x100).cb, 200);
}

TEST_F(EvidenceTest, WhatIsLeftOfAPageUnderABlockIsRefused) {
  forge::Store store({.encoding = Encoding::kNone});
  for (std::uint32_t i = 0; i < 10; ++i) store.AddBlock(forge::Noise(100, i));
  const std::uint64_t begin = store.End();
  const std::uint64_t place = (begin + 511) / 512 * 512;
  forge::Bytes data(place - begin, std::byte{1});
  forge::Bytes page =
      forge::FormPage(Format::kUnicode, forge::NodePage(Format::kUnicode, {{.nid = 0x21, .bidData = 4}}), place, 0x77);
  page[100] = std::byte{9};  // the signature still fits, the checksum does not
  forge::Append(data, page);
  const forge::Bid bid = store.AddBlock(data);
  Find(store.Finish());
  ASSERT_EQ(Block(bid).offset, begin);
  EXPECT_EQ(Block(bid).grade, Grade::kProven);
  EXPECT_EQ(std::ranges::count(evidence_.pages, 0x77u, &FoundPage::id), 0);
}

TEST_F(EvidenceTest, BlocksOfAStoreInsideOfABlockAreNotOnesOfThisStore) {
  forge::Store other({.encoding = Encoding::kNone});
  const forge::Bid bid = other.AddBlock(forge::Noise(500, 1), {.bid = 0x4000});
  const forge::Image attached = other.Finish();
  const forge::PlacedBlock inner = attached.Block(bid);
  forge::Store store({.encoding = Encoding::kNone});
  for (std::uint32_t i = 0; i < 10; ++i) store.AddBlock(forge::Noise(100, i));
  forge::Bytes data(640);
  std::copy_n(attached.bytes.begin() + static_cast<std::ptrdiff_t>(inner.offset), inner.placeSize, data.begin() + 64);
  const forge::Bid outer = store.AddBlock(data);
  Find(store.Finish());
  EXPECT_EQ(Block(outer).grade, Grade::kProven);
  EXPECT_FALSE(evidence_.Find(velmora::Bid{bid}));
}

TEST_F(EvidenceTest, AWrongBitInTheIdOfABlockIsPutRightByTheTreeThatNamesItsPlace) {
  const forge::Image sound = SampleImage();
  const forge::PlacedBlock block = sound.blocks[20];
  for (const std::size_t byte : {0U, 3U, 4U}) {  // the id of another block, one of none, one that the signature fits
    forge::Image image = sound;
    image.bytes[block.offset + block.placeSize - 8 + byte] ^= std::byte{8};
    Judge(image);
    EXPECT_EQ(Block(block.bid).grade, byte == 4 ? Grade::kProven : Grade::kMoved);
    EXPECT_TRUE(judgement_.nodesAreExact);
    EXPECT_EQ(Block(block.bid).offset, block.offset);
    EXPECT_EQ(StatusOf(block.bid), BlockStatus::kLive);
    EXPECT_EQ(evidence_.blocks.size(), image.blocks.size()) << "and no other";
  }
}

TEST_F(EvidenceTest, APageOfWhichOneBitIsWrongIsPutRight) {
  const forge::Image sound = SampleImage();
  const forge::PlacedPage page = sound.TreePages(forge::PageType::kNodes).front();
  for (const std::size_t bit : {0U, 1U, 9U, 488U * 8, 491U * 8, 495U * 8 + 7, 500U * 8, 503U * 8 + 7}) {
    forge::Image image = sound;  // a page of 512 bytes, its sum at 500
    image.bytes[page.offset + bit / 8] ^= std::byte{1} << bit % 8;
    Judge(image);
    const auto found = std::ranges::find(evidence_.pages, page.offset, &FoundPage::offset);
    ASSERT_NE(found, evidence_.pages.end()) << bit;
    EXPECT_TRUE(found->isMended) << bit;
    EXPECT_TRUE(judgement_.nodesAreExact) << bit;
    EXPECT_EQ(Nodes({Standing::kLive}), LinesOf(image)) << bit;
  }
}

TEST_F(EvidenceTest, APageOfWhichBitsAreWrongCountsWhereNothingElseStands) {
  forge::Image image = SampleImage();
  const forge::PlacedPage page = image.TreePages(forge::PageType::kNodes).front();
  forge::Fill(image, page.offset + 400, 1, std::byte{3});
  Find(image);
  const auto found = std::ranges::find(evidence_.pages, page.offset, &FoundPage::offset);
  ASSERT_NE(found, evidence_.pages.end());
  EXPECT_EQ(found->grade, Grade::kHurt);

  const auto swap = [&](std::uint64_t at) {  // neighbouring entries
    const auto first = image.bytes.begin() + static_cast<std::ptrdiff_t>(page.offset + at);
    std::swap_ranges(first, first + 32, first + 32);
    Find(image);
    return std::ranges::count(evidence_.pages, page.offset, &FoundPage::offset);
  };
  EXPECT_EQ(swap(0), 1) << "one key out of order may be that bit";
  EXPECT_EQ(swap(64), 0) << "two are what is left of a page that was written over";
}

TEST_F(EvidenceTest, PlacesThatCannotBeReadHideOnlyWhatLiesThere) {
  const forge::Image image = SampleImage();
  const std::uint64_t begin = image.blocks[30].offset / 4096 * 4096;
  Find(std::make_unique<BadDisk>(std::make_unique<platform::MemoryFile>(image.bytes),
                                 std::vector<BadPlace>{{begin, begin + 4096}}));
  for (const forge::PlacedBlock& block : image.blocks) {
    const bool isHidden = block.offset < begin + 4096 && block.offset + block.placeSize > begin;
    EXPECT_EQ(Block(block.bid).grade == Grade::kProven, !isHidden) << block.bid;
  }
  EXPECT_EQ(source_->Unread().Ranges(), (std::map<std::uint64_t, std::uint64_t>{{begin, begin + 4096}}));
}

TEST_F(EvidenceTest, ASourceWithNothingOfAStoreHasNoLayout) {
  Find(std::vector<std::byte>());
  EXPECT_EQ(evidence_.layout, nullptr);
  Find(forge::Noise(100000, 3));
  EXPECT_EQ(evidence_.layout, nullptr);
  judgement_ = JudgeNodes(*source_, evidence_, told_, run_);
  EXPECT_TRUE(judgement_.nodes.empty());
}

TEST_F(EvidenceTest, AHeaderThatSpeaksAgainstAllElseIsNotBelieved) {
  const forge::Image image = SampleImage(Format::kUnicode, Encoding::kCyclic);
  Find(image);
  ASSERT_TRUE(told_);
  EXPECT_EQ(told_->encoding, CryptMethod::kCyclic);
  const ToldByHeader wrong{&generations::kAnsi, CryptMethod::kPermute, told_->nodeRoot, told_->blockRoot};
  evidence_ = FindEvidence(*source_, wrong, run_);
  EXPECT_EQ(evidence_.layout, &generations::kUnicode);
  EXPECT_EQ(evidence_.encoding, CryptMethod::kCyclic);
}

TEST_F(EvidenceTest, WhereNoHeapTellsTheEncodingTheHeaderDoes) {
  forge::Store store({.encoding = Encoding::kCyclic});
  store.AddBlock(forge::Noise(100, 1));
  Find(store.Finish());
  EXPECT_EQ(evidence_.encoding, CryptMethod::kCyclic);
}

TEST_F(EvidenceTest, PackedBlocksTellTheEncodingWithoutAHeaderWhateverIsInThem) {
  forge::Store store({.format = Format::kUnicode4k, .encoding = Encoding::kCyclic, .compressed = true});
  for (int i = 0; i < 3; ++i) store.AddBlock(forge::Bytes(3000, std::byte{'x'}));
  forge::Image image = store.Finish();
  forge::WipeHeader(image);
  Find(image);
  EXPECT_EQ(evidence_.encoding, CryptMethod::kCyclic);
}

TEST_F(EvidenceTest, AHeaderIsTakenForOneOnlyIfItProvesItself) {
  forge::Image image = SampleImage();
  Find(image);
  ASSERT_TRUE(told_);
  EXPECT_EQ(told_->layout, &generations::kUnicode);
  EXPECT_EQ(told_->nodeRoot.ib, RootOf(image, forge::PageType::kNodes).offset);
  EXPECT_EQ(told_->blockRoot.ib, RootOf(image, forge::PageType::kBlocks).offset);
  forge::Fill(image, 0x30, 1, std::byte{0x77});
  Find(image);
  EXPECT_FALSE(told_);
}

}  // namespace
}  // namespace velmora::engine
