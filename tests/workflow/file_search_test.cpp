#include "workflow/file_search.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>

#include "platform/user_folders.h"
#include "platform/volumes.h"

namespace velmora::workflow {
namespace {

class FileSearchTest : public testing::Test {
 protected:
  void Write(const std::filesystem::path& path) {
    std::filesystem::create_directories((folder_->Path() / path).parent_path());
    std::ofstream(folder_->Path() / path) << "x";
  }

  void Walk() { WalkFolder(folder_->Path(), "*.OST", {}, idle_, observer_); }

  platform::Result<platform::TemporaryFolder> folder_ = platform::TemporaryFolder::Create();
  std::atomic<bool> idle_{false};
  std::vector<std::string> files_, folders_;
  SearchObserver observer_{
      .onFile = [this](const std::filesystem::path& file) { files_.push_back(file.filename().string()); },
      .onFolder = [this](const std::filesystem::path& folder) { folders_.push_back(folder.filename().string()); }};
};

TEST_F(FileSearchTest, OneFolderAndItsFilesAlone) {
  Write("a.ost");
  Write("b.OST.bak");
  Write("ost");
  Write("sub/c.ost");
  std::filesystem::create_directory(folder_->Path() / "d.ost");
  SearchFolder(folder_->Path(), "*.OST", observer_);
  EXPECT_EQ(files_, std::vector<std::string>{"a.ost"});
}

TEST_F(FileSearchTest, AWalkEntersHiddenFoldersAndAnyDepth) {
  std::filesystem::path deep = ".hidden";
  for (int i = 0; i < 60; ++i) deep /= "d";
  Write(deep / "mail.Ost");
  Walk();
  EXPECT_EQ(files_, std::vector<std::string>{"mail.Ost"});
  EXPECT_EQ(folders_.size(), 61u);
}

TEST_F(FileSearchTest, LinksToFoldersAreNotFollowed) {
  Write("sub/mail.ost");
  std::filesystem::create_directory_symlink(folder_->Path(), folder_->Path() / "sub" / "round");
  Walk();
  EXPECT_EQ(files_, std::vector<std::string>{"mail.ost"});
}

TEST_F(FileSearchTest, AnotherVolumeIsEnteredWhereItIsADriveAndNowhereElse) {
  // The devices have volumes of the system's own mounted below them.
  const auto devices = platform::ListFolder("/dev");
  const auto other =
      std::find_if(devices.begin(), devices.end(), [](const auto& entry) { return entry.isOtherVolume; });
  ASSERT_NE(other, devices.end()) << "a machine has the pseudo terminals, at least, mounted below /dev";
  const std::filesystem::path mounted = std::filesystem::path("/dev") / other->name;
  const auto enters = [&](const std::filesystem::path& from, const MountPoints& drives) {
    bool entered = false;
    observer_.onFolder = [&](const std::filesystem::path& folder) {
      entered = entered || folder.filename() == other->name;
    };
    WalkFolder(from, "*.OST", drives, idle_, observer_);
    return entered;
  };
  EXPECT_FALSE(enters("/dev", {}));
  EXPECT_FALSE(enters("/dev", {"/", "/dev"}));
  EXPECT_TRUE(enters("/dev", {"/", mounted}));
  EXPECT_TRUE(enters("/dev/../dev/", {mounted})) << "by whatever name the search begins";
}

TEST_F(FileSearchTest, StopsAtTheNextFolder) {
  for (const char* name : {"a/x/one.ost", "b/x/two.ost", "c/x/three.ost"}) Write(name);
  observer_.onFile = [this](const std::filesystem::path& file) {
    files_.push_back(file.filename().string());
    idle_ = true;
  };
  Walk();
  EXPECT_EQ(files_.size(), 1u);
  EXPECT_EQ(folders_.size(), 2u);
}

TEST_F(FileSearchTest, AStoppedSearchWalksNothing) {
  Write("a/mail.ost");
  idle_ = true;
  Walk();
  EXPECT_TRUE(folders_.empty());
}

TEST_F(FileSearchTest, ANameThatIsNoTextKeepsItsBytes) {
  Write("caf\xE9.ost");
  std::filesystem::path found;
  observer_.onFile = [&](const std::filesystem::path& file) { found = file; };
  SearchFolder(folder_->Path(), "*.OST", observer_);
  EXPECT_EQ(found, folder_->Path() / "caf\xE9.ost");
}

}  // namespace
}  // namespace velmora::workflow
