// Recipients: every row, every column.
#include "complete/complete_fixture.h"

namespace velmora::complete {
namespace {

class RecipientsTest : public CompleteTest {};
INSTANTIATE_TEST_SUITE_P(Formats, RecipientsTest, AllFormats(), NameOf);

// With the columns of every recipient table there are fifty and more.
forge::PropertyList FortyColumns(std::uint32_t seed) {
  forge::PropertyList columns = {forge::Text(0x39FE, u"smtp@example.org"),
                                 forge::Text(0x3A20, u"Transmittable"),
                                 Int32(0x5FDE, seed),
                                 Int32(0x5FDF, seed + 1),
                                 forge::Text(0x5FF6, u"Shown"),
                                 Binary(0x5FF7, Noise(70, seed)),
                                 Int32(0x5FFD, 1),
                                 Int32(0x5FFF, seed % 5),
                                 Time(0x5FFB, forge::TimeOf(2024, 1, 2) + seed)};
  for (std::uint16_t i = 0; i < 7; ++i) {
    const auto id = static_cast<std::uint16_t>(0x6A00 + 8 * i);
    columns.push_back(Int16(id, static_cast<std::uint16_t>(seed)));
    columns.push_back(Bool(static_cast<std::uint16_t>(id + 1), seed % 2 == 0));
    columns.push_back(Double(static_cast<std::uint16_t>(id + 2), seed + 0.5));
    columns.push_back(Guid(static_cast<std::uint16_t>(id + 3), Noise(16, seed)));
    columns.push_back(Raw(static_cast<std::uint16_t>(id + 4), 0x1003, Noise(8, seed)));
  }
  return columns;
}

TEST_P(RecipientsTest, FiftyColumnsComeAcross) {
  forge::Message message = Mail(u"Columns");
  for (std::uint32_t i = 0; i < 3; ++i) {
    message.recipients.push_back({.name = u"Name", .address = u"a@example.org", .properties = FortyColumns(i)});
  }
  message.recipients.push_back({.name = u"With the usual columns alone", .address = u"b@example.org"});
  const Item item = CopyOf(message);
  ASSERT_EQ(item.recipients.size(), 4U);
  for (std::uint32_t i = 0; i < 3; ++i) ExpectHas(item.recipients[i], FortyColumns(i));
  EXPECT_EQ(Find(item.recipients[3], 0x39FE), nullptr) << "a cell that is absent stays absent";
  EXPECT_GE(item.recipients[0].size(), 50U);
  EXPECT_EQ(account_.recipients, 4U);
  ExpectAllWhole();
  ExpectSound();
}

TEST_P(RecipientsTest, KindsNamesAndAddressesComeAcross) {
  forge::Message message = Mail(u"Kinds");
  message.recipients = {{u"To", u"to@example.org", forge::RecipientKind::kTo},
                        {u"Cc", u"cc@example.org", forge::RecipientKind::kCc},
                        {u"Bcc", u"bcc@example.org", forge::RecipientKind::kBcc},
                        {.name = u"Originator", .properties = {Int32(0x0C15, 0), forge::Text(0x3002, u"EX")}},
                        {.name = u"Resent", .properties = {Int32(0x0C15, 0x10000001), Int32(0x0FFE, 8)}}};
  const Item item = CopyOf(message);
  std::vector<std::uint64_t> kinds;
  std::vector<std::u16string> addresses;
  for (const Properties& recipient : item.recipients) {
    kinds.push_back(NumberOf(recipient, 0x0C15));
    addresses.push_back(TextOf(recipient, 0x3003));
  }
  EXPECT_THAT(kinds, testing::ElementsAre(1, 2, 3, 0, 0x10000001));
  EXPECT_THAT(addresses, testing::ElementsAre(u"to@example.org", u"cc@example.org", u"bcc@example.org", u"", u""));
  EXPECT_EQ(TextOf(item.recipients.at(3), 0x3002), u"EX");
  EXPECT_EQ(TextOf(item.properties, 0x0E04), u"To; Originator; Resent");
  EXPECT_EQ(TextOf(item.properties, 0x0E02), u"Bcc");
  ExpectAllWhole();
  ExpectSound();
}

TEST_P(RecipientsTest, TwoThousandComeAcross) {
  forge::Message message = Mail(u"Everybody");
  for (int i = 0; i < 2000; ++i) {
    const std::string number = std::to_string(i);
    const std::u16string digits(number.begin(), number.end());
    message.recipients.push_back({u"Name " + digits, digits + u"@example.org"});
  }
  const Item item = CopyOf(message);
  ASSERT_EQ(item.recipients.size(), 2000U);
  EXPECT_EQ(TextOf(item.recipients[1999], 0x3003), u"1999@example.org");
  EXPECT_EQ(account_.recipients, 2000U);
  ExpectAllWhole();
}

TEST_P(RecipientsTest, ALongValueOfARowComesAcross) {
  forge::Message message = Mail(u"Long");
  const forge::PropertyList values = {forge::Text(0x3001, std::u16string(20'000, u'n')),
                                      Binary(0x3A70, Noise(30'000, 1))};
  message.recipients = {{.name = u"n", .address = u"a@b", .properties = values}};
  const Item item = CopyOf(message);
  ASSERT_EQ(item.recipients.size(), 1U);
  ExpectHas(item.recipients[0], values);
  ExpectAllWhole();
}

TEST_P(RecipientsTest, AMessageWithoutRecipientsHasNone) {
  const Item item = CopyOf(Mail(u"Nobody"));
  EXPECT_TRUE(item.recipients.empty());
  EXPECT_EQ(account_.recipients, 0U);
}

TEST_P(RecipientsTest, TheirAddressesKeepTheirEntryIds) {
  forge::Message message = Mail(u"One-off");
  message.recipients = {{u"A", u"a@example.org"}};
  const Item item = CopyOf(message);
  ASSERT_EQ(item.recipients.size(), 1U);
  EXPECT_EQ(*Find(item.recipients[0], 0x0FFF), *Find(sourceItem_.recipients[0], 0x0FFF));
  EXPECT_EQ(*Find(item.recipients[0], 0x300B),
            (Value{PropType::kBinary, forge::ToBytes(std::string_view("SMTP:A@EXAMPLE.ORG\0", 19))}));
}

}  // namespace
}  // namespace velmora::complete
