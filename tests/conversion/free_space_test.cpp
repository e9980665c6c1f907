#include "conversion/free_space.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "platform/path_text.h"

namespace velmora::conversion {
namespace {

constexpr std::uint64_t kMiB = 1 << 20;

TEST(FreeSpace, EqualSizesAreRefused) {
  EXPECT_FALSE(IsEnoughSpace(500 * kMiB, 500 * kMiB));
  EXPECT_TRUE(IsEnoughSpace(500 * kMiB, 501 * kMiB));
  EXPECT_FALSE(IsEnoughSpace(501 * kMiB, 500 * kMiB));
}

TEST(FreeSpace, SizesCountInWholeMebibytes) {
  EXPECT_FALSE(IsEnoughSpace(kMiB, 2 * kMiB - 1));
  EXPECT_TRUE(IsEnoughSpace(2 * kMiB - 1, 2 * kMiB));
  EXPECT_FALSE(IsEnoughSpace(0, kMiB - 1)) << "an empty source needs one MiB";
}

TEST(FreeSpace, OfTheFreeMebibytesTheLow32BitsCount) {
  EXPECT_FALSE(IsEnoughSpace(0, (std::uint64_t{1} << 32) * kMiB));
  EXPECT_TRUE(IsEnoughSpace(0, ((std::uint64_t{1} << 32) + 1) * kMiB));
}

TEST(FreeSpace, ASourceThatCannotBeOpenedCountsAsEmpty) {
  EXPECT_TRUE(HasEnoughFreeSpace(platform::TextOfPath(std::filesystem::temp_directory_path()), u"/no such file"));
}

TEST(FreeSpace, ADestinationThatDoesNotExistIsMeasuredAtItsNearestFolder) {
  const auto path = std::filesystem::temp_directory_path() / "no such folder" / "nor this";
  EXPECT_TRUE(HasEnoughFreeSpace(platform::TextOfPath(path), u"/no such file"));
  EXPECT_TRUE(HasEnoughFreeSpace(u"no such folder", u"/no such file"));
  EXPECT_TRUE(HasEnoughFreeSpace(u"", u"/no such file")) << "the current folder";
}

}  // namespace
}  // namespace velmora::conversion
