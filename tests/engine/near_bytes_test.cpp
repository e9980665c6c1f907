#include "engine/near_bytes.h"

#include <gtest/gtest.h>

#include <random>

#include "engine/bad_disk.h"
#include "platform/memory_file.h"

namespace velmora::engine {
namespace {

constexpr std::size_t kOneWindow = NearBytes::kWindow;
constexpr std::size_t kSizeOfDisk = 10 * kOneWindow + 100;

class NearBytesTest : public ::testing::Test {
 protected:
  NearBytesTest() {
    std::mt19937_64 any(1);
    for (std::byte& byte : content_) byte = static_cast<std::byte>(any());
    Open({});
  }

  void Open(std::vector<BadPlace> bad) {
    auto disk = std::make_unique<BadDisk>(std::make_unique<platform::MemoryFile>(content_), std::move(bad));
    disk_ = disk.get();
    bytes_ = std::make_unique<NearBytes>(std::move(disk));
  }

  /// Whether so many bytes are read there, and are those of the file.
  testing::AssertionResult IsRead(std::uint64_t offset, std::size_t size) {
    std::vector<std::byte> out(size);
    const auto read = bytes_->ReadAt(offset, out);
    if (!read) return testing::AssertionFailure() << read.error().message;
    const std::size_t there = offset < kSizeOfDisk ? std::min(size, kSizeOfDisk - static_cast<std::size_t>(offset)) : 0;
    if (*read != there) return testing::AssertionFailure() << *read << " bytes at " << offset;
    return std::equal(out.begin(), out.begin() + static_cast<std::ptrdiff_t>(there),
                      content_.begin() + static_cast<std::ptrdiff_t>(std::min<std::uint64_t>(offset, kSizeOfDisk)))
               ? testing::AssertionSuccess()
               : testing::AssertionFailure() << "other bytes at " << offset;
  }

  std::vector<std::byte> content_ = std::vector<std::byte>(kSizeOfDisk);
  const BadDisk* disk_ = nullptr;
  std::unique_ptr<NearBytes> bytes_;
};

TEST_F(NearBytesTest, EveryReadGivesTheBytesOfTheFile) {
  std::mt19937_64 any(2);
  std::uint64_t offset = 0;
  for (int i = 0; i < 2000; ++i) {
    const bool isFar = any() % 4 == 0;
    offset = isFar ? any() % (kSizeOfDisk + 1000) : offset + any() % 9000;
    ASSERT_TRUE(IsRead(offset, any() % (i % 10 == 0 ? 2 * kOneWindow : 9000)));
  }
  EXPECT_TRUE(IsRead(kSizeOfDisk - 50, 100)) << "half of it behind the end";
  EXPECT_TRUE(IsRead(kSizeOfDisk, 100));
  EXPECT_TRUE(IsRead(UINT64_MAX, 100));
}

TEST_F(NearBytesTest, ReadsThatFollowOneAnotherTakeOneForEachWindow) {
  for (std::uint64_t offset = 0; offset + 1000 < 4 * kOneWindow; offset += 1000) ASSERT_TRUE(IsRead(offset, 1000));
  EXPECT_EQ(disk_->reads, 5) << "the first one was near nothing";
}

TEST_F(NearBytesTest, ReadsThatGoToAndFroOverTheEndOfAWindowTakeNoMore) {
  for (int i = 0; i < 100; ++i) {
    ASSERT_TRUE(IsRead(2 * kOneWindow - 9000 + 10U * static_cast<unsigned>(i), 500));
    ASSERT_TRUE(IsRead(2 * kOneWindow + 20000 + 10U * static_cast<unsigned>(i), 500));
  }
  EXPECT_EQ(disk_->reads, 3);
}

TEST_F(NearBytesTest, ReadsThatLieFarApartAreMadeAsTheyAre) {
  for (std::uint64_t i = 0; i < 30; ++i) ASSERT_TRUE(IsRead(i * 7 % 10 * kOneWindow + i, 500));
  EXPECT_EQ(disk_->reads, 30);
  EXPECT_EQ(disk_->bytesRead, 30U * 500);
}

TEST_F(NearBytesTest, ADiskThatFailsIsAskedForNoMoreThanIsWanted) {
  Open({{3000, 3512}});
  ASSERT_TRUE(IsRead(0, 500));
  ASSERT_TRUE(IsRead(500, 500)) << "though the window cannot be read";
  EXPECT_EQ(disk_->failures, 1);
  const std::uint64_t before = disk_->bytesRead;
  ASSERT_TRUE(IsRead(1000, 500));
  ASSERT_TRUE(IsRead(4000, 500));
  EXPECT_EQ(disk_->bytesRead - before, 1000U);
  EXPECT_EQ(disk_->failures, 1);
  EXPECT_FALSE(IsRead(3100, 500));
  EXPECT_EQ(disk_->failures, 2);
}

}  // namespace
}  // namespace velmora::engine
