#include "platform/volumes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>

#include "platform/user_folders.h"

namespace velmora::platform {
namespace {

TEST(Volumes, ThisMachineHasARootVolume) {
  const std::vector<Volume> volumes = MountedVolumes();
  ASSERT_FALSE(volumes.empty());
  EXPECT_EQ(volumes.front().mountPoint, "/");
}

TEST(ListFolderTest, TellsFoldersFromFilesAndFollowsLinksToFilesAlone) {
  const auto folder = TemporaryFolder::Create();
  std::filesystem::create_directory(folder->Path() / "sub");
  std::ofstream(folder->Path() / "file") << "x";
  std::filesystem::create_symlink("file", folder->Path() / "to file");
  std::filesystem::create_symlink("sub", folder->Path() / "to folder");
  std::filesystem::create_symlink("nowhere", folder->Path() / "to nothing");
  std::vector<std::string> found;
  for (const FolderEntry& entry : ListFolder(folder->Path())) {
    found.push_back((entry.isFolder ? "folder " : "file ") + entry.name.native());
    EXPECT_FALSE(entry.isOtherVolume);
  }
  std::sort(found.begin(), found.end());
  EXPECT_EQ(found, (std::vector<std::string>{"file file", "file to file", "folder sub"}));
}

TEST(ListFolderTest, AFolderThatCannotBeReadGivesNothing) { EXPECT_TRUE(ListFolder("/no such folder").empty()); }

TEST(ListFolderTest, SeesWhereAnotherVolumeBegins) {
  const auto root = ListFolder("/");
  const auto proc =
      std::find_if(root.begin(), root.end(), [](const FolderEntry& entry) { return entry.name == "proc"; });
  ASSERT_NE(proc, root.end()) << "every Linux that runs programs mounts it";
  EXPECT_TRUE(proc->isOtherVolume);
}

}  // namespace
}  // namespace velmora::platform
