#include "engine/source.h"

#include <fstream>
#include <map>
#include <random>
#include <thread>

#include "engine/bad_disk.h"
#include "engine/run_fixture.h"
#include "platform/user_folders.h"

namespace velmora::engine {
namespace {

TEST(SourceTest, ReadsThatFailInTwoThreadsAreAllKept) {
  constexpr std::uint64_t kSize = 4096 * 2000;
  Source source;
  source.Open(std::make_unique<BadDisk>(std::make_unique<platform::MemoryFile>(forge::Bytes(kSize)),
                                        std::vector<BadPlace>{{0, kSize}}));
  const auto readEverySecond = [&](std::uint64_t first) {
    forge::Bytes sector(4096);
    for (std::uint64_t at = first; at < kSize; at += 2 * sector.size()) EXPECT_FALSE(source.Read(at, sector));
  };
  std::thread even([&] { readEverySecond(0); });
  std::thread odd([&] { readEverySecond(4096); });
  even.join();
  odd.join();
  EXPECT_EQ(source.Unread().Ranges(), (std::map<std::uint64_t, std::uint64_t>{{0, kSize}}));
  EXPECT_TRUE(source.FirstFailure());
}

using Ranges = std::map<std::uint64_t, std::uint64_t>;

Ranges After(std::initializer_list<std::pair<std::uint64_t, std::uint64_t>> reads) {
  BadRanges bad;
  for (const auto& [offset, length] : reads) bad.Add(offset, length);
  return bad.Ranges();
}

TEST(BadRangesTest, ReadsThatDoNotMeetStandApartInOrder) {
  EXPECT_EQ(After({{8192, 4096}, {0, 4096}, {20000, 10}}), (Ranges{{0, 4096}, {8192, 12288}, {20000, 20010}}));
}

TEST(BadRangesTest, ReadsThatTouchAreOneStretch) {
  EXPECT_EQ(After({{0, 4096}, {4096, 4096}}), (Ranges{{0, 8192}})) << "behind";
  EXPECT_EQ(After({{4096, 4096}, {0, 4096}}), (Ranges{{0, 8192}})) << "ahead";
  EXPECT_EQ(After({{0, 4096}, {8192, 4096}, {4096, 4096}}), (Ranges{{0, 12288}})) << "in between";
}

TEST(BadRangesTest, AReadThatMeetsAKnownStretchAddsNothing) {
  EXPECT_EQ(After({{4096, 4096}, {4096, 4096}}), (Ranges{{4096, 8192}}));
  EXPECT_EQ(After({{4096, 4096}, {0, 60000}}), (Ranges{{4096, 8192}})) << "around it";
  EXPECT_EQ(After({{4096, 4096}, {5000, 100}}), (Ranges{{4096, 8192}})) << "in it";
  EXPECT_EQ(After({{4096, 4096}, {1024, 4096}}), (Ranges{{4096, 8192}})) << "its beginning";
  EXPECT_EQ(After({{4096, 4096}, {8191, 4096}}), (Ranges{{4096, 8192}})) << "its end";
}

TEST(SourceTest, KnowsWhetherAnythingBetweenTwoOffsetsIsBad) {
  Source source;
  source.Open(std::make_unique<BadDisk>(std::make_unique<platform::MemoryFile>(forge::Noise(20000, 1)),
                                        std::vector<BadPlace>{{4096, 8192}}));
  EXPECT_FALSE(source.IsBadWithin(0, 20000)) << "nobody has read it";
  std::vector<std::byte> all(20000);
  EXPECT_FALSE(source.ReadIfSound(0, all));
  EXPECT_FALSE(source.IsBadWithin(0, 20000)) << "that is not kept";
  EXPECT_EQ(source.ReadIfSound(8192, all), 20000u - 8192) << "up to the end";
  source.ReadAround(0, all);
  EXPECT_FALSE(source.IsBadWithin(0, 4096));
  EXPECT_TRUE(source.IsBadWithin(0, 4097));
  EXPECT_TRUE(source.IsBadWithin(8191, 8192));
  EXPECT_FALSE(source.IsBadWithin(8192, 20000));
}

TEST(BadRangesTest, AReadOfNothingIsNone) { EXPECT_EQ(After({{4096, 0}}), Ranges{}); }

TEST(BadRangesTest, InWhateverOrderTheSectorsOfADiskFailTheStretchesAreTheSame) {
  std::vector<std::uint64_t> sectors;
  for (std::uint64_t i = 0; i < 1000; ++i) {
    if (i % 7 != 0) sectors.push_back(i);
  }
  std::shuffle(sectors.begin(), sectors.end(), std::minstd_rand(3));
  BadRanges bad;
  for (const std::uint64_t sector : sectors) bad.Add(sector * 4096, 4096);
  ASSERT_EQ(bad.Ranges().size(), 143u);
  for (const auto& [begin, end] : bad.Ranges()) {
    EXPECT_EQ(begin % (7 * 4096), 4096u);
    EXPECT_EQ(end, std::min<std::uint64_t>(begin + 6 * 4096, 1000 * 4096));
  }
}

class BadSourceTest : public testing::Test {
 protected:
  static constexpr std::uint64_t kPiece = 1 << 20;

  /// Noise of so many bytes, on a disk with these places.
  void Open(std::size_t size, std::vector<BadPlace> bad) {
    content_ = forge::Noise(size, 1);
    bad_ = bad;
    auto disk = std::make_unique<BadDisk>(std::make_unique<platform::MemoryFile>(content_), std::move(bad));
    disk_ = disk.get();
    source_.Open(std::move(disk));
  }
  /// Everything, a piece at a time.
  forge::Bytes ReadAll() {
    forge::Bytes all(content_.size(), std::byte{0xAA});
    for (std::uint64_t at = 0; at < all.size(); at += kPiece) {
      const auto piece = std::span(all).subspan(at).first(std::min(kPiece, all.size() - at));
      EXPECT_EQ(source_.ReadAround(at, piece), piece.size());
    }
    return all;
  }
  /// The content with zeros in these ranges.
  forge::Bytes ContentWithout(const Ranges& ranges) const {
    forge::Bytes expected = content_;
    for (const auto& [begin, end] : ranges) std::fill(expected.begin() + begin, expected.begin() + end, std::byte{0});
    return expected;
  }
  forge::Bytes content_;
  std::vector<BadPlace> bad_;
  const BadDisk* disk_ = nullptr;
  Source source_;
};

TEST_F(BadSourceTest, ALongBadStretchIsPassedInGrowingStepsUpToItsEnd) {
  Open(96 << 20, {{(8 << 20) + 100, (72 << 20) + 5000}});
  const Ranges expected = {{8 << 20, (72 << 20) + 8192}};
  EXPECT_EQ(ReadAll(), ContentWithout(expected));
  EXPECT_EQ(source_.Unread().Ranges(), expected);
  EXPECT_LT(disk_->failures, 250) << "of 16,386 sectors";
}

TEST_F(BadSourceTest, WhatIsKnownToBeBadIsNotTriedAgain) {
  Open(4 << 20, {{5000, 100'000}, {3'000'000, 3'000'001}});
  const forge::Bytes first = ReadAll();
  const int failures = disk_->failures;
  EXPECT_EQ(ReadAll(), first);
  EXPECT_EQ(disk_->failures, failures);
}

TEST_F(BadSourceTest, SectorsBetweenBadOnesAreRead) {
  std::vector<BadPlace> bad;
  Ranges expected;
  for (std::uint64_t at = 0; at < (2 << 20); at += 3 * 4096) {
    bad.emplace_back(at, at + 2 * 4096);
    expected.emplace(at, at + 2 * 4096);
  }
  Open((2 << 20) + 8192, bad);
  EXPECT_EQ(ReadAll(), ContentWithout(expected));
  EXPECT_EQ(source_.Unread().Ranges(), expected);
}

TEST_F(BadSourceTest, ABadStretchUpToTheEndIsOne) {
  Open((3 << 20) + 100, {{1'000'000, 1ull << 40}});
  const Ranges expected = {{1'000'000 / 4096 * 4096, (3 << 20) + 100}};
  EXPECT_EQ(ReadAll(), ContentWithout(expected));
  EXPECT_EQ(source_.Unread().Ranges(), expected);
}

class ChangingFileTest : public testing::Test {
 protected:
  ChangingFileTest() {
    Append(10'000, 'a');
    source_.Open(ValueOrRaise(platform::OpenForReading(path_)));
  }
  void Append(std::size_t count, char byte) { std::ofstream(path_, std::ios::app) << std::string(count, byte); }

  platform::TemporaryFolder folder_ = ValueOrRaise(platform::TemporaryFolder::Create());
  std::filesystem::path path_ = folder_.Path() / "grows.pst";
  Source source_;
  forge::Bytes out_ = forge::Bytes(20'000, std::byte{'x'});
};

TEST_F(ChangingFileTest, WhatAFileGrowsByIsNotRead) {
  Append(10'000, 'b');
  EXPECT_EQ(source_.Size(), 10'000u);
  EXPECT_EQ(source_.ReadAround(0, out_), 10'000u);
  EXPECT_EQ(source_.Read(9000, out_).value(), 1000u);
  EXPECT_EQ(source_.Read(10'000, out_).value(), 0u);
  EXPECT_EQ(std::ranges::count(out_, std::byte{'b'}), 0);
  EXPECT_FALSE(source_.FirstFailure());
}

TEST_F(ChangingFileTest, WhatAFileLosesCannotBeRead) {
  std::filesystem::resize_file(path_, 5000);
  EXPECT_FALSE(source_.Read(4000, std::span(out_).first(2000)));
  EXPECT_EQ(source_.ReadAround(0, out_), 10'000u);
  EXPECT_EQ(std::ranges::count(std::span(out_).first(4000), std::byte{'a'}), 4000);
  EXPECT_EQ(std::ranges::count(std::span(out_).subspan(5000, 5000), std::byte{0}), 5000);
  EXPECT_EQ(source_.Unread().Ranges().rbegin()->second, 10'000u);
  EXPECT_EQ(source_.FirstFailure()->message, "the file has become shorter");
}

}  // namespace
}  // namespace velmora::engine
