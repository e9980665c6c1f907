#include <algorithm>

#include "engine/run_fixture.h"
#include "engine/steps.h"

namespace velmora::engine {
namespace {

constexpr std::uint64_t kFirst = 18432;  ///< where the probe begins

class FormatProbeTest : public RunTest {
 protected:
  FormatProbeTest() { canvas_.Number(8, 0x4D53, 2); }

  ProbeResult Probe() {
    Attach(canvas_.bytes);
    Found().storeKind = StoreKind::kNone;
    Found().layout = Generation{};
    return ProbeFormat(scan_, run_);
  }

  /// A page trailer of the ANSI or Unicode form that proves itself.
  void Proven(std::uint64_t offset, forge::Format format) {
    canvas_.Page(format, offset, {.type = forge::PageType::kBlocks});
  }

  /// What is said of so many steps without a page: each percentage once.
  std::vector<std::uint32_t> PercentagesOf(std::uint64_t steps) const {
    std::vector<std::uint32_t> all;
    for (std::uint64_t step = 1; step <= steps; ++step) {
      all.push_back(static_cast<std::uint32_t>((kFirst + step * 4096) / (canvas_.bytes.size() / 100)));
    }
    all.erase(std::ranges::unique(all).begin(), all.end());
    return all;
  }

  Canvas canvas_;
};

TEST_F(FormatProbeTest, AProvenTrailerTellsTheFormat) {
  for (const forge::Format format : {forge::Format::kAnsi, forge::Format::kUnicode}) {
    canvas_ = {};
    canvas_.Number(8, 0x4D53, 2);
    Proven(kFirst + 1024, format);
    EXPECT_EQ(Probe(), ProbeResult::kFound);
    EXPECT_EQ(Found().layout, LayoutOf(IdOf(format)));
    EXPECT_EQ(Found().storeKind, StoreKind::kPst);
  }
}

TEST_F(FormatProbeTest, A4kPageIsKnownByItsCountersWithoutASignature) {
  canvas_.Page(forge::Format::kUnicode4k, 5 * 4096,
               {.type = forge::PageType::kBlocks, .maxCount = 169, .signature = 0});
  EXPECT_EQ(Probe(), ProbeResult::kFound);
  EXPECT_EQ(Found().layout, LayoutOf(FORMAT_UNICODE_4K));
}

TEST_F(FormatProbeTest, A4kPageOfANodeTreeLeafIsNotKnownByItsCounters) {
  canvas_.Page(forge::Format::kUnicode4k, 5 * 4096, {.type = forge::PageType::kNodes});
  EXPECT_EQ(Probe(), ProbeResult::kRefused);
}

TEST_F(FormatProbeTest, AProvenTrailerBehindA4kPageOfTheSameWindowWins) {
  canvas_.Page(forge::Format::kUnicode4k, kFirst + 512 - 3584, {.type = forge::PageType::kBlocks, .maxCount = 169});
  Proven(kFirst + 2048, forge::Format::kUnicode);
  EXPECT_EQ(Probe(), ProbeResult::kFound);
  EXPECT_EQ(Found().layout.formatId, FORMAT_UNICODE);
}

TEST_F(FormatProbeTest, AProvenTrailerAheadOfA4kPageEndsTheLook) {
  Proven(kFirst, forge::Format::kAnsi);
  canvas_.Number(kFirst + 1024 + 474, 169, 2);
  canvas_.Number(kFirst + 1024 + 488, 0x8080, 2);
  EXPECT_EQ(Probe(), ProbeResult::kFound);
  EXPECT_EQ(Found().layout.formatId, FORMAT_ANSI);
}

TEST_F(FormatProbeTest, WithBothMarksAtOnePositionTheAnsiLayoutWins) {
  Proven(kFirst, forge::Format::kUnicode);
  canvas_.Number(kFirst + 500, 0x8080, 2);
  EXPECT_EQ(Probe(), ProbeResult::kFound);
  EXPECT_EQ(Found().layout.formatId, FORMAT_ANSI);
}

TEST_F(FormatProbeTest, AMarkOfA4kTrailerGivesThePlaceOfTheSignatureButNotTheFormat) {
  const std::uint32_t id = 0x55;
  canvas_.Number(kFirst + 496, 0x8181, 2);
  canvas_.Number(kFirst + 4072, 0x8080, 2);
  canvas_.Number(kFirst + 4074, (kFirst ^ id) & 0xFFFF, 2);
  canvas_.Number(kFirst + 4080, id, 4);
  EXPECT_EQ(Probe(), ProbeResult::kFound);
  EXPECT_EQ(Found().layout.formatId, FORMAT_UNICODE);
}

TEST_F(FormatProbeTest, ASignatureOfZeroNeverProvesAPage) {
  // Offset and id are chosen so that the computed value is 0 as well.
  canvas_.Page(forge::Format::kUnicode, kFirst, {.type = forge::PageType::kBlocks, .pageId = kFirst});
  ASSERT_EQ(forge::Get(canvas_.bytes, kFirst + 498, 2), 0u);
  EXPECT_EQ(Probe(), ProbeResult::kRefused);
}

TEST_F(FormatProbeTest, AWrongSignatureProvesNothing) {
  canvas_.Page(forge::Format::kUnicode, kFirst, {.type = forge::PageType::kBlocks, .signature = 0x1234});
  EXPECT_EQ(Probe(), ProbeResult::kRefused);
}

TEST_F(FormatProbeTest, APageAheadOfTheFirstWindowIsNotSeen) {
  Proven(kFirst - 512, forge::Format::kUnicode);
  EXPECT_EQ(Probe(), ProbeResult::kRefused);
}

TEST_F(FormatProbeTest, AHeaderAloneGivesTheFormatByTheShapeOfItsRoots) {
  canvas_.Number(188, 0x00010000, 4);
  canvas_.Number(196, 0x00020400, 4);
  EXPECT_EQ(Probe(), ProbeResult::kFound);
  EXPECT_EQ(Found().layout.formatId, FORMAT_ANSI);
  canvas_.Number(196, 0x00010010, 4);
  EXPECT_EQ(Probe(), ProbeResult::kRefused) << "a root offset ends in a zero byte";
  canvas_.Number(224, 0x00010000, 4);
  EXPECT_EQ(Probe(), ProbeResult::kRefused) << "both roots have to have the shape";
  canvas_.Number(240, 0x00010000, 4);
  EXPECT_EQ(Probe(), ProbeResult::kFound);
  EXPECT_EQ(Found().layout.formatId, FORMAT_UNICODE);
}

TEST_F(FormatProbeTest, AStoreOfWhichOnlyTheHeaderIsIntactEndsInTheRefusalForTooFewBlocks) {
  canvas_.Number(224, 0x4800, 4);
  canvas_.Number(240, 0x4A00, 4);
  canvas_.Number(65535, 0, 1);
  EXPECT_EQ(Probe(), ProbeResult::kFound);
  ScanNodePages(scan_, run_);
  ScanBlockPages(scan_, run_);
  EXPECT_TRUE(run_.runAborted);
  EXPECT_EQ(recorder_.Notices().back(), NoticeKind::kNotValid);
  EXPECT_EQ(Found().nodeCount, 1u);
  EXPECT_EQ(Found().blockRecordCount, 0u);
}

TEST_F(FormatProbeTest, AnOfflineStoreIsTakenAndAnAddressBookRefused) {
  Proven(kFirst, forge::Format::kUnicode);
  canvas_.Number(8, 0x4F53, 2);
  EXPECT_EQ(Probe(), ProbeResult::kFound);
  EXPECT_EQ(Found().storeKind, StoreKind::kOst);
  canvas_.Number(8, 0x4241, 2);
  EXPECT_EQ(Probe(), ProbeResult::kRefused);
  EXPECT_EQ(Found().storeKind, StoreKind::kPab);
  canvas_.Number(8, 0x1234, 2);
  EXPECT_EQ(Probe(), ProbeResult::kRefused);
  EXPECT_EQ(Found().storeKind, StoreKind::kNone);
}

TEST_F(FormatProbeTest, ARefusalShowsNothingItself) {
  canvas_.Number(8, 0x1234, 2);
  EXPECT_EQ(Probe(), ProbeResult::kRefused);
  EXPECT_EQ(recorder_.Stages(), (std::vector<std::uint32_t>{2}));
  EXPECT_FALSE(run_.runAborted);
}

TEST_F(FormatProbeTest, AFileShorterThanTheFirstWindowIsLookedAtOnce) {
  canvas_.Number(999, 0, 1);
  EXPECT_EQ(Probe(), ProbeResult::kRefused);
  EXPECT_EQ(recorder_.Percentages(Phase::kProbe), (std::vector<std::uint32_t>{2252}));
}

TEST_F(FormatProbeTest, ASourceOfLessThanAHundredBytesIsAllDone) {
  canvas_.Number(90, 0, 1);
  EXPECT_EQ(Probe(), ProbeResult::kRefused);
  EXPECT_EQ(recorder_.Percentages(Phase::kProbe), (std::vector<std::uint32_t>{100}));
}

TEST_F(FormatProbeTest, AnEmptySourceIsRefused) {
  Attach({});
  EXPECT_EQ(ProbeFormat(scan_, run_), ProbeResult::kRefused);
}

TEST_F(FormatProbeTest, EachWindowWithoutAPageIsReported) {
  canvas_.Number(kFirst + 2 * 4096 - 1, 0, 1);  // 26624 bytes, so a percent is 266
  EXPECT_EQ(Probe(), ProbeResult::kRefused);
  EXPECT_EQ(recorder_.Percentages(Phase::kProbe), (std::vector<std::uint32_t>{22528 / 266, 26624 / 266, 30720 / 266}));
}

TEST_F(FormatProbeTest, TheWindowThatHoldsThePageIsNotReported) {
  canvas_.Number(kFirst + 4 * 4096, 0, 1);
  Proven(kFirst + 4096, forge::Format::kUnicode);
  EXPECT_EQ(Probe(), ProbeResult::kFound);
  EXPECT_EQ(recorder_.Percentages(Phase::kProbe).size(), 1u);
}

TEST_F(FormatProbeTest, ALargeSourceIsLookedAtStepByStepToItsEnd) {
  canvas_.Number(3 << 20, 0, 1);
  EXPECT_EQ(Probe(), ProbeResult::kRefused);
  EXPECT_EQ(recorder_.Percentages(Phase::kProbe), PercentagesOf(765));  // the last step lies behind the end
}

// As above, but what tells of the 4K trailer lies in the next piece of the source that is read.
TEST_F(FormatProbeTest, APageIsKnownWhereverTheSourceIsCut) {
  const std::uint32_t id = 0x55;
  const std::uint64_t page = kFirst + (1 << 20) - 512;
  canvas_.Number(page + 496, 0x8181, 2);
  canvas_.Number(page + 4072, 0x8080, 2);
  canvas_.Number(page + 4074, (page ^ id ^ (page ^ id) >> 16) & 0xFFFF, 2);
  canvas_.Number(page + 4080, id, 4);
  canvas_.Number(100 * (kFirst + 256 * 4096) / 32 - 1, 0, 1);  // one step more is one percent more
  EXPECT_EQ(Probe(), ProbeResult::kFound);
  EXPECT_EQ(Found().layout.formatId, FORMAT_UNICODE);
  EXPECT_EQ(recorder_.Percentages(Phase::kProbe), PercentagesOf(255));
}

TEST_F(FormatProbeTest, ARunThatHasEndedIsLeftAlone) {
  run_.runEnded = true;
  EXPECT_EQ(Probe(), ProbeResult::kFound) << "nothing is refused then";
  EXPECT_TRUE(recorder_.Stages().empty());
}

}  // namespace
}  // namespace velmora::engine
