#include "platform/file_system.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <string>

#include "platform/user_folders.h"

namespace velmora::platform {
namespace {

class FileSystemTest : public testing::Test {
 protected:
  void Fill(const std::filesystem::path& file, const std::string& text) { std::ofstream(file) << text; }
  static std::string Contents(const std::filesystem::path& path) {
    std::ifstream file(path);
    return {std::istreambuf_iterator<char>(file), {}};
  }

  Result<TemporaryFolder> temporary_ = TemporaryFolder::Create();
  std::filesystem::path folder_ = temporary_->Path();
};

TEST_F(FileSystemTest, SeesWhatIsThereAndHowLongItIs) {
  EXPECT_TRUE(Exists(folder_));
  EXPECT_FALSE(Exists(folder_ / "file"));
  EXPECT_EQ(FileSize(folder_ / "file").error().kind, FailureKind::kNotFound);
  Fill(folder_ / "file", "hello");
  EXPECT_TRUE(Exists(folder_ / "file"));
  EXPECT_EQ(*FileSize(folder_ / "file"), 5u);
}

TEST_F(FileSystemTest, MakesAllFoldersOfAPathAndLeavesThoseThatAreThere) {
  EXPECT_TRUE(CreateFolders(folder_ / "a" / "b" / "c"));
  EXPECT_TRUE(Exists(folder_ / "a" / "b" / "c"));
  EXPECT_TRUE(CreateFolders(folder_ / "a" / "b" / "d"));
  EXPECT_TRUE(CreateFolders(folder_ / "a" / "b" / "d"));
  EXPECT_TRUE(Exists(folder_ / "a" / "b" / "d"));
  Fill(folder_ / "file", "x");
  EXPECT_FALSE(CreateFolders(folder_ / "file" / "a"));
}

TEST_F(FileSystemTest, ANewNameReplacesWhatHadIt) {
  Fill(folder_ / "old", "old");
  Fill(folder_ / "new", "new");
  ASSERT_TRUE(Replace(folder_ / "new", folder_ / "old"));
  EXPECT_EQ(Contents(folder_ / "old"), "new");
  EXPECT_FALSE(Exists(folder_ / "new"));
  EXPECT_EQ(Replace(folder_ / "none", folder_ / "old").error().kind, FailureKind::kNotFound);
}

TEST_F(FileSystemTest, KnowsTheRoomOfAFolderThatIsThere) {
  EXPECT_GT(FreeSpace(folder_).value_or(0), 0u);
  EXPECT_FALSE(FreeSpace(folder_ / "none"));
}

TEST_F(FileSystemTest, APathBecomesOneFromTheTop) {
  EXPECT_TRUE(AbsolutePath("a file").is_absolute());
  EXPECT_EQ(AbsolutePath("a file").filename(), "a file");
  EXPECT_EQ(AbsolutePath(folder_ / "b"), folder_ / "b");
}

TEST_F(FileSystemTest, APlaceIsTheSameByEachRoadToIt) {
  ASSERT_TRUE(CreateFolders(folder_ / "a"));
  EXPECT_EQ(RealPath(folder_ / "a" / ".." / "a"), RealPath(folder_ / "a"));
  EXPECT_TRUE(RealPath(folder_ / "a"));
  EXPECT_FALSE(RealPath(folder_ / "none"));
}

}  // namespace
}  // namespace velmora::platform
