#include "engine/source.h"

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

}  // namespace
}  // namespace velmora::engine
