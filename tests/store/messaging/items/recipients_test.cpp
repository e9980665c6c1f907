#include "store/messaging/items/recipients.h"

#include <gtest/gtest.h>

#include "store/messaging/values/stored_text.h"

namespace velmora::messaging {
namespace {

std::vector<Recipient> Parse(text::TextView list) {
  std::vector<Recipient> recipients;
  AppendRecipients(list, RecipientType::kCc, recipients);
  return recipients;
}

TEST(Recipients, AreSplitAtSemicolonsAndTrimmed) {
  const auto recipients = Parse(u" Ann Lee ;;bob@example.org; ");
  ASSERT_EQ(recipients.size(), 2u);
  EXPECT_EQ(recipients[0].displayName, u"Ann Lee");
  EXPECT_EQ(recipients[0].address, u"");
  EXPECT_EQ(recipients[0].type, RecipientType::kCc);
  EXPECT_EQ(recipients[1].displayName, u"bob@example.org");
  EXPECT_EQ(recipients[1].address, u"bob@example.org");
}

TEST(Recipients, OfANameWithAnAddressHaveBoth) {
  const auto recipients = Parse(u"Lee, Ann <ann@example.org>; 'Bob' <bob@x.y>; <c@d.e>; 'd@e.f'");
  ASSERT_EQ(recipients.size(), 4u);
  EXPECT_EQ(recipients[0].displayName, u"Lee, Ann");
  EXPECT_EQ(recipients[0].address, u"ann@example.org");
  EXPECT_EQ(recipients[1].displayName, u"Bob");
  EXPECT_EQ(recipients[2].displayName, u"c@d.e");
  EXPECT_EQ(recipients[2].address, u"c@d.e");
  EXPECT_EQ(recipients[3].address, u"d@e.f");
}

TEST(Recipients, WithBrokenAddressesAreNamesAlone) {
  for (const text::TextView text : {u"a@", u"@b", u"a@b@c", u"a b@c", u"Name <nobody>", u"Name <a@b", u"<>"}) {
    const auto recipients = Parse(text);
    ASSERT_EQ(recipients.size(), 1u);
    EXPECT_EQ(recipients[0].displayName, text);
    EXPECT_TRUE(recipients[0].address.empty());
  }
}

TEST(Recipients, HaveNamesOfAtMost255Units) {
  const auto recipients = Parse(text::Text(1000, u'n'));
  ASSERT_EQ(recipients.size(), 1u);
  EXPECT_EQ(recipients[0].displayName.size(), 255u);
}

TEST(TextList, SplitsAtAnyOfItsSeparatorsAndJoinsWithOne) {
  const auto parts = SplitList(u"Red, Blue ;;Green,", u";,");
  EXPECT_EQ(parts, (std::vector<text::Text>{u"Red", u"Blue", u"Green"}));
  EXPECT_EQ(JoinList(parts), u"Red; Blue; Green");
  EXPECT_TRUE(SplitList(u" ; , ", u";,").empty());
}

}  // namespace
}  // namespace velmora::messaging
