// The mail converter: envelope, row of the list pane, read and sent state.
#include <gmock/gmock.h>

#include "item_fixture.h"

namespace velmora::items {
namespace {

using namespace testing;
using output::Field;
using output::OutputFailure;
using output::ResultCode;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Pair;

class MailConverterTest : public ItemFixture {
 protected:
  static constexpr recovery::ItemKind kMail = recovery::ItemKind::kMail;

  /// The message walk has set the subject before it comes to the envelope.
  void HasSubject(text::TextView subject) {
    object->Put(Field::Subject, text::Text(subject));
    log.clear();
  }
  void Text(std::uint16_t id, text::TextView text) { ApplyText(kMail, id, text); }
  void Time(std::uint16_t id, std::uint64_t fileTime = kNewYear2020) { ApplyTime(kMail, id, fileTime); }
  void Number(std::uint16_t id, std::uint32_t value) { Apply(kMail, id, PropType::kInteger32, value); }
  void Flag(std::uint16_t id, std::uint32_t value) { Apply(kMail, id, PropType::kBoolean, value); }

  /// As the message walk does ahead of the converter.
  void SeenNumber(std::uint16_t id, std::uint16_t& seen, std::uint32_t value) {
    seen = static_cast<std::uint16_t>(value);
    Number(id, value);
  }
};

// ------------------------------------------------------------------------------------ sender, recipients, row

TEST_F(MailConverterTest, TheSenderIsWrittenTwiceAndOpensTheRow) {
  Text(0x0042, u"Ann");
  EXPECT_THAT(log, ElementsAre("SentOnBehalfOfName='Ann'", "SenderName='Ann'", "from 'Ann'"));
}

TEST_F(MailConverterTest, SenderThenRecipientsFillTheRow) {
  HasSubject(u"Minutes");
  Text(0x0042, u"Ann");
  Text(0x0E03, u"Carl");
  Text(0x0E04, u"Bob; Dora");
  Time(0x0E06);
  EXPECT_THAT(log,
              ElementsAre("SentOnBehalfOfName='Ann'", "SenderName='Ann'", "from 'Ann'", "CC='Carl'", "To='Bob; Dora'",
                          "to 'Bob; Dora'", "subject 'Minutes'", "ReceivedTime=date 43831", "date '1 /1 /2020'"));
}

TEST_F(MailConverterTest, WithoutASenderTheRowOpensWithAnEmptyFrom) {
  HasSubject(u"Minutes");
  Text(0x0E04, u"Bob");
  EXPECT_THAT(log, ElementsAre("from ''", "To='Bob'", "to 'Bob'", "subject 'Minutes'"));
}

TEST_F(MailConverterTest, WithoutToTheFirstRecordBehindItFillsTheRowAndIsNotConverted) {
  HasSubject(u"Minutes");
  Text(0x0042, u"Ann");
  Taken();
  Time(0x0E06);
  EXPECT_THAT(Taken(), ElementsAre("subject 'Minutes'"));
  Time(0x0E06);
  EXPECT_THAT(Taken(), ElementsAre("ReceivedTime=date 43831", "date '1 /1 /2020'"));
}

TEST_F(MailConverterTest, WithoutSenderAndToTheRowHasAnEmptyFromAndTheSubject) {
  HasSubject(u"Minutes");
  Number(0x0E07, 1);
  EXPECT_THAT(Taken(), ElementsAre("from ''", "subject 'Minutes'"));
  Number(0x0E07, 1);
  EXPECT_THAT(Taken(), ElementsAre("UnRead=false", "Sent=false"));
}

TEST_F(MailConverterTest, ARecordThatIsNotConvertedAtAllFillsTheRowTooAndNoOtherIsLost) {
  Number(0x0E08, 4711);
  EXPECT_THAT(Taken(), ElementsAre("from ''", "subject ''"));
  Time(0x0E06);
  EXPECT_THAT(Taken(), ElementsAre("ReceivedTime=date 43831", "date '1 /1 /2020'"));
}

TEST_F(MailConverterTest, ANamedRecordFillsTheRowToo) {
  namedProps.AddNamedProp(0x8503, 0x8001);
  Flag(0x8001, 1);
  EXPECT_THAT(Taken(), ElementsAre("from ''", "subject ''"));
}

TEST_F(MailConverterTest, ASubjectOfAMailWithToIsShownOnce) {
  Text(0x0E04, u"Bob");
  Taken();
  Number(0x0E08, 4711);
  EXPECT_THAT(Taken(), IsEmpty());
}

TEST_F(MailConverterTest, RecordsAheadOfToAreConvertedInAMailWithoutIt) {
  Time(0x0039);
  Text(0x0E03, u"Carl");
  Flag(0x0E01, 1);
  EXPECT_THAT(log, ElementsAre("SentOn=date 43831", "CC='Carl'", "DeleteAfterSubmit=true"));
}

TEST_F(MailConverterTest, ALongDisplayListComesFromItsSubNode) {
  subNodes.answer = u"many people";
  heap.Add(BytesOf("text"));
  Apply(kMail, 0x0E04, PropType::kString, heap.AddRange(0xFF00, 0xFFF0));
  EXPECT_THAT(subNodes.asked, ElementsAre(Pair(PropType::kString, 3u << 5)));
  EXPECT_THAT(log, ElementsAre("from ''", "To='many people'", "to 'many people'", "subject ''"));
}

TEST_F(MailConverterTest, AMailHasNoGuard) {
  object->AnswerEveryReadWithWrittenAndEmpty();
  Text(0x0042, u"Ann");
  Text(0x0E03, u"");
  EXPECT_THAT(log, ElementsAre("SentOnBehalfOfName='Ann'", "SenderName='Ann'", "from 'Ann'", "CC=''"));
}

TEST_F(MailConverterTest, SenderAddressesAndBlindCopiesAreNotLookedAt) {
  mail.toSeen = true;
  for (std::uint16_t id :
       std::initializer_list<std::uint16_t>{0x0C1A, 0x0C1E, 0x0C1F, 0x0064, 0x0065, 0x0E02, 0x0037, 0x0070, 0x1000})
    Text(id, u"text");
  EXPECT_THAT(log, IsEmpty());
}

// ------------------------------------------------------------------------------------ times

TEST_F(MailConverterTest, ADeliveryTimeOfWrongSizeIsTheFirstDayOf1601) {
  mail.toSeen = true;
  Apply(kMail, 0x0E06, PropType::kTime, heap.Add(testing::Number(1, 4)));
  EXPECT_THAT(log, ElementsAre("ReceivedTime=date -109205", "date '1 /1 /1601'"));
}

TEST_F(MailConverterTest, TheDateColumnHasMonthDayYear) {
  mail.toSeen = true;
  Time(0x0E06, kNewYear2020 + (31ull + 28) * 24 * 3600 * 10'000'000 + 10'000'000 * 86399ull);
  EXPECT_THAT(log.back(), "date '2 /29 /2020'");
}

TEST_F(MailConverterTest, ARefusedDeliveryTimeIsTheDateZero) {
  mail.toSeen = true;
  Time(0x0E06, 0x8000000000000000);
  EXPECT_THAT(log, ElementsAre("ReceivedTime=date 0", "date '12 /30 /1899'"));
}

// ------------------------------------------------------------------------------------ icon, numbers, flags

TEST_F(MailConverterTest, AnAnsweredMailIsRepliedToAndAForwardedOneForwarded) {
  mail.toSeen = true;
  Number(0x1080, 0x105);
  Number(0x1080, 0x106);
  Number(0x1080, 0x100);
  Number(0x1080, 0xFFFF);
  EXPECT_THAT(log, ElementsAre("Reply", "Forward"));
}

TEST_F(MailConverterTest, SensitivityBelow4IsWritten) {
  SeenNumber(0x0036, mail.sensitivitySeen, 0);
  SeenNumber(0x0036, mail.sensitivitySeen, 3);
  EXPECT_THAT(log, ElementsAre("Sensitivity=0", "Sensitivity=3"));
}

TEST_F(MailConverterTest, SensitivityAbove4IsNotWrittenButKept) {
  mail.sensitivitySeen = 1;
  Number(0x0036, 5);
  EXPECT_THAT(log, IsEmpty());
  EXPECT_EQ(mail.sensitivitySeen, 5);
}

TEST_F(MailConverterTest, ASensitivityOf333OrOfItsStartValueIsNotWritten) {
  SeenNumber(0x0036, mail.sensitivitySeen, 333);
  SeenNumber(0x0036, mail.sensitivitySeen, 4);
  EXPECT_THAT(log, IsEmpty());
  mail.sensitivitySeen = 4;
  Number(0x0036, 2);
  EXPECT_THAT(log, IsEmpty());
  EXPECT_EQ(mail.sensitivitySeen, 4);
}

TEST_F(MailConverterTest, ImportanceIsWrittenButFor333AndItsStartValue) {
  SeenNumber(0x0017, mail.importanceSeen, 2);
  SeenNumber(0x0017, mail.importanceSeen, 3);
  SeenNumber(0x0017, mail.importanceSeen, 333);
  SeenNumber(0x0017, mail.importanceSeen, 5);
  EXPECT_THAT(log, ElementsAre("Importance=2", "Importance=5"));
}

TEST_F(MailConverterTest, AFlagIconIsWrittenButFor333AndItsStartValue) {
  mail.toSeen = true;
  SeenNumber(0x1095, mail.flagIconSeen, 6);
  SeenNumber(0x1095, mail.flagIconSeen, 7);
  SeenNumber(0x1095, mail.flagIconSeen, 333);
  SeenNumber(0x1095, mail.flagIconSeen, 3);
  EXPECT_THAT(log, ElementsAre("FlagIcon=6", "FlagIcon=3"));
}

TEST_F(MailConverterTest, OnlyTheLow16BitsOfANumberAreHeldAgainstItsStartValue) {
  heap = ForgedHeap(0x4000);
  mail.importanceSeen = 3;  // what the message walk keeps of 0x10003
  ApplyIn(heap.Block(0x8000), kMail, 0x0017, PropType::kInteger32, 0x10003);
  EXPECT_THAT(log, IsEmpty());
  mail.importanceSeen = 5;
  ApplyIn(heap.Block(0x8000), kMail, 0x0017, PropType::kInteger32, 0x10005);
  EXPECT_THAT(log, ElementsAre("Importance=65541"));
  EXPECT_EQ(mail.importanceSeen, 5);
}

TEST_F(MailConverterTest, FlagsAreWrittenAsTheyStand) {
  mail.toSeen = true;
  for (std::uint16_t id : std::initializer_list<std::uint16_t>{0x0023, 0x0029, 0x0E01, 0x8503}) {
    Flag(id, 1);
    Flag(id, 0);
  }
  EXPECT_THAT(log, ElementsAre("OriginatorDeliveryReportRequested=true", "OriginatorDeliveryReportRequested=false",
                               "ReadReceiptRequested=true", "ReadReceiptRequested=false", "DeleteAfterSubmit=true",
                               "DeleteAfterSubmit=false", "ReminderSet=true", "ReminderSet=false"));
}

TEST_F(MailConverterTest, NamedRecordsAreKnownByTheirLongIds) {
  mail.toSeen = true;
  namedProps.AddNamedProp(0x8101, 0x8F01);
  namedProps.AddNamedProp(0x8105, 0x8F02);
  namedProps.AddNamedProp(0x8012, 0x8F03);
  Number(0x8F01, 2);
  Time(0x8F02);
  Apply(kMail, 0x8F03, PropType::kMultipleString, heap.Add(List({Utf16(u"Work"), Utf16(u"Home")})));
  EXPECT_THAT(log, ElementsAre("FlagStatus=2", "FlagDueBy=date 43831", "Categories='Work;Home'"));
}

TEST_F(MailConverterTest, EmptyCategoriesAreNotWritten) {
  mail.toSeen = true;
  Text(0x8012, u"");
  EXPECT_THAT(log, IsEmpty());
}

// ------------------------------------------------------------------------------------ read and sent state

TEST_F(MailConverterTest, AReadMailBecomesUnsent) {
  mail.toSeen = true;
  scope.currentFolderName = u"Inbox";
  Number(0x0E07, 0x11);
  EXPECT_THAT(log, ElementsAre("UnRead=false", "Sent=false"));
}

TEST_F(MailConverterTest, AnUnreadMailKeepsItsState) {
  mail.toSeen = true;
  Number(0x0E07, 0x10);
  EXPECT_THAT(log, IsEmpty());
}

TEST_F(MailConverterTest, AReadMailInTheSentFolderStaysSent) {
  mail.toSeen = true;
  for (text::TextView name : {u"Sent", u"SENT", u"sent"}) {
    scope.currentFolderName = name;
    Number(0x0E07, 1);
    EXPECT_THAT(Taken(), ElementsAre("UnRead=false"));
  }
}

TEST_F(MailConverterTest, AReadMailInAFolderWhoseNameOnlyBeginsWithSentBecomesUnsent) {
  mail.toSeen = true;
  scope.currentFolderName = u"Sent Items";
  Number(0x0E07, 1);
  EXPECT_THAT(log, ElementsAre("UnRead=false", "Sent=false"));
}

// ------------------------------------------------------------------------------------ failures

TEST_F(MailConverterTest, AFailurePasses) {
  object->FailPut(Field::SenderName, ResultCode::E_FAIL);
  EXPECT_THROW(Text(0x0042, u"Ann"), OutputFailure);
  EXPECT_THAT(log, ElementsAre("SentOnBehalfOfName='Ann'"));
  item.Release();
  EXPECT_THROW(Text(0x0E03, u"Carl"), OutputFailure);
}

}  // namespace
}  // namespace velmora::items
