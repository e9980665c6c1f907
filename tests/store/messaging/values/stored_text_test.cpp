#include "store/messaging/values/stored_text.h"

#include <gtest/gtest.h>

namespace velmora::messaging {
namespace {

using text::Text;

TEST(StoredText, ReplacesLoneSurrogatesAndKeepsPairs) {
  EXPECT_EQ(Storable(Text{u'a', 0xD83D, u'b', 0xDE00}), (Text{u'a', 0xFFFD, u'b', 0xFFFD}));
  EXPECT_EQ(Storable(u"a\U0001F600b"), u"a\U0001F600b");
  EXPECT_EQ(Storable(Text{0xD83D}), Text{0xFFFD});
}

TEST(StoredText, ReplacesNulsInsideAndDropsThoseAtTheEnd) {
  EXPECT_EQ(Storable(Text{u'a', 0, u'b', 0, 0}), (Text{u'a', 0xFFFD, u'b'}));
  EXPECT_TRUE(Storable(Text(3, u'\0')).empty());
}

TEST(StoredText, CutsUnitsBeforeAPairRatherThanInsideIt) {
  const Text text = u"abc\U0001F600";
  EXPECT_EQ(CutToUnits(text, 5), text);
  EXPECT_EQ(CutToUnits(text, 4), u"abc");
  EXPECT_EQ(CutToUnits(text, 3), u"abc");
  EXPECT_EQ(CutToUnits(text, 0), u"");
}

TEST(StoredText, CutsCharactersCountingAPairOnce) {
  const Text text = u"\U0001F600\U0001F601ab";
  EXPECT_EQ(CutToCharacters(text, 3), u"\U0001F600\U0001F601a");
  EXPECT_EQ(CutToCharacters(text, 9), text);
}

TEST(StoredText, MakesANameOneLineOfAtMost255Units) {
  EXPECT_EQ(NameOf(u"a\tb\r\nc"), u"a b  c");
  EXPECT_EQ(NameOf(Text(300, u'x')), Text(255, u'x'));
  EXPECT_EQ(NameOf(Text(254, u'x') + u"\U0001F600").size(), 254u);
}

TEST(StoredText, TrimsBlanksOnBothSides) {
  EXPECT_EQ(Trimmed(u" \ta b\r\n"), u"a b");
  EXPECT_EQ(Trimmed(u" \t"), u"");
}

}  // namespace
}  // namespace velmora::messaging
