#include "output/trace/json_line.h"

#include <gtest/gtest.h>

namespace velmora::output {
namespace {

TEST(JsonLine, MembersStandInTheOrderInWhichTheyAreAdded) {
  EXPECT_EQ(JsonLine("X").Number("b", -2).Null("a").Flag("c", true).Plain("d", "y").End(),
            R"({"op":"X","b":-2,"a":null,"c":true,"d":"y"})");
}

TEST(JsonLine, EscapesWhatJsonReservesAndEverythingOutsideAscii) {
  EXPECT_EQ(JsonLine("X").Text("v", u"\"\\\n\r\t\u0001\u007F\u00E9\u524A").End(),
            R"({"op":"X","v":"\"\\\n\r\t\u0001\u007F\u00E9\u524A"})");
}

TEST(JsonLine, LoneSurrogatesAreWrittenAsEscapes) {
  EXPECT_EQ(JsonLine("X").Text("v", text::Text{u'a', 0xD800, u'b', 0xDC00}).End(),
            R"({"op":"X","v":"a\uD800b\uDC00"})");
}

TEST(JsonLine, AValueIsWrittenByItsType) {
  EXPECT_EQ(JsonLine("X").Value("v", FieldValue(std::int32_t{-1})).End(), R"({"op":"X","v":-1})");
  EXPECT_EQ(JsonLine("X").Value("v", FieldValue(false)).End(), R"({"op":"X","v":false})");
  EXPECT_EQ(JsonLine("X").Value("v", FieldValue(OleDate{1.5})).End(), R"({"op":"X","v":"1899-12-31T12:00:00"})");
}

TEST(IsoDateTime, CountsTheTimeOfDayForwardOnBothSidesOfTheEpoch) {
  EXPECT_EQ(IsoDateTime({0.0}), "1899-12-30T00:00:00");
  EXPECT_EQ(IsoDateTime({-1.25}), "1899-12-29T06:00:00");
  EXPECT_EQ(IsoDateTime({-109205.0}), "1601-01-01T00:00:00");
  EXPECT_EQ(IsoDateTime({2958465.0 + 86399.0 / 86400}), "9999-12-31T23:59:59");
}

}  // namespace
}  // namespace velmora::output
