// Named properties: the names stay, the numbers by which a store knows them do not.
#include "complete/complete_fixture.h"

namespace velmora::complete {
namespace {

using forge::Named;
using forge::PropertySet;

class NamesTest : public CompleteTest {};
INSTANTIATE_TEST_SUITE_P(Formats, NamesTest, AllFormats(), NameOf);

TEST_P(NamesTest, PropertiesOfAnySetComeAcrossByNumberAndByText) {
  const forge::PropertyList values = {Named(PropertySet::kOwn, 0x8001, Int32(0, 1)),
                                      Named(PropertySet::kOwn, 1, Int32(0, 2)),
                                      Named(PropertySet::kOwn, u"8001", Int32(0, 3)),
                                      Named(PropertySet::kOwn, u"x-Some-Header", Text16(0, u"four")),
                                      Named(PropertySet::kHeaders, u"x-some-header", Text16(0, u"five")),
                                      Named(PropertySet::kPublic, u"Keywords", Texts(0, {u"Red", u"Blue"})),
                                      Named(PropertySet::kPublic, u"K\u00FCrzel \u65E5\u672C", Int32(0, 7)),
                                      Named(PropertySet::kMapi, 0x8001, Int32(0, 8)),
                                      Named(PropertySet::kMeeting, 0x0003, Binary(0, Noise(56, 1))),
                                      Named(PropertySet::kAppointment, 0x8216, Binary(0, Noise(2000, 2))),
                                      Named(PropertySet::kTask, 0x8216, Int32(0, 11))};
  const Item item = CopyOf(Mail(u"Names", values));
  ExpectHas(item.properties, values);
  ExpectAllWhole();
  ExpectSound();
}

TEST_P(NamesTest, AStoreOfThousandsOfNamesBringsThoseThatAreUsed) {
  forge::Mailbox box = NewBox({.tables = true, .namesAtLeast = 3000});
  const forge::Nid inbox = box.AddFolder({.name = u"Inbox"});
  forge::PropertyList values;
  for (std::uint32_t i = 0; i < 500; ++i) values.push_back(Named(PropertySet::kOwn, 0x100 + 3 * i, Int32(0, i)));
  const forge::Nid nid = box.AddMessage(inbox, Mail(u"Many names", values)).nid;
  Copy(box);
  ExpectHas(TargetItem(nid).properties, values);
  ExpectAllWhole();
}

TEST_P(NamesTest, ANameIsOneInTheWholeStore) {
  forge::Mailbox box = NewBox();
  const auto named = [](std::uint32_t value) { return Named(PropertySet::kOwn, u"Common", Int32(0, value)); };
  const forge::Nid folder = box.AddFolder({.name = u"Inbox", .properties = {named(1)}});
  forge::Message message = Mail(u"Same name", {named(2)});
  message.recipients = {{.name = u"A", .address = u"a@b", .properties = {named(3)}}};
  message.attachments = {{.name = u"a.txt", .properties = {named(4)}}};
  const forge::Nid nid = box.AddMessage(folder, message).nid;
  Copy(box);
  ExpectHas(target_->PropertiesOf(NodeOf(folder)), {named(1)});
  const Item item = TargetItem(nid);
  ExpectHas(item.properties, {named(2)});
  ASSERT_EQ(item.recipients.size(), 1U);
  ExpectHas(item.recipients[0], {named(3)});
  ASSERT_EQ(item.attachments.size(), 1U);
  ExpectHas(item.attachments[0].properties, {named(4)});
}

TEST_P(NamesTest, APropertyWhoseNameIsNotInTheMapIsNamedInTheAccount) {
  const Item item = CopyOf(Mail(u"No name", {Int32(0x8ABC, 1), Int32(0x6901, 2)}));
  ExpectHas(item.properties, {Int32(0x6901, 2)});
  ASSERT_EQ(account_.losses.size(), 1U);
  ASSERT_EQ(account_.losses[0].missing.size(), 1U);
  EXPECT_EQ(account_.losses[0].missing[0].kind, MissingPart::Kind::kProperty);
  EXPECT_EQ(account_.losses[0].missing[0].tag, 0x8ABC0003U);
}

TEST_P(NamesTest, OfTwoPropertiesThatTheMapGivesOneNameTheFirstComesAcrossAndTheOtherIsALoss) {
  forge::Property second = Named(PropertySet::kOwn, u"Twice", forge::Bool(0, true));
  forge::PropertyName again = *second.name;
  again.number = 1;  // makes it an entry of its own, though the text is its name
  second.name = std::make_shared<const forge::PropertyName>(again);
  const forge::PropertyList twice = {Named(PropertySet::kOwn, u"Twice", Int32(0, 7)), second};
  forge::Mailbox box = NewBox();
  const forge::Nid inbox = box.AddFolder({.name = u"Inbox"});
  forge::Message message = Mail(u"Two of a name", twice);
  message.recipients = {{.name = u"A", .address = u"a@b", .properties = twice}};
  const forge::Nid nid = box.AddMessage(inbox, message).nid;
  Copy(box);
  const Item item = TargetItem(nid);
  ExpectHas(item.properties, {twice[0]});
  ASSERT_EQ(item.recipients.size(), 1U);
  ExpectHas(item.recipients[0], {twice[0]});
  ASSERT_EQ(account_.losses.size(), 1U);
  const std::vector<MissingPart>& missing = account_.losses[0].missing;
  ASSERT_EQ(missing.size(), 2U);
  EXPECT_EQ(missing[0].kind, MissingPart::Kind::kProperty);
  EXPECT_EQ(missing[0].tag, 0x8001000BU);
  EXPECT_EQ(missing[0].cause.message, "another property has its name");
  EXPECT_EQ(missing[1].kind, MissingPart::Kind::kRecipients);
  EXPECT_EQ(missing[1].tag, 0x8001000BU);
}

TEST_P(NamesTest, AStoreWithoutANameMapBringsWhatNeedsNone) {
  forge::Mailbox box = NewBox({.tables = true, .nameMap = false});
  const forge::Nid inbox = box.AddFolder({.name = u"Inbox"});
  const forge::Nid nid = box.AddMessage(inbox, Mail(u"Plain", {Int32(0x6901, 2)})).nid;
  Copy(box);
  ExpectHas(TargetItem(nid).properties, {Int32(0x6901, 2)});
  ExpectAllWhole();
}

}  // namespace
}  // namespace velmora::complete
