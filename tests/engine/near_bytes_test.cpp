#include "engine/near_bytes.h"

#include <gtest/gtest.h>

#include <atomic>
#include <random>
#include <thread>

#include "engine/bad_disk.h"
#include "platform/memory_file.h"

namespace velmora::engine {
namespace {

constexpr std::size_t kOneWindow = NearBytes::kWindow;
constexpr std::size_t kSizeOfDisk = 30 * kOneWindow + 100;

/// By the number of jobs.
class NearBytesTest : public ::testing::TestWithParam<unsigned> {
 protected:
  NearBytesTest() {
    std::mt19937_64 any(1);
    for (std::byte& byte : content_) byte = static_cast<std::byte>(any());
    Open({});
  }

  void Open(std::vector<BadPlace> bad, bool canPrefetch = false) {
    auto disk = std::make_shared<BadDisk>(std::make_unique<platform::MemoryFile>(content_), std::move(bad));
    if (canPrefetch) disk->prefetched = &prefetched_;
    disk_ = std::move(disk);
    bytes_ = std::make_unique<NearBytes>(disk_, workers_);
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

  /// A small read in every 10,000 bytes from one offset to before another; `times` of them in all.
  testing::AssertionResult AreReadHereAndThere(std::uint64_t begin, std::uint64_t end, int& times) {
    for (std::uint64_t offset = begin; offset < end; offset += 10'000, ++times) {
      const auto isRead = IsRead(offset, 500);
      if (!isRead) return isRead;
    }
    return testing::AssertionSuccess();
  }

  /// Small reads of all bytes from one offset to before another.
  testing::AssertionResult AreRead(std::uint64_t begin, std::uint64_t end) {
    for (std::uint64_t offset = begin; offset < end; offset += 1000) {
      const auto isRead = IsRead(offset, static_cast<std::size_t>(std::min<std::uint64_t>(1000, end - offset)));
      if (!isRead) return isRead;
    }
    return testing::AssertionSuccess();
  }

  /// How often the disk was read once all that is to be read ahead is; where there are threads, this is `ahead` times
  /// more often than was asked for.
  testing::AssertionResult WasReadFor(int times, int ahead) {
    AwaitReads();
    const int expected = times + (GetParam() > 1 ? ahead : 0);
    if (disk_->reads == expected) return testing::AssertionSuccess();
    return testing::AssertionFailure() << "read " << disk_->reads << " times, not " << expected;
  }

  /// Returns when all that is to be read ahead is read, where there are threads to do so: steps are begun in their
  /// order, so when all threads have met here, none of them is at an earlier one.
  void AwaitReads() {
    std::atomic<unsigned> missing = GetParam();  // a latch of the library for Windows (GCC 12) may sleep for ever
    const auto meet = [&] {
      for (--missing; missing != 0;) std::this_thread::yield();
    };
    std::vector<std::unique_ptr<platform::Workers::Step>> last;
    for (unsigned i = 1; i < GetParam(); ++i) last.push_back(workers_.Start(meet));
    meet();
  }

  platform::Workers workers_{GetParam()};
  std::vector<std::pair<std::uint64_t, std::uint64_t>> prefetched_;
  std::vector<std::byte> content_ = std::vector<std::byte>(kSizeOfDisk);
  std::shared_ptr<const BadDisk> disk_;
  std::unique_ptr<NearBytes> bytes_;
};

INSTANTIATE_TEST_SUITE_P(Jobs, NearBytesTest, testing::Values(1u, 2u, 5u));

TEST_P(NearBytesTest, EveryReadGivesTheBytesOfTheFile) {
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

TEST_P(NearBytesTest, ReadsThatFollowOneAnotherTakeOneForEachWindowAndEverLargerOnes) {
  ASSERT_TRUE(AreRead(0, kSizeOfDisk));
  // One that was near nothing; windows 0 and 1; then 1, 2 and 4 of them, and 8 at a time up to the end.
  EXPECT_TRUE(WasReadFor(1 + 2 + 3 + 3, 0));
}

TEST_P(NearBytesTest, LargeReadsAreServedFromWhatWasReadAhead) {
  ASSERT_TRUE(AreRead(0, 2 * kOneWindow));
  ASSERT_TRUE(IsRead(2 * kOneWindow + 100, 60000));
  ASSERT_TRUE(IsRead(3 * kOneWindow + 100, 60000));
  EXPECT_TRUE(WasReadFor(1 + 2 + 2, 2));
}

TEST_P(NearBytesTest, AWindowThatFollowsMayLieBehindOneThatNobodyAskedFor) {
  ASSERT_TRUE(AreRead(0, 3000));
  ASSERT_TRUE(IsRead(2 * kOneWindow - 100, 100)) << "far from the last";
  ASSERT_TRUE(AreRead(2 * kOneWindow, 2 * kOneWindow + 1000));
  ASSERT_TRUE(IsRead(3 * kOneWindow, 60000));
  EXPECT_TRUE(WasReadFor(2 + 1 + 1 + 1, 2));
}

TEST_P(NearBytesTest, AWindowAheadMayBePassedOver) {
  ASSERT_TRUE(AreRead(0, 3 * kOneWindow));  // ahead are two windows and then four
  AwaitReads();
  ASSERT_TRUE(AreRead(5 * kOneWindow, 9 * kOneWindow));
  AwaitReads();
  ASSERT_TRUE(AreRead(9 * kOneWindow, 17 * kOneWindow)) << "eight are ahead of those four";
  EXPECT_TRUE(WasReadFor(1 + 2 + 1 + 1 + 1, 1 + 2)) << "the first was for nothing, and two are ahead at the end";
}

TEST_P(NearBytesTest, WhatWasReadAheadElsewhereIsNotTakenForWhatFollows) {
  ASSERT_TRUE(AreRead(20 * kOneWindow, 23 * kOneWindow));  // ahead are two windows and then four
  AwaitReads();
  ASSERT_TRUE(AreRead(0, 9 * kOneWindow));
  // Of the windows from 0 on none is read alone that lies in a larger one: 0, 1, 2, two and four.
  EXPECT_TRUE(WasReadFor((1 + 2 + 1) + (1 + 2 + 1 + 1 + 1), 2 + 2));
}

TEST_P(NearBytesTest, WhereNoWindowFollowsNothingIsReadAhead) {
  for (const std::uint64_t window : {20, 10, 13, 5})
    ASSERT_TRUE(AreRead(window * kOneWindow, window * kOneWindow + 3000));
  EXPECT_TRUE(WasReadFor(2 * 4, 0));
  EXPECT_EQ(disk_->bytesRead, 4 * (1000 + kOneWindow + 16384));
}

TEST_P(NearBytesTest, ADiskThatFailsAheadIsReadAsItIsAskedFor) {
  Open({{2 * kOneWindow + 70000, 2 * kOneWindow + 70512}});
  ASSERT_TRUE(AreRead(0, 3 * kOneWindow)) << "though the window cannot be read";
  EXPECT_EQ(disk_->failures, 1);
  EXPECT_FALSE(IsRead(2 * kOneWindow + 69800, 1000));
  EXPECT_EQ(disk_->failures, 2);
  ASSERT_TRUE(AreRead(4 * kOneWindow, 5 * kOneWindow));
  EXPECT_EQ(disk_->failures, 2);
}

TEST_P(NearBytesTest, BehindAWindowThatFailedNothingIsReadAhead) {
  Open({{kOneWindow + 30000, kOneWindow + 30512}});
  ASSERT_TRUE(AreRead(0, kOneWindow));
  ASSERT_TRUE(AreRead(kOneWindow + 17000, kOneWindow + 20000));
  EXPECT_TRUE(WasReadFor(2 + (1 + 3), 0)) << "once for the window, and then as it is asked for";
}

TEST_P(NearBytesTest, WhatIsReadAheadOfWhatFailedIsGivenUp) {
  Open({{4 * kOneWindow, 4 * kOneWindow + 512}});
  ASSERT_TRUE(AreRead(0, 3 * kOneWindow));  // ahead are two windows, which cannot be read, and then four
  AwaitReads();
  ASSERT_TRUE(IsRead(3 * kOneWindow + 17000, 1000));
  EXPECT_EQ(disk_->failures, 1);
  const std::uint64_t before = disk_->bytesRead;
  ASSERT_TRUE(AreRead(5 * kOneWindow, 5 * kOneWindow + 3000));
  EXPECT_EQ(disk_->bytesRead - before, 3000U);
}

TEST_P(NearBytesTest, ReadsThatGoToAndFroOverTheEndOfAWindowTakeNoMore) {
  for (int i = 0; i < 100; ++i) {
    ASSERT_TRUE(IsRead(2 * kOneWindow - 9000 + 10U * static_cast<unsigned>(i), 500));
    ASSERT_TRUE(IsRead(2 * kOneWindow + 20000 + 10U * static_cast<unsigned>(i), 500));
  }
  EXPECT_TRUE(WasReadFor(3, 0));
}

TEST_P(NearBytesTest, NoWindowIsReadAnyMoreBehindReadsOfAllBytes) {
  Open({}, true);
  ASSERT_TRUE(AreRead(0, 5 * kOneWindow));
  int times = 0;
  ASSERT_TRUE(AreReadHereAndThere(5 * kOneWindow, 20 * kOneWindow, times));
  AwaitReads();
  const std::uint64_t before = disk_->bytesRead;
  ASSERT_TRUE(AreReadHereAndThere(20 * kOneWindow, 29 * kOneWindow, times));
  EXPECT_EQ(disk_->bytesRead - before, 59U * 500);
}

TEST_P(NearBytesTest, ReadsThatLieFarApartAreMadeAsTheyAre) {
  Open({}, true);
  for (std::uint64_t i = 0; i < 30; ++i) ASSERT_TRUE(IsRead(i * 7 % 10 * kOneWindow + i, 500));
  EXPECT_EQ(disk_->reads, 30);
  EXPECT_EQ(disk_->bytesRead, 30U * 500);
  EXPECT_EQ(prefetched_.size(), 0U);
}

TEST_P(NearBytesTest, OfALittleHereAndThereNoWindowIsReadWhereTheSystemBringsTheRest) {
  Open({}, true);
  int times = 0;
  ASSERT_TRUE(AreReadHereAndThere(kOneWindow + 100, 10 * kOneWindow, times));
  EXPECT_EQ(disk_->reads, times);
  EXPECT_EQ(disk_->bytesRead, 500U * static_cast<unsigned>(times));
  std::uint64_t end = kOneWindow;  // the one around the second read, which is the first that is near another
  for (const auto& [from, to] : prefetched_) {
    EXPECT_EQ(from, end) << "no byte twice, and none passed over";
    EXPECT_EQ(to - from, 2 * kOneWindow);
    end = to;
  }
  EXPECT_GE(end, 10 * kOneWindow - 10'000 + (1 << 20)) << "a megabyte ahead of the reader";
  EXPECT_LT(end, 10 * kOneWindow + (1 << 20) + 2 * kOneWindow);
}

TEST_P(NearBytesTest, TheSystemIsAskedForNothingBehindTheEnd) {
  Open({}, true);
  int times = 0;
  ASSERT_TRUE(AreReadHereAndThere(28 * kOneWindow, kSizeOfDisk, times));
  ASSERT_EQ(prefetched_.size(), 2U);
  EXPECT_EQ(prefetched_.back().first, 30 * kOneWindow) << "of 100 bytes";
}

TEST_P(NearBytesTest, ReadsThatGoElsewhereHaveTheSystemBringWhatLiesThere) {
  Open({}, true);
  int times = 0;
  ASSERT_TRUE(AreReadHereAndThere(20 * kOneWindow, 21 * kOneWindow, times));
  prefetched_.clear();
  ASSERT_TRUE(AreReadHereAndThere(2 * kOneWindow, 3 * kOneWindow, times));
  ASSERT_FALSE(prefetched_.empty());
  EXPECT_EQ(prefetched_.front().first, 2 * kOneWindow);
}

TEST_P(NearBytesTest, OfALittleHereAndThereWindowsAreReadWhereTheSystemCannotBeAsked) {
  int times = 0;
  ASSERT_TRUE(AreReadHereAndThere(0, 20 * kOneWindow, times));
  EXPECT_LT(disk_->reads, 20) << "of " << times;
}

TEST_P(NearBytesTest, WindowsAreReadAgainWhereAllIsAskedForAgain) {
  Open({}, true);
  int times = 0;
  ASSERT_TRUE(AreReadHereAndThere(0, 10 * kOneWindow, times));
  const auto asked = prefetched_.size();
  ASSERT_TRUE(AreRead(10 * kOneWindow, 20 * kOneWindow));
  EXPECT_LT(disk_->reads, times + 50) << "though 655 were asked for";
  EXPECT_LE(prefetched_.size(), asked + 1);
}

TEST_P(NearBytesTest, ADiskThatFailedIsNotAskedToReadAheadByItself) {
  Open({{kOneWindow, kOneWindow + 512}}, true);
  EXPECT_FALSE(IsRead(0, 2 * kOneWindow)) << "large, as by who looks through all of it";
  int times = 0;
  ASSERT_TRUE(AreReadHereAndThere(3 * kOneWindow, 20 * kOneWindow, times));
  EXPECT_EQ(prefetched_.size(), 0U);
  EXPECT_LT(disk_->reads, 20) << "windows, and " << times << " were asked for";
}

TEST_P(NearBytesTest, ADiskThatFailsIsAskedForNoMoreThanIsWanted) {
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
