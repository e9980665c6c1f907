#include "engine/page_walk.h"

#include "engine/bad_disk.h"
#include "engine/run_fixture.h"

namespace velmora::engine {
namespace {

using forge::Format;

/// Writes down what it is shown.
struct Visits : PageVisitor {
  void VisitPage(std::uint64_t offset, ByteView page, std::uint64_t readOffset) override {
    offsets.push_back(offset);
    sizes.push_back(page.Size());
    readOffsets.push_back(readOffset);
    if (onVisit) onVisit();
  }
  std::vector<std::uint64_t> offsets, readOffsets;
  std::vector<std::size_t> sizes;
  std::function<void()> onVisit;
};

class PageWalkTest : public RunTest {
 protected:
  void Walk(std::size_t sourceSize, const WalkSizes& sizes, Format format = Format::kUnicode) {
    Attach(forge::Noise(sourceSize, 1), format);
    Walk(sizes);
  }
  void Walk(const WalkSizes& sizes) {
    SourceWindow window(Found().source);
    WalkPages(scan_, run_, window, sizes, Phase::kBlockScan, marks_, visits_);
  }

  StepMarks marks_;
  Visits visits_;
};

TEST_F(PageWalkTest, EveryPageIsShownOnceFromTheFirstOneOnWithAllThatWasReadBehindIt) {
  Walk(18432 + 2048 + 700, {.read = 1024, .step = 1024, .reach = 1024});
  EXPECT_EQ(visits_.offsets, (std::vector<std::uint64_t>{18432, 18944, 19456, 19968, 20480, 20992}));
  EXPECT_EQ(visits_.readOffsets, (std::vector<std::uint64_t>{18432, 18432, 19456, 19456, 20480, 20480}));
  EXPECT_EQ(visits_.sizes, (std::vector<std::size_t>{1024, 512, 1024, 512, 700, 188}));
}

TEST_F(PageWalkTest, AStepMayBeShorterThanWhatIsReadWithIt) {
  Walk(147456 + 8192, {.read = 16384, .step = 4096, .reach = 16384}, Format::kUnicode4k);
  EXPECT_EQ(visits_.offsets, (std::vector<std::uint64_t>{147456, 151552}));
  EXPECT_EQ(visits_.sizes, (std::vector<std::size_t>{8192, 4096}));
}

TEST_F(PageWalkTest, AStepThatIsNotWorthAVisitIsReportedAllTheSameAndWhatLiesBehindTheLastMarkIsVisited) {
  marks_ = {false, true, false};
  Walk(18432 + 4 * 1024, {.read = 1024, .step = 1024, .reach = 1024});
  EXPECT_EQ(visits_.offsets, (std::vector<std::uint64_t>{19456, 19968, 21504, 22016}));
  EXPECT_EQ(recorder_.Percentages(Phase::kBlockScan),
            (std::vector<std::uint32_t>{19456 / 225, 20480 / 225, 21504 / 225, 22528 / 225}));
}

TEST_F(PageWalkTest, StepsInARowAreReadAtOnceAndWhatIsLeftOutIsNotRead) {
  Attach({});
  auto content = std::make_unique<platform::MemoryFile>(forge::Noise(18432 + 600 * 4096, 1));
  auto disk = std::make_unique<BadDisk>(std::move(content), std::vector<BadPlace>{});
  const BadDisk& observed = *disk;
  Found().source.Open(std::move(disk));
  marks_ = StepMarks(600);
  for (const int number : {3, 4, 5, 100}) marks_[static_cast<std::size_t>(number)] = true;
  Walk({.read = 4096, .step = 4096, .reach = 4096});
  EXPECT_EQ(visits_.offsets.size(), 4u * 8);
  EXPECT_EQ(observed.reads, 2);
  EXPECT_EQ(observed.bytesRead, 4u * 4096);
}

TEST_F(PageWalkTest, EachStepIsReportedInItsPhase) {
  Walk(20480, {.read = 1024, .step = 1024, .reach = 1024});
  EXPECT_EQ(recorder_.Percentages(Phase::kBlockScan), (std::vector<std::uint32_t>{19456 / 204, 20480 / 204}));
}

TEST_F(PageWalkTest, ARunThatEndsLeavesBehindTheStep) {
  visits_.onVisit = [&] { run_.runEnded = true; };
  Walk(30000, {.read = 1024, .step = 1024, .reach = 1024});
  EXPECT_EQ(visits_.offsets.size(), 2u);
}

TEST_F(PageWalkTest, AStopLeavesAtThePage) {
  visits_.onVisit = [&] { run_.control.RequestStop(); };
  EXPECT_THROW(Walk(30000, {.read = 1024, .step = 1024, .reach = 1024}), RunStopped);
  EXPECT_EQ(visits_.offsets.size(), 1u);
}

}  // namespace
}  // namespace velmora::engine
