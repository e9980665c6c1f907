#include "platform/process.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <future>
#include <string>

#include "platform/arguments.h"
#include "platform/path_text.h"
#include "platform/windows/win32.h"

namespace velmora::platform {
namespace {

TEST(Process, KnowsItsOwnFileAndFindsItselfRunning) {
  const auto path = ProgramPath();
  ASSERT_TRUE(path);
  EXPECT_EQ(path->filename(), "velmora_platform_tests.exe");
  EXPECT_THAT(RunningPrograms(), testing::Contains("velmora_platform_tests.exe"));
}

TEST(Process, AFileThatCannotBeRunIsNotStarted) {
  const auto started = StartProgram("C:\\no such program.exe");
  ASSERT_FALSE(started);
  EXPECT_EQ(started.error().kind, FailureKind::kNotFound);
  EXPECT_FALSE(StartProgram("C:\\windows"));
}

/// What this program is started with by the test below; as a test of its own it is none.
constexpr const char* kEcho = "--gtest_filter=Process.DISABLED_EndsWellWhereItsWordsAreAsTheyWere";

std::vector<std::string> HardWords() {
  return {
      "a b", "", "\"", "\\", "a\\\"b\\", "caf\xC3\xA9 \xED\xA0\x80", "a\\\\ b\\\\", "--gtest_also_run_disabled_tests"};
}

TEST(Process, DISABLED_EndsWellWhereItsWordsAreAsTheyWere) {
  std::vector<std::string> words = ProgramArguments(0, nullptr);
  ASSERT_EQ(words.front(), kEcho);
  words.erase(words.begin());
  EXPECT_EQ(words, HardWords());
}

TEST(Process, AStartedProgramGetsItsArgumentsWhateverIsInThem) {
  std::vector<std::string> words = HardWords();
  words.insert(words.begin(), kEcho);
  std::promise<bool> ended;
  ASSERT_TRUE(StartProgram(*ProgramPath(), words, [&](bool well) { ended.set_value(well); }));
  EXPECT_TRUE(ended.get_future().get());
}

TEST(Process, HasAPeakOfMemory) { EXPECT_GT(PeakRssKiB(), 100u); }

}  // namespace
}  // namespace velmora::platform
