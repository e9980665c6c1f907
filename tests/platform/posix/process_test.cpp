#include "platform/process.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <fstream>
#include <thread>

#include "platform/user_folders.h"

namespace velmora::platform {
namespace {

TEST(Process, KnowsItsOwnFileAndFindsItselfRunning) {
  const auto path = ProgramPath();
  ASSERT_TRUE(path);
  EXPECT_EQ(path->filename(), "velmora_platform_tests");
  EXPECT_THAT(RunningPrograms(), testing::Contains("velmora_platform_tests"));
}

TEST(Process, AFileThatCannotBeRunIsNotStarted) {
  const auto started = StartProgram("/no such program");
  ASSERT_FALSE(started);
  EXPECT_EQ(started.error().kind, FailureKind::kNotFound);
  EXPECT_FALSE(StartProgram("/"));
}

TEST(Process, AStartedProgramGetsItsArguments) {
  auto folder = TemporaryFolder::Create();
  ASSERT_TRUE(folder);
  const std::filesystem::path mark = folder->Path() / "a file";
  ASSERT_TRUE(StartProgram("/bin/mkdir", {mark.string()}));
  for (int i = 0; i < 500 && !std::filesystem::exists(mark); ++i) {
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  EXPECT_TRUE(std::filesystem::is_directory(mark));
}

TEST(Process, HasAPeakOfMemory) { EXPECT_GT(PeakRssKiB(), 100u); }

}  // namespace
}  // namespace velmora::platform
