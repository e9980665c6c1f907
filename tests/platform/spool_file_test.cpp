#include "platform/spool_file.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace velmora::platform {
namespace {

TEST(SpoolFile, KeepsItsBytesAcrossTheMoveToDisk) {
  SpoolFile spool;
  std::vector<std::byte> piece(300'000);
  for (int i = 0; i < 8; ++i) {
    std::ranges::fill(piece, static_cast<std::byte>(i + 1));
    ASSERT_TRUE(spool.Append(piece));
  }
  EXPECT_EQ(spool.Size(), 2'400'000u);
  std::vector<std::byte> all(2'400'010);
  ASSERT_EQ(*spool.ReadAt(0, all), 2'400'000u);
  for (std::size_t i = 0; i < 8; ++i) {
    EXPECT_EQ(all[i * 300'000], static_cast<std::byte>(i + 1));
    EXPECT_EQ(all[i * 300'000 + 299'999], static_cast<std::byte>(i + 1));
  }
}

TEST(SpoolFile, ReadsFromMemoryWhileSmall) {
  SpoolFile spool;
  const std::byte bytes[] = {std::byte{1}, std::byte{2}, std::byte{3}};
  ASSERT_TRUE(spool.Append(bytes));
  std::byte out[4] = {};
  EXPECT_EQ(*spool.ReadAt(1, out), 2u);
  EXPECT_EQ(out[0], std::byte{2});
  EXPECT_EQ(*spool.ReadAt(3, out), 0u);
}

}  // namespace
}  // namespace velmora::platform
