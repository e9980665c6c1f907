#include <algorithm>
#include <atomic>
#include <chrono>
#include <thread>

#include "engine/run_fixture.h"
#include "engine/steps.h"
#include "forge/checksum.h"

namespace velmora::engine {
namespace {

using forge::BlockEntry;
using forge::Format;

class BlockPageScanTest : public RunTest {
 protected:
  /// Scans the canvas and gives the records of the index file.
  std::vector<BlockRecord> Scan(Format format = Format::kUnicode) {
    Attach(canvas_.bytes, format);
    run_.runAborted = false;
    if (run_.smartScan) Found().orphans.assign(1, {});
    ScanBlockPages(scan_, run_);
    return IndexFileRecords();
  }

  /// The trailer of an ANSI block, right behind its data, which is rounded up to 16 bytes less 4.
  void AnsiTrailer(std::uint64_t slot, std::uint32_t id, std::uint16_t size, std::uint16_t signature) {
    canvas_.Number(slot + 4, size, 2);
    canvas_.Number(slot + 6, signature, 2);
    canvas_.Number(slot + 8, id, 4);
    canvas_.Number(slot + 12, 0, 4);
  }

  Canvas canvas_;
};

std::uint64_t PlaceOf(Format format) { return format == Format::kUnicode4k ? 147456 + 2 * 4096 : 18432 + 2 * 512; }

class EveryFormatBlockScanTest : public BlockPageScanTest, public testing::WithParamInterface<Format> {
 protected:
  forge::PageSpec TwoBlocks() {
    return forge::BlockPage(GetParam(),
                            {{.bid = 12, .offset = 0x400, .size = 100}, {.bid = 8, .offset = 64, .size = 1}});
  }
  std::vector<BlockRecord> ScanPage(const forge::PageSpec& page) {
    canvas_.Page(GetParam(), PlaceOf(GetParam()), page);
    return Scan(GetParam());
  }
};

TEST_P(EveryFormatBlockScanTest, TheEntriesOfAProvenPageAreRecordedSortedById) {
  EXPECT_EQ(ScanPage(TwoBlocks()), (std::vector<BlockRecord>{{8, 1, 64}, {12, 100, 0x400}}));
  EXPECT_EQ(Found().blockRecordCount, 2u);
  EXPECT_EQ(Found().index.Find(12), (BlockRecord{12, 100, 0x400}));
  EXPECT_FALSE(run_.runAborted);
}

TEST_P(EveryFormatBlockScanTest, AnUnprovenPageIsData) {
  auto page = TwoBlocks();
  page.signature = 0x1234;
  ScanPage(page);
  EXPECT_FALSE(Found().index.Find(12));
}

TEST_P(EveryFormatBlockScanTest, APageThatClaimsMoreEntriesThanItsLargestCountIsData) {
  auto page = TwoBlocks();
  page.maxCount = 1;
  ScanPage(page);
  EXPECT_FALSE(Found().index.Find(12));
}

TEST_P(EveryFormatBlockScanTest, ThePitchIsThatOfABlockEntryWhateverThePageSays) {
  auto page = TwoBlocks();
  page.entrySize = LayoutOf(IdOf(GetParam())).nodeEntrySize;
  EXPECT_EQ(ScanPage(page).size(), 2u);
  page.entrySize = 20;
  ScanPage(page);
  EXPECT_FALSE(Found().index.Find(12)) << "no size of an entry";
}

TEST_P(EveryFormatBlockScanTest, ThePagesOfTheNodeTreeAreData) {
  auto page = TwoBlocks();
  page.typeWord = 0x8181;
  ScanPage(page);
  EXPECT_FALSE(Found().index.Find(12));
}

TEST_P(EveryFormatBlockScanTest, TheEntriesBehindTheFirstBadOneAreLost) {
  const std::vector<BlockEntry> bad = {
      {.bid = 0, .offset = 64, .size = 1},          {.bid = 20, .offset = 0, .size = 1},
      {.bid = 20, .offset = 64, .size = 65513},     {.bid = 20, .offset = 64, .size = 0},
      {.bid = 20, .offset = 1ull << 31, .size = 1}, {.bid = 20, .offset = 72, .size = 1}};
  for (const BlockEntry& entry : bad) {
    const auto good = [](std::uint64_t bid) { return BlockEntry{.bid = bid, .offset = 64, .size = 1}; };
    ScanPage(forge::BlockPage(GetParam(), {good(4), good(8), entry, good(12)}));
    EXPECT_EQ(Found().blockRecordCount, 2u) << entry.bid << " " << entry.offset << " " << entry.size;
  }
}

TEST_P(EveryFormatBlockScanTest, ABlockOf65512BytesAtTheVeryEndOfTheFileIsRecorded) {
  const std::uint64_t place = PlaceOf(GetParam());
  const std::uint64_t fileSize = place + forge::TraitsOf(GetParam()).pageSize;
  canvas_.Page(GetParam(), place,
               forge::BlockPage(GetParam(), {{.bid = 4, .offset = fileSize, .size = 65512},
                                             {.bid = 8, .offset = fileSize - 16, .size = 1},
                                             {.bid = 12, .offset = fileSize + 16, .size = 1}}));
  ASSERT_EQ(canvas_.bytes.size(), fileSize);
  EXPECT_EQ(Scan(GetParam()), (std::vector<BlockRecord>{{4, 65512, fileSize}, {8, 1, fileSize - 16}}));
}

TEST_P(EveryFormatBlockScanTest, TheEntriesOfAnUpperPageFailTheTestsOfABlock) {
  const std::uint64_t child = 0x4C00;
  forge::Bytes entries = forge::FormEntry(GetParam(), forge::BranchEntry{8, 0x1233, child});
  ScanPage({.type = forge::PageType::kBlocks, .entries = entries, .level = 1});
  EXPECT_EQ(Found().blockRecordCount, 0u) << "the offset of such an entry is a page id, no multiple of 16";
}

TEST_P(EveryFormatBlockScanTest, TwoCopiesOfABlockGiveTwoRecordsOfWhichALookUpFindsOne) {
  ScanPage(forge::BlockPage(GetParam(), {{.bid = 4, .offset = 64, .size = 1}, {.bid = 4, .offset = 128, .size = 1}}));
  EXPECT_EQ(Found().blockRecordCount, 2u);
  EXPECT_EQ(IndexFileRecords(), (std::vector<BlockRecord>{{4, 1, 64}, {4, 1, 128}})) << "in file order among equals";
  EXPECT_EQ(Found().index.Find(4), (BlockRecord{4, 1, 64}));
}

TEST_P(EveryFormatBlockScanTest, FewerThanTwoRecordsAreRefused) {
  ScanPage(forge::BlockPage(GetParam(), {{.bid = 4, .offset = 64, .size = 1}}));
  EXPECT_TRUE(run_.runAborted);
  EXPECT_EQ(recorder_.Notices().back(), NoticeKind::kNotValid);
}

TEST_P(EveryFormatBlockScanTest, ZerosHoldNothing) {
  canvas_.Number(3 * 147456, 0, 1);
  EXPECT_TRUE(Scan(GetParam()).empty());
}

TEST_P(EveryFormatBlockScanTest, ANormalScanListsNoOrphans) {
  ScanPage(TwoBlocks());
  EXPECT_TRUE(Found().orphans.empty());
  EXPECT_EQ(Found().orphanBlockCount, 0u);
}

INSTANTIATE_TEST_SUITE_P(Scan, EveryFormatBlockScanTest,
                         testing::Values(Format::kAnsi, Format::kUnicode, Format::kUnicode4k), FormatName);

/// A page that claims 32 entries, 12 more than it holds, and goes on behind itself with what passes as such.
/// Its counters, read as an offset, are one within a file of 1.7 MB.
void PutOverlongPage(Canvas& canvas, std::uint64_t place) {
  auto page = forge::BlockPage(Format::kUnicode, std::vector<BlockEntry>(20, {.bid = 4, .offset = 64, .size = 1}));
  page.count = 32;
  page.maxCount = 32;
  canvas.Page(Format::kUnicode, place, page);
  canvas.Number(place + 480, 8, 8);   // entry 20: its id lies behind the entry area
  canvas.Number(place + 512, 64, 8);  // entry 21: its id is the page id
  canvas.Number(place + 520, 1, 2);
  for (std::uint64_t i = 22; i < 32; ++i) {
    canvas.Put(place + i * 24, forge::FormEntry(Format::kUnicode, BlockEntry{.bid = 12, .offset = 64, .size = 1}));
  }
}

TEST_F(BlockPageScanTest, EntriesPastThePageAreTakenFromWhatWasReadWithIt) {
  canvas_.bytes.resize(1'700'000);
  PutOverlongPage(canvas_, 18432 + 6 * 512);
  Scan();
  EXPECT_EQ(Found().blockRecordCount, 32u);
}

TEST_F(BlockPageScanTest, EntriesPastWhatWasReadAreZeros) {
  canvas_.bytes.resize(1'700'000);
  PutOverlongPage(canvas_, 18432 + 7 * 512);
  Scan();
  EXPECT_EQ(Found().blockRecordCount, 21u) << "the last page of a read of 4096 bytes";
}

TEST_F(BlockPageScanTest, TheBoundOfASlotIsOneLessThanThatOfAnEntry) {
  // A block of 65511 bytes is found by its trailer, one of 65512 is not.
  for (const std::uint16_t size : {std::uint16_t{65511}, std::uint16_t{65512}}) {
    canvas_ = {};
    const std::uint64_t block = 18432;
    canvas_.Number(block + size - 1, 0xAA, 1);
    const std::uint64_t slot = (block + size + 15) / 16 * 16;
    AnsiTrailer(slot, 0x24, size, forge::Signature(block, 0x24));
    Scan(Format::kAnsi);
    EXPECT_EQ(Found().blockRecordCount, size == 65511 ? 1u : 0u) << size;
  }
}

TEST_F(BlockPageScanTest, AnAnsiBlockIsFoundByItsTrailerAlone) {
  forge::Store store({.format = Format::kAnsi});
  const auto first = store.AddBlock(forge::Noise(500, 1));
  const auto second = store.AddBlock(forge::Noise(8000, 2));
  auto image = store.Finish();
  forge::WipeTrees(image);
  canvas_.bytes = image.bytes;
  Scan(Format::kAnsi);
  EXPECT_EQ(Found().index.Find(static_cast<std::uint32_t>(first)),
            (BlockRecord{static_cast<std::uint32_t>(first), 500, image.Block(first).offset}));
  EXPECT_EQ(Found().index.Find(static_cast<std::uint32_t>(second)),
            (BlockRecord{static_cast<std::uint32_t>(second), 8000, image.Block(second).offset}));
}

TEST_F(BlockPageScanTest, ATrailerWhoseBlockWouldBeginBeforeTheFileRecordsTheLastRecordAgain) {
  const std::uint64_t slot = 18432 + 1024;
  canvas_.Number(slot - 1, 0xAA, 1);
  const std::int64_t before = -1024;
  AnsiTrailer(slot, 0x24, static_cast<std::uint16_t>(static_cast<std::int64_t>(slot) - before),
              forge::Signature(static_cast<std::uint64_t>(before), 0x24));
  EXPECT_EQ(Scan(Format::kAnsi), (std::vector<BlockRecord>{{}})) << "none was recorded yet";
  canvas_.Page(Format::kAnsi, 18432, forge::BlockPage(Format::kAnsi, {{.bid = 4, .offset = 64, .size = 1}}));
  EXPECT_EQ(Scan(Format::kAnsi), (std::vector<BlockRecord>{{4, 1, 64}, {4, 1, 64}}));
  EXPECT_EQ(Found().blockRecordCount, 2u);
}

TEST_F(BlockPageScanTest, ATrailerWhoseBlockWouldBeginBehindTheFileRecordsTheLastRecordAgain) {
  canvas_.Page(Format::kUnicode, 18432, forge::BlockPage(Format::kUnicode, {{.bid = 4, .offset = 64, .size = 1}}));
  canvas_.bytes.resize(0x40000);  // the id 4 is the folded form of this offset
  canvas_.Number(0x3FFEF, 0xAA, 1);
  canvas_.Number(0x3FFF8, 4, 4);
  EXPECT_EQ(Scan(), (std::vector<BlockRecord>{{4, 1, 64}, {4, 1, 64}}));
  EXPECT_EQ(Found().blockRecordCount, 2u);
}

TEST_F(BlockPageScanTest, APageWithALargestCountOfZeroIsData) {
  for (const std::uint16_t most : {std::uint16_t{0}, std::uint16_t{1}}) {
    canvas_ = {};
    const std::uint64_t place = 18432 + 1024;
    canvas_.Page(Format::kAnsi, place, {.type = forge::PageType::kBlocks, .count = std::uint16_t{0}, .maxCount = most});
    canvas_.Number(place - 1, 0xAA, 1);
    AnsiTrailer(place, 0x24, 16, forge::Signature(place - 16, 0x24));
    Scan(Format::kAnsi);
    EXPECT_EQ(Found().blockRecordCount, most == 0 ? 1u : 0u) << "slots are looked for in data alone";
  }
}

TEST_F(BlockPageScanTest, ThePlacesTriedForATrailerGrowWithTheZerosBeforeIt) {
  const std::uint64_t slot = 18432 + 4096;
  /// The places, counted back from the trailer, at which a block of 88 bytes is found.
  const auto found = [&](std::uint64_t distance) {
    std::vector<std::uint64_t> places;
    for (std::uint64_t back = 208; back > 0; back -= 16) {
      canvas_ = {};
      canvas_.Number(slot - distance, 0xAA, 1);
      AnsiTrailer(slot, 0x24, 88, forge::Signature(slot - back, 0x24));
      Scan(Format::kAnsi);
      if (Found().blockRecordCount != 0) places.push_back(back);
    }
    return places;
  };
  EXPECT_EQ(found(1), (std::vector<std::uint64_t>{80, 64}));
  EXPECT_EQ(found(14), (std::vector<std::uint64_t>{96, 80}));
  EXPECT_EQ(found(15), (std::vector<std::uint64_t>{96, 80, 64})) << "the first move back counts as well";
  EXPECT_EQ(found(40), (std::vector<std::uint64_t>{128, 112, 96, 80}));
}

TEST_F(BlockPageScanTest, ASlotBehindNothingButZerosFromTheStartOfTheFileGivesNothing) {
  const std::uint64_t slot = 18432;
  AnsiTrailer(slot, 0x24, 16, forge::Signature(slot - 16, 0x24));
  Scan(Format::kAnsi);
  EXPECT_EQ(Found().blockRecordCount, 0u);
  canvas_.Number(slot - 1, 0xAA, 1);
  Scan(Format::kAnsi);
  EXPECT_EQ(Found().blockRecordCount, 1u);
}

TEST_F(BlockPageScanTest, ASmartScanTriesThePageItselfAsABlockWithoutCountingIt) {
  // The block at the start of the read has the page's id and the entry's size.
  const std::uint64_t read = 18432;
  auto page = forge::BlockPage(Format::kUnicode,
                               {{.bid = 4, .offset = 64, .size = 100}, {.bid = 8, .offset = 64, .size = 100}});
  page.pageId = 0x40;
  canvas_.Page(Format::kUnicode, read + 512, page);
  canvas_.Number(read + 100, 100, 2);
  canvas_.Number(read + 102, 0x0101, 2);
  canvas_.Number(read + 108, 0x40, 4);
  Scan();
  EXPECT_EQ(IndexFileRecords().size(), 2u);
  run_.smartScan = true;
  EXPECT_EQ(Scan(), (std::vector<BlockRecord>{{4, 100, 64}, {8, 100, 64}, {0x40, 100, read}, {0x40, 100, read}}));
  EXPECT_EQ(Found().blockRecordCount, 2u);
}

TEST_F(BlockPageScanTest, WhatLiesBehind8196BytesOfABlockIsNotSeen) {
  // The id of the trailer behind a block of 8184 bytes is the last thing that is seen, in part or whole.
  run_.smartScan = true;
  for (const std::uint16_t size : {std::uint16_t{8184}, std::uint16_t{8185}}) {
    canvas_ = {};
    const std::uint64_t read = 18432;
    auto page = forge::BlockPage(Format::kUnicode, {{.bid = 4, .offset = 64, .size = size}});
    page.pageId = 0x40000040;
    canvas_.Page(Format::kUnicode, read, page);
    canvas_.Number(read + size, size, 2);
    canvas_.Number(read + size + 2, 0x0101, 2);
    canvas_.Number(read + size + 8, 0x40000040, 4);
    const auto records = Scan();
    EXPECT_EQ(std::count(records.begin(), records.end(), BlockRecord{0x40000040, size, read}), size == 8184 ? 1 : 0);
  }
}

TEST_F(BlockPageScanTest, RecordsThatAreNotCountedSaveARunFromTheRefusal) {
  const std::uint64_t read = 18432;
  auto page = forge::BlockPage(Format::kUnicode, {{.bid = 4, .offset = 64, .size = 100}});
  page.pageId = 0x40;
  canvas_.Page(Format::kUnicode, read + 512, page);
  canvas_.Number(read + 100, 100, 2);
  canvas_.Number(read + 102, 0x0101, 2);
  canvas_.Number(read + 108, 0x40, 4);
  run_.smartScan = true;
  Scan();
  EXPECT_EQ(Found().blockRecordCount, 1u);
  EXPECT_FALSE(run_.runAborted);
}

TEST_F(BlockPageScanTest, ASmartScanForgetsTheReferencesAtItsEnd) {
  NodeList nodes;
  nodes.Insert({0x21, 4, 6, 0});
  scan_.referencedIds.Build(nodes);
  canvas_.Number(40000, 0, 1);
  run_.smartScan = true;
  Scan();
  EXPECT_FALSE(scan_.referencedIds.IsReferencedId(4));
}

TEST_F(BlockPageScanTest, InAWideStoreTrailersAreLookedForWhereTheIdsStand) {
  forge::Store store({.format = Format::kUnicode});
  const auto bid = store.AddBlock(forge::Noise(500, 1));
  auto image = store.Finish();
  forge::WipeTrees(image);
  canvas_.bytes = image.bytes;
  Scan();
  EXPECT_FALSE(Found().index.Find(static_cast<std::uint32_t>(bid)));
}

TEST_F(BlockPageScanTest, AStepThatMayShowNoBlockIsLeftOutThisOnce) {
  canvas_.Page(Format::kUnicode, 18432, forge::BlockPage(Format::kUnicode, {{.bid = 4, .offset = 512, .size = 9}}));
  canvas_.Page(Format::kUnicode, 22528, forge::BlockPage(Format::kUnicode, {{.bid = 8, .offset = 1024, .size = 9}}));
  scan_.blockSteps = {false, true};
  Scan();
  EXPECT_EQ(IndexFileRecords(), (std::vector<BlockRecord>{{8, 9, 1024}}));
  Scan();
  EXPECT_EQ(IndexFileRecords(), (std::vector<BlockRecord>{{4, 9, 512}, {8, 9, 1024}}));
}

/// A trailer behind 0 to 40 zeros in each of 3000 steps, which fits one of the places that these leave, in a store that
/// looks like nothing else.
TEST_F(BlockPageScanTest, NoStepIsLeftOutInWhichATrailerFits) {
  constexpr std::size_t kSteps = 3000;
  canvas_.bytes.assign(18432 + kSteps * 4096, std::byte{0xFF});
  std::size_t planted = 0;
  for (std::size_t step = 0; step < kSteps; ++step) {
    const std::uint64_t slot = 18432 + step * 4096 + 16 * (step * 37 % 256);
    const std::uint64_t zeros = step % 41;
    const std::uint64_t last = slot - 1 - zeros;
    const std::uint64_t places = (1 + slot - last) / 16 + 2;
    for (std::uint64_t size = 1 + step * 7 % 60'000; size < 65'512; ++size) {
      const std::uint64_t place = (last - size + 15) / 16 * 16 + 16 * (step % places);
      if (((place ^ place >> 16) & 0xFFFF) != size) continue;
      canvas_.Put(slot - zeros, std::vector<std::byte>(zeros));
      canvas_.Number(slot + 8, size | std::uint64_t{0x1234} << 16, 8);
      ++planted;
      break;
    }
  }
  EXPECT_GT(planted, 500u);
  Scan();
  const auto records = IndexFileRecords();
  EXPECT_GE(records.size(), planted);
  ScanNodePages(scan_, run_);
  EXPECT_GT(std::ranges::count(scan_.blockSteps, false), 100);
  Scan();
  EXPECT_EQ(IndexFileRecords(), records);
}

TEST_F(BlockPageScanTest, EachStepIsReportedBehindTheStage) {
  canvas_.Number(18432 + 2 * 4096 - 1, 0, 1);
  Scan();
  EXPECT_EQ(recorder_.Percentages(Phase::kBlockScan), (std::vector<std::uint32_t>{22528 / 266, 26624 / 266}));
  EXPECT_EQ(recorder_.Stages(), (std::vector<std::uint32_t>{5}));
}

TEST_F(BlockPageScanTest, A4kStoreAdvancesBy4096TooButBeginsLater) {
  canvas_.Number(147456 + 4096, 0, 1);
  Scan(Format::kUnicode4k);
  EXPECT_EQ(recorder_.Percentages(Phase::kBlockScan), (std::vector<std::uint32_t>{151552 / 1515, 155648 / 1515}));
}

TEST_F(BlockPageScanTest, AnIndexFileThatCannotBeMadeEndsTheRun) {
  scan_.outputFolder = folder_ / "missing";
  canvas_.Number(40000, 0, 1);
  Scan();
  EXPECT_TRUE(run_.runAborted);
  EXPECT_EQ(recorder_.Notices(), (std::vector<NoticeKind>{NoticeKind::kNoIndexFile}));
}

TEST_F(BlockPageScanTest, AnOldIndexFileIsReplaced) {
  std::ofstream(folder_ / "FirstTableItem.dat") << std::string(1000, 'x');
  canvas_.Page(
      Format::kUnicode, 18432,
      forge::BlockPage(Format::kUnicode, {{.bid = 4, .offset = 64, .size = 1}, {.bid = 8, .offset = 64, .size = 1}}));
  EXPECT_EQ(Scan().size(), 2u);
}

TEST_F(BlockPageScanTest, ChunksOf4000RecordsAreSortedEachByItself) {
  // 200 pages of 41 entries, ids descending through the file.
  std::uint32_t id = 4 * 200 * 41;
  std::vector<BlockRecord> inFileOrder;
  for (std::uint64_t p = 0; p < 200; ++p) {
    std::vector<BlockEntry> entries;
    for (int i = 0; i < 41; ++i, id -= 4) {
      entries.push_back({.bid = id, .offset = 64, .size = 9});
      inFileOrder.push_back({id, 9, 64});
    }
    canvas_.Page(Format::kAnsi, 18432 + p * 512, forge::BlockPage(Format::kAnsi, entries));
  }
  auto expected = inFileOrder;
  for (std::size_t at = 0; at < expected.size(); at += 4000) {
    const auto end = expected.begin() + static_cast<std::ptrdiff_t>(std::min(at + 4000, expected.size()));
    std::sort(expected.begin() + static_cast<std::ptrdiff_t>(at), end,
              [](const BlockRecord& a, const BlockRecord& b) { return a.bid < b.bid; });
  }
  EXPECT_EQ(Scan(Format::kAnsi), expected);
  EXPECT_EQ(Found().blockRecordCount, 8200u);
  for (const BlockRecord& record : inFileOrder) ASSERT_EQ(Found().index.Find(record.bid), record);
}

TEST_F(BlockPageScanTest, AStopLeavesTheIndexFileWhereItIs) {
  canvas_.Number(40000, 0, 1);
  Attach(canvas_.bytes);
  run_.control.RequestStop();
  EXPECT_THROW(ScanBlockPages(scan_, run_), RunStopped);
  EXPECT_TRUE(std::filesystem::exists(folder_ / "FirstTableItem.dat"));
  EXPECT_FALSE(run_.runAborted);
}

TEST_F(BlockPageScanTest, AHeldScanThatIsResumedTellsTheSameAndFindsTheSame) {
  for (int p = 0; p < 40; ++p) {
    canvas_.Page(
        Format::kUnicode, 18432 + static_cast<std::uint64_t>(p) * 4096,
        forge::BlockPage(Format::kUnicode, {{.bid = 4u + 4u * static_cast<unsigned>(p), .offset = 64, .size = 1}}));
  }
  const auto undisturbed = Scan();
  const auto percentages = recorder_.Percentages(Phase::kBlockScan);

  /// Holds the run from inside one of its messages and lets it go a little later.
  class Holder : public Recorder {
   public:
    explicit Holder(RunControl& control) : control_(control) {}
    void OnEvent(const Event& event) override {
      Recorder::OnEvent(event);
      if (!std::holds_alternative<Progress>(event)) return;
      ++reports_;
      if (helper_.joinable()) return;
      control_.Hold();
      helper_ = std::thread([this] {
        std::this_thread::sleep_for(std::chrono::milliseconds(30));
        reportsWhileHeld_ = reports_;
        control_.Resume();
      });
    }
    std::size_t Join() {
      helper_.join();
      return reportsWhileHeld_;
    }

   private:
    RunControl& control_;
    std::thread helper_;
    std::atomic<std::size_t> reports_{0};
    std::size_t reportsWhileHeld_ = 0;
  };
  Holder holder(run_.control);
  run_.observer = &holder;
  EXPECT_EQ(Scan(), undisturbed);
  EXPECT_EQ(holder.Join(), 1u) << "it stood still meanwhile";
  EXPECT_EQ(holder.Percentages(Phase::kBlockScan), percentages);
}

TEST_F(BlockPageScanTest, ARunThatEndedOrFailedIsLeftAlone) {
  Attach(std::vector<std::byte>(40000));
  run_.runAborted = true;
  ScanBlockPages(scan_, run_);
  run_.runAborted = false;
  run_.runEnded = true;
  ScanBlockPages(scan_, run_);
  EXPECT_TRUE(recorder_.Stages().empty());
  EXPECT_FALSE(std::filesystem::exists(folder_ / "FirstTableItem.dat"));
}

}  // namespace
}  // namespace velmora::engine
