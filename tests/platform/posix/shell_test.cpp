#include "platform/shell.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <fstream>
#include <future>
#include <iterator>
#include <memory>
#include <thread>

#include "platform/user_folders.h"

namespace velmora::platform {
namespace {

/// A search path that holds just what the test puts there.
class ShellTest : public testing::Test {
 protected:
  void SetUp() override { ::setenv("PATH", folder_->Path().c_str(), 1); }
  void TearDown() override { ::setenv("PATH", old_.c_str(), 1); }

  /// A program that writes its first argument down.
  void MakeProgram(const std::string& name) {
    const std::filesystem::path file = folder_->Path() / name;
    std::ofstream(file) << "#!/bin/sh\nprintf %s \"$1\" > '" << (folder_->Path() / "called").string()
                        << ".new'\n/bin/mv '" << (folder_->Path() / "called").string() << ".new' '"
                        << (folder_->Path() / "called").string() << "'\n";
    std::filesystem::permissions(file, std::filesystem::perms::owner_all);
  }

  /// One that has nothing to open anything with.
  void MakeRefusal(const std::string& name) {
    const std::filesystem::path file = folder_->Path() / name;
    std::ofstream(file) << "#!/bin/sh\nexit 3\n";
    std::filesystem::permissions(file, std::filesystem::perms::owner_all);
  }

  std::string Called() {
    const std::filesystem::path file = folder_->Path() / "called";
    for (int i = 0; i < 500 && !std::filesystem::exists(file); ++i)
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
    std::ifstream in(file);
    return {std::istreambuf_iterator<char>(in), {}};
  }

  std::string old_ = std::getenv("PATH");
  Result<TemporaryFolder> folder_ = TemporaryFolder::Create();
};

TEST_F(ShellTest, HandsAFolderToTheDesktop) {
  MakeProgram("xdg-open");
  EXPECT_GE(OpenWithShell(folder_->Path().string()), kShellSuccess);
  EXPECT_EQ(Called(), folder_->Path().string());
}

TEST_F(ShellTest, TellsAMissingFileFromAMissingFolder) {
  MakeProgram("xdg-open");
  EXPECT_EQ(OpenWithShell((folder_->Path() / "none").string()), kShellFileNotFound);
  EXPECT_EQ(OpenWithShell((folder_->Path() / "none" / "none").string()), kShellPathNotFound);
}

TEST_F(ShellTest, TellsThatTheDesktopHasNoProgramAfterAll) {
  MakeRefusal("xdg-open");
  const auto refused = std::make_shared<std::promise<void>>();
  EXPECT_GE(OpenWithShell(folder_->Path().string(), [refused] { refused->set_value(); }), kShellSuccess);
  EXPECT_EQ(refused->get_future().wait_for(std::chrono::seconds(5)), std::future_status::ready);
}

TEST_F(ShellTest, AnOpenerThatEndsWellHasNotRefused) {
  MakeProgram("xdg-open");
  const auto refused = std::make_shared<std::atomic<bool>>(false);
  EXPECT_GE(OpenWithShell(folder_->Path().string(), [refused] { *refused = true; }), kShellSuccess);
  EXPECT_EQ(Called(), folder_->Path().string());
  std::this_thread::sleep_for(std::chrono::milliseconds(100));
  EXPECT_FALSE(*refused);
}

TEST_F(ShellTest, TellsThatNothingOpensAnAddress) {
  EXPECT_EQ(OpenWithShell("https://www.velmora.example"), kShellNoProgram);
  EXPECT_FALSE(OpenInBrowser("https://www.velmora.example"));
}

TEST_F(ShellTest, HandsAnAddressToTheBrowserItself) {
  MakeProgram("x-www-browser");
  EXPECT_TRUE(OpenInBrowser("https://www.velmora.example"));
  EXPECT_EQ(Called(), "https://www.velmora.example");
}

}  // namespace
}  // namespace velmora::platform
