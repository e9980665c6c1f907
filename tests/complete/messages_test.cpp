// Messages of every class and state.
#include "complete/complete_fixture.h"

namespace velmora::complete {
namespace {

using forge::Message;
using forge::Named;
using forge::PropertySet;

class MessagesTest : public CompleteTest {};
INSTANTIATE_TEST_SUITE_P(Formats, MessagesTest, AllFormats(), NameOf);

TEST_P(MessagesTest, ReadUnreadSentAndDraftStayWhatTheyAre) {
  constexpr std::uint32_t kFlags[] = {0, 1, 2, 3, 4, 8, 9, 0x20, 0x25, 0x80, 0x100, 0x200, 0x401, 0x2001, 0x2401};
  forge::Mailbox box = NewBox();
  const forge::Nid inbox = box.AddFolder({.name = u"Inbox"});
  std::vector<forge::Nid> nids;
  for (const std::uint32_t flags : kFlags) {
    Message message = Mail(u"Flags");
    message.flags = flags;
    nids.push_back(box.AddMessage(inbox, message).nid);
  }
  Copy(box);
  for (std::size_t i = 0; i < nids.size(); ++i) {
    EXPECT_EQ(NumberOf(TargetItem(nids[i]).properties, 0x0E07), kFlags[i]);
    EXPECT_EQ(NumberOf(target_->RowOf(NodeOf((inbox & ~0x1FU) | 0x0E), NodeOf(nids[i])), 0x0E07), kFlags[i]);
  }
  ExpectAllWhole();
  ExpectSound();
}

TEST_P(MessagesTest, TimesComeAcrossToTheHundredNanoseconds) {
  Message message = Mail(u"Times");
  const forge::FileTime time = forge::TimeOf(2024, 2, 29, 23, 59, 59);
  message.submitted = time + 1;
  message.delivered = time + 9'999'999;
  message.properties = {Time(0x3007, time + 1234567), Time(0x3008, time + 7654321), Time(0x0015, 0x0CB34557A3DD4000),
                        Time(0x000F, 1)};
  const Item item = CopyOf(message);
  ExpectHas(item.properties, message.properties);
  EXPECT_EQ(NumberOf(item.properties, 0x0039), time + 1);
  EXPECT_EQ(NumberOf(item.properties, 0x0E06), time + 9'999'999);
}

TEST_P(MessagesTest, AMailKeepsAllOfItsBodies) {
  Message message = Mail(u"Bodies");
  message.plain = u"Plain\r\ntext\r\n";
  message.html = ToBytes("<html><body>Html \xE9\x80</body></html>");
  message.rtf = forge::FormRtf("{\\rtf1 Rich}");
  message.properties = {Int32(0x1016, 3), Int32(0x3FDE, 28591), Bool(0x0E1F, true)};
  const Item item = CopyOf(message);
  EXPECT_EQ(TextOf(item.properties, 0x1000), *message.plain);
  EXPECT_EQ(Find(item.properties, 0x1013)->bytes, *message.html);
  EXPECT_EQ(Find(item.properties, 0x1009)->bytes, *message.rtf);
  ExpectHas(item.properties, message.properties);
  ExpectAllWhole();
  ExpectSound();
}

TEST_P(MessagesTest, SubjectsComeAcrossWithTheMarkOfTheirPrefix) {
  Message marked = Mail(u"Re: Hello");
  marked.subjectPrefix = 4;
  const Item item = CopyOf(marked);
  EXPECT_EQ(TextOf(item.properties, 0x0037), u"\x01\x05Re: Hello");
  EXPECT_EQ(TextOf(item.properties, 0x0070), u"Hello");
  ExpectAllWhole();
  ExpectSound();
}

TEST_P(MessagesTest, ASubjectOfSixtyFourKilobytesComesAcross) {
  const std::u16string subject(64 << 10, u'\u00FC');
  const Item item = CopyOf(Mail(subject));
  EXPECT_EQ(TextOf(item.properties, 0x0037), subject);
  EXPECT_EQ(TextOf(item.properties, 0x0070), subject);
  ExpectAllWhole();
}

TEST_P(MessagesTest, EmbeddedMessagesTenDeepComeAcross) {
  auto inner = std::make_shared<const Message>(Mail(u"Level 10"));
  for (int level = 9; level > 0; --level) {
    const std::string name = "Level " + std::to_string(level);
    Message outer = Mail({name.begin(), name.end()}, {Int32(0x6901, static_cast<std::uint32_t>(level))});
    outer.recipients = {{u"A", u"a@example.org"}};
    outer.attachments = {{.name = u"before.txt", .data = Noise(50, 1)},
                         {.displayName = u"Inner", .embedded = inner},
                         {.name = u"behind.txt", .data = Noise(5000, 2)}};
    inner = std::make_shared<const Message>(std::move(outer));
  }
  Message outer = Mail(u"Level 0");
  outer.attachments = {{.displayName = u"Inner", .embedded = inner}};
  const Item item = CopyOf(outer);
  const Item* at = &item;
  for (int level = 0; level < 10; ++level) {
    const std::size_t place = level == 0 ? 0 : 1;
    ASSERT_GT(at->attachments.size(), place) << level;
    EXPECT_EQ(NumberOf(at->attachments[place].properties, 0x3705), 5U);
    ASSERT_NE(at->attachments[place].embedded, nullptr) << level;
    at = at->attachments[place].embedded.get();
    const std::string name = "Level " + std::to_string(level + 1);
    EXPECT_EQ(TextOf(at->properties, 0x0037), std::u16string(name.begin(), name.end()));
  }
  EXPECT_EQ(account_.embedded, 10U);
  EXPECT_EQ(account_.attachments, 1U + 9 * 3);
  EXPECT_EQ(account_.recipients, 9U);
  ExpectAllWhole();
  ExpectSound();
}

TEST_P(MessagesTest, ARecurringAppointmentKeepsItsExceptions) {
  const auto changed = std::make_shared<const Message>(
      Message{.messageClass = u"IPM.OLE.CLASS.{00061055-0000-0000-C000-000000000046}",
              .subject = u"Later",
              .properties = {Named(PropertySet::kAppointment, 0x820D, Time(0, forge::TimeOf(2024, 5, 6, 11))),
                             Named(PropertySet::kAppointment, 0x8228, Time(0, forge::TimeOf(2024, 5, 6)))}});
  Message message = Mail(u"Weekly", {Named(PropertySet::kAppointment, 0x820D, Time(0, forge::TimeOf(2024, 4, 1, 9))),
                                     Named(PropertySet::kAppointment, 0x820E, Time(0, forge::TimeOf(2024, 4, 1, 10))),
                                     Named(PropertySet::kAppointment, 0x8216, Binary(0, Noise(190, 1))),
                                     Named(PropertySet::kAppointment, 0x8223, Bool(0, true)),
                                     Named(PropertySet::kAppointment, 0x8233, Binary(0, Noise(48, 2))),
                                     Named(PropertySet::kMeeting, 0x0003, Binary(0, Noise(56, 3)))});
  message.messageClass = u"IPM.Appointment";
  message.attachments = {
      {.displayName = u"Later",
       .embedded = changed,
       .properties = {Time(0x7FFB, forge::TimeOf(2024, 5, 6, 9)), Time(0x7FFC, forge::TimeOf(2024, 5, 6, 10)),
                      Int32(0x7FFD, 2), Bool(0x7FFE, true)}}};
  const Item item = CopyOf(message);
  EXPECT_EQ(TextOf(item.properties, 0x001A), u"IPM.Appointment");
  ExpectHas(item.properties, message.properties);
  ASSERT_EQ(item.attachments.size(), 1U);
  ExpectHas(item.attachments[0].properties, message.attachments[0].properties);
  ASSERT_NE(item.attachments[0].embedded, nullptr);
  ExpectHas(item.attachments[0].embedded->properties, changed->properties);
  ExpectAllWhole();
  ExpectSound();
}

TEST_P(MessagesTest, FlagsRemindersAndCategoriesStay) {
  Message message =
      Mail(u"Flagged", {Int32(0x1090, 2), Int32(0x1095, 6), Int32(0x0E2B, 1), Time(0x1091, forge::TimeOf(2024, 1, 1)),
                        Named(PropertySet::kCommon, 0x8530, forge::Text(0, u"Follow up")),
                        Named(PropertySet::kCommon, 0x8503, Bool(0, true)),
                        Named(PropertySet::kCommon, 0x8502, Time(0, forge::TimeOf(2024, 6, 1))),
                        Named(PropertySet::kCommon, 0x8560, Time(0, forge::TimeOf(2024, 6, 1))),
                        Named(PropertySet::kTask, 0x8105, Time(0, forge::TimeOf(2024, 6, 2)))});
  message.categories = {u"Red", u"Gr\u00FCn"};
  message.importance = 2;
  message.sensitivity = 3;
  const Item item = CopyOf(message);
  ExpectHas(item.properties, message.properties);
  ExpectHas(item.properties, {Named(PropertySet::kPublic, u"Keywords", Texts(0, message.categories)), Int32(0x0017, 2),
                              Int32(0x0036, 3)});
  ExpectAllWhole();
}

TEST_P(MessagesTest, AMessageOfAnyClassComesAcross) {
  const std::u16string classes[] = {u"IPM.Contact",
                                    u"IPM.DistList",
                                    u"IPM.Task",
                                    u"IPM.StickyNote",
                                    u"IPM.Activity",
                                    u"IPM.Post",
                                    u"IPM.Schedule.Meeting.Request",
                                    u"REPORT.IPM.Note.NDR",
                                    u"IPM.Document.Word",
                                    u"IPM.Note.SMIME.MultipartSigned",
                                    u"Nobody.Knows"};
  forge::Mailbox box = NewBox();
  const forge::Nid inbox = box.AddFolder({.name = u"Inbox"});
  for (const std::u16string& name : classes) {
    Message message = Mail(u"Of a class");
    message.messageClass = name;
    box.AddMessage(inbox, message);
  }
  Copy(box);
  for (const std::u16string& name : classes) EXPECT_EQ(account_.items[name].whole, 1U);
  EXPECT_EQ(account_.Totals().live, std::size(classes));
  ExpectAllWhole();
  ExpectSound();
}

TEST_P(MessagesTest, HiddenOnesComeAcrossOnRequestAlone) {
  const auto forged = [] {
    forge::Mailbox box = NewBox();
    const forge::Nid inbox = box.AddFolder({.name = u"Inbox"});
    box.AddMessage(inbox, Mail(u"Seen"));
    Message rule = Mail(u"Rule");
    rule.messageClass = u"IPM.Rule.Version2.Message";
    rule.flags = 0x41;
    box.AddMessage(inbox, rule, 0x100028);
    Message list = Mail(u"Categories", {Binary(0x7C08, Noise(500, 1))});
    list.messageClass = u"IPM.Configuration.CategoryList";
    list.flags = 0x41;
    box.AddMessage(inbox, list, 0x100048);
    return box.Finish().bytes;
  };
  Copy(forged());
  EXPECT_THAT(target_->FolderOf(NodeOf(0x8082)).associated, testing::ElementsAre(NodeOf(0x100048)))
      << "the list of categories alone";
  EXPECT_EQ(Count(NodeFate::kHidden), 1U);
  EXPECT_FALSE(target_->Has(NodeOf(0x100028)));
  ExpectSound();

  Copy(forged(), {.hidden = true});
  EXPECT_THAT(target_->FolderOf(NodeOf(0x8082)).associated, testing::ElementsAre(NodeOf(0x100028), NodeOf(0x100048)));
  EXPECT_THAT(target_->FolderOf(NodeOf(0x8082)).messages, testing::ElementsAre(NodeOf(0x200024)));
  EXPECT_EQ(NumberOf(TargetItem(0x100028).properties, 0x0E07), 0x41U);
  EXPECT_EQ(Count(NodeFate::kHidden), 0U);
  ExpectSound();
}

TEST_P(MessagesTest, TheListOfCategoriesKeepsItsNamesAndColours) {
  forge::Mailbox box = NewBox();
  const forge::Nid calendar = box.AddFolder({.name = u"Calendar", .containerClass = u"IPF.Appointment"});
  const forge::PropertyList values = {Binary(0x7C08, ToBytes("<categories default=\"Red\"/>")), Int32(0x7C06, 2)};
  Message list = Mail(u"Categories", values);
  list.messageClass = u"IPM.Configuration.CategoryList";
  list.flags = 0x41;
  const forge::Nid nid = box.AddMessage(calendar, list, 0x100028).nid;
  Copy(box);
  ASSERT_TRUE(target_->Has(NodeOf(nid)));
  // The names and colours are the value of 7C08 of just this class.
  ExpectHas(TargetItem(nid).properties, values);
}

TEST_P(MessagesTest, IdsStayUnlessTheNewStoreNeedsThem) {
  forge::Mailbox box = NewBox();
  const forge::Nid inbox = box.AddFolder({.name = u"Inbox"});
  const forge::Nid high = box.AddMessage(inbox, Mail(u"High"), 0x7FFFE4).nid;
  const forge::Nid usual = box.AddMessage(inbox, Mail(u"Usual"), 0x200104).nid;
  const forge::Nid low = box.AddMessage(inbox, Mail(u"Low"), 0x2004).nid;
  Copy(box);
  EXPECT_EQ(TextOf(TargetItem(high).properties, 0x0037), u"High");
  EXPECT_EQ(TextOf(TargetItem(usual).properties, 0x0037), u"Usual");
  EXPECT_FALSE(target_->Has(NodeOf(low))) << "below what a store gives out";
  EXPECT_EQ(target_->Messages().size(), 3U);
  EXPECT_TRUE(account_.IsWhole());
  ExpectSound();
}

TEST_P(MessagesTest, TheRowOfAFolderShowsWhatTheMessageHas) {
  forge::Mailbox box = NewBox();
  const forge::Nid inbox = box.AddFolder({.name = u"Inbox"});
  Message message = Mail(u"Row");
  message.recipients = {{u"To", u"to@example.org"}};
  message.importance = 2;
  const forge::Nid nid = box.AddMessage(inbox, message).nid;
  Copy(box);
  const Properties row = target_->RowOf(NodeOf((inbox & ~0x1FU) | 0x0E), NodeOf(nid));
  const Item item = TargetItem(nid);
  constexpr std::uint16_t kShown[] = {0x0017, 0x001A, 0x0037, 0x0039, 0x0042, 0x0070,
                                      0x0E04, 0x0E06, 0x0E07, 0x0E08, 0x3008};
  for (const std::uint16_t id : kShown) {
    const Value* cell = Find(row, id);
    ASSERT_NE(cell, nullptr) << std::hex << id;
    EXPECT_EQ(*cell, *Find(item.properties, id)) << std::hex << id;
  }
}

TEST_P(MessagesTest, AMessageOfNoPropertiesButItsClassComesAcross) {
  const Item item = CopyOf({.bare = true});
  EXPECT_EQ(TextOf(item.properties, 0x001A), u"IPM.Note");
  EXPECT_TRUE(account_.IsWhole());
  EXPECT_EQ(account_.items[u"IPM.Note"].whole, 1U);
}

}  // namespace
}  // namespace velmora::complete
