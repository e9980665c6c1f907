#include "store/ndb/write_window.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "aids/shared_file.h"
#include "store/format/block.h"
#include "store/format/checksum.h"
#include "store/support/failures.h"
#include "store/support/test_files.h"

namespace velmora::ndb {
namespace {

using platform::Workers;

/// With threads and without: nothing that a file gets depends on it.
class WriteWindowTest : public ::testing::TestWithParam<unsigned> {
 protected:
  Workers workers_{GetParam()};
  std::shared_ptr<platform::MemoryFile> bytes_ = std::make_shared<platform::MemoryFile>();
  test::SharedFile file_{bytes_};
};
INSTANTIATE_TEST_SUITE_P(Jobs, WriteWindowTest, ::testing::Values(1u, 2u, 4u));

void Put(WriteWindow& window, std::uint64_t ib, std::size_t size, int value) {
  std::ranges::fill(window.Place(ib, size), static_cast<std::byte>(value));
}

int ByteAt(const WriteWindow& window, std::uint64_t ib) {
  std::byte byte{0xEE};
  bool isEncoded = false;
  return window.ReadBlock(ib, std::span(&byte, 1), isEncoded) == 1 ? std::to_integer<int>(byte) : -1;
}

TEST_P(WriteWindowTest, JoinsWritesThatFollowOneAnother) {
  int writes = 0;
  test::WatchedFile file([&](const auto&) { ++writes; });
  WriteWindow window(file, workers_);
  for (std::uint64_t i = 0; i < 10; ++i) Put(window, 1000 + i * 100, 100, static_cast<int>(i));
  EXPECT_EQ(writes, 0);
  EXPECT_EQ(ByteAt(window, 1550), 5) << "read before it is in the file";
  window.Flush();
  window.Flush();
  EXPECT_EQ(writes, 1);
  EXPECT_EQ(file.Size(), 2000u);
  EXPECT_EQ(ByteAt(window, 1550), 5);
}

TEST_P(WriteWindowTest, StartsAnewElsewhereAndWhenItIsFull) {
  platform::MemoryFile file;
  WriteWindow window(file_, workers_);
  Put(window, 0, WriteWindow::kCapacity, 1);
  Put(window, WriteWindow::kCapacity, 64, 2);
  EXPECT_EQ(ByteAt(window, 0), 1) << "on its way to the file";
  EXPECT_EQ(file_.Size(), WriteWindow::kCapacity);
  Put(window, 1 << 20, 64, 3);
  EXPECT_EQ(ByteAt(window, WriteWindow::kCapacity), 2);
  EXPECT_EQ(ByteAt(window, 1 << 20), 3);
  window.Flush();
  EXPECT_EQ(file_.Size(), (1u << 20) + 64);
}

TEST_P(WriteWindowTest, GoesOnOverAGapInWhichNothingWasEverWritten) {
  int writes = 0;
  test::WatchedFile file([&](const auto&) { ++writes; });
  WriteWindow window(file, workers_);
  Put(window, 4096, 64, 1);
  Put(window, 5000, 64, 2);
  EXPECT_EQ(ByteAt(window, 4200), 0);
  window.Flush();
  EXPECT_EQ(writes, 1);
  Put(window, 4160, 64, 3);  // in the gap
  Put(window, 4900, 64, 4);  // behind it, and ahead of what is in the file
  window.Flush();
  EXPECT_EQ(writes, 3);
  EXPECT_EQ(ByteAt(window, 5000), 2);
  EXPECT_EQ(ByteAt(window, 4160), 3);
  EXPECT_EQ(ByteAt(window, 4224), 0);
  EXPECT_EQ(ByteAt(window, 4900), 4);
}

TEST_P(WriteWindowTest, WritesAPlaceAgain) {
  platform::MemoryFile file;
  WriteWindow window(file_, workers_);
  Put(window, 0, 300, 1);
  Put(window, 100, 100, 2);
  EXPECT_EQ(file_.Size(), 0u);
  Put(window, 250, 100, 3);  // over the end of the window
  EXPECT_EQ(ByteAt(window, 300), 3);
  window.Flush();
  EXPECT_EQ(ByteAt(window, 99), 1);
  EXPECT_EQ(ByteAt(window, 199), 2);
  EXPECT_EQ(ByteAt(window, 249), 1);
  EXPECT_EQ(ByteAt(window, 250), 3);
  EXPECT_EQ(ByteAt(window, 349), 3);
}

TEST_P(WriteWindowTest, SealsBlocksOnTheWayToTheFile) {
  const std::vector<std::byte> data = test::Noise(1000);
  const Bid bid{0x1234};
  const std::uint64_t ib = 0x4400;
  platform::MemoryFile file;
  WriteWindow window(file_, workers_);
  std::ranges::copy(data, window.Place({ib, 1000, bid, CryptMethod::kPermute}).begin());
  std::vector<std::byte> out(data.size());
  bool isEncoded = true;
  EXPECT_EQ(window.ReadBlock(ib, out, isEncoded), out.size());
  EXPECT_FALSE(isEncoded);
  EXPECT_EQ(out, data);
  window.Flush();
  EXPECT_EQ(window.ReadBlock(ib, out, isEncoded), out.size());
  EXPECT_TRUE(isEncoded);
  std::vector<std::byte> encoded(data.size());
  EncodeBlock(CryptMethod::kPermute, bid, data, encoded);
  EXPECT_EQ(out, encoded);
  const std::span written = std::span(bytes_->Bytes()).subspan(ib);
  ASSERT_EQ(written.size(), 1024u);
  EXPECT_TRUE(std::ranges::all_of(written.subspan(1000, 8), [](std::byte byte) { return byte == std::byte{0}; }));
  const BlockTrailer trailer = DecodeBlockTrailer(written.last(16), generations::kUnicode);
  EXPECT_EQ(trailer.cb, 1000);
  EXPECT_EQ(trailer.wSig, ComputeSig(ib, Value(bid)));
  EXPECT_EQ(trailer.dwCRC, WeakCrc(encoded));
  EXPECT_EQ(trailer.bid, bid);
}

TEST_P(WriteWindowTest, TakesBlocksThatAreEncodedAsTheyAre) {
  const std::vector<std::byte> data = test::Noise(48);
  platform::MemoryFile file;
  WriteWindow window(file_, workers_);
  std::ranges::copy(data, window.Place({640, 48, Bid{8}, CryptMethod::kNone, 0xC0FFEE}).begin());
  std::vector<std::byte> out(data.size());
  bool isEncoded = false;
  EXPECT_EQ(window.ReadBlock(640, out, isEncoded), out.size());
  EXPECT_TRUE(isEncoded);
  window.Flush();
  const std::span written = std::span(bytes_->Bytes()).subspan(640);
  EXPECT_TRUE(std::ranges::equal(written.first(48), data));
  EXPECT_EQ(DecodeBlockTrailer(written.last(16), generations::kUnicode).dwCRC, 0xC0FFEEu);
}

TEST_P(WriteWindowTest, ForgetsABlockWhosePlaceIsTakenByAnother) {
  platform::MemoryFile file;
  WriteWindow window(file_, workers_);
  std::ranges::fill(window.Place({0, 100, Bid{4}, CryptMethod::kPermute}), std::byte{1});
  Put(window, 64, 64, 2);  // where its trailer would have been
  window.Flush();
  EXPECT_TRUE(
      std::ranges::all_of(std::span(bytes_->Bytes()).subspan(64), [](std::byte b) { return b == std::byte{2}; }));
}

TEST_P(WriteWindowTest, RaisesAFailureOfTheFileByEveryStepThatWrites) {
  test::FailingFile file(0);
  WriteWindow window(file, workers_);
  Put(window, 0, 64, 1);
  Put(window, 1 << 20, 64, 2);
  for (int i = 0; i < 2; ++i) {
    EXPECT_EQ(test::FailureOf([&] { Put(window, 1 << 22, 64, 3); }), FailureKind::kFull);
    EXPECT_EQ(test::FailureOf([&] { window.Flush(); }), FailureKind::kFull);
  }
  EXPECT_EQ(ByteAt(window, 1 << 20), 2);
}

}  // namespace
}  // namespace velmora::ndb
