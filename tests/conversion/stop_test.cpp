// Holding a run and stopping it for good.
#include <atomic>
#include <chrono>
#include <thread>

#include "conversion/run_fixture.h"

namespace velmora::conversion {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

class StopTest : public RunTest {
 protected:
  /// Calls `action` when that stage begins.
  void AtStage(std::uint32_t stage, std::function<void()> action) {
    recorder_.onEvent = [stage, action = std::move(action)](const engine::Event& event) {
      if (IsStage(event, stage)) action();
    };
  }
  void StopAtStage(std::uint32_t stage) {
    AtStage(stage, [this] { state_.run.control.RequestStop(); });
  }
};

TEST_F(StopTest, AStoppedRunSaysNothingDeletesNothingAndRaisesNoFlag) {
  MakeSource();
  state_.run.smartScan = true;
  StopAtStage(8);
  EXPECT_EQ(Run(), RunEnd::kStopped);
  EXPECT_EQ(recorder_.Steps().back(), "stage 8");
  EXPECT_THAT(Output(), ElementsAre("outlook Converted0", "outlook Converted0/FirstTableItem.dat"));
  EXPECT_FALSE(state_.run.runEnded);
  EXPECT_FALSE(state_.run.runAborted);
  EXPECT_FALSE(state_.treeFilling);
  EXPECT_TRUE(state_.run.smartScan);
  EXPECT_EQ(seals_, 1) << "the store is sealed as it is";
}

TEST_F(StopTest, EveryStageCanBeStopped) {
  MakeSource();
  for (const std::uint32_t stage : {4u, 5u, 6u, 8u}) {
    StartOver(std::to_string(stage));
    StopAtStage(stage);
    EXPECT_EQ(Run(), RunEnd::kStopped) << stage;
  }
}

TEST_F(StopTest, TheItemUnderWorkIsTheLast) {
  MakeSource();
  int items = 0;
  library_->onItem = [&] {
    ++items;
    state_.run.control.RequestStop();
  };
  EXPECT_EQ(Run(), RunEnd::kStopped);
  EXPECT_EQ(items, 1);
}

TEST_F(StopTest, TheNextRunStartsClean) {
  MakeSource();
  Run();
  const auto undisturbed = trace_.lines;
  const auto said = recorder_.said;

  StartOver("stopped");
  StopAtStage(8);
  ASSERT_EQ(Run(), RunEnd::kStopped);
  StartOver("next");
  Run();
  EXPECT_EQ(trace_.lines, undisturbed);
  EXPECT_EQ(recorder_.said, said);
  EXPECT_EQ(outLook_.Report().recovery.items.at(u"IPM.Note"), 2u);
}

TEST_F(StopTest, AStopThatComesAfterTheEndDisturbsNothing) {
  UseSource(folder_.Path() / "none.ost");
  EXPECT_EQ(Run(), RunEnd::kEndedEarly);
  state_.run.control.RequestStop();
  MakeSource();
  StartOver("next");
  Run();
  EXPECT_EQ(recorder_.said.back(), "done");
}

TEST_F(StopTest, AStoreThatCannotBeSealedIsToldEvenThen) {
  MakeSource();
  StopAtStage(8);
  sealResult_ = tl::unexpected(platform::Failure{});
  EXPECT_EQ(Run(), RunEnd::kStopped);
  EXPECT_THAT(recorder_.said, Contains(HasSubstr("Unable to write converted .pst file.")));
  EXPECT_FALSE(state_.run.runAborted);
}

TEST_F(StopTest, AHeldRunStandsStillAndThenGoesOnAsIfNothingHadHappened) {
  MakeSource();
  Run();
  const auto undisturbed = trace_.lines;
  const auto said = recorder_.said;

  StartOver("held");
  std::atomic<bool> held = false;
  AtStage(8, [&] {
    state_.run.control.Hold();
    held = true;
  });
  std::atomic<bool> over = false;
  std::thread worker([&] {
    Run();
    over = true;
  });
  while (!held) std::this_thread::sleep_for(std::chrono::milliseconds(1));
  std::this_thread::sleep_for(std::chrono::milliseconds(100));
  EXPECT_FALSE(over) << "the worker makes no progress while the question is open";
  state_.run.control.Resume();
  worker.join();
  EXPECT_EQ(trace_.lines, undisturbed);
  EXPECT_EQ(recorder_.said, said);
}

TEST_F(StopTest, AHeldRunCanBeStopped) {
  MakeSource();
  std::atomic<bool> held = false;
  AtStage(8, [&] {
    state_.run.control.Hold();
    held = true;
  });
  RunEnd end = RunEnd::kFinished;
  std::thread worker([&] { end = Run(); });
  while (!held) std::this_thread::sleep_for(std::chrono::milliseconds(1));
  state_.run.control.RequestStop();
  state_.run.control.Resume();
  worker.join();
  EXPECT_EQ(end, RunEnd::kStopped);
  EXPECT_THAT(trace_.lines, Not(Contains(HasSubstr("AddItem"))));
}

}  // namespace
}  // namespace velmora::conversion
