#include "engine/source_window.h"

#include <algorithm>

#include "engine/bad_disk.h"
#include "engine/run_fixture.h"
#include "engine/steps.h"
#include "engine/zero_runs.h"

namespace velmora::engine {
namespace {

class SourceWindowTest : public RunTest {
 protected:
  const BadDisk& AttachDisk(std::vector<std::byte> bytes, std::vector<BadPlace> bad = {}) {
    auto disk = std::make_unique<BadDisk>(std::make_unique<platform::MemoryFile>(std::move(bytes)), std::move(bad));
    const BadDisk& observed = *disk;
    Found().source.Open(std::move(disk));
    return observed;
  }

  SourceWindow window_{Found().source};
};

TEST_F(SourceWindowTest, AWalkReadsLargePiecesWhateverItLooksAt) {
  const auto bytes = forge::Noise(3 << 20, 1);
  const BadDisk& disk = AttachDisk(bytes);
  for (std::uint64_t offset = 0; offset < bytes.size(); offset += 4096) {
    const auto read = window_.Read(offset, 4096).Bytes();
    ASSERT_TRUE(std::equal(read.begin(), read.end(), bytes.begin() + static_cast<std::ptrdiff_t>(offset),
                           bytes.begin() + static_cast<std::ptrdiff_t>(offset + 4096)));
  }
  EXPECT_EQ(disk.reads, 3);
}

TEST_F(SourceWindowTest, NoMoreIsReadAtOnceThanIsAskedFor) {
  const auto bytes = forge::Noise(100'000, 1);
  const BadDisk& disk = AttachDisk(bytes);
  EXPECT_EQ(window_.Read(50'000, 1000, 3000).Size(), 1000u);
  EXPECT_EQ(disk.bytesRead, 3000u);
  EXPECT_EQ(window_.Read(52'000, 1000, 3000).Size(), 1000u);
  EXPECT_EQ(disk.bytesRead, 3000u) << "it is held";
  EXPECT_EQ(window_.Read(52'000, 4000, 10).Size(), 4000u);
  EXPECT_EQ(disk.bytesRead, 7000u) << "the range is longer";
  const auto read = window_.Peek(53'000, 500).Bytes();
  EXPECT_TRUE(std::equal(read.begin(), read.end(), bytes.begin() + 53'000, bytes.begin() + 53'500));
}

TEST_F(SourceWindowTest, WhatIsReadEndsWithTheSource) {
  AttachDisk(forge::Noise(10'000, 1));
  EXPECT_EQ(window_.Read(8192, 4096).Size(), 1808u);
  EXPECT_TRUE(window_.Read(12288, 4096).Empty());
  EXPECT_EQ(window_.Read(0, 4096).Size(), 4096u) << "and goes back";
}

TEST_F(SourceWindowTest, APeekLeavesTheWindowWhereItIs) {
  const auto bytes = forge::Noise(3 << 20, 2);
  const BadDisk& disk = AttachDisk(bytes);
  window_.Read(0, 4096);
  const auto far = window_.Peek(2 << 20, 100).Bytes();
  EXPECT_TRUE(std::equal(far.begin(), far.end(), bytes.begin() + (2 << 20)));
  window_.Read(4096, 4096);
  EXPECT_EQ(disk.reads, 2);
  EXPECT_TRUE(window_.Peek(0xFFFFFFFFFFFFFFF0, 100).Empty());
}

TEST_F(SourceWindowTest, APieceThatCannotBeReadCountsAsZerosAndHidesNothingBehindIt) {
  const auto bytes = forge::Noise(200'000, 3);
  AttachDisk(bytes, {{50'000, 50'001}});
  const ByteView read = window_.Read(0, 200'000);
  ASSERT_EQ(read.Size(), 200'000u);
  auto expected = bytes;
  std::fill_n(expected.begin() + 49152, 4096, std::byte{0});
  EXPECT_TRUE(std::equal(expected.begin(), expected.end(), read.Bytes().begin()));
  ASSERT_TRUE(Found().source.FirstFailure());
  EXPECT_EQ(Found().source.FirstFailure()->message, "bad sector");
  EXPECT_EQ(Found().source.Unread().Ranges(), (std::map<std::uint64_t, std::uint64_t>{{49152, 53248}}));
}

TEST_F(SourceWindowTest, APeekAtABadPlaceKeepsWhatLiesAroundIt) {
  const auto bytes = forge::Noise(20'000, 3);
  AttachDisk(bytes, {{5'000, 5'001}});
  const ByteView read = window_.Peek(100, 19'000);
  ASSERT_EQ(read.Size(), 19'000u);
  auto expected = std::vector(bytes.begin() + 100, bytes.begin() + 19'100);
  std::fill_n(expected.begin() + 4096, 4096, std::byte{0});
  EXPECT_TRUE(std::equal(expected.begin(), expected.end(), read.Bytes().begin()));
}

TEST_F(SourceWindowTest, EveryBadPlaceIsKeptOnceHoweverOftenItIsRead) {
  AttachDisk(forge::Noise(300'000, 3), {{30'000, 30'001}, {30'600, 34'000}, {200'000, 200'001}, {299'999, 300'000}});
  window_.Read(0, 300'000);
  window_.Peek(2'000, 298'000);
  std::vector<std::byte> block(8192);
  EXPECT_FALSE(Found().source.Read(199'000, block));
  EXPECT_EQ(Found().source.Unread().Ranges(),
            (std::map<std::uint64_t, std::uint64_t>{{28'672, 36'864}, {196'608, 200'704}, {299'008, 300'000}}));
}

TEST_F(SourceWindowTest, AScanGoesOnBehindABadSector) {
  Canvas canvas;
  canvas.Page(forge::Format::kUnicode, 18432, forge::NodePage(forge::Format::kUnicode, {{1, 4, 0, 0}}));
  canvas.Page(forge::Format::kUnicode, 18432 + 9 * 4096, forge::NodePage(forge::Format::kUnicode, {{2, 4, 0, 0}}));
  AttachDisk(canvas.bytes, {{30'000, 30'100}});
  Found().layout = LayoutOf(FORMAT_UNICODE);
  ScanNodePages(scan_, run_);
  EXPECT_EQ(Found().nodes.Records(), (std::vector<NodeRecord>{{1, 4, 0, 0}, {2, 4, 0, 0}}));
}

TEST_F(SourceWindowTest, ASourceThatCannotBeReadAtAllEndsTheScans) {
  AttachDisk(std::vector<std::byte>(100'000), {{0, 100'000}});
  EXPECT_EQ(ProbeFormat(scan_, run_), ProbeResult::kRefused);
  ScanNodePages(scan_, run_);
  EXPECT_TRUE(Found().nodes.Records().empty());
}

TEST(ZeroRunsTest, FindTheNextAndTheLastByteThatIsNotZeroAtEveryDistance) {
  for (std::size_t size = 0; size < 40; ++size) {
    for (std::size_t at = 0; at < size; ++at) {
      std::vector<std::byte> bytes(size);
      bytes[at] = std::byte{0x80};
      for (std::size_t from = 0; from <= size; ++from) {
        ASSERT_EQ(FirstNonZero(bytes, from), from <= at ? std::optional(at) : std::nullopt);
        ASSERT_EQ(LastNonZero(bytes, from), from > at ? std::optional(at) : std::nullopt);
      }
    }
    EXPECT_FALSE(FirstNonZero(std::vector<std::byte>(size), 0));
    EXPECT_FALSE(LastNonZero(std::vector<std::byte>(size), size));
  }
  EXPECT_FALSE(FirstNonZero({}, 5)) << "from beyond the end";
}

}  // namespace
}  // namespace velmora::engine
