// The frame of the six kinds that are no mail: what is accepted, the guard before a text, what a failure costs.
#include <gmock/gmock.h>

#include "item_fixture.h"

namespace velmora::items {
namespace {

using namespace testing;
using output::Field;
using output::OutputFailure;
using output::ResultCode;
using recovery::ItemKind;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class KindConverterTest : public ItemFixture {};

// ------------------------------------------------------------------------------------ what is accepted

TEST_F(KindConverterTest, ARecordWhosePositionLeavesNoRoomInTheBlockIsDropped) {
  const std::uint32_t value = heap.Add(Utf16(u"subject"));
  const std::size_t end = heap.NextOffset() + 8;  // of the page map's one pair
  ApplyIn(heap.Block(end - 1), ItemKind::kTask, 0x0037, PropType::kString, value);
  EXPECT_THAT(Taken(), IsEmpty());
  ApplyIn(heap.Block(end), ItemKind::kTask, 0x0037, PropType::kString, value);
  EXPECT_THAT(Taken(), ElementsAre("Subject='subject'"));
}

TEST_F(KindConverterTest, AnInlineValueIsHeldAgainstTheBlockAsIfItWereAReference) {
  const recovery::MessageBlock block = heap.Block(heap.NextOffset() + 0x100);
  ApplyIn(block, ItemKind::kTask, 0x8101, PropType::kInteger32, 0xFAF);  // 0xFA + 2 + 4 bytes are just inside
  EXPECT_THAT(Taken(), ElementsAre("Status=4015"));
  ApplyIn(block, ItemKind::kTask, 0x8101, PropType::kInteger32, 0xFB0);
  ApplyIn(block, ItemKind::kTask, 0x8101, PropType::kInteger32, 0xFFFFFFFF);
  EXPECT_THAT(Taken(), IsEmpty());
}

TEST_F(KindConverterTest, ABlockTooSmallForAnyRecordDropsEveryRecord) {
  recovery::MessageBlock block;
  ApplyIn(block, ItemKind::kTask, 0x0023, PropType::kBoolean, 1);
  EXPECT_THAT(log, IsEmpty());
}

TEST_F(KindConverterTest, ABooleanWhoseIdIsATextFieldsIsDropped) {
  Apply(ItemKind::kTask, 0x0037, PropType::kBoolean, heap.Add(Utf16(u"subject")));
  Apply(ItemKind::kTask, 0x0037, PropType::kInteger32, heap.Add(Utf16(u"subject")));
  EXPECT_THAT(log, IsEmpty());
}

TEST_F(KindConverterTest, AFlagIsTheLow16BitsOfItsValue) {
  heap = ForgedHeap(0x8000);
  const recovery::MessageBlock block = heap.Block(0x8000 + 0x2100);
  ApplyIn(block, ItemKind::kTask, 0x0023, PropType::kBoolean, 0x10000);
  ApplyIn(block, ItemKind::kTask, 0x0023, PropType::kBoolean, 0x18000);
  EXPECT_THAT(log, ElementsAre("OriginatorDeliveryReportRequested=false", "OriginatorDeliveryReportRequested=true"));
}

TEST_F(KindConverterTest, AnEmptyTextIsDropped) {
  Apply(ItemKind::kTask, 0x0037, PropType::kString, heap.Add({}));
  ApplyText(ItemKind::kTask, 0x0037, text::TextView(u"\0subject", 8));
  EXPECT_THAT(log, IsEmpty());
}

TEST_F(KindConverterTest, ATextThatEndsBelowOffset16OfTheBlockIsDropped) {
  heap = ForgedHeap(8);
  heap.Add(BytesOf("subject"));
  Apply(ItemKind::kTask, 0x0037, PropType::kString8, heap.AddRange(8, 15));
  EXPECT_THAT(log, IsEmpty());
}

TEST_F(KindConverterTest, A8BitTextAndAUtf16TextTakeTheSameRow) {
  Apply(ItemKind::kContact, 0x3A06, PropType::kString8, heap.Add(BytesOf("Zo\xEB")));
  Apply(ItemKind::kContact, 0x3A06, PropType::kString, heap.Add(Utf16(u"Zoë")));
  EXPECT_THAT(log, ElementsAre("FirstName='Zoë'", "FirstName='Zoë'"));
}

TEST_F(KindConverterTest, AListOfOneValueGivesThatValueWithNoSemicolon) {
  Apply(ItemKind::kContact, 0x3A58, PropType::kMultipleString, heap.Add(List({Utf16(u"Ann")})));
  EXPECT_THAT(log, ElementsAre("Children='Ann'"));
}

TEST_F(KindConverterTest, AListOfSeveralValuesIsJoined) {
  Apply(ItemKind::kContact, 0x3A58, PropType::kMultipleString, heap.Add(List({Utf16(u"Ann"), Utf16(u"Bob")})));
  EXPECT_THAT(log, ElementsAre("Children='Ann;Bob'"));
}

// ------------------------------------------------------------------------------------ dates

TEST_F(KindConverterTest, ATimeRecordOfFourBytesWritesTheFirstDayOf1601) {
  Apply(ItemKind::kTask, 0x8104, PropType::kTime, heap.Add(Number(1, 4)));
  EXPECT_THAT(log, ElementsAre("StartDate=date -109205"));
}

TEST_F(KindConverterTest, ATextInADateFieldWritesTheDateZero) {
  ApplyText(ItemKind::kTask, 0x8104, u"tomorrow");
  EXPECT_THAT(log, ElementsAre("StartDate=date 0"));
}

TEST_F(KindConverterTest, ATimeInATextFieldWritesTheEmptyText) {
  ApplyTime(ItemKind::kTask, 0x0037, kNewYear2020);
  EXPECT_THAT(log, ElementsAre("Subject=''"));
}

// ------------------------------------------------------------------------------------ named ids

TEST_F(KindConverterTest, ALocalIdIsTranslatedInBothStages) {
  namedProps.AddNamedProp(0x8104, 0x8001);
  namedProps.AddNamedProp(0x811C, 0x8FFF);
  ApplyTime(ItemKind::kTask, 0x8001, kNewYear2020);
  Apply(ItemKind::kTask, 0x8FFF, PropType::kBoolean, 1);
  EXPECT_THAT(log, ElementsAre("StartDate=date 43831", "Complete=true"));
}

TEST_F(KindConverterTest, ALocalIdThatTheMapDoesNotHoldIsLookedUpAsItStands) {
  namedProps.AddNamedProp(0x8105, 0x8001);
  ApplyTime(ItemKind::kTask, 0x8104, kNewYear2020);
  EXPECT_THAT(log, ElementsAre("StartDate=date 43831"));
}

TEST_F(KindConverterTest, AnIdThatTheMapTurnsIntoAnotherIsNotLookedUpAsItStands) {
  namedProps.AddNamedProp(0x8A00, 0x8104);
  ApplyTime(ItemKind::kTask, 0x8104, kNewYear2020);
  EXPECT_THAT(log, IsEmpty());
}

TEST_F(KindConverterTest, OnlyIdsFrom8000To8FFFAreTranslated) {
  namedProps.AddNamedProp(0x8104, 0x9000);
  namedProps.AddNamedProp(0x8105, 0x7FFF);
  ApplyTime(ItemKind::kTask, 0x9000, kNewYear2020);
  ApplyTime(ItemKind::kTask, 0x7FFF, kNewYear2020);
  EXPECT_THAT(log, IsEmpty());
}

// ------------------------------------------------------------------------------------ the guard

TEST_F(KindConverterTest, AFieldThatWasNeverWrittenTakesAText) {
  ApplyText(ItemKind::kNote, 0x1000, u"body");
  EXPECT_THAT(log, ElementsAre("Body='body'"));
}

TEST_F(KindConverterTest, AFieldThatHoldsATextIsOverwritten) {
  ApplyText(ItemKind::kContact, 0x3A0D, u"first floor");
  ApplyText(ItemKind::kContact, 0x3A19, u"second floor");
  EXPECT_THAT(log, ElementsAre("OfficeLocation='first floor'", "OfficeLocation='second floor'"));
}

TEST_F(KindConverterTest, AFieldThatWasWrittenWithTheEmptyTextStaysEmpty) {
  ApplyTime(ItemKind::kNote, 0x0037, kNewYear2020);  // a time in a text field
  ApplyText(ItemKind::kNote, 0x0037, u"subject");
  EXPECT_THAT(log, ElementsAre("Subject=''"));
}

TEST_F(KindConverterTest, WithALibraryWhoseReadsAnswerEmptyNoTextIsWrittenWhileDatesAndFlagsAre) {
  object->AnswerEveryReadWithWrittenAndEmpty();
  for (ItemKind kind : {ItemKind::kContact, ItemKind::kTask, ItemKind::kAppointment, ItemKind::kMeeting,
                        ItemKind::kJournal, ItemKind::kNote}) {
    ApplyText(kind, 0x0037, u"subject");
    ApplyText(kind, 0x1000, u"body");
    ApplyTime(kind, 0x0E06, kNewYear2020);
    Apply(kind, 0x0023, PropType::kBoolean, 1);
    EXPECT_THAT(Taken(), ElementsAre("ReceivedTime=date 43831", "OriginatorDeliveryReportRequested=true"));
  }
}

// ------------------------------------------------------------------------------------ failures

TEST_F(KindConverterTest, AFailingTextCostsThatFieldAlone) {
  object->FailPut(Field::Subject, ResultCode::E_FAIL);
  ApplyText(ItemKind::kTask, 0x0037, u"subject");
  ApplyText(ItemKind::kTask, 0x1000, u"body");
  EXPECT_THAT(log, ElementsAre("Body='body'"));
}

TEST_F(KindConverterTest, AFailingDateCostsThatFieldAlone) {
  object->FailPut(Field::StartDate, ResultCode::E_OUTOFMEMORY);
  ApplyTime(ItemKind::kTask, 0x8104, kNewYear2020);
  ApplyTime(ItemKind::kTask, 0x8105, kNewYear2020);
  EXPECT_THAT(log, ElementsAre("DueDate=date 43831"));
}

TEST_F(KindConverterTest, AFailingFlagIsRaisedToTheMessageWalk) {
  object->FailPut(Field::Complete, ResultCode::E_FAIL);
  EXPECT_THROW(Apply(ItemKind::kTask, 0x811C, PropType::kBoolean, 1), OutputFailure);
}

TEST_F(KindConverterTest, ANullItemCostsATextAlone) {
  item.Release();
  EXPECT_NO_THROW(ApplyText(ItemKind::kTask, 0x0037, u"subject"));
  EXPECT_THROW(Apply(ItemKind::kTask, 0x0023, PropType::kBoolean, 1), OutputFailure);
}

TEST_F(KindConverterTest, AFailureOfTheStoreItselfPasses) {
  for (ResultCode code : {ResultCode::STG_E_MEDIUMFULL, ResultCode::STG_E_WRITEFAULT}) {
    object->FailPut(Field::Subject, code);
    object->FailPut(Field::StartDate, code);
    object->FailPut(Field::Complete, code);
    EXPECT_THROW(ApplyText(ItemKind::kTask, 0x0037, u"subject"), OutputFailure);
    EXPECT_THROW(ApplyTime(ItemKind::kTask, 0x8104, kNewYear2020), OutputFailure);
    EXPECT_THROW(Apply(ItemKind::kTask, 0x811C, PropType::kBoolean, 1), OutputFailure);
  }
}

TEST_F(KindConverterTest, TheStopOfARunPasses) {
  class StoppingMail : public RecordingMail {
   public:
    using RecordingMail::RecordingMail;
    void Put(Field, const output::FieldValue&) override { throw engine::RunStopped(); }
  };
  item = std::make_shared<StoppingMail>(log);
  EXPECT_THROW(ApplyText(ItemKind::kTask, 0x0037, u"subject"), engine::RunStopped);
  EXPECT_THROW(Apply(ItemKind::kTask, 0x811C, PropType::kBoolean, 1), engine::RunStopped);
}

// ------------------------------------------------------------------------------------ the kinds

TEST_F(KindConverterTest, AContactsOstBodyIsDroppedFromEveryOtherKindOfStore) {
  for (auto kind : {engine::StoreKind::kPst, engine::StoreKind::kPab, engine::StoreKind::kNone}) {
    scope.storeKind = kind;
    ApplyText(ItemKind::kContact, 0x6619, u"body");
    EXPECT_THAT(Taken(), IsEmpty());
  }
  scope.storeKind = engine::StoreKind::kOst;
  ApplyText(ItemKind::kContact, 0x6619, u"body");
  EXPECT_THAT(Taken(), ElementsAre("Body='body'"));
}

TEST_F(KindConverterTest, AnEmailAddressIsTakenFromAnyKindOfStore) {
  for (auto kind : {engine::StoreKind::kOst, engine::StoreKind::kPst}) {
    scope.storeKind = kind;
    ApplyText(ItemKind::kContact, 0x8083, u"a@example.org");
    ApplyText(ItemKind::kContact, 0x8082, u"SMTP");
    EXPECT_THAT(Taken(), ElementsAre("Email1Address='a@example.org'", "Email1AddressType='SMTP'"));
  }
}

TEST_F(KindConverterTest, AContactsGenderIsA16BitIntegerAlone) {
  Apply(ItemKind::kContact, 0x3A4D, PropType::kInteger32, 1);
  Apply(ItemKind::kContact, 0x3A4D, PropType::kBoolean, 1);
  EXPECT_THAT(Taken(), IsEmpty());
  heap = ForgedHeap(0x4000);
  ApplyIn(heap.Block(0x8000), ItemKind::kContact, 0x3A4D, PropType::kInteger16, 0x1FFFF);
  EXPECT_THAT(Taken(), ElementsAre("Gender=-1"));
}

TEST_F(KindConverterTest, AContactHasNoRecipients) {
  for (std::uint16_t id : std::initializer_list<std::uint16_t>{0x0E02, 0x0E03, 0x0E04, 0x8005})
    ApplyText(ItemKind::kContact, id, u"text");
  EXPECT_THAT(log, IsEmpty());
}

TEST_F(KindConverterTest, ATasksPriorityIsATextAndNoNumber) {
  Apply(ItemKind::kTask, 0x0026, PropType::kInteger32, 1);
  EXPECT_THAT(Taken(), IsEmpty());
  ApplyText(ItemKind::kTask, 0x0026, u"A1");
  EXPECT_THAT(Taken(), ElementsAre("SchedulePlusPriority='A1'"));
}

TEST_F(KindConverterTest, The8105OfATaskIsItsDueDateAndOfAMailTheDateOfItsFlag) {
  ApplyTime(ItemKind::kTask, 0x8105, kNewYear2020);
  mail.toSeen = true;
  ApplyTime(ItemKind::kMail, 0x8105, kNewYear2020);
  EXPECT_THAT(log, ElementsAre("DueDate=date 43831", "FlagDueBy=date 43831"));
}

TEST_F(KindConverterTest, AnAppointmentThatIsNotAllDaySaysSo) {
  Apply(ItemKind::kAppointment, 0x8215, PropType::kBoolean, 0);
  EXPECT_THAT(log, ElementsAre("AllDayEvent=false"));
}

TEST_F(KindConverterTest, AMeetingHasNoPlaceStartOrEnd) {
  ApplyText(ItemKind::kMeeting, 0x8208, u"room 1");
  ApplyTime(ItemKind::kMeeting, 0x820D, kNewYear2020);
  ApplyTime(ItemKind::kMeeting, 0x820E, kNewYear2020);
  EXPECT_THAT(log, IsEmpty());
}

TEST_F(KindConverterTest, AMeetingsReminderTimeIsWrittenWhateverItsReminderFlagSays) {
  ApplyTime(ItemKind::kMeeting, 0x8502, kNewYear2020);
  Apply(ItemKind::kMeeting, 0x8503, PropType::kBoolean, 0);
  ApplyTime(ItemKind::kMeeting, 0x8502, kNewYear2020);
  EXPECT_THAT(log, ElementsAre("ReminderTime=date 43831", "ReminderSet=false", "ReminderTime=date 43831"));
}

TEST_F(KindConverterTest, ANoteHasNoPlaceOnTheScreenAndNoSender) {
  Apply(ItemKind::kNote, 0x8B04, PropType::kInteger32, 80);
  Apply(ItemKind::kNote, 0x8B05, PropType::kInteger32, 80);
  for (std::uint16_t id : std::initializer_list<std::uint16_t>{0x0042, 0x0064, 0x0065, 0x0C1A, 0x0C1E, 0x0C1F})
    ApplyText(ItemKind::kNote, id, u"Ann");
  EXPECT_THAT(log, IsEmpty());
}

TEST_F(KindConverterTest, AJournalEntryHasNoImportanceNoAgingAndNoEnd) {
  Apply(ItemKind::kJournal, 0x0017, PropType::kInteger32, 1);
  Apply(ItemKind::kJournal, 0x850E, PropType::kBoolean, 1);
  ApplyTime(ItemKind::kJournal, 0x8708, kNewYear2020);
  EXPECT_THAT(log, IsEmpty());
}

}  // namespace
}  // namespace velmora::items
