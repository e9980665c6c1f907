#include "engine/run.h"

#include <chrono>
#include <future>
#include <thread>

#include "engine/run_fixture.h"

namespace velmora::engine {
namespace {

TEST(RunControlTest, APausePointLetsAFreeRunPass) {
  RunControl control;
  EXPECT_NO_THROW(control.PausePoint());
}

TEST(RunControlTest, AHeldRunStandsUntilItIsResumed) {
  RunControl control;
  control.Hold();
  auto passed = std::async(std::launch::async, [&] { control.PausePoint(); });
  EXPECT_EQ(passed.wait_for(std::chrono::milliseconds(50)), std::future_status::timeout);
  control.Resume();
  passed.get();
}

TEST(RunControlTest, AStopLeavesByAnExceptionThatNoFailureFrameCatches) {
  RunControl control;
  control.RequestStop();
  bool left = false;
  try {
    try {
      control.PausePoint();
    } catch (const std::exception&) {
      ADD_FAILURE() << "taken for a failure";
    }
  } catch (const RunStopped&) {
    left = true;
  }
  EXPECT_TRUE(left);
}

TEST(RunControlTest, AHeldRunThatIsToStopLeavesWhenItIsResumed) {
  RunControl control;
  control.Hold();
  auto passed = std::async(std::launch::async, [&] { control.PausePoint(); });
  control.RequestStop();
  control.Resume();
  EXPECT_THROW(passed.get(), RunStopped);
}

TEST(RunControlTest, AResetRunIsNeitherHeldNorStopped) {
  RunControl control;
  control.Hold();
  control.RequestStop();
  control.Reset();
  EXPECT_NO_THROW(control.PausePoint());
}

TEST(RunContextTest, APercentageIsSaidWhenItChangesAndAnewInEachStage) {
  Recorder recorder;
  RunContext run;
  run.observer = &recorder;
  for (const std::uint64_t percentage : {0, 0, 1, 1, 2}) run.SayProgress(percentage, Phase::kProbe);
  run.BeginStage(4);
  for (const std::uint64_t percentage : {2, 2}) run.SayProgress(percentage, Phase::kProbe);
  EXPECT_EQ(recorder.Percentages(Phase::kProbe), (std::vector<std::uint32_t>{0, 1, 2, 2}));
}

TEST(RunContextTest, WhatIsCopiedIsSaidAheadOfItsPercentageAndOnlyWithANewOne) {
  std::vector<Event> said;
  struct Listener : RunObserver {
    std::vector<Event>& events;
    explicit Listener(std::vector<Event>& to) : events(to) {}
    void OnEvent(const Event& event) override { events.push_back(event); }
  } listener(said);
  RunContext run;
  run.observer = &listener;
  for (const std::uint64_t items : {0, 1, 2, 3}) run.SayCopied({items, 5, items * 10, 2000});
  ASSERT_EQ(said.size(), 4u);
  EXPECT_EQ(std::get<ItemsCopied>(said[0]), (ItemsCopied{0, 5, 0, 2000}));
  EXPECT_EQ(std::get<Progress>(said[1]).percentage, 0u);
  EXPECT_EQ(std::get<ItemsCopied>(said[2]), (ItemsCopied{2, 5, 20, 2000}));
  EXPECT_EQ(std::get<Progress>(said[3]).percentage, 1u);
  run.SayCopied({0, 0, 0, 0});
  EXPECT_EQ(std::get<Progress>(said.back()).percentage, 100u) << "of nothing all is copied";
}

TEST(RunContextTest, AnAbortedRunSaysWhy) {
  Recorder recorder;
  RunContext run;
  run.observer = &recorder;
  run.Abort({NoticeKind::kNoIndexFile, {}, {}});
  EXPECT_TRUE(run.runAborted);
  EXPECT_EQ(recorder.Notices(), (std::vector<NoticeKind>{NoticeKind::kNoIndexFile}));
}

TEST(RunContextTest, WithoutAnObserverNobodyListens) {
  RunContext run;
  EXPECT_NO_THROW(run.BeginStage(1));
  EXPECT_NO_THROW(run.SayProgress(1));
  EXPECT_NO_THROW(run.Abort({NoticeKind::kNotValid, {}, {}}));
}

}  // namespace
}  // namespace velmora::engine
