#include <array>
#include <optional>

#include "engine/bad_disk.h"
#include "engine/run_fixture.h"
#include "engine/steps.h"

namespace velmora::engine {
namespace {

using forge::Format;
using forge::NodeEntry;

class NodePageScanTest : public RunTest {
 protected:
  std::vector<NodeRecord> Scan(Format format = Format::kUnicode) {
    Attach(canvas_.bytes, format);
    ScanNodePages(scan_, run_);
    return Found().nodes.Records();
  }

  Canvas canvas_;
};

/// Behind the start of the walk, so that nothing lies ahead of it.
std::uint64_t PlaceOf(Format format) { return format == Format::kUnicode4k ? 147456 + 3 * 4096 : 18432 + 3 * 512; }

class EveryFormatNodeScanTest : public NodePageScanTest, public testing::WithParamInterface<Format> {};

TEST_P(EveryFormatNodeScanTest, TheEntriesOfAPageAreKept) {
  canvas_.Page(GetParam(), PlaceOf(GetParam()), forge::NodePage(GetParam(), {{0x21, 4, 0, 0}, {0x122, 8, 14, 0x122}}));
  EXPECT_EQ(Scan(GetParam()), (std::vector<NodeRecord>{{0x21, 4, 0, 0}, {0x122, 8, 14, 0x122}}));
  EXPECT_EQ(Found().nodeCount, 3u) << "the end of the scan adds one";
}

TEST_P(EveryFormatNodeScanTest, AnUnprovenPageOfTheExactEntrySizeIsRead) {
  auto page = forge::NodePage(GetParam(), {{0x21, 4, 0, 0}});
  page.signature = 0x1234;
  canvas_.Page(GetParam(), PlaceOf(GetParam()), page);
  EXPECT_EQ(Scan(GetParam()).size(), 1u);
}

TEST_P(EveryFormatNodeScanTest, APageOf24ByteEntriesIsReadAsALeafOnlyWhenItProvesItself) {
  auto page = forge::NodePage(GetParam(), {{0x21, 4, 0, 0}});
  page.entrySize = 24;
  canvas_.Page(GetParam(), PlaceOf(GetParam()), page);
  EXPECT_EQ(Scan(GetParam()).size(), 1u);
  page.signature = 0x1234;
  canvas_.Page(GetParam(), PlaceOf(GetParam()), page);
  EXPECT_TRUE(Scan(GetParam()).empty());
}

TEST_P(EveryFormatNodeScanTest, ARecordTellsThatItComesFromAnUpperPage) {
  auto page = forge::NodePage(GetParam(), {{0x21, 4, 0, 0}});
  page.entrySize = 24;
  page.level = 1;
  canvas_.Page(GetParam(), PlaceOf(GetParam()), page);
  EXPECT_TRUE(Scan(GetParam()).at(0).upperPage);
}

TEST_P(EveryFormatNodeScanTest, OneDamagedByteDoesNotMakeALeafAnUpperPage) {
  auto page = forge::NodePage(GetParam(), {{0x21, 4, 0, 0}});
  page.entrySize = LayoutOf(IdOf(GetParam())).nodeEntrySize;
  page.level = 1;
  canvas_.Page(GetParam(), PlaceOf(GetParam()), page);
  EXPECT_FALSE(Scan(GetParam()).at(0).upperPage) << "its entries are those of a leaf";
  page.level = 0;
  page.entrySize = 24;
  canvas_.Page(GetParam(), PlaceOf(GetParam()), page);
  EXPECT_FALSE(Scan(GetParam()).at(0).upperPage) << "its level is that of a leaf";
}

TEST_P(EveryFormatNodeScanTest, APageOfAnyOtherEntrySizeIsNotRead) {
  auto page = forge::NodePage(GetParam(), {{0x21, 4, 0, 0}});
  page.entrySize = 20;
  canvas_.Page(GetParam(), PlaceOf(GetParam()), page);
  EXPECT_TRUE(Scan(GetParam()).empty());
}

TEST_P(EveryFormatNodeScanTest, ThePagesOfTheBlockTreeAreNotRead) {
  auto page = forge::NodePage(GetParam(), {{0x21, 4, 0, 0}});
  page.typeWord = 0x8080;
  canvas_.Page(GetParam(), PlaceOf(GetParam()), page);
  EXPECT_TRUE(Scan(GetParam()).empty());
}

TEST_P(EveryFormatNodeScanTest, ABadEntryIsSkippedAndANodeIdOfZeroEndsThePage) {
  canvas_.Page(
      GetParam(), PlaceOf(GetParam()),
      forge::NodePage(GetParam(), {{1, 4, 0, 0}, {2, 0xFFFFFF, 0, 0}, {3, 4, 0, 0}, {0, 4, 0, 0}, {5, 4, 0, 0}}));
  EXPECT_EQ(Scan(GetParam()), (std::vector<NodeRecord>{{1, 4, 0, 0}, {3, 4, 0, 0}}));
}

TEST_P(EveryFormatNodeScanTest, IdsFrom0xFFFFFFOnAreRefusedButForTheNodeId) {
  canvas_.Page(GetParam(), PlaceOf(GetParam()),
               forge::NodePage(GetParam(), {{0xFFFFFFFF, 0xFFFFFE, 0, 0xFFFFFE},
                                            {2, 0xFFFFFF, 0, 0},
                                            {3, 4, 0xFFFFFF, 0},
                                            {4, 4, 0, 0xFFFFFF},
                                            {5, 0, 0xFFFFFE, 0}}));
  EXPECT_EQ(Scan(GetParam()), (std::vector<NodeRecord>{{0xFFFFFFFF, 0xFFFFFE, 0, 0xFFFFFE}, {5, 0, 0xFFFFFE, 0}}));
}

TEST_P(EveryFormatNodeScanTest, TheEntryCountOfThePageIsNotRead) {
  auto page = forge::NodePage(GetParam(), {{1, 4, 0, 0}, {2, 4, 0, 0}});
  page.count = 0;
  canvas_.Page(GetParam(), PlaceOf(GetParam()), page);
  EXPECT_EQ(Scan(GetParam()).size(), 2u);
}

TEST_P(EveryFormatNodeScanTest, APageAheadOfTheWalkIsNotSeen) {
  const std::uint64_t start = GetParam() == Format::kUnicode4k ? 147456 : 18432;
  canvas_.Page(GetParam(), start - forge::TraitsOf(GetParam()).pageSize, forge::NodePage(GetParam(), {{1, 4, 0, 0}}));
  canvas_.Page(GetParam(), start, forge::NodePage(GetParam(), {{2, 4, 0, 0}}));
  EXPECT_EQ(Scan(GetParam()), (std::vector<NodeRecord>{{2, 4, 0, 0}}));
}

TEST_P(EveryFormatNodeScanTest, AFileThatEndsWithinAPageGivesTheEntriesThatItHas) {
  const std::uint64_t place = PlaceOf(GetParam());
  canvas_.Page(GetParam(), place, forge::NodePage(GetParam(), {{1, 4, 0, 0}}));
  // The trailer has to be there, all but the checksum and the id.
  canvas_.bytes.resize(place + LayoutOf(IdOf(GetParam())).offPageSig);
  EXPECT_EQ(Scan(GetParam()).size(), 1u);
}

INSTANTIATE_TEST_SUITE_P(Scan, EveryFormatNodeScanTest,
                         testing::Values(Format::kAnsi, Format::kUnicode, Format::kUnicode4k), FormatName);

TEST_F(NodePageScanTest, OnlyTheLowHalvesOfWideIdsCount) {
  canvas_.Page(Format::kUnicode, 18432,
               forge::NodePage(Format::kUnicode, {{0x7'0000'0001, 0x1'0000'0004, 0x2'0000'0006, 0x3'0000'0122}}));
  EXPECT_EQ(Scan(), (std::vector<NodeRecord>{{1, 4, 6, 0x122}}));
}

TEST_F(NodePageScanTest, ANodeIdWithAnEmptyLowHalfEndsThePage) {
  canvas_.Page(Format::kUnicode, 18432, forge::NodePage(Format::kUnicode, {{0x7'0000'0000, 4, 0, 0}, {1, 4, 0, 0}}));
  EXPECT_TRUE(Scan().empty());
}

TEST_F(NodePageScanTest, TheLastEntryOfA4kPageReachesIntoItsTrailer) {
  // 127 entries end at 4064; the next one lies half in the trailer: data block id from the page type and
  // signature, and so on. With a small page id and no checksum it passes the bounds.
  const std::uint64_t place = 147456;
  std::vector<NodeEntry> entries(127, NodeEntry{1, 4, 0, 0});
  auto page = forge::NodePage(Format::kUnicode4k, entries);
  canvas_.Page(Format::kUnicode4k, place, page);
  canvas_.Number(place + 4064, 0x99, 8);
  canvas_.Number(place + 4060, 32, 1);
  canvas_.Number(place + 4074, 0x0012, 2);  // an unproven signature: the data block id is 0x00128181
  const auto nodes = Scan(Format::kUnicode4k);
  ASSERT_FALSE(nodes.empty());
  EXPECT_EQ(nodes.back().nid, 0x99u);
  EXPECT_EQ(LowBid(nodes.back().bidData), 0x00128181u);
  EXPECT_EQ(LowBid(nodes.back().bidSub), 0x31u) << "the page id";
  EXPECT_EQ(nodes.back().nidParent, 1u);
}

TEST_F(NodePageScanTest, TheSamePageSeenTwiceLeavesOneRecordWhereEqualsMeet) {
  const auto page = forge::NodePage(Format::kUnicode, {{1, 4, 6, 0}});
  canvas_.Page(Format::kUnicode, 18432, page);
  canvas_.Page(Format::kUnicode, 18432 + 4096, page);
  EXPECT_EQ(Scan(), (std::vector<NodeRecord>{{1, 4, 6, 0}}));
  EXPECT_EQ(Found().nodeCount, 2u);
}

TEST_F(NodePageScanTest, TheSamePageOfTwoNodesWithoutSubNodesSeenTwiceLeavesFour) {
  const auto page = forge::NodePage(Format::kUnicode, {{1, 4, 0, 0}, {2, 8, 0, 0}});
  canvas_.Page(Format::kUnicode, 18432, page);
  canvas_.Page(Format::kUnicode, 18432 + 4096, page);
  EXPECT_EQ(Scan(), (std::vector<NodeRecord>{{1, 4, 0, 0}, {2, 8, 0, 0}, {1, 4, 0, 0}, {2, 8, 0, 0}}));
}

TEST_F(NodePageScanTest, A4kPageStandsAtAMultipleOf4096Only) {
  canvas_.Page(Format::kUnicode4k, 147456 + 512, forge::NodePage(Format::kUnicode4k, {{1, 4, 0, 0}}));
  EXPECT_TRUE(Scan(Format::kUnicode4k).empty());
}

TEST_F(NodePageScanTest, AFileWithoutANodePageCountsOneNode) {
  canvas_.Number(40000, 0, 1);
  EXPECT_TRUE(Scan().empty());
  EXPECT_EQ(Found().nodeCount, 1u);
}

TEST_F(NodePageScanTest, EachReadIsReportedBehindItsStage) {
  canvas_.Number(18432 + 2 * 4096 - 1, 1, 1);
  Scan();
  EXPECT_EQ(recorder_.Stages(), (std::vector<std::uint32_t>{4}));
  EXPECT_EQ(recorder_.Percentages(Phase::kNodeScan), (std::vector<std::uint32_t>{22528 / 266, 26624 / 266}));
}

TEST_F(NodePageScanTest, A4kStoreIsReadIn65536Bytes) {
  canvas_.Number(147456 + 65536, 1, 1);
  Scan(Format::kUnicode4k);
  EXPECT_EQ(recorder_.Percentages(Phase::kNodeScan), (std::vector<std::uint32_t>{212992 / 2129, 278528 / 2129}));
}

TEST_F(NodePageScanTest, OnlyASmartScanListsReferencesAndStartsTheOrphans) {
  canvas_.Page(Format::kUnicode, 18432, forge::NodePage(Format::kUnicode, {{1, 4, 6, 0}}));
  Scan();
  EXPECT_FALSE(scan_.referencedIds.IsReferencedId(4));
  EXPECT_TRUE(Found().orphans.empty());
  run_.smartScan = true;
  Scan();
  EXPECT_TRUE(scan_.referencedIds.IsReferencedId(4));
  ASSERT_EQ(Found().orphans.size(), 1u);
  EXPECT_EQ(Found().orphans[0].bidData, 0u);
  EXPECT_EQ(Found().orphans[0].bidSub, 0u);
}

/// Of the marks those that are set.
std::vector<std::size_t> Marked(const StepMarks& marks) {
  std::vector<std::size_t> numbers;
  for (std::size_t i = 0; i < marks.size(); ++i) {
    if (marks[i]) numbers.push_back(i);
  }
  return numbers;
}

constexpr std::size_t kSteps = 1000;  // nearly four pieces of the source

class MarkingTest : public NodePageScanTest, public testing::WithParamInterface<unsigned> {
 protected:
  MarkingTest() {
    run_.workers = &workers_;
    canvas_.bytes.assign(18432 + kSteps * 4096, std::byte{0xFF});
    for (const std::size_t step : kNodeSteps) {
      canvas_.Page(Format::kUnicode, 18432 + step * 4096,
                   forge::NodePage(Format::kUnicode, {{static_cast<std::uint32_t>(step), 4, 8, 0}}));
    }
    for (const std::size_t step : kBlockSteps) {
      canvas_.Page(Format::kUnicode, 18432 + step * 4096 + 1024,
                   forge::BlockPage(Format::kUnicode, {{.bid = 4, .offset = 20480, .size = 100}}));
    }
  }

  static constexpr std::array<std::size_t, 5> kNodeSteps{2, 255, 256, 700, 999};
  static constexpr std::array<std::size_t, 4> kBlockSteps{1, 255, 600, 998};
  platform::Workers workers_{GetParam()};
};
INSTANTIATE_TEST_SUITE_P(Jobs, MarkingTest, testing::Values(1u, 2u, 5u));

TEST_P(MarkingTest, TheStepsThatMayShowABlockAreTold) {
  Scan();
  Scan();
  EXPECT_EQ(scan_.blockSteps.size(), kSteps) << "those of the last scan alone";
  EXPECT_EQ(Marked(scan_.blockSteps), std::vector<std::size_t>(kBlockSteps.begin(), kBlockSteps.end()));
}

TEST_P(MarkingTest, TheNodesOfAllPiecesComeInTheOrderOfTheFile) {
  std::vector<std::uint32_t> nids;
  for (const NodeRecord& node : Scan()) nids.push_back(node.nid);
  EXPECT_EQ(nids, std::vector<std::uint32_t>(kNodeSteps.begin(), kNodeSteps.end()));
}

TEST_P(MarkingTest, ASmartScanLeavesNoStepOut) {
  run_.smartScan = true;
  Scan();
  EXPECT_TRUE(scan_.blockSteps.empty());
}

TEST_P(MarkingTest, WhereSomethingCannotBeReadNoStepIsLeftOut) {
  Attach({});
  auto content = std::make_unique<platform::MemoryFile>(canvas_.bytes);
  Found().source.Open(std::make_unique<BadDisk>(std::move(content), std::vector<BadPlace>{{1'000'000, 1'100'000}}));
  ScanNodePages(scan_, run_);
  EXPECT_TRUE(scan_.blockSteps.empty());
  EXPECT_EQ(Found().nodes.Records().size(), 3u) << "two pages lie in the bad place";
  EXPECT_EQ(Found().source.Unread().Ranges(), (std::map<std::uint64_t, std::uint64_t>{{997'376, 1'103'872}}));
}

TEST_P(MarkingTest, AStepIsToldByWhatStandsRightAheadOfItInThePieceBefore) {
  const auto putTrailer = [&](std::size_t step, std::uint64_t size, std::uint64_t zeros) {
    const std::uint64_t slot = 18432 + step * 4096;
    canvas_.Put(slot - zeros, std::vector<std::byte>(zeros));
    canvas_.Number(slot + 8, size | 0x1234 << 16, 4);
  };
  putTrailer(256, 8704, 0);     // fits neither of two places
  putTrailer(512, 8704, 1000);  // fits the first of those that many zeros leave, 0x202220
  putTrailer(768, 8704, 5000);  // what it fits depends on bytes that are not there
  Scan();
  EXPECT_EQ(Marked(scan_.blockSteps), (std::vector<std::size_t>{1, 255, 512, 600, 768, 998}));
}

TEST_P(MarkingTest, ASlotThatTheEndOfTheSourceCutsIsWorthALook) {
  canvas_.bytes.resize(canvas_.bytes.size() - 7);
  Scan();
  EXPECT_EQ(Marked(scan_.blockSteps), (std::vector<std::size_t>{1, 255, 600, 998, 999}));
}

/// The scan behind a search for the format that goes far into the source.
class BehindProbeTest : public NodePageScanTest, public testing::WithParamInterface<Format> {
 protected:
  BehindProbeTest() {
    canvas_.bytes.assign(18432 + kSteps * 4096, std::byte{0xFF});
    canvas_.Number(8, 0x4D53, 2);
    SayFormat(GetParam());
    PutNode(5, 0x1234);  // tells nothing of the format
    PutNode(998);
    canvas_.Page(GetParam(), 18432 + 999 * 4096,
                 forge::BlockPage(GetParam(), {{.bid = 4, .offset = 20480, .size = 100}}));
  }

  void SayFormat(Format format) {
    const std::uint16_t version = format == Format::kAnsi ? 14 : format == Format::kUnicode ? 23 : 36;
    canvas_.Number(10, version, 2);
  }

  /// A page with one node, whose id is the step's number.
  void PutNode(std::size_t step, std::optional<std::uint16_t> signature = {}) {
    auto page = forge::NodePage(GetParam(), {{step, 4, 8, 0}});
    page.signature = signature;
    canvas_.Page(GetParam(), 18432 + step * 4096, page);
  }

  void ProbeAndScan(std::vector<BadPlace> bad = {}) {
    Attach({});
    disk_ = std::make_shared<BadDisk>(std::make_unique<platform::MemoryFile>(canvas_.bytes), std::move(bad));
    Found().source.Open(disk_);
    scan_.percentBase = canvas_.bytes.size() / 100;
    Found().layout = Generation{};
    ASSERT_EQ(ProbeFormat(scan_, run_), ProbeResult::kFound);
    ASSERT_EQ(Found().layout, LayoutOf(IdOf(GetParam())));
    ScanNodePages(scan_, run_);
  }

  std::vector<std::uint32_t> Nids() const {
    std::vector<std::uint32_t> nids;
    for (const NodeRecord& node : Found().nodes.Records()) nids.push_back(node.nid);
    return nids;
  }

  std::shared_ptr<const BadDisk> disk_;
};
INSTANTIATE_TEST_SUITE_P(Scan, BehindProbeTest, testing::Values(Format::kAnsi, Format::kUnicode), FormatName);

TEST_P(BehindProbeTest, WhatTheSearchForTheFormatHasSeenIsNotReadAgain) {
  ProbeAndScan();
  EXPECT_EQ(Nids(), (std::vector<std::uint32_t>{5, 998}));
  EXPECT_EQ(scan_.blockSteps.size(), kSteps);
  EXPECT_EQ(Marked(scan_.blockSteps), std::vector<std::size_t>{999});
  EXPECT_EQ(disk_->bytesRead, 528 + kSteps * 4096 + 3 * 4096) << "the kind of store, and what stands ahead of pieces";
}

TEST_P(BehindProbeTest, WhatTheSearchForTheFormatHasNotSeenIsReadBehindIt) {
  PutNode(300);
  PutNode(767);
  ProbeAndScan();
  EXPECT_EQ(Nids(), (std::vector<std::uint32_t>{5, 300, 767, 998}));
  EXPECT_EQ(scan_.blockSteps.size(), kSteps);
  EXPECT_EQ(Marked(scan_.blockSteps), std::vector<std::size_t>{999});
}

TEST_P(BehindProbeTest, TheScanReportsWhatTheSearchHasSeenAsWell) {
  ProbeAndScan();
  std::vector<std::uint32_t> percentages;
  for (std::size_t step = 1; step <= kSteps; ++step) {
    percentages.push_back(static_cast<std::uint32_t>((18432 + step * 4096) / (canvas_.bytes.size() / 100)));
  }
  percentages.erase(std::ranges::unique(percentages).begin(), percentages.end());
  EXPECT_EQ(recorder_.Percentages(Phase::kNodeScan), percentages);
}

TEST_P(BehindProbeTest, OfAHeaderThatNamesAnotherFormatNothingIsTaken) {
  for (const Format other : {Format::kAnsi, Format::kUnicode, Format::kUnicode4k}) {
    SayFormat(other);
    ProbeAndScan();
    EXPECT_EQ(Nids(), (std::vector<std::uint32_t>{5, 998}));
    EXPECT_EQ(Marked(scan_.blockSteps), std::vector<std::size_t>{999});
  }
}

TEST_P(BehindProbeTest, WhatTheSearchHasSeenCountsForOneScanAlone) {
  ProbeAndScan();
  canvas_.bytes.resize(18432 + 900 * 4096);
  Found().source.Open(std::make_unique<platform::MemoryFile>(canvas_.bytes));
  ScanNodePages(scan_, run_);
  EXPECT_EQ(Nids(), std::vector<std::uint32_t>{5});
}

TEST_P(BehindProbeTest, InASmartScanTheSearchLooksForNodesAlone) {
  run_.smartScan = true;
  ProbeAndScan();
  EXPECT_EQ(Nids(), (std::vector<std::uint32_t>{5, 998}));
  EXPECT_TRUE(scan_.blockSteps.empty());
}

TEST_P(BehindProbeTest, WhereSomethingCannotBeReadByTheSearchNoStepIsLeftOut) {
  ProbeAndScan({{18432 + 5 * 4096 + 100, 18432 + 5 * 4096 + 200}});
  EXPECT_EQ(Nids(), std::vector<std::uint32_t>{998});
  EXPECT_TRUE(scan_.blockSteps.empty());
}

TEST_F(NodePageScanTest, ARunThatEndedOrFailedIsLeftAlone) {
  canvas_.Page(Format::kUnicode, 18432, forge::NodePage(Format::kUnicode, {{1, 4, 6, 0}}));
  run_.runAborted = true;
  EXPECT_TRUE(Scan().empty());
  run_.runAborted = false;
  run_.runEnded = true;
  EXPECT_TRUE(Scan().empty());
  EXPECT_TRUE(recorder_.Stages().empty());
  EXPECT_EQ(Found().nodeCount, 0u);
}

TEST_F(NodePageScanTest, AStopLeavesAtOnce) {
  canvas_.Page(Format::kUnicode, 18432, forge::NodePage(Format::kUnicode, {{1, 4, 6, 0}}));
  run_.control.RequestStop();
  EXPECT_THROW(Scan(), RunStopped);
  EXPECT_FALSE(run_.runAborted);
}

}  // namespace
}  // namespace velmora::engine
