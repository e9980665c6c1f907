#include "cli/options.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <regex>

namespace velmora::cli {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

std::variant<Options, Answer> Parse(std::vector<std::string> words) { return ParseCommandLine(std::move(words)); }

Answer AnswerTo(std::vector<std::string> words) {
  const auto parsed = Parse(std::move(words));
  const auto* answer = std::get_if<Answer>(&parsed);
  return answer != nullptr ? *answer : Answer{ExitCode::kDone, "(options)"};
}

TEST(Options, TakesSourceAndDestination) {
  const Options options = std::get<Options>(Parse({"a.ost", "out"}));
  EXPECT_EQ(options.source, "a.ost");
  EXPECT_EQ(options.destination, "out");
  EXPECT_FALSE(options.smart || options.dryRun || options.log || options.quiet || options.noProgress);
  EXPECT_EQ(options.report, "");
  EXPECT_EQ(options.trace, "");
  EXPECT_EQ(options.codePage.WindowsNumber(), 1252);
}

TEST(Options, TakesEveryOption) {
  const Options options = std::get<Options>(Parse({"--smart", "--codepage", "windows-932", "--report", "-", "--trace=t",
                                                   "--dry-run", "--log", "--quiet", "--no-progress", "a.ost", "out"}));
  EXPECT_TRUE(options.smart && options.dryRun && options.log && options.quiet && options.noProgress);
  EXPECT_EQ(options.report, "-");
  EXPECT_EQ(options.trace, "t");
  EXPECT_EQ(options.codePage.WindowsNumber(), 932);
}

TEST(Options, TakesTheOptionsOfTheCompleteConversion) {
  const Options alone = std::get<Options>(Parse({"--complete", "a.ost", "out"}));
  EXPECT_TRUE(alone.complete);
  EXPECT_FALSE(alone.hidden || alone.deleted || alone.verify);
  const Options all =
      std::get<Options>(Parse({"--complete", "--hidden", "--deleted", "--verify", "--codepage", "windows-932",
                               "--report", "-", "--log", "--quiet", "--no-progress", "a.ost", "out"}));
  EXPECT_TRUE(all.complete && all.hidden && all.deleted && all.verify && all.log && all.quiet && all.noProgress);
  EXPECT_EQ(all.codePage.WindowsNumber(), 932);
  EXPECT_FALSE(alone.at);
  EXPECT_EQ(std::get<Options>(Parse({"--complete", "--at", "12345678901", "a.ost", "out"})).at, 12345678901U);
  EXPECT_TRUE(std::get<Options>(Parse({"--complete", "--dry-run", "a.ost", "out"})).dryRun);
  EXPECT_FALSE(std::get<Options>(Parse({"a.ost", "out"})).complete);
}

TEST(Options, WorksOnAsManyThingsAsThereAreProcessorsUnlessItIsTold) {
  EXPECT_EQ(std::get<Options>(Parse({"a.ost", "out"})).jobs, platform::DefaultJobs());
  EXPECT_EQ(std::get<Options>(Parse({"--jobs", "1", "a.ost", "out"})).jobs, 1U);
  EXPECT_EQ(std::get<Options>(Parse({"--complete", "--jobs", "64", "a.ost", "out"})).jobs, 64U);
}

TEST(Options, OptionsThatDoNotGoTogetherAreNamed) {
  const std::pair<std::vector<std::string>, const char*> mistakes[] = {
      {{"--complete", "--smart", "a", "b"}, "--smart cannot go with --complete"},
      {{"--complete", "--trace", "t", "a", "b"}, "--trace cannot go with --complete"},
      {{"--complete", "--verify", "--dry-run", "a", "b"}, "--verify cannot go with --dry-run, which writes no store"},
      {{"--hidden", "a", "b"}, "--hidden needs --complete"},
      {{"--deleted", "a", "b"}, "--deleted needs --complete"},
      {{"--verify", "a", "b"}, "--verify needs --complete"},
      {{"--at", "0", "a", "b"}, "--at needs --complete"},
  };
  for (const auto& [words, what] : mistakes) {
    const Answer answer = AnswerTo(words);
    EXPECT_EQ(answer.code, ExitCode::kUsage);
    EXPECT_THAT(answer.text, StartsWith(std::string("velmora-convert: ") + what + "\n"));
  }
}

TEST(Options, NamesThatBeginWithADashStandBehindTwoDashes) {
  const Options options = std::get<Options>(Parse({"--smart", "--", "-a.ost", "--out"}));
  EXPECT_EQ(options.source, "-a.ost");
  EXPECT_EQ(options.destination, "--out");
}

TEST(Options, MistakesEndWithTheCodeForUsage) {
  for (const std::vector<std::string>& words : {std::vector<std::string>{},
                                                {"a.ost"},
                                                {"a", "b", "c"},
                                                {"--odd", "a", "b"},
                                                {"--complete", "--at", "-1", "a", "b"},
                                                {"--complete", "--at", "x", "a", "b"},
                                                {"--jobs", "0", "a", "b"},
                                                {"--jobs", "65", "a", "b"},
                                                {"--jobs", "many", "a", "b"},
                                                {"a", "b", "--report"},
                                                {"", "b"},
                                                {"a", ""},
                                                {"--codepage", "none-such", "a", "b"}}) {
    const Answer answer = AnswerTo(words);
    EXPECT_EQ(answer.code, ExitCode::kUsage);
    EXPECT_THAT(answer.text, StartsWith("velmora-convert: "));
    EXPECT_THAT(answer.text, HasSubstr("Try 'velmora-convert --help'."));
  }
}

TEST(Options, HelpBeginsWithExamplesAndNeedsNoFiles) {
  const Answer answer = AnswerTo({"--help"});
  EXPECT_EQ(answer.code, ExitCode::kDone);
  EXPECT_THAT(answer.text, StartsWith("Examples:\n"));
  for (const char* option :
       {"--complete", "--hidden", "--deleted", "--verify", "--at OFFSET", "--smart", "--jobs N", "--codepage NAME",
        "--report FILE", "--trace FILE", "--dry-run", "--log", "--quiet", "--no-progress", "--help", "--version"}) {
    EXPECT_THAT(answer.text, HasSubstr(std::string("\n  ") + option));
  }
  for (const ExitCodeRow& row : kExitCodes) EXPECT_THAT(answer.text, HasSubstr(std::string(row.meaning)));
}

TEST(Options, VersionIsOneLine) {
  const Answer answer = AnswerTo({"--version"});
  EXPECT_EQ(answer.code, ExitCode::kDone);
  EXPECT_TRUE(std::regex_match(answer.text, std::regex("velmora-convert \\d+\\.\\d+\\.\\d+\n"))) << answer.text;
}

}  // namespace
}  // namespace velmora::cli
