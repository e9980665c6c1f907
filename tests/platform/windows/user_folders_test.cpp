#include "platform/user_folders.h"

#include <gtest/gtest.h>

namespace velmora::platform {
namespace {

TEST(UserFolders, LieInTheProfileOfTheUser) {
  const auto config = ConfigFolder();
  ASSERT_TRUE(config);
  EXPECT_EQ(config->filename(), "velmora");
  EXPECT_EQ(config->parent_path().filename(), "Roaming");
  EXPECT_EQ(DataFolder()->filename(), "Local");
  EXPECT_EQ(DataFolder()->parent_path(), config->parent_path().parent_path());
  EXPECT_FALSE(UserName().empty());
}

}  // namespace
}  // namespace velmora::platform
