// What makes an item of each kind what Outlook takes it for.
#include "store/format/property_tags.h"
#include "store/format/store_nodes.h"
#include "store/ltp/multi_value.h"
#include "store/messaging/store_fixture.h"
#include "store/messaging/tables/named_properties.h"
#include "store/messaging/values/identity.h"

namespace velmora::messaging {
namespace {

using enum PropertySet;
using output::Field;
using output::RDOMail;
using output::Ref;
using text::OleDate;
using text::Text;

constexpr OleDate kDay{45000.0};
constexpr OleDate kNextDay{45001.0};

std::int64_t Ticks(OleDate date) { return static_cast<std::int64_t>(*text::FileTimeOf(date)); }

class KindsTest : public StoreTest {
 protected:
  /// Saves the item and gives its finished properties.
  ltp::PropertyContext Saved(const Ref<RDOMail>& item) {
    item->Save();
    raw_.emplace(Raw());
    return raw_->Message();
  }

  std::optional<RawStore> raw_;
};

// ---------------------------------------------------------------------------------------- mail

TEST_F(KindsTest, MailHasARecipientForEachNameOfItsLists) {
  const auto item = NewItem();
  Put(item, Field::To, Text(u"Ann Lee <ann@example.org>; Bob"));
  Put(item, Field::CC, Text(u"carol@example.org"));
  Put(item, Field::BCC, Text(u"Dan"));
  auto message = Saved(item);
  EXPECT_EQ(message.Text(tag::kDisplayTo), u"Ann Lee <ann@example.org>; Bob");
  auto table = raw_->SubTable(message, nid::kRecipientTable);
  ASSERT_EQ(table.RowCount(), 4u);
  EXPECT_EQ(table.Integer32(0, tag::kRecipientType), 1);
  EXPECT_EQ(table.Text(0, tag::kDisplayName), u"Ann Lee");
  EXPECT_EQ(table.Text(0, tag::kEmailAddress), u"ann@example.org");
  EXPECT_EQ(table.Text(0, tag::kAddressType), u"SMTP");
  EXPECT_EQ(table.Cell(0, tag::kEntryId), OneOffEntryId(u"Ann Lee", u"SMTP", u"ann@example.org"));
  EXPECT_EQ(table.Cell(0, tag::kSearchKey), AddressSearchKey(u"SMTP", u"ann@example.org"));
  EXPECT_EQ(table.Text(1, tag::kDisplayName), u"Bob");
  EXPECT_FALSE(table.Text(1, tag::kEmailAddress));
  EXPECT_EQ(table.Integer32(2, tag::kRecipientType), 2);
  EXPECT_EQ(table.Integer32(3, tag::kRecipientType), 3);
  ExpectSound();
}

TEST_F(KindsTest, MailReplacesTheRecipientsOfAListThatIsWrittenAgain) {
  const auto item = NewItem();
  Put(item, Field::To, Text(u"Ann; Bob"));
  Put(item, Field::To, Text(u"Carol"));
  auto message = Saved(item);
  EXPECT_EQ(raw_->SubTable(message, nid::kRecipientTable).RowCount(), 1u);
}

TEST_F(KindsTest, MailWithListsThatNameNobodyHasNoRecipients) {
  const auto item = NewItem();
  Put(item, Field::To, Text(u" ; ;"));
  auto message = Saved(item);
  EXPECT_EQ(message.Find(0x0E04), nullptr);
  EXPECT_FALSE(message.FindSubnode(nid::kRecipientTable));
  ExpectSound();
}

TEST_F(KindsTest, MailToManyPeopleKeepsThemAll) {
  const auto item = NewItem();
  Text to;
  for (int i = 0; i < 2000; ++i)
    to += text::FromUtf8("Person " + std::to_string(i) + " <p" + std::to_string(i) + "@example.org>; ");
  Put(item, Field::To, to);
  auto message = Saved(item);
  auto table = raw_->SubTable(message, nid::kRecipientTable);
  EXPECT_EQ(table.RowCount(), 2000u);
  EXPECT_EQ(table.Text(1999, tag::kEmailAddress), u"p1999@example.org");
  ExpectSound();
}

TEST_F(KindsTest, MailMakesItsSenderAnAddressWhenItKnowsOne) {
  const auto item = NewItem();
  Put(item, Field::SenderName, Text(u"Ann"));
  Put(item, Field::SenderEmailAddress, Text(u"ann@example.org"));
  Put(item, Field::SentOnBehalfOfName, Text(u"Bob"));
  Put(item, Field::SentOnBehalfOfEmailType, Text(u"EX"));
  Put(item, Field::SentOnBehalfOfEmailAddress, Text(u"/o=x/cn=bob"));
  auto message = Saved(item);
  EXPECT_EQ(message.Text(tag::kSenderAddressType), u"SMTP");
  EXPECT_EQ(message.Text(tag::kSenderSmtpAddress), u"ann@example.org");
  EXPECT_EQ(message.Binary(tag::kSenderEntryId), OneOffEntryId(u"Ann", u"SMTP", u"ann@example.org"));
  EXPECT_EQ(message.Binary(tag::kSentRepresentingSearchKey), AddressSearchKey(u"EX", u"/o=x/cn=bob"));
  EXPECT_FALSE(message.Text(tag::kSentRepresentingSmtpAddress));
}

TEST_F(KindsTest, MailWithASenderByNameAloneHasNoAddress) {
  const auto item = NewItem();
  Put(item, Field::SenderName, Text(u"Ann"));
  auto message = Saved(item);
  EXPECT_EQ(message.Text(tag::kSenderName), u"Ann");
  EXPECT_FALSE(message.Binary(tag::kSenderEntryId));
}

TEST_F(KindsTest, MailTellsWhichBodyIsItsOwn) {
  const auto text = NewItem();
  Put(text, Field::Body, Text(u"x"));
  text->Save();
  const auto rtf = NewItem();
  Put(rtf, Field::Body, Text(u"x"));
  Put(rtf, Field::RTFBody, Text(u"{\\rtf1 x}"));
  rtf->Save();
  const auto html = NewItem();
  Put(html, Field::HTMLBody, Text(u"<p>x"));
  Put(html, Field::RTFBody, Text(u"{\\rtf1 x}"));
  html->Save();
  NewItem()->Save();
  const RawStore raw = Raw();
  const auto of = [&](std::size_t i) { return raw.Node(raw.Messages()[i]); };
  EXPECT_EQ(of(0).Integer32(tag::kNativeBody), 1);
  EXPECT_FALSE(of(0).Boolean(tag::kRtfInSync));
  EXPECT_EQ(of(1).Integer32(tag::kNativeBody), 2);
  EXPECT_EQ(of(1).Boolean(tag::kRtfInSync), true);
  EXPECT_EQ(of(2).Integer32(tag::kNativeBody), 3);
  EXPECT_EQ(of(2).Boolean(tag::kRtfInSync), false);
  EXPECT_FALSE(of(3).Integer32(tag::kNativeBody));
  ExpectSound();
}

TEST_F(KindsTest, MailThatIsFlaggedWithADateIsInTheToDoList) {
  const auto item = NewItem();
  Put(item, Field::Subject, Text(u"Re: Plan"));
  Put(item, Field::FlagStatus, std::int32_t{2});
  Put(item, Field::FlagDueBy, kDay);
  Put(item, Field::FlagRequest, Text(u"Follow up"));
  auto message = Saved(item);
  EXPECT_EQ(message.Integer64(tag::kReplyTime), Ticks(kDay));
  EXPECT_EQ(message.Integer64(Named(kTask, 0x8105, PropType::kTime)), Ticks(kDay));
  EXPECT_EQ(message.Integer64(Named(kCommon, 0x8517, PropType::kTime)), Ticks(kDay));
  EXPECT_EQ(message.Integer32(tag::kToDoItemFlags), 1);
  EXPECT_EQ(message.Text(Named(kCommon, 0x85A4, PropType::kString)), u"Re: Plan");
}

TEST_F(KindsTest, MailOfSensitivityPrivateIsMarkedAsPrivate) {
  const auto item = NewItem();
  Put(item, Field::Sensitivity, std::int32_t{2});
  EXPECT_EQ(Saved(item).Boolean(Named(kCommon, 0x8506, PropType::kBoolean)), true);
}

TEST_F(KindsTest, MailRowsAreCopiesOfTheMessage) {
  const auto item = NewItem();
  Text names;
  while (names.size() < 400) names += u"Ann \U0001F600; ";
  Put(item, Field::Subject, Text(u"Re: ") + Text(400, u'x'));
  Put(item, Field::To, names);
  Put(item, Field::Importance, std::int32_t{2});
  auto message = Saved(item);
  const Nid folder = raw_->Reader().FindNode(raw_->Messages()[0])->nidParent;
  auto table = raw_->Table(Sibling(folder, NidType::kContentsTable));
  ASSERT_EQ(table.RowCount(), 1u);
  EXPECT_EQ(table.Text(0, tag::kSubject), message.Text(tag::kSubject));
  EXPECT_EQ(message.Text(tag::kSubject)->size(), 257u);
  EXPECT_EQ(table.Integer32(0, tag::kMessageSize), message.Integer32(tag::kMessageSize));
  EXPECT_EQ(table.Integer32(0, tag::kMessageStatus), 0);
  EXPECT_EQ(table.Cell(0, tag::kConversationId)->size(), 16u);
  const Text to = table.Text(0, tag::kDisplayTo).value();
  EXPECT_LT(to.size(), names.size());
  EXPECT_TRUE(names.starts_with(to));
  ExpectSound();
}

// ---------------------------------------------------------------------------------------- contacts

TEST_F(KindsTest, ContactIsFiledByItsNameAndHasACompleteAddress) {
  const auto item = NewItem(u"IPM.Contact");
  Put(item, Field::FirstName, Text(u"Ann"));
  Put(item, Field::LastName, Text(u"Lee"));
  Put(item, Field::Email1Address, Text(u"ann@example.org"));
  Put(item, Field::Email3Address, Text(u"lee@example.org"));
  Put(item, Field::Email3DisplayName, Text(u"Ann at home"));
  Put(item, Field::Birthday, kDay);
  auto message = Saved(item);
  EXPECT_EQ(message.Text(Named(kAddress, 0x8005, PropType::kString)), u"Lee, Ann");
  EXPECT_EQ(message.Integer32(Named(kAddress, 0x8006, PropType::kInteger32)), 0x8017);
  EXPECT_EQ(message.Text(tag::kDisplayName), u"Ann Lee");
  EXPECT_EQ(message.Text(Named(kAddress, 0x8080, PropType::kString)), u"ann@example.org");
  EXPECT_EQ(message.Text(Named(kAddress, 0x8082, PropType::kString)), u"SMTP");
  EXPECT_EQ(message.Text(Named(kAddress, 0x8084, PropType::kString)), u"ann@example.org");
  EXPECT_EQ(message.Binary(Named(kAddress, 0x8085, PropType::kBinary)),
            OneOffEntryId(u"ann@example.org", u"SMTP", u"ann@example.org"));
  EXPECT_EQ(message.Text(Named(kAddress, 0x80A0, PropType::kString)), u"Ann at home");
  EXPECT_FALSE(message.Text(Named(kAddress, 0x8092, PropType::kString)));
  const std::int32_t slots[] = {0, 2};
  const auto list = message.Binary(Named(kAddress, 0x8028, PropType::kMultipleInteger32));
  const auto read = message.Read(Named(kAddress, 0x8028, PropType::kMultipleInteger32));
  ASSERT_TRUE(read);
  EXPECT_TRUE(std::ranges::equal(*read, std::as_bytes(std::span(slots))));
  EXPECT_EQ(message.Integer32(Named(kAddress, 0x8029, PropType::kInteger32)), 5);
  EXPECT_EQ(message.Integer64(Named(kAddress, 0x80DE, PropType::kTime)), Ticks(kDay));
  EXPECT_EQ(message.Integer32(tag::kIconIndex), 0x200);
  EXPECT_EQ(message.Integer32(tag::kMessageFlags), 1);
  ExpectSound();
}

struct FilingRow {
  Field field;
  std::int32_t id;
};

TEST_F(KindsTest, ContactWithoutBothNamesIsFiledByTheNextBest) {
  constexpr FilingRow kRows[] = {{Field::FullName, 0x3001},
                                 {Field::LastName, -1},
                                 {Field::Subject, -1},
                                 {Field::CompanyName, 0x3A16},
                                 {Field::Email1Address, -1}};
  for (const FilingRow& row : kRows) {
    const auto item = NewItem(u"IPM.Contact");
    Put(item, row.field, Text(u"The name"));
    item->Save();
  }
  NewItem(u"IPM.Contact")->Save();
  const RawStore raw = Raw();
  for (std::size_t i = 0; i < std::size(kRows); ++i) {
    auto message = raw.Node(raw.Messages()[i]);
    EXPECT_EQ(message.Text(Named(kAddress, 0x8005, PropType::kString)), u"The name") << i;
    EXPECT_EQ(message.Integer32(Named(kAddress, 0x8006, PropType::kInteger32)), kRows[i].id) << i;
    EXPECT_EQ(message.Text(tag::kDisplayName), u"The name") << i;
  }
  EXPECT_FALSE(raw.Node(raw.Messages().back()).Text(Named(kAddress, 0x8005, PropType::kString)));
  ExpectSound();
}

TEST_F(KindsTest, ContactComposesTheAddressOfWhichItHasThePartsAlone) {
  const auto item = NewItem(u"IPM.Contact");
  Put(item, Field::HomeAddressStreet, Text(u"1 Main Street"));
  Put(item, Field::HomeAddressCity, Text(u"Springfield"));
  Put(item, Field::HomeAddressPostalCode, Text(u"12345"));
  Put(item, Field::HomeAddressCountry, Text(u"USA"));
  Put(item, Field::BusinessAddress, Text(u"as given"));
  Put(item, Field::BusinessAddressCity, Text(u"Elsewhere"));
  Put(item, Field::MailingAddress, Text(u"as given"));
  auto message = Saved(item);
  EXPECT_EQ(message.Text(Named(kAddress, 0x801A, PropType::kString)), u"1 Main Street\r\nSpringfield 12345\r\nUSA");
  EXPECT_EQ(message.Text(Named(kAddress, 0x801B, PropType::kString)), u"as given");
  EXPECT_EQ(message.Integer32(Named(kAddress, 0x8022, PropType::kInteger32)), 2);
  EXPECT_FALSE(message.Text(Named(kAddress, 0x801C, PropType::kString)));
}

TEST_F(KindsTest, ContactHasThePartsOfItsMailingAddressWhichIsTheBusinessAddressUnlessAnotherIsChosen) {
  const auto business = NewItem(u"IPM.Contact");
  const auto home = NewItem(u"IPM.Contact");
  for (const auto& item : {business, home}) {
    Put(item, Field::BusinessAddressStreet, Text(u"1 Main Street"));
    Put(item, Field::BusinessAddressCity, Text(u"Springfield"));
    Put(item, Field::BusinessAddressState, Text(u"Ohio"));
    Put(item, Field::BusinessAddressPostalCode, Text(u"12345"));
    Put(item, Field::BusinessAddressCountry, Text(u"USA"));
    Put(item, Field::BusinessAddressPostOfficeBox, Text(u"77"));
    Put(item, Field::HomeAddress, Text(u"at home"));
    Put(item, Field::HomeAddressCity, Text(u"Shelbyville"));
  }
  Put(home, Field::MailingAddress, Text(u"at home"));
  business->Save();
  home->Save();
  const RawStore raw = Raw();
  auto one = raw.Node(raw.Messages()[0]);
  EXPECT_EQ(one.Text(0x3A29001F), u"1 Main Street");
  EXPECT_EQ(one.Text(0x3A27001F), u"Springfield");
  EXPECT_EQ(one.Text(0x3A28001F), u"Ohio");
  EXPECT_EQ(one.Text(0x3A2A001F), u"12345");
  EXPECT_EQ(one.Text(0x3A26001F), u"USA");
  EXPECT_EQ(one.Text(0x3A2B001F), u"77");
  EXPECT_FALSE(one.Integer32(Named(kAddress, 0x8022, PropType::kInteger32)));
  auto two = raw.Node(raw.Messages()[1]);
  EXPECT_EQ(two.Text(0x3A27001F), u"Shelbyville");
  EXPECT_FALSE(two.Text(0x3A29001F));
  EXPECT_EQ(two.Integer32(Named(kAddress, 0x8022, PropType::kInteger32)), 1);
  ExpectSound();
}

TEST_F(KindsTest, DistributionListHasItsNameAndIcon) {
  const auto item = NewItem(u"IPM.DistList");
  Put(item, Field::FullName, Text(u"Team"));
  auto message = Saved(item);
  EXPECT_EQ(message.Text(Named(kAddress, 0x8053, PropType::kString)), u"Team");
  EXPECT_EQ(message.Integer32(tag::kIconIndex), 0x202);
  ExpectSound();
}

// ---------------------------------------------------------------------------------------- tasks

struct TaskRow {
  std::optional<std::int32_t> status;
  std::optional<bool> complete;
  std::int32_t storedStatus;
  double percent;
  bool storedComplete;
};

TEST_F(KindsTest, TaskHasAStatusAPercentageAndAFlagThatAgree) {
  constexpr TaskRow kRows[] = {
      {std::nullopt, std::nullopt, 0, 0.0, false},
      {0, false, 0, 0.0, false},
      {1, false, 1, 0.5, false},
      {2, std::nullopt, 2, 1.0, true},
      {2, false, 2, 1.0, true},
      {1, true, 2, 1.0, true},
      {std::nullopt, true, 2, 1.0, true},
      {3, std::nullopt, 3, 0.0, false},
      {4, std::nullopt, 4, 0.0, false},
  };
  for (const TaskRow& row : kRows) {
    const auto item = NewItem(u"IPM.Task");
    if (row.status) Put(item, Field::Status, *row.status);
    if (row.complete) Put(item, Field::Complete, *row.complete);
    item->Save();
  }
  const RawStore raw = Raw();
  for (std::size_t i = 0; i < std::size(kRows); ++i) {
    auto message = raw.Node(raw.Messages()[i]);
    EXPECT_EQ(message.Integer32(Named(kTask, 0x8101, PropType::kInteger32)), kRows[i].storedStatus) << i;
    EXPECT_EQ(message.Floating64(Named(kTask, 0x8102, PropType::kFloating64)), kRows[i].percent) << i;
    EXPECT_EQ(message.Boolean(Named(kTask, 0x811C, PropType::kBoolean)), kRows[i].storedComplete) << i;
  }
  ExpectSound();
}

TEST_F(KindsTest, TaskHasItsDatesWhereViewsLookForThem) {
  const auto item = NewItem(u"IPM.Task");
  Put(item, Field::StartDate, kDay);
  Put(item, Field::DueDate, kNextDay);
  Put(item, Field::Owner, Text(u"Ann"));
  auto message = Saved(item);
  EXPECT_EQ(message.Integer64(Named(kTask, 0x8104, PropType::kTime)), Ticks(kDay));
  EXPECT_EQ(message.Integer64(Named(kCommon, 0x8516, PropType::kTime)), Ticks(kDay));
  EXPECT_EQ(message.Integer64(Named(kCommon, 0x8517, PropType::kTime)), Ticks(kNextDay));
  EXPECT_EQ(message.Text(Named(kTask, 0x811F, PropType::kString)), u"Ann");
  EXPECT_EQ(message.Integer32(tag::kIconIndex), 0x500);
}

// ---------------------------------------------------------------------------------------- calendar

TEST_F(KindsTest, AppointmentHasItsStartAndEndWhereCalendarsLookForThem) {
  const auto item = NewItem(u"IPM.Appointment");
  Put(item, Field::AppointmentStart, kDay);
  Put(item, Field::End, kNextDay);
  Put(item, Field::ReminderSignalTime, OleDate{kDay.days - 0.25});
  auto message = Saved(item);
  for (const PropTag start :
       {Named(kAppointment, 0x820D, PropType::kTime), Named(kCommon, 0x8516, PropType::kTime), tag::kStartDate}) {
    EXPECT_EQ(message.Integer64(start), Ticks(kDay));
  }
  for (const PropTag end :
       {Named(kAppointment, 0x820E, PropType::kTime), Named(kCommon, 0x8517, PropType::kTime), tag::kEndDate}) {
    EXPECT_EQ(message.Integer64(end), Ticks(kNextDay));
  }
  EXPECT_EQ(message.Integer32(Named(kAppointment, 0x8213, PropType::kInteger32)), 1440);
  EXPECT_EQ(message.Integer32(Named(kCommon, 0x8501, PropType::kInteger32)), 360);
  EXPECT_EQ(message.Boolean(Named(kAppointment, 0x8223, PropType::kBoolean)), false);
  EXPECT_EQ(message.Integer32(tag::kIconIndex), 0x400);
  ExpectSound();
}

TEST_F(KindsTest, AppointmentTakesTheEndThatItLacksFromItsDuration) {
  const auto timed = NewItem(u"IPM.Appointment");
  Put(timed, Field::AppointmentStart, kDay);
  Put(timed, Field::AppointmentDuration, std::int32_t{90});
  timed->Save();
  const auto wholeDay = NewItem(u"IPM.Appointment");
  Put(wholeDay, Field::AppointmentStart, kDay);
  Put(wholeDay, Field::AllDayEvent, true);
  wholeDay->Save();
  const auto backwards = NewItem(u"IPM.Appointment");
  Put(backwards, Field::End, kDay);
  Put(backwards, Field::AppointmentDuration, std::int32_t{60});
  backwards->Save();
  const auto damaged = NewItem(u"IPM.Appointment");
  Put(damaged, Field::AppointmentStart, kDay);
  Put(damaged, Field::AppointmentDuration, std::int32_t{-5});
  damaged->Save();
  const RawStore raw = Raw();
  const auto of = [&](std::size_t i, std::uint16_t id) {
    auto message = raw.Node(raw.Messages()[i]);
    return message.Integer64(id == 0x820D ? Named(kAppointment, 0x820D, PropType::kTime)
                                          : Named(kAppointment, 0x820E, PropType::kTime));
  };
  EXPECT_EQ(of(0, 0x820E), Ticks(kDay) + 90 * static_cast<std::int64_t>(text::kTicksPerMinute));
  EXPECT_EQ(of(1, 0x820E), Ticks(kNextDay));
  EXPECT_EQ(of(2, 0x820D), Ticks(kDay) - 60 * static_cast<std::int64_t>(text::kTicksPerMinute));
  EXPECT_EQ(of(3, 0x820E), Ticks(kDay));
  ExpectSound();
}

struct MeetingRow {
  text::TextView messageClass;
  std::int32_t icon;
};

TEST_F(KindsTest, MeetingMessageHasTheIconOfItsClassAndNoDatesOfItsOwn) {
  constexpr MeetingRow kRows[] = {{u"IPM.Schedule.Meeting.Request", 0x404},
                                  {u"IPM.Schedule.Meeting.Resp.Pos", 0x405},
                                  {u"IPM.Schedule.Meeting.Resp.Neg", 0x406},
                                  {u"IPM.Schedule.Meeting.Resp.Tent", 0x407},
                                  {u"IPM.Schedule.Meeting.Canceled", 0x408}};
  for (const MeetingRow& row : kRows) NewItem(row.messageClass)->Save();
  const RawStore raw = Raw();
  for (std::size_t i = 0; i < std::size(kRows); ++i) {
    auto message = raw.Node(raw.Messages()[i]);
    EXPECT_EQ(message.Integer32(tag::kIconIndex), kRows[i].icon);
    EXPECT_FALSE(message.Integer64(tag::kStartDate));
  }
  ExpectSound();
}

// ---------------------------------------------------------------------------------------- journal, notes

TEST_F(KindsTest, JournalEntryHasAnEnd) {
  const auto item = NewItem(u"IPM.Activity");
  Put(item, Field::JournalStart, kDay);
  Put(item, Field::JournalDuration, std::int32_t{30});
  Put(item, Field::JournalType, Text(u"Phone call"));
  auto message = Saved(item);
  EXPECT_EQ(message.Integer64(Named(kLog, 0x8708, PropType::kTime)),
            Ticks(kDay) + 30 * static_cast<std::int64_t>(text::kTicksPerMinute));
  EXPECT_EQ(message.Integer64(Named(kCommon, 0x8516, PropType::kTime)), Ticks(kDay));
  EXPECT_EQ(message.Text(Named(kLog, 0x8712, PropType::kString)), u"Phone call");
  EXPECT_EQ(message.Integer32(tag::kIconIndex), 0x60A);
  ExpectSound();
}

TEST_F(KindsTest, NoteTakesItsTitleFromItsFirstLineAndItsIconFromItsColour) {
  const auto first = NewItem(u"IPM.StickyNote");
  Put(first, Field::Body, Text(u"\r\n Buy milk\r\nand bread"));
  Put(first, Field::Color, std::int32_t{1});
  first->Save();
  const auto second = NewItem(u"IPM.StickyNote");
  Put(second, Field::Subject, Text(u"Title"));
  Put(second, Field::Body, Text(u"text"));
  Put(second, Field::Color, std::int32_t{77});
  second->Save();
  const RawStore raw = Raw();
  auto one = raw.Node(raw.Messages()[0]);
  auto two = raw.Node(raw.Messages()[1]);
  EXPECT_EQ(one.Text(tag::kSubject), (Text{1, 1} + u"Buy milk"));
  EXPECT_EQ(one.Text(tag::kConversationTopic), u"Buy milk");
  EXPECT_EQ(one.Integer32(tag::kIconIndex), 0x301);
  EXPECT_EQ(two.Text(tag::kSubject), (Text{1, 1} + u"Title"));
  EXPECT_EQ(two.Integer32(tag::kIconIndex), 0x303);
  EXPECT_EQ(two.Integer32(Named(kNote, 0x8B00, PropType::kInteger32)), 77);
  ExpectSound();
}

// ---------------------------------------------------------------------------------------- names

TEST_F(KindsTest, NamedPropertiesAreFoundInAStoreThatNumbersThemOtherwise) {
  NewItem()->Save();
  const RawStore raw = Raw();
  auto node = raw.Node(nid::kNameToIdMap);
  const NamedPropertyMap own(node);
  const NamedPropertyMap fixed;
  for (std::size_t i = 0; i < kPropertyNameCount; ++i) {
    const PropTag tag = MakeTag(static_cast<std::uint16_t>(name_map::kFirstNamedId + i), PropType::kString);
    EXPECT_EQ(own.InStore(tag), tag);
    EXPECT_EQ(fixed.InStore(tag), tag);
  }
  EXPECT_EQ(own.InStore(0x0037001F), 0x0037001Fu);
  // Published places: text "Keywords" in bucket 0x1065, number 0x8503 of the set of common properties in 0x10AE
  // when that set is the fourth; here it is the first of the stream.
  EXPECT_TRUE(node.Binary(0x10650102));
}

}  // namespace
}  // namespace velmora::messaging
