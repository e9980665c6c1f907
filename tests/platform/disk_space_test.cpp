#include "platform/disk_space.h"

#include <gtest/gtest.h>

namespace velmora::platform {
namespace {

TEST(FreeSpace, OfAFolderIsThatOfItsFileSystem) {
  const auto free = FreeSpace(std::filesystem::temp_directory_path());
  ASSERT_TRUE(free);
  EXPECT_GT(*free, 0u);
}

TEST(FreeSpace, OfAPathThatDoesNotExistIsThatOfItsNearestFolder) {
  EXPECT_TRUE(FreeSpace(std::filesystem::temp_directory_path() / "no such folder" / "nor this one"));
  EXPECT_TRUE(FreeSpace("no such folder"));
  EXPECT_TRUE(FreeSpace(""));
}

}  // namespace
}  // namespace velmora::platform
