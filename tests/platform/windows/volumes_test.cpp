#include "platform/volumes.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <string>

#include "platform/user_folders.h"

namespace velmora::platform {
namespace {

TEST(Volumes, TheDriveOfTheSystemIsOneOfThem) {
  const auto drive = WindowsDrive();
  ASSERT_TRUE(drive);
  EXPECT_THAT(MountedVolumes(), testing::Contains(Volume{*drive, false}));
}

TEST(ListFolder, TellsFoldersFromFiles) {
  const auto folder = TemporaryFolder::Create();
  std::filesystem::create_directory(folder->Path() / "sub");
  std::ofstream(folder->Path() / "file") << "x";
  std::vector<std::wstring> found;
  for (const FolderEntry& entry : ListFolder(folder->Path())) {
    found.push_back((entry.isFolder ? L"folder " : L"file ") + entry.name.native());
    EXPECT_FALSE(entry.isOtherVolume);
  }
  EXPECT_THAT(found, testing::UnorderedElementsAre(L"file file", L"folder sub"));
}

TEST(ListFolder, AFolderThatCannotBeReadGivesNothing) { EXPECT_TRUE(ListFolder("C:\\no such folder").empty()); }

}  // namespace
}  // namespace velmora::platform
