#include "store/messaging/values/subject.h"

#include <gtest/gtest.h>

namespace velmora::messaging {
namespace {

using text::Text;

Text Marked(char16_t prefixPlusOne, text::TextView text) { return Text{0x0001, prefixPlusOne} + Text(text); }

TEST(Subject, TellsTheLengthOfItsPrefix) {
  const StoredSubject subject = StoreSubject(u"Re: Plan");
  EXPECT_EQ(subject.stored, Marked(5, u"Re: Plan"));
  EXPECT_EQ(subject.normalized, u"Plan");
}

TEST(Subject, WithoutAPrefixTellsNone) {
  for (const text::TextView text : {u"Plan", u"Plan: part 1", u"12: x", u"Re:x", u": x", u"R e: x", u"Updated: x"}) {
    const StoredSubject subject = StoreSubject(text);
    EXPECT_EQ(subject.stored, Marked(1, text));
    EXPECT_EQ(subject.normalized, text);
  }
}

TEST(Subject, TakesPrefixesOfOneToThreeLettersInAnyScript) {
  EXPECT_EQ(StoreSubject(u"AW: x").normalized, u"x");
  EXPECT_EQ(StoreSubject(u"\u7b54\u590d: x").normalized, u"x");
  EXPECT_EQ(StoreSubject(u"I: x").normalized, u"x");
}

TEST(Subject, KeepsThePrefixThatASourceTells) {
  const StoredSubject subject = StoreSubject(Marked(10, u"Updated: Plan"));
  EXPECT_EQ(subject.stored, Marked(10, u"Updated: Plan"));
  EXPECT_EQ(subject.normalized, u"Plan");
}

TEST(Subject, ReplacesAPrefixLengthThatCannotBe) {
  EXPECT_EQ(StoreSubject(Marked(40, u"Re: Plan")).stored, Marked(5, u"Re: Plan"));
  EXPECT_EQ(StoreSubject(Marked(0, u"Plan")).stored, Marked(1, u"Plan"));
  EXPECT_EQ(StoreSubject(Marked(3, u"\U0001F600 x")).stored, Marked(1, u"\U0001F600 x"));
}

TEST(Subject, WithoutTextIsEmpty) {
  EXPECT_TRUE(StoreSubject(u"").stored.empty());
  EXPECT_TRUE(StoreSubject(Text{0x0001}).stored.empty());
  EXPECT_TRUE(StoreSubject(Marked(1, u"")).stored.empty());
}

TEST(Subject, OfAPrefixAloneLeavesNoTopic) {
  EXPECT_EQ(StoreSubject(u"Re: ").stored, Marked(5, u"Re: "));
  EXPECT_TRUE(StoreSubject(u"Re: ").normalized.empty());
}

TEST(Subject, IsCutTo255UnitsWithoutControlCharacters) {
  const StoredSubject subject = StoreSubject(u"FW: a\tb" + Text(400, u'x'));
  EXPECT_EQ(subject.stored.size(), 2u + 255u);
  EXPECT_EQ(subject.normalized.substr(0, 3), u"a b");
}

TEST(Subject, ReadsBackWithoutItsMarks) {
  EXPECT_EQ(SubjectText(Marked(5, u"Re: Plan")), u"Re: Plan");
  EXPECT_EQ(SubjectText(u"Plan"), u"Plan");
  EXPECT_EQ(SubjectText(Text{0x0001}), u"");
}

}  // namespace
}  // namespace velmora::messaging
