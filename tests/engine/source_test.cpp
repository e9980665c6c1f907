#include "engine/source.h"

#include <map>
#include <random>
#include <thread>

#include "engine/bad_disk.h"
#include "engine/run_fixture.h"

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

}  // namespace
}  // namespace velmora::engine
