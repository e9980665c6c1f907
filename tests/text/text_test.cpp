#include "text/text.h"

#include <gtest/gtest.h>

namespace velmora::text {
namespace {

TEST(Text, TravelsThroughUtf8InEveryScript) {
  const Text text =
      u"Gr\u00fc\u00dfe \u041f\u0440\u0438\u0432\u0435\u0442 \u0645\u0631\u062d\u0628\u0627 \u4f60\u597d \U0001F600";
  EXPECT_EQ(FromUtf8(ToUtf8(text)), text);
}

TEST(Text, WritesALoneSurrogateAsTheReplacementCharacter) {
  EXPECT_EQ(ToUtf8(Text{u'a', 0xD800, u'b'}),
            "a\xEF\xBF\xBD"
            "b");
}

TEST(Text, ReadsMalformedUtf8AsOneReplacementForTheRun) {
  EXPECT_EQ(FromUtf8("a\xFF\xFE"
                     "b"),
            u"a\uFFFDb");
}

TEST(Text, ComparesWithoutRegardToCaseBeyondAscii) {
  EXPECT_TRUE(EqualIgnoringCase(u"\u00c4PFEL \u0416", u"\u00e4pfel \u0436"));
  EXPECT_FALSE(EqualIgnoringCase(u"sent", u"sent items"));
}

TEST(Text, GoesToCapitalsCodePointByCodePoint) {
  EXPECT_EQ(UpperCased(u"Re: gr\u00fc\u00dfe \u043f\u0440\u0438 \U00010428 \u4f60"),
            u"RE: GR\u00dc\u00dfE \u041f\u0420\u0418 \U00010400 \u4f60");
}

}  // namespace
}  // namespace velmora::text
