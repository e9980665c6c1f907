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

TEST(RunContextTest, ANoticeGoesBeforeEveryErrorBox) {
  Recorder recorder;
  RunContext run;
  run.observer = &recorder;
  run.ShowError(u"It broke.");
  EXPECT_EQ(recorder.Said(), (std::vector<std::string>{"32785", "Error: It broke."}));
}

TEST(RunContextTest, NoNoticeGoesBeforeAnInformation) {
  Recorder recorder;
  RunContext run;
  run.observer = &recorder;
  run.ShowInformation(u"It is done.");
  EXPECT_EQ(recorder.Said(), (std::vector<std::string>{"Information: It is done."}));
}

TEST(RunContextTest, WithoutAnObserverMessagesAreLost) {
  const RunContext run;
  EXPECT_NO_THROW(run.Send(MSG_STAGE, 1));
  EXPECT_NO_THROW(run.ShowError(u"nobody hears it"));
  EXPECT_NO_THROW(run.ShowInformation(u"nor this"));
}

}  // namespace
}  // namespace velmora::engine
