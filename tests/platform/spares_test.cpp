#include "platform/spares.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace velmora::platform {
namespace {

struct Tool {
  int uses = 0;
};

TEST(Spares, AToolThatWentBackIsTakenAgainAsItIs) {
  Spares<Tool> spares;
  for (int i = 0; i < 3; ++i) EXPECT_EQ(spares.Take()->uses++, i);
}

TEST(Spares, WhatIsInUseIsNotTakenAgain) {
  Spares<Tool> spares;
  const auto first = spares.Take();
  const auto second = spares.Take();
  EXPECT_NE(&*first, &*second);
}

}  // namespace
}  // namespace velmora::platform
