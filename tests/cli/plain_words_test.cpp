#include "cli/plain_words.h"

#include <gtest/gtest.h>

namespace velmora::cli {
namespace {

TEST(PlainWords, SizesHaveOneUnitAndOneDecimal) {
  EXPECT_EQ(SizeText(0), "0 bytes");
  EXPECT_EQ(SizeText(1), "1 byte");
  EXPECT_EQ(SizeText(999), "999 bytes");
  EXPECT_EQ(SizeText(1000), "1.0 KB");
  EXPECT_EQ(SizeText(999'949), "999.9 KB");
  EXPECT_EQ(SizeText(999'950), "1.0 MB") << "never 1000.0 KB";
  EXPECT_EQ(SizeText(12'345'678'901), "12.3 GB");
  EXPECT_EQ(SizeText(~std::uint64_t{0}), "18.4 EB");
}

TEST(PlainWords, TimesHaveDayAndMinute) {
  EXPECT_EQ(DateText(text::FileTimeOfUnixSeconds(1620050571)), "2021-05-03 14:02");
  EXPECT_EQ(DateText(~text::FileTime{0}), "1899-12-30 00:00") << "what is no time of the calendar";
}

TEST(PlainWords, NothingOfAStoreMovesTheCursorOrTurnsTheLine) {
  EXPECT_EQ(OneLine(u"a\033[31mb\nc\td\u009Be\u007F"), "a [31mb c d e ");
  EXPECT_EQ(OneLine(u"x\u202Ey\u2066z\u2028"), "x y z ");
  EXPECT_EQ(OneLine(u"a\u200Eb\u200Fc\u061Cd\uFEFF\uFFFF"), "a b c d  ");
  EXPECT_EQ(OneLine(u"Gr\u00FC\u00DFe"), "Grüße");
}

TEST(PlainWords, ALongTextIsCut) {
  EXPECT_EQ(OneLine(text::Text(80, u'a')), std::string(80, 'a'));
  EXPECT_EQ(OneLine(text::Text(81, u'a')), std::string(80, 'a') + "...");
  EXPECT_EQ(OneLine(u"abc", 2), "ab...");
  EXPECT_EQ(OneLine(u"a\U0001F600b", 2), "a...") << "not between the halves of a character";
  EXPECT_EQ(OneLine(u"a\U0001F600b", 3), "a😀...");
}

}  // namespace
}  // namespace velmora::cli
