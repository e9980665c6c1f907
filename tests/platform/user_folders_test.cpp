#include "platform/user_folders.h"

#include <gtest/gtest.h>

#include <fstream>

namespace velmora::platform {
namespace {

TEST(TemporaryFolder, GoesWithAllThatItHolds) {
  std::filesystem::path path;
  {
    auto folder = TemporaryFolder::Create();
    ASSERT_TRUE(folder);
    path = folder->Path();
    std::filesystem::create_directories(path / "a" / "b");
    std::ofstream(path / "a" / "file") << "x";
  }
  EXPECT_FALSE(std::filesystem::exists(path));
}

}  // namespace
}  // namespace velmora::platform
