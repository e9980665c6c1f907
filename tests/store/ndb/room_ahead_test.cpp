#include "store/ndb/room_ahead.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "aids/shared_file.h"
#include "store/support/test_files.h"

namespace velmora::ndb {
namespace {

using platform::FailureKind;
using platform::Workers;

std::shared_ptr<test::SmallDisk> DiskOf(std::uint64_t bytes) { return std::make_shared<test::SmallDisk>(bytes); }

TEST(RoomAhead, WithOneJobTakesWhatIsNeededAndNoMore) {
  platform::MemoryFile file;
  RoomAhead room(file, Workers::WithoutThreads());
  ASSERT_TRUE(room.Require(1000));
  EXPECT_EQ(file.Size(), 1000u);
  ASSERT_TRUE(room.Require(400));
  EXPECT_EQ(file.Size(), 1000u);
}

TEST(RoomAhead, WithSeveralTakesMoreAheadAndGivesItBack) {
  Workers workers(2);
  test::SharedFile file(std::make_shared<platform::MemoryFile>());
  RoomAhead room(file, workers);
  ASSERT_TRUE(room.Require(1000));
  ASSERT_TRUE(room.Require(1001)) << "waits for what is on its way";
  EXPECT_GT(file.Size(), 500000u);
  ASSERT_TRUE(room.Trim(1000));
  EXPECT_EQ(file.Size(), 1000u);
  ASSERT_TRUE(room.Require(3000));
  EXPECT_GE(file.Size(), 3000u) << "what was given back is no longer there";
}

TEST(RoomAhead, OfALargeFileMoreIsTakenAheadThanOfASmallOne) {
  constexpr std::uint64_t kMiB = 1 << 20;
  const auto mostAhead = [](std::uint64_t from, std::uint64_t to) {
    Workers workers(2);
    test::SharedFile file(std::make_shared<platform::MemoryFile>());
    RoomAhead room(file, workers);
    std::uint64_t most = 0;
    for (std::uint64_t size = from; size <= to; size += kMiB / 16) {
      EXPECT_TRUE(room.Require(size));
      std::atomic<bool> isBehind = false;  // what is under way
      const auto last = workers.Start([&] { isBehind = true; });
      while (!isBehind) std::this_thread::yield();
      most = std::max(most, file.Size() - size);
    }
    return most;
  };
  EXPECT_LE(mostAhead(kMiB, 6 * kMiB), 3 * kMiB / 2);
  EXPECT_GT(mostAhead(64 * kMiB, 70 * kMiB), 5 * kMiB / 2);
  EXPECT_LE(mostAhead(64 * kMiB, 70 * kMiB), 3 * kMiB);
}

TEST(RoomAhead, ADiskWithoutRoomAheadIsFullOnlyWhenTheRoomIsNeeded) {
  Workers workers(2);
  test::SharedFile file(DiskOf(10000));
  RoomAhead room(file, workers);
  for (std::uint64_t size = 1000; size <= 10000; size += 1000) {
    ASSERT_TRUE(room.Require(size));
    EXPECT_EQ(file.Size(), size);
  }
  const auto full = room.Require(10001);
  ASSERT_FALSE(full);
  EXPECT_EQ(full.error().kind, FailureKind::kFull);
  EXPECT_EQ(file.Size(), 10000u);
}

TEST(RoomAhead, AFileThatWasClearedNeedsItsRoomAnew) {
  Workers workers(2);
  test::SharedFile file(DiskOf(10000));
  RoomAhead room(file, workers);
  ASSERT_TRUE(room.Require(9000));
  ASSERT_TRUE(room.Clear());
  EXPECT_EQ(file.Size(), 0u);
  ASSERT_TRUE(room.Require(500));
  EXPECT_GE(file.Size(), 500u);
  EXPECT_FALSE(room.Require(20000));
}

}  // namespace
}  // namespace velmora::ndb
