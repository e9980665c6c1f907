#include "cli/progress.h"

#include <gtest/gtest.h>

#include "cli/console.h"

namespace velmora::cli {
namespace {

struct Screen {
  std::string text;
  Progress::Write Writer() {
    return [this](std::string_view piece) { text += piece; };
  }
};

TEST(Progress, EveryStageHasItsCaption) {
  EXPECT_EQ(StageCaption(1), "Opening OST file...");
  EXPECT_EQ(StageCaption(2), "Validating OST file...");
  EXPECT_EQ(StageCaption(3), "Creating new profile...");
  EXPECT_EQ(StageCaption(4), "") << "the node scan has none";
  EXPECT_EQ(StageCaption(5), "Validating Folder Structure...");
  EXPECT_EQ(StageCaption(6), "Collecting Folder Names...");
  EXPECT_EQ(StageCaption(7), "Converting Folder Items...");
  EXPECT_EQ(StageCaption(8), "Converting Mail Items...");
  EXPECT_EQ(StageCaption(9), "Closing file...");
  EXPECT_EQ(StageCaption(10), "Processing Wait...");
}

TEST(Progress, WithoutATerminalALinePerStageAndNoEscapes) {
  Screen screen;
  Progress progress({}, screen.Writer());
  progress.OnStage(1);
  progress.OnStage(4);
  progress.OnPercentage(50);
  progress.OnPercentage(51);
  progress.OnStage(5);
  progress.Clear();
  EXPECT_EQ(screen.text, "Opening OST file...\nValidating Folder Structure...\n");
}

TEST(Progress, OnATerminalTheBarIsDrawnAnew) {
  Screen screen;
  Progress progress({.bar = true, .color = false, .columns = 80}, screen.Writer());
  progress.OnStage(8);
  progress.OnPercentage(50);
  EXPECT_EQ(screen.text,
            "\r\033[K[###########...................]  39% Converting Mail Items..."
            "\r\033[K[####################..........]  69% Converting Mail Items...");
  screen.text.clear();
  progress.Clear();
  progress.Clear();
  EXPECT_EQ(screen.text, "\r\033[K");
}

TEST(Progress, TheSamePercentageIsNotDrawnTwiceAndOneAboveAHundredNotAtAll) {
  Screen screen;
  Progress progress({.bar = true}, screen.Writer());
  progress.OnPercentage(7);
  screen.text.clear();
  progress.OnPercentage(7);
  progress.OnPercentage(101);
  EXPECT_EQ(screen.text, "");
}

TEST(Progress, OfACopyItemsAndBytesAreShownInPlaceOfTheCaption) {
  Screen screen;
  Progress progress({.bar = true, .color = false, .columns = 80}, screen.Writer());
  Console console(&progress, screen.Writer(), [] {});
  console.OnEvent(engine::StageBegun{8});
  screen.text.clear();
  console.OnEvent(engine::ItemsCopied{617, 1234, 5'400'000, 10'800'000});
  EXPECT_EQ(screen.text, "") << "it is drawn with its percentage";
  console.OnEvent(engine::Progress{50, engine::Phase::kLater});
  EXPECT_EQ(screen.text, "\r\033[K[####################..........]  69% 617 of 1234 items, 5.4 MB of 10.8 MB");
  screen.text.clear();
  console.OnEvent(engine::StageBegun{9});
  EXPECT_EQ(screen.text, "\r\033[K[##############################] 100% Closing file...");
}

TEST(Progress, OfACopyThePaceAndTheTimeThatIsLeftAreShownOnceTheyCanBeTold) {
  Screen screen;
  std::chrono::steady_clock::time_point now{};
  Progress progress({.bar = true, .columns = 120, .stages = kCompleteStages, .now = [&] { return now; }},
                    screen.Writer());
  progress.OnStage(8);
  now += std::chrono::seconds(1);
  progress.OnCopied({100, 10'000, 5'000'000, 500'000'000});
  progress.OnPercentage(1);
  EXPECT_TRUE(screen.text.ends_with("39% 100 of 10000 items, 5.0 MB of 500.0 MB")) << "a second tells nothing";
  now += std::chrono::seconds(9);
  progress.OnCopied({1000, 10'000, 100'000'000, 500'000'000});
  progress.OnPercentage(20);
  EXPECT_TRUE(screen.text.ends_with("51% 1000 of 10000 items, 100.0 MB of 500.0 MB, 100 a second, 40 s left"))
      << screen.text << ": what is left is told by the bytes";
  now += std::chrono::seconds(9'990);
  progress.OnCopied({5000, 10'000, 250'000'000, 500'000'000});
  progress.OnPercentage(50);
  EXPECT_TRUE(screen.text.ends_with("a second, 2 h 46 min left")) << screen.text;
}

TEST(Progress, TheBarNeverGoesBack) {
  Screen screen;
  Progress progress({.bar = true, .stages = kVerifiedStages}, screen.Writer());
  const auto shown = [&] { return std::stoi(screen.text.substr(screen.text.rfind(']') + 1)); };
  int most = 0;
  for (const std::uint32_t stage : {1u, 2u, 3u, 8u, 2u, 9u}) {  // and if a stage came again
    progress.OnStage(stage);
    EXPECT_GE(shown(), most);
    for (int pass = 0; pass < 2; ++pass) {  // one that looks through the file again begins anew
      for (std::uint32_t percentage = 0; percentage <= 100; percentage += 20) {
        progress.OnPercentage(percentage);
        EXPECT_GE(shown(), most) << stage;
        most = shown();
      }
    }
  }
  EXPECT_EQ(most, 100);
}

TEST(Progress, OfACopyALineNowAndThenHasItemsAndBytes) {
  Screen screen;
  Progress progress({}, screen.Writer());
  progress.OnCopied({617, 1234, 5'400'000, 10'800'000});
  progress.OnPercentage(50);
  EXPECT_EQ(screen.text, "50%: 617 of 1234 items, 5.4 MB of 10.8 MB\n");
}

TEST(Progress, ColorIsAMatterOfStyle) {
  Screen screen;
  Progress({.bar = true, .color = true}, screen.Writer()).OnPercentage(1);
  EXPECT_NE(screen.text.find("\033[32m"), std::string::npos);
  screen.text.clear();
  Progress({.bar = true, .color = false}, screen.Writer()).OnPercentage(1);
  EXPECT_EQ(screen.text.find("\033[3"), std::string::npos);
}

TEST(Progress, TheBarNeverFillsTheLastColumn) {
  for (const int columns : {20, 40, 50, 60, 200}) {
    Screen screen;
    Progress progress({.bar = true, .color = false, .columns = columns}, screen.Writer());
    progress.OnStage(5);
    const std::size_t length = screen.text.size() - std::string_view("\r\033[K").size();
    EXPECT_LT(length, std::max(columns, 40)) << columns;
  }
}

TEST(Console, ShowsNoticesWithTheirTitleInPlaceOfTheBar) {
  Screen screen;
  Progress progress({.bar = true}, screen.Writer());
  Console console(&progress, screen.Writer(), [] {});
  progress.OnPercentage(1);
  screen.text.clear();
  console.OnEvent(engine::Notice{engine::NoticeKind::kNotValid, {}, {}});
  EXPECT_EQ(screen.text, "\r\033[KError: Pst/Ost file is not valid.\n");
  ASSERT_TRUE(console.LastError());
  EXPECT_EQ(console.LastError()->kind, engine::NoticeKind::kNotValid);
}

TEST(Console, AnInformationIsNoError) {
  Screen screen;
  Console console(nullptr, screen.Writer(), [] {});
  console.OnEvent(engine::Notice{engine::NoticeKind::kAborted, u"/out/x.pst", {}});
  EXPECT_EQ(screen.text, "Information: Recovery process aborted.\nRecovered at:/out/x.pst\n");
  EXPECT_FALSE(console.LastError());
}

TEST(Console, CountsBeforeTheRunCloses) {
  int counted = 0;
  Screen screen;
  Console console(nullptr, screen.Writer(), [&] { ++counted; });
  console.OnEvent(engine::StageBegun{8});
  EXPECT_EQ(counted, 0);
  console.OnEvent(engine::StageBegun{9});
  EXPECT_EQ(counted, 1);
  EXPECT_FALSE(console.IsDone());
  console.OnEvent(engine::Done{});
  EXPECT_TRUE(console.IsDone());
}

}  // namespace
}  // namespace velmora::cli
