#include "engine/pieces_ahead.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <mutex>
#include <set>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "engine/bad_disk.h"
#include "forge/forge.h"
#include "platform/memory_file.h"

namespace velmora::engine {
namespace {

/// By the number of jobs.
class PiecesAheadTest : public testing::TestWithParam<unsigned> {
 protected:
  using Pieces = PiecesAhead<std::string>;

  void Open(const forge::Bytes& bytes, std::vector<BadPlace> bad = {}) {
    source_.Open(std::make_unique<BadDisk>(std::make_unique<platform::MemoryFile>(bytes), std::move(bad)));
  }

  platform::Workers workers_{GetParam()};
  Source source_;
};
INSTANTIATE_TEST_SUITE_P(Jobs, PiecesAheadTest, testing::Values(1u, 2u, 5u));

/// What a look sees of a piece.
std::string Told(const Piece& piece) {
  return std::to_string(piece.base) + " " + std::to_string(piece.begin) + " " + std::to_string(piece.end) + " " +
         std::string(piece.bytes.Chars());
}

TEST_P(PiecesAheadTest, PiecesComeInTheirOrderEachWithItsLeadAndTheLastEndsWithTheSource) {
  const std::string text = "..abcdefghijk";
  Open(
      {reinterpret_cast<const std::byte*>(text.data()), reinterpret_cast<const std::byte*>(text.data()) + text.size()});
  std::vector<std::string> told;
  for (Pieces pieces(source_, {.first = 2, .size = 4, .lead = 3}, Told, workers_); !pieces.IsEmpty(); pieces.Pop()) {
    pieces.Await();
    told.push_back(pieces.FrontShown());
    EXPECT_EQ(Told(pieces.Front()), told.back());
  }
  EXPECT_EQ(told, (std::vector<std::string>{"2 2 6 abcd", "3 6 10 bcdefgh", "7 10 13 fghijk"}));
}

TEST_P(PiecesAheadTest, ASourceThatEndsAheadOfTheFirstHasNone) {
  Open(forge::Noise(100, 1));
  EXPECT_TRUE(Pieces(source_, {.first = 100, .size = 4}, Told, workers_).IsEmpty());
}

/// Writes down where reads of it begin, and whose they are; a read that meets its bad bytes fails, and takes its time.
class SlowWhereBad : public platform::ByteSource {
 public:
  SlowWhereBad(forge::Bytes bytes, std::uint64_t badBegin, std::uint64_t badEnd)
      : file_(std::move(bytes)), badBegin_(badBegin), badEnd_(badEnd) {}
  std::uint64_t Size() const override { return file_.Size(); }
  platform::Result<std::size_t> ReadAt(std::uint64_t offset, std::span<std::byte> out) const override {
    {
      const std::lock_guard lock(mutex_);
      offsets.push_back(offset);
      threads.push_back(std::this_thread::get_id());
    }
    if (isHealed || offset >= badEnd_ || offset + out.size() <= badBegin_) return file_.ReadAt(offset, out);
    if (out.size() > kSector) std::this_thread::sleep_for(std::chrono::milliseconds(20));
    return tl::unexpected(platform::Failure{platform::FailureKind::kInputOutput, "disk", offset, "bad"});
  }

  static constexpr std::size_t kSector = 4096;
  bool isHealed = false;
  mutable std::vector<std::uint64_t> offsets;
  mutable std::vector<std::thread::id> threads;  ///< of the same reads

 private:
  platform::MemoryFile file_;
  std::uint64_t badBegin_;
  std::uint64_t badEnd_;
  mutable std::mutex mutex_;
};

TEST_P(PiecesAheadTest, NothingIsReadTwiceOrFarAheadOfWhatIsTaken) {
  constexpr std::size_t kSize = 1 << 16;
  constexpr std::size_t kMostAhead = 8;
  auto disk = std::make_unique<SlowWhereBad>(forge::Noise(40 * kSize, 1), 0, 0);
  const SlowWhereBad& observed = *disk;
  source_.Open(std::move(disk));
  for (Pieces pieces(source_, {.size = kSize}, Told, workers_); !pieces.IsEmpty(); pieces.Pop()) pieces.Await();
  ASSERT_EQ(observed.offsets.size(), 40u);
  for (std::size_t i = 0; i < observed.offsets.size(); ++i) {
    EXPECT_LE(observed.offsets[i], (i + kMostAhead) * kSize);
    EXPECT_GE(observed.offsets[i] + kMostAhead * kSize, i * kSize);
  }
  EXPECT_EQ(std::set(observed.offsets.begin(), observed.offsets.end()).size(), 40u);
}

// The bad bytes lie ahead of the second piece's lead, but in one sector with it: it can be read, and is known as bad.
TEST_P(PiecesAheadTest, WhatAPieceGaveUpIsZerosForTheNextHoweverManyJobsThereAre) {
  constexpr std::uint64_t kSize = 1 << 18;
  source_.Open(std::make_unique<SlowWhereBad>(forge::Noise(4 * kSize, 1), kSize - 3000, kSize - 2000));
  std::vector<std::string> told;
  Pieces pieces(source_, {.size = kSize, .lead = 1000}, Told, workers_);
  pieces.Await();
  pieces.Pop();
  pieces.Await();
  EXPECT_EQ(pieces.Front().bytes.Chars().substr(0, 1000), std::string(1000, '\0'));
  EXPECT_EQ(pieces.FrontShown(), Told(pieces.Front()));
  EXPECT_EQ(source_.Unread().Ranges(), (std::map<std::uint64_t, std::uint64_t>{{kSize - 4096, kSize}}));
}

TEST_P(PiecesAheadTest, WhatIsKnownToBeBadIsNotTriedAgain) {
  constexpr std::uint64_t kSize = 1 << 16;
  auto disk = std::make_unique<SlowWhereBad>(forge::Noise(8 * kSize, 1), 3 * kSize, 4 * kSize);
  SlowWhereBad& observed = *disk;
  source_.Open(std::move(disk));
  std::vector<std::byte> all(8 * kSize);
  ASSERT_EQ(source_.ReadAround(0, all), all.size());
  observed.isHealed = true;
  observed.offsets.clear();
  std::vector<std::byte> again;
  for (Pieces pieces(source_, {.size = kSize}, Told, workers_); !pieces.IsEmpty(); pieces.Pop()) {
    pieces.Await();
    const auto bytes = pieces.Front().bytes.Bytes();
    again.insert(again.end(), bytes.begin(), bytes.end());
  }
  EXPECT_EQ(again, all);
  EXPECT_EQ(std::ranges::count(observed.offsets, 3 * kSize), 0);
}

TEST_P(PiecesAheadTest, OnceSomethingIsBadNothingIsReadAhead) {
  constexpr std::uint64_t kSize = 1 << 16;
  constexpr std::uint64_t kBegunAhead = 8;  // at most, with the first
  auto disk = std::make_unique<SlowWhereBad>(forge::Noise(40 * kSize, 1), 10'000, 10'001);
  const SlowWhereBad& observed = *disk;
  source_.Open(std::move(disk));
  for (Pieces pieces(source_, {.size = kSize}, Told, workers_); !pieces.IsEmpty(); pieces.Pop()) pieces.Await();
  std::size_t readBehind = 0;
  for (std::size_t i = 0; i < observed.offsets.size(); ++i) {
    if (observed.offsets[i] < kBegunAhead * kSize) continue;
    ++readBehind;
    EXPECT_EQ(observed.threads[i], std::this_thread::get_id()) << observed.offsets[i];
  }
  EXPECT_EQ(readBehind, 40 - kBegunAhead);
}

TEST_P(PiecesAheadTest, OfABadStretchTheSameIsPassedOverForAnyNumberOfJobs) {
  Open(forge::Noise(4 << 20, 1), {{300'000, 1'900'000}, {2'000'000, 2'000'001}});
  for (Pieces pieces(source_, {.size = 1 << 18, .lead = 4096}, Told, workers_); !pieces.IsEmpty(); pieces.Pop()) {
    pieces.Await();
  }
  EXPECT_EQ(source_.Unread().Ranges(),
            (std::map<std::uint64_t, std::uint64_t>{{299'008, 1'900'544}, {1'998'848, 2'002'944}}));
}

TEST_P(PiecesAheadTest, WhatALookRaisesComesOutWhereItsPieceIsWaitedFor) {
  Open(forge::Noise(100, 1));
  const auto look = [](const Piece& piece) -> std::string {
    if (piece.begin == 40) throw std::runtime_error("a look");
    return {};
  };
  Pieces pieces(source_, {.size = 20}, look, workers_);
  for (int i = 0; i < 2; ++i, pieces.Pop()) EXPECT_NO_THROW(pieces.Await());
  EXPECT_THROW(pieces.Await(), std::runtime_error);
}

}  // namespace
}  // namespace velmora::engine
