#include "store/ndb/write_window.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "store/support/test_files.h"

namespace velmora::ndb {
namespace {

void Put(WriteWindow& window, std::uint64_t ib, std::size_t size, int value) {
  std::ranges::fill(window.Place(ib, size), static_cast<std::byte>(value));
}

int ByteAt(const WriteWindow& window, std::uint64_t ib) {
  std::byte byte{0xEE};
  return window.Read(ib, std::span(&byte, 1)) == 1 ? std::to_integer<int>(byte) : -1;
}

TEST(WriteWindow, JoinsWritesThatFollowOneAnother) {
  int writes = 0;
  test::WatchedFile file([&](const auto&) { ++writes; });
  WriteWindow window(file);
  for (std::uint64_t i = 0; i < 10; ++i) Put(window, 1000 + i * 100, 100, static_cast<int>(i));
  EXPECT_EQ(writes, 0);
  EXPECT_EQ(ByteAt(window, 1550), 5) << "read before it is in the file";
  window.Flush();
  window.Flush();
  EXPECT_EQ(writes, 1);
  EXPECT_EQ(file.Size(), 2000u);
  EXPECT_EQ(ByteAt(window, 1550), 5);
}

TEST(WriteWindow, StartsAnewElsewhereAndWhenItIsFull) {
  platform::MemoryFile file;
  WriteWindow window(file);
  Put(window, 0, WriteWindow::kCapacity, 1);
  Put(window, WriteWindow::kCapacity, 64, 2);
  EXPECT_EQ(file.Size(), WriteWindow::kCapacity);
  Put(window, 1 << 20, 64, 3);
  EXPECT_EQ(file.Size(), WriteWindow::kCapacity + 64);
  EXPECT_EQ(ByteAt(window, WriteWindow::kCapacity), 2);
  EXPECT_EQ(ByteAt(window, 1 << 20), 3);
}

TEST(WriteWindow, WritesAPlaceAgain) {
  platform::MemoryFile file;
  WriteWindow window(file);
  Put(window, 0, 300, 1);
  Put(window, 100, 100, 2);
  EXPECT_EQ(file.Size(), 0u);
  Put(window, 250, 100, 3);  // over the end of the window
  EXPECT_EQ(ByteAt(window, 300), 3);
  window.Flush();
  EXPECT_EQ(ByteAt(window, 99), 1);
  EXPECT_EQ(ByteAt(window, 199), 2);
  EXPECT_EQ(ByteAt(window, 249), 1);
  EXPECT_EQ(ByteAt(window, 250), 3);
  EXPECT_EQ(ByteAt(window, 349), 3);
}

}  // namespace
}  // namespace velmora::ndb
