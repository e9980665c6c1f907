#include "platform/stop_signals.h"

#include <gtest/gtest.h>

#include <atomic>
#include <csignal>

namespace velmora::platform {
namespace {

void CountUp(void* count) { static_cast<std::atomic<int>*>(count)->fetch_add(1); }

TEST(StopSignals, TheFirstRequestCallsTheHandler) {
  std::atomic<int> count = 0;
  StopSignals signals(CountUp, &count);
  std::raise(SIGINT);
  EXPECT_EQ(count, 1);
  std::raise(SIGTERM);
  EXPECT_EQ(count, 2);
}

TEST(StopSignalsDeathTest, TheSecondRequestEndsTheProgram) {
  EXPECT_EXIT(
      {
        std::atomic<int> count = 0;
        StopSignals signals(CountUp, &count);
        std::raise(SIGINT);
        std::raise(SIGINT);
      },
      testing::KilledBySignal(SIGINT), "");
}

TEST(StopSignalsDeathTest, WithoutAHolderARequestEndsTheProgram) {
  EXPECT_EXIT(
      {
        std::atomic<int> count = 0;
        { StopSignals signals(CountUp, &count); }
        std::raise(SIGINT);
      },
      testing::KilledBySignal(SIGINT), "");
}

}  // namespace
}  // namespace velmora::platform
