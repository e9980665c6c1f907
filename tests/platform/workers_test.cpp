#include "platform/workers.h"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <future>
#include <numeric>
#include <stdexcept>

namespace velmora::platform {
namespace {

class WorkersTest : public ::testing::TestWithParam<unsigned> {
 protected:
  Workers workers_{GetParam()};
};
INSTANTIATE_TEST_SUITE_P(Jobs, WorkersTest, ::testing::Values(1u, 2u, 5u));

TEST_P(WorkersTest, DoEveryStepThatIsWaitedForOnce) {
  EXPECT_EQ(workers_.Jobs(), GetParam());
  std::array<int, 500> done{};
  std::vector<std::unique_ptr<Workers::Step>> steps;
  for (int& count : done) steps.push_back(workers_.Start([&count] { ++count; }));
  for (const auto& step : steps) step->Wait();
  for (const auto& step : steps) step->Wait();
  EXPECT_EQ(std::accumulate(done.begin(), done.end(), 0), 500);
  EXPECT_TRUE(std::ranges::all_of(done, [](int count) { return count == 1; }));
}

TEST_P(WorkersTest, RaiseWhatAStepRaisedWheneverItIsAskedFor) {
  const auto fails = workers_.Start([] { throw std::runtime_error("broken"); });
  const auto works = workers_.Start([] {});
  EXPECT_THROW(fails->Wait(), std::runtime_error);
  works->Wait();
  EXPECT_THROW(fails->Wait(), std::runtime_error);
}

TEST_P(WorkersTest, WaitForAStepThatIsUnderWorkWhenItIsGivenUp) {
  std::atomic<int> begun = 0;
  std::atomic<int> ended = 0;
  for (int i = 0; i < 200; ++i) {
    const auto step = workers_.Start([&] {
      ++begun;
      std::this_thread::yield();
      ++ended;
    });
    EXPECT_LE(ended, begun);
  }
  EXPECT_EQ(begun, ended);
}

TEST(Workers, WithoutThreadsDoNothingThatNobodyWaitsFor) {
  bool isDone = false;
  {
    const auto step = Workers::WithoutThreads().Start([&] { isDone = true; });
  }
  EXPECT_FALSE(isDone);
}

TEST(Workers, WithThreadsDoAStepWhileItsOwnerDoesSomethingElse) {
  Workers workers(2);
  std::promise<void> fromOwner;
  std::promise<void> fromStep;
  const auto step = workers.Start([&] {
    fromStep.set_value();
    fromOwner.get_future().wait();
  });
  fromStep.get_future().wait();  // would never come without a thread
  fromOwner.set_value();
  step->Wait();
}

TEST(Workers, TellWhetherAStepWaitsRunsOrIsDone) {
  using State = Workers::Step::State;
  Workers workers(2);
  std::promise<void> begun;
  std::promise<void> release;
  const auto first = workers.Start([&] {
    begun.set_value();
    release.get_future().wait();
  });
  const auto second = workers.Start([] {});
  begun.get_future().wait();
  EXPECT_EQ(first->Now(), State::kRunning);
  EXPECT_EQ(second->Now(), State::kWaiting);
  release.set_value();
  first->Wait();
  second->Wait();
  EXPECT_EQ(first->Now(), State::kDone);
  EXPECT_EQ(second->Now(), State::kDone);
}

TEST(Workers, AStepThatWaitsBehindOthersIsDoneByWhoeverWaitsForIt) {
  Workers workers(2);
  std::promise<void> release;
  const auto blocked = workers.Start([&] { release.get_future().wait(); });
  std::thread::id doneBy;
  const auto step = workers.Start([&] { doneBy = std::this_thread::get_id(); });
  step->Wait();
  EXPECT_EQ(doneBy, std::this_thread::get_id());
  release.set_value();
  blocked->Wait();
}

TEST_P(WorkersTest, AThreadThatHasNothingElseToDoWorksUntilAStepIsDone) {
  std::array<int, 50> done{};
  std::vector<std::unique_ptr<Workers::Step>> steps;
  for (int& count : done) steps.push_back(workers_.Start([&count] { ++count; }));
  for (const auto& step : steps) step->WorkUntilDone();
  EXPECT_TRUE(std::ranges::all_of(done, [](int count) { return count == 1; }));
}

TEST(Workers, WhileAnotherHasAStepUnderWorkItsOwnerMayDoThoseThatWait) {
  Workers workers(2);
  std::promise<void> begun;
  std::promise<void> release;
  const auto needsTheOther = workers.Start([&] {
    begun.set_value();
    release.get_future().wait();
  });
  begun.get_future().wait();
  std::thread::id doneBy;
  const auto other = workers.Start([&] {
    doneBy = std::this_thread::get_id();
    release.set_value();
  });
  needsTheOther->WorkUntilDone();  // would never return if it only waited
  other->Wait();
  EXPECT_EQ(doneBy, std::this_thread::get_id());
}

}  // namespace
}  // namespace velmora::platform
