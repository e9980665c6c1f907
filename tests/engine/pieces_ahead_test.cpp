#include "engine/pieces_ahead.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <mutex>
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

/// Writes down where it is read; the first read takes its time.
class SlowAtFirst : public platform::ByteSource {
 public:
  explicit SlowAtFirst(std::uint64_t size) : size_(size) {}
  std::uint64_t Size() const override { return size_; }
  platform::Result<std::size_t> ReadAt(std::uint64_t offset, std::span<std::byte> out) const override {
    if (offset == 0) std::this_thread::sleep_for(std::chrono::milliseconds(30));
    const std::lock_guard lock(mutex_);
    offsets.push_back(offset);
    return out.size();
  }

  mutable std::vector<std::uint64_t> offsets;

 private:
  const std::uint64_t size_;
  mutable std::mutex mutex_;
};

TEST_P(PiecesAheadTest, TheSourceIsReadInItsOrder) {
  auto slow = std::make_unique<SlowAtFirst>(4 << 20);
  const SlowAtFirst& observed = *slow;
  source_.Open(std::move(slow));
  std::size_t count = 0;
  for (Pieces pieces(source_, {.size = 1 << 19}, Told, workers_); !pieces.IsEmpty(); pieces.Pop(), ++count) {
    pieces.Await();
  }
  EXPECT_EQ(count, 8u);
  EXPECT_GE(observed.offsets.size(), 4u);
  EXPECT_TRUE(std::ranges::is_sorted(observed.offsets));
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
