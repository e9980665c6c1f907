#include "engine/pieces_read.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "engine/bad_disk.h"
#include "platform/memory_file.h"

namespace velmora::engine {
namespace {

constexpr std::size_t kSizeOfSource = 10'000;
constexpr std::size_t kSectorOfDisk = 512;

/// Each byte tells its place.
std::byte ByteAt(std::size_t offset) { return static_cast<std::byte>(offset % 251); }

class PiecesReadTest : public ::testing::Test {
 protected:
  void Open(const std::vector<BadPlace>& bad) {
    std::vector<std::byte> bytes(kSizeOfSource);
    for (std::size_t i = 0; i < kSizeOfSource; ++i) bytes[i] = ByteAt(i);
    source_.Open(std::make_shared<BadDisk>(std::make_unique<platform::MemoryFile>(std::move(bytes)), bad));
  }
  void SetUp() override { Open({}); }

  Source source_;
  PiecesRead pieces_{source_};
};

TEST_F(PiecesReadTest, HoldWhatLiesInOnePiece) {
  pieces_.Read(1000, 2000);
  pieces_.Read(2000, 3000);
  EXPECT_TRUE(pieces_.Holds(1000, 1000));
  EXPECT_TRUE(pieces_.Holds(2999, 1));
  EXPECT_FALSE(pieces_.Holds(999, 2));
  EXPECT_FALSE(pieces_.Holds(1999, 2)) << "half of it in either piece";
  EXPECT_FALSE(pieces_.Holds(2999, 2));
  EXPECT_FALSE(pieces_.Holds(0, 1));
  EXPECT_FALSE(pieces_.Holds(UINT64_MAX, SIZE_MAX));
}

TEST_F(PiecesReadTest, HoldNoMoreThanTheSourceHas) {
  pieces_.Read(kSizeOfSource - 100, kSizeOfSource + 100);
  EXPECT_TRUE(pieces_.Holds(kSizeOfSource - 100, 100));
  EXPECT_FALSE(pieces_.Holds(kSizeOfSource - 100, 101));
}

TEST_F(PiecesReadTest, GiveEachByteToOneAlone) {
  pieces_.Read(1024, 4096);
  const std::span<std::byte> first = pieces_.Claim(1088, 200);
  ASSERT_EQ(first.size(), 200U);
  for (std::size_t i = 0; i < first.size(); ++i) EXPECT_EQ(first[i], ByteAt(1088 + i));
  EXPECT_TRUE(pieces_.Claim(1088, 200).empty()) << "again";
  EXPECT_TRUE(pieces_.Claim(1024, 65).empty()) << "reaches into it";
  EXPECT_TRUE(pieces_.Claim(1287, 64).empty()) << "has its last byte";
  EXPECT_EQ(pieces_.Claim(1024, 64).size(), 64U) << "ahead of it";
  EXPECT_EQ(pieces_.Claim(1344, 64).size(), 64U) << "behind it";
  EXPECT_TRUE(pieces_.Claim(4096, 64).empty()) << "not read";
}

TEST_F(PiecesReadTest, TellWhereTheNextPieceBegins) {
  EXPECT_EQ(pieces_.NextBegin(0), UINT64_MAX);
  pieces_.Read(1000, 2000);
  EXPECT_EQ(pieces_.NextBegin(0), 1000U);
  EXPECT_EQ(pieces_.NextBegin(1000), 1000U);
  EXPECT_EQ(pieces_.NextBegin(1001), UINT64_MAX);
}

TEST_F(PiecesReadTest, HaveZerosWhereTheDiskCannotBeRead) {
  Open({{kSectorOfDisk, 2 * kSectorOfDisk}});
  pieces_.Read(0, 3 * kSectorOfDisk);
  const std::span<std::byte> bytes = pieces_.Claim(0, 3 * kSectorOfDisk);
  ASSERT_EQ(bytes.size(), 3 * kSectorOfDisk);
  EXPECT_TRUE(std::ranges::all_of(bytes.subspan(kSectorOfDisk, kSectorOfDisk),
                                  [](std::byte byte) { return byte == std::byte{0}; }));
}

}  // namespace
}  // namespace velmora::engine
