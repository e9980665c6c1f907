// What the class of an item decides, through whole conversions.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "output/kinds/conversion.h"
#include "output/kinds/new_store.h"
#include "output/kinds/pffexport.h"
#include "output/kinds/source.h"

namespace velmora::kinds {
namespace {

using output::Field;
using output::RDOMail;
using output::Ref;
using testing::ElementsAre;
using text::Text;

const Kind& KindOf(std::string_view name) {
  return *std::find_if(Kinds().begin(), Kinds().end(), [&](const Kind& kind) { return kind.name == name; });
}

const Row& RowOf(const Kind& kind, Field field) {
  return *std::find_if(kind.rows.begin(), kind.rows.end(), [&](const Row& row) { return row.field == field; });
}

Ref<RDOMail> Only(Conversion& conversion) {
  const auto items = ItemsOf(conversion.Folder(u"Sent"));
  if (items.size() != 1) throw std::runtime_error("not one item");
  return items[0];
}

// ---------------------------------------------------------------------------------------- the order of the records

class InOrder : public testing::TestWithParam<Kind> {};

TEST_P(InOrder, RecordsAheadOfTheClassReachNoField) {
  forge::Message message = MessageOf(GetParam());
  message.context.keepOrder = false;
  Conversion conversion(SourceOf(UnicodePst(), {message}), UnicodePst().fileName);
  const auto item = Only(conversion);
  for (const Row& row : GetParam().rows) {
    const bool isAhead = row.source.set == Set::kTag && row.source.id < 0x001A;
    EXPECT_EQ(item->Get(row.field).written, !isAhead) << output::InfoOf(row.field).name;
  }
}

INSTANTIATE_TEST_SUITE_P(Kinds, InOrder, testing::ValuesIn(Kinds().begin(), Kinds().end()),
                         [](const auto& test) { return std::string(test.param.name); });

// ---------------------------------------------------------------------------------------- classes of one kind

struct ClassRow {
  const char* kind;
  text::TextView messageClass;
  Field field;  ///< one of the kind's own
};

constexpr ClassRow kClasses[] = {
    {"Contact", u"IPF.Contact", Field::FirstName},
    {"Contact", u"IPM.Contact", Field::FirstName},
    {"Contact", u"IPF.DistList", Field::FirstName},
    {"Contact", u"IPM.DistList", Field::FirstName},
    {"Task", u"IPM.Task", Field::Owner},
    {"Task", u"IPF.Task", Field::Owner},
    {"Task", u"IPM.TaskRequest", Field::Owner},
    {"Task", u"IPF.TaskRequest", Field::Owner},
    {"Task", u"IPM.TaskRequest.Update", Field::Owner},
    {"Task", u"IPF.TaskRequest.Update", Field::Owner},
    {"Task", u"IPM.TaskRequest.Decline", Field::Owner},
    {"Task", u"IPF.TaskRequest.Decline", Field::Owner},
    {"Appointment", u"IPF.Appointment", Field::Location},
    {"Appointment", u"IPM.Appointment", Field::Location},
    {"Meeting", u"IPM.Schedule.Meeting.Canceled", Field::ReminderTime},
    {"Meeting", u"IPM.Schedule.Meeting.Request", Field::ReminderTime},
    {"Meeting", u"IPM.Schedule.Meeting.Resp.Neg", Field::ReminderTime},
    {"Meeting", u"IPM.Schedule.Meeting.Resp.Pos", Field::ReminderTime},
    {"Meeting", u"IPM.Schedule.Meeting.Resp.Tent", Field::ReminderTime},
    {"Meeting", u"IPF.Schedule.Meeting.Canceled", Field::ReminderTime},
    {"Meeting", u"IPF.Schedule.Meeting.Request", Field::ReminderTime},
    {"Meeting", u"IPF.Schedule.Meeting.Resp.Neg", Field::ReminderTime},
    {"Meeting", u"IPF.Schedule.Meeting.Resp.Pos", Field::ReminderTime},
    {"Meeting", u"IPF.Schedule.Meeting.Resp.Tent", Field::ReminderTime},
    {"Journal", u"IPF.Journal", Field::JournalType},
    {"Journal", u"IPM.Journal", Field::JournalType},
    {"Journal", u"IPF.Activity", Field::JournalType},
    {"Journal", u"IPM.Activity", Field::JournalType},
    {"Note", u"IPM.StickyNote", Field::Width},
    {"Note", u"IPF.StickyNote", Field::Width},
};

TEST(Classes, KeepTheirTextAndHaveTheFieldsOfTheirKind) {
  std::vector<forge::Message> messages;
  for (const ClassRow& row : kClasses) {
    forge::Message message = MessageOf(KindOf(row.kind));
    message.messageClass = std::u16string(row.messageClass);
    messages.push_back(std::move(message));
  }
  Conversion conversion(SourceOf(UnicodePst(), messages), UnicodePst().fileName);
  const auto items = ItemsOf(conversion.Folder(u"Sent"));
  ASSERT_EQ(items.size(), std::size(kClasses));
  for (std::size_t i = 0; i < items.size(); ++i) {
    const ClassRow& row = kClasses[i];
    EXPECT_EQ(items[i]->MessageClass(), row.messageClass);
    EXPECT_TRUE(items[i]->Get(row.field).value == ValueOf(RowOf(KindOf(row.kind), row.field)))
        << text::ToUtf8(row.messageClass);
  }
}

// ---------------------------------------------------------------------------------------- contacts and lists

struct OtherSource {
  Where source;
  Field field;
};

// Beside those of the contact's table: ids that lead to the same field.
constexpr OtherSource kOtherSources[] = {
    {Tag(0x3A0D), Field::OfficeLocation},
    {Address(0x8021), Field::Email1DisplayName},
    {Address(0x8022), Field::Email1Address},
    {Address(0x8043), Field::Email1Address},
    {Address(0x8063), Field::Email1Address},
    {Address(0x8064), Field::Email1AddressType},
    {Tag(0x6619), Field::Body},
};

TEST(Contacts, TakeAFieldFromEachOfItsIds) {
  const Kind& contact = KindOf("Contact");
  std::vector<forge::Message> messages;
  for (const OtherSource& other : kOtherSources) {
    messages.push_back(
        MessageOf(contact, {PropertyOf({other.source, other.field, kOwnName, kSame, nullptr, nullptr})}));
  }
  const SourceForm& ost = SourceForms()[2];
  Conversion conversion(SourceOf(ost, messages), ost.fileName);
  const auto items = ItemsOf(conversion.Folder(u"Sent"));
  ASSERT_EQ(items.size(), std::size(kOtherSources));
  for (std::size_t i = 0; i < items.size(); ++i) {
    const Field field = kOtherSources[i].field;
    EXPECT_EQ(text::ToUtf8(items[i]->Get(field).AsText()),
              "\u00ab" + std::string(output::InfoOf(field).name) + "\u00bb");
  }
}

TEST(Contacts, WithoutASubjectShowTheirFullName) {
  const Kind& contact = KindOf("Contact");
  const forge::Property fullName = PropertyOf(RowOf(contact, Field::FullName));
  Conversion conversion(SourceOf(UnicodePst(), {MessageOf(contact, {fullName}),
                                                MessageOf(contact, {PropertyOf(RowOf(contact, Field::User1))})}),
                        UnicodePst().fileName);
  const auto items = ItemsOf(conversion.Folder(u"Sent"));
  ASSERT_EQ(items.size(), 2u);
  EXPECT_EQ(items[0]->Get(Field::Subject).AsText(), u"\u00abFullName\u00bb");
  EXPECT_EQ(items[1]->Get(Field::Subject).AsText(), u"") << "there is no name either";
}

TEST(DistributionLists, KeepTheirNameAndNoMembers) {
  forge::Message list = MessageOf(KindOf("DistributionList"), {PropertyOf(RowOf(KindOf("Contact"), Field::FullName))});
  const forge::Bytes member = forge::Noise(60, 7);
  constexpr std::uint16_t kMembers[] = {0x8054, 0x8055};
  for (const std::uint16_t members : kMembers) {
    list.properties.push_back(
        forge::Named(forge::PropertySet::kAddress, members, forge::Raw(0, 0x1102, member, forge::Place::kHeap)));
  }
  Conversion conversion(SourceOf(UnicodePst(), {list}), UnicodePst().fileName);
  VELMORA_NEEDS_PEERS();
  const auto folder = conversion.Pffexport() / "Sent" / "DistributionList00001";
  EXPECT_THAT(LinesOf(forge::TextOf(folder / "DistributionList.txt"), "Name"), ElementsAre("\u00abFullName\u00bb"));
  const DumpedValues values(folder / "ItemValues.txt");
  EXPECT_FALSE(values.Find({true, 0x8054, 0x1102}));
  EXPECT_FALSE(values.Find({true, 0x8055, 0x1102}));
}

// ---------------------------------------------------------------------------------------- mail

TEST(Mails, BringTheFirstBodyThatYieldsText) {
  forge::Message html{.subject = u"html", .plain = u"the plain one", .html = forge::ToBytes("<p>the page</p>")};
  html.htmlPlace = html.plainPlace = forge::Place::kBlock;
  const SourceForm& ost = SourceForms()[2];
  Conversion conversion(SourceOf(ost, {html}), ost.fileName);
  const auto mail = Only(conversion);
  EXPECT_EQ(mail->Get(Field::HTMLBody).AsText(), u"<p>the page</p>");
  EXPECT_FALSE(mail->Get(Field::Body).written);
  VELMORA_NEEDS_PEERS();
  EXPECT_EQ(forge::TextOf(conversion.Pffexport() / "Sent" / "Message00001" / "Message.html"), "<p>the page</p>");
}

TEST(Mails, ThatWereAnsweredOrForwardedShowIt) {
  std::vector<forge::Message> messages;
  for (const std::uint32_t icon : {0x105u, 0x106u, 0x104u}) {
    // The block must be long enough for the number to be taken for a place in it.
    messages.push_back({.subject = u"Plan",
                        .plain = u"x",
                        .senderName = u"Ann",
                        .senderAddress = u"ann@sea.example",
                        .displayTo = u"Bob",
                        .properties = {forge::Int32(0x1080, icon)}});
  }
  Conversion conversion(SourceOf(UnicodePst(), messages), UnicodePst().fileName);
  const NewStore store(conversion.Store());
  auto mails = store.Messages();
  ASSERT_EQ(mails.size(), 3u) << "the answers themselves are let go";
  EXPECT_EQ(mails[0].Integer32(0x10800003), 0x105);
  EXPECT_EQ(mails[0].Integer32(0x10810003), 102);
  EXPECT_EQ(mails[1].Integer32(0x10800003), 0x106);
  EXPECT_EQ(mails[1].Integer32(0x10810003), 104);
  EXPECT_FALSE(mails[2].Integer32(0x10810003));
}

}  // namespace
}  // namespace velmora::kinds
