#include "text/calendar.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace velmora::text {
namespace {

TEST(FileTime, OfTheOleEpochIsADate) {
  EXPECT_EQ(FileTimeOf(OleDate{0.0}), FileTime{109205} * 86400 * kTicksPerSecond);
  EXPECT_EQ(DateOf(*FileTimeOf(OleDate{0.0})), OleDate{0.0});
}

TEST(FileTime, CountsWholeSeconds) {
  // 2024-02-29 13:45:07 UTC is 1709214307 seconds after 1970.
  const OleDate date{45351.0 + (13 * 3600 + 45 * 60 + 7) / 86400.0};
  EXPECT_EQ(FileTimeOf(date), FileTimeOfUnixSeconds(1709214307));
  EXPECT_EQ(DateOf(FileTimeOfUnixSeconds(1709214307) + kTicksPerSecond - 1), date);
}

TEST(FileTime, BeforeTheOleEpochCountsTheTimeOfDayForward) {
  // -1.25 is 06:00 on 29 December 1899.
  EXPECT_EQ(*FileTimeOf(OleDate{0.0}) - *FileTimeOf(OleDate{-1.25}), FileTime{18} * 3600 * kTicksPerSecond);
  EXPECT_EQ(DateOf(*FileTimeOf(OleDate{-1.25})), OleDate{-1.25});
}

TEST(FileTime, OfWhatNoStoreHoldsIsNone) {
  EXPECT_FALSE(FileTimeOf(OleDate{-109205.0}));  // 1601-01-01 is the count 0, which reads as no value
  EXPECT_FALSE(FileTimeOf(OleDate{-200000.0}));
  EXPECT_FALSE(FileTimeOf(OleDate{949999.0}));  // beyond 4501
  EXPECT_FALSE(FileTimeOf(OleDate{1e300}));
  EXPECT_FALSE(FileTimeOf(OleDate{std::numeric_limits<double>::quiet_NaN()}));
  EXPECT_FALSE(FileTimeOf(OleDate{-std::numeric_limits<double>::infinity()}));
}

TEST(FileTime, KeepsTheDateThatStandsForNone) {
  EXPECT_EQ(FileTimeOf(OleDate{949998.0}), kNoDate);
  EXPECT_EQ(DateOf(kNoDate), OleDate{949998.0});
}

TEST(FileTime, BeyondAllCalendarsReadsAsTheOleEpoch) {
  EXPECT_EQ(DateOf(std::numeric_limits<FileTime>::max()), OleDate{0.0});
}

TEST(OleDate, SecondsGoToADateAndBack) {
  for (const std::int64_t seconds :
       {-109205 * kSecondsPerDay + 1, -kSecondsPerDay, -kSecondsPerDay + 1, std::int64_t{-1}, std::int64_t{0},
        std::int64_t{1}, 36000 * kSecondsPerDay + 86399}) {
    EXPECT_EQ(SecondsOf(OleDateOf(seconds)), seconds);
  }
}

TEST(OleDate, AValueOutsideTheCalendarReadsAsTheEpoch) {
  EXPECT_EQ(SecondsOf({std::nan("")}), 0);
  EXPECT_EQ(SecondsOf({1e300}), 0);
}

TEST(OleDate, HasTheDayAndTimeThatPeopleRead) {
  const DateParts parts = PartsOf(OleDateOf(-kSecondsPerDay - 1));
  EXPECT_EQ(parts.year, 1899);
  EXPECT_EQ(parts.month, 12);
  EXPECT_EQ(parts.day, 28);
  EXPECT_EQ(parts.hour, 23);
  EXPECT_EQ(parts.minute, 59);
  EXPECT_EQ(parts.second, 59);
}

}  // namespace
}  // namespace velmora::text
