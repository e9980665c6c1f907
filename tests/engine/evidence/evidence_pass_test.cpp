// A pass over a source of several steps, by any number of threads.
#include "engine/evidence/evidence_pass.h"

#include "engine/bad_disk.h"
#include "engine/evidence/evidence_fixture.h"
#include "engine/evidence/stretch.h"

namespace velmora::engine {
namespace {

using FoundLine = std::tuple<std::uint64_t, std::uint64_t, int>;  // id, offset, grade

/// Blocks of every length up to the end of the third step.
const forge::Image& ImageOfSteps() {
  static const forge::Image image = [] {
    forge::Store store({.encoding = forge::Encoding::kPermute});
    for (std::uint64_t bytes = 0; bytes < 3 * kStep;) {
      const std::size_t length = 100 + bytes / 7 % 8000;
      store.AddBlock(forge::Noise(length, static_cast<std::uint32_t>(bytes)));
      bytes += length;
    }
    return store.Finish();
  }();
  return image;
}

class EvidencePassTest : public testing::TestWithParam<unsigned> {
 protected:
  Finds LookAt(std::unique_ptr<const platform::ByteSource> bytes) {
    source_.Open(std::move(bytes));
    run_.workers = &workers_;
    return std::move(LookThrough(source_, std::array{&generations::kUnicode}, run_).front());
  }
  Finds LookAt(std::vector<std::byte> bytes) {
    return LookAt(std::make_unique<platform::MemoryFile>(std::move(bytes)));
  }

  static std::vector<FoundLine> LinesOf(const std::vector<FoundBlock>& blocks) {
    std::vector<FoundLine> lines;
    for (const FoundBlock& block : blocks) {
      lines.emplace_back(Value(block.bid), block.offset, static_cast<int>(block.grade));
    }
    return lines;
  }

  /// Those of an image that lie outside of a range, in the order of the file.
  static std::vector<FoundLine> LinesOf(const forge::Image& image, std::uint64_t from = 0, std::uint64_t to = 0) {
    std::vector<FoundLine> lines;
    for (const forge::PlacedBlock& block : image.blocks) {
      const bool isOutside = block.offset >= to || block.offset + block.placeSize <= from;
      if (isOutside) lines.emplace_back(block.bid, block.offset, static_cast<int>(Grade::kProven));
    }
    std::ranges::sort(lines, {}, [](const FoundLine& line) { return std::get<1>(line); });
    return lines;
  }

  platform::Workers workers_{GetParam()};
  RunContext run_;
  Source source_;
};
INSTANTIATE_TEST_SUITE_P(Jobs, EvidencePassTest, testing::Values(1u, 2u, 5u));

TEST_P(EvidencePassTest, EveryBlockIsFoundOnceInTheOrderOfTheFileWhereverAStepEnds) {
  const forge::Image& image = ImageOfSteps();
  const Finds finds = LookAt(image.bytes);
  EXPECT_EQ(LinesOf(finds.whole), LinesOf(image));
  EXPECT_TRUE(finds.hurt.empty());
  std::uint64_t slots = 0;
  for (const forge::PlacedBlock& block : image.blocks) slots += block.placeSize / 64;
  EXPECT_GE(finds.taken.Taken(), slots);
  EXPECT_EQ(finds.pages.size(), image.pages.size());
}

TEST_P(EvidencePassTest, BlocksThatWereMovedAreFoundAcrossTheEndOfAStep) {
  const forge::Image& image = ImageOfSteps();
  const std::uint64_t cut = image.blocks[10].offset / 512 * 512;
  std::vector<std::byte> bytes = image.bytes;
  bytes.insert(bytes.begin() + static_cast<std::ptrdiff_t>(cut), 512, std::byte{0x5A});
  const Finds finds = LookAt(bytes);
  std::vector<FoundLine> expected;
  for (const auto& [id, offset, grade] : LinesOf(image, cut, cut)) {
    const bool isMoved = offset >= cut;
    expected.emplace_back(id, offset + (isMoved ? 512 : 0), static_cast<int>(isMoved ? Grade::kMoved : Grade::kProven));
  }
  std::vector<FoundLine> found = LinesOf(finds.whole);
  std::ranges::sort(found, {}, [](const FoundLine& line) { return std::get<1>(line); });
  EXPECT_EQ(found, expected);
  EXPECT_GE(finds.end, std::get<1>(expected.back()));
}

TEST_P(EvidencePassTest, OfABadStretchOverTheEndOfAStepAllElseIsFound) {
  const forge::Image& image = ImageOfSteps();
  const BadPlace bad{kStep - 300000, kStep + 200000};
  const Finds finds =
      LookAt(std::make_unique<BadDisk>(std::make_unique<platform::MemoryFile>(image.bytes), std::vector{bad}));
  // It is left where the steps within it find the first piece that can be read again.
  const auto unread = source_.Unread().Ranges();
  ASSERT_EQ(unread.size(), 1u);
  EXPECT_EQ(unread.begin()->first, bad.first / 4096 * 4096);
  EXPECT_EQ(unread.begin()->second, (bad.second + 4095) / 4096 * 4096);
  EXPECT_EQ(LinesOf(finds.whole), LinesOf(image, unread.begin()->first, unread.begin()->second));
}

TEST_P(EvidencePassTest, ARunThatIsStoppedLeavesNothingUnderWork) {
  run_.control.RequestStop();
  EXPECT_THROW(LookAt(ImageOfSteps().bytes), RunStopped);
}

TEST_P(EvidencePassTest, OfNothingNothingIsFound) { EXPECT_EQ(LookAt(std::vector<std::byte>()).Count(), 0u); }

}  // namespace
}  // namespace velmora::engine
