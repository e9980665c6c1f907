#include "recovery/recovery_fixture.h"

namespace velmora::recovery {
namespace {

using engine::StoreKind;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

class MessageReaderTest : public RecoveryTest {
 protected:
  MessageReaderTest() { AddTopAndInbox(); }

  std::vector<std::uint16_t> IdsSeenBy(ItemKind kind) const {
    std::vector<std::uint16_t> ids;
    for (const auto& [seenKind, id] : records_) {
      if (seenKind == kind) ids.push_back(id);
    }
    return ids;
  }
};

TEST_F(MessageReaderTest, AMailIsMadeSentAndSavedLast) {
  AddMessage({Wide(0x001A, u"IPM.Note"), Wide(0x0037, u"Hello")});
  Recover();
  EXPECT_THAT(Trace(),
              ElementsAre(R"({"op":"AddItem","id":1,"folder":"\\\\out\\Inbox","class":"IPM.Note"})",
                          R"({"op":"Put","id":1,"field":"Sent","value":true})",
                          R"({"op":"Put","id":1,"field":"Subject","value":"Hello"})", R"({"op":"Save","id":1})"));
}

TEST_F(MessageReaderTest, AnItemOfAnotherKindIsSavedByItsWalk) {
  AddMessage({Wide(0x001A, u"IPM.Task"), Wide(0x0037, u"Do it")});
  Recover();
  EXPECT_THAT(Trace(), ElementsAre(R"({"op":"AddItem","id":1,"folder":"\\\\out\\Inbox","class":"IPM.Task"})",
                                   R"({"op":"Save","id":1})"));
  EXPECT_THAT(IdsSeenBy(ItemKind::kTask), ElementsAre(0x001A, 0x0037));
}

TEST_F(MessageReaderTest, EachKindHasItsConverter) {
  const std::pair<const char16_t*, ItemKind> kinds[] = {
      {u"IPM.Note", ItemKind::kMail},        {u"IPM.DistList", ItemKind::kContact},
      {u"IPF.Task", ItemKind::kTask},        {u"IPM.Appointment", ItemKind::kAppointment},
      {u"IPM.Activity", ItemKind::kJournal}, {u"IPM.Schedule.Meeting.Request", ItemKind::kMeeting},
      {u"IPM.StickyNote", ItemKind::kNote}};
  for (const auto& [messageClass, kind] : kinds) AddMessage({Wide(0x001A, messageClass), Value(0x0E07, 3, 1)});
  Recover();
  for (const auto& [messageClass, kind] : kinds) EXPECT_THAT(IdsSeenBy(kind), Contains(0x0E07));
  EXPECT_EQ(Trace("Save").size(), 7u);
}

TEST_F(MessageReaderTest, RecordsAheadOfTheClassReachNoConverter) {
  AddMessage({Value(0x0017, 3, 2), Wide(0x001A, u"IPM.Note"), Value(0x0036, 3, 1)});
  Recover();
  EXPECT_THAT(IdsSeenBy(ItemKind::kMail), ElementsAre(0x001A, 0x0036));
}

TEST_F(MessageReaderTest, ABlockWithoutAClassGivesNoOutputAtAll) {
  AddMessage({Wide(0x0037, u"Hello"), Value(0x0E07, 3, 1)});
  Recover();
  EXPECT_THAT(Trace(), IsEmpty());
  EXPECT_THAT(records_, IsEmpty());
}

TEST_F(MessageReaderTest, AClassOutOfBoundsEndsTheWalkAndNothingIsSaved) {
  AddMessage({Wide(0x001A, u"IPM.Task"), Value(0x001A, 0x1F, 0x803F), Value(0x0E07, 3, 1)});
  Recover();
  EXPECT_THAT(Trace(), ElementsAre(testing::StartsWith(R"({"op":"AddItem")")));
  EXPECT_THAT(IdsSeenBy(ItemKind::kTask), ElementsAre(0x001A));
}

TEST_F(MessageReaderTest, AClassThatCannotBeReadIsEmptyAndTheWalkGoesOn) {
  AddMessage({Value(0x001A, 0x1F, 0), Wide(0x001A, u"IPM.Task")});
  Recover();
  EXPECT_THAT(Trace("Save"), ElementsAre(R"({"op":"Save","id":1})"));
}

TEST_F(MessageReaderTest, AClassThroughIdentifierZeroIsEmpty) {
  const std::uint32_t bid = AddBlock(0x40, HeapBlock({Value(0x001A, 0x1F, 0)}, {.freeCount = 1}));
  AddNode(0x200024, bid, 0, kInbox);
  Recover();
  EXPECT_THAT(Trace(), IsEmpty());
  EXPECT_EQ(state_.report.skipped[SkipReason::kNoClass], 1u);
}

TEST_F(MessageReaderTest, TheSubjectIsThatOfTheFirstOfItsTwoProperties) {
  AddMessage({Wide(0x001A, u"IPM.Note"), Wide(0x0037, u"Subject"), Wide(0x0070, u"Topic")});
  AddMessage({Wide(0x001A, u"IPM.Note"), Wide(0x0070, u"Topic")});
  Recover();
  const auto puts = Trace("Put");
  EXPECT_THAT(puts, Contains(R"({"op":"Put","id":1,"field":"Subject","value":"Subject"})"));
  EXPECT_THAT(puts, Not(Contains(R"({"op":"Put","id":1,"field":"Subject","value":"Topic"})")));
  EXPECT_THAT(puts, Contains(R"({"op":"Put","id":2,"field":"Subject","value":"Topic"})"));
}

TEST_F(MessageReaderTest, ASubjectGetsNoTestOfItsPlausibilityAndAnUnreadableOneIsWrittenEmpty) {
  AddMessage({Wide(0x001A, u"IPM.Note"), Wide(0x0037, u"\x0001\x0002 Re: a")});
  AddMessage({Wide(0x001A, u"IPM.Note"), Value(0x0037, 0x1F, 0x803F), Wide(0x0070, u"Topic")});
  Recover();
  EXPECT_THAT(Trace("Put"), Contains(R"({"op":"Put","id":1,"field":"Subject","value":"\u0001\u0002 Re: a"})"));
  EXPECT_THAT(Trace("Put"), Contains(R"({"op":"Put","id":2,"field":"Subject","value":""})"));
  EXPECT_EQ(Trace("Put").size(), 4u);
}

TEST_F(MessageReaderTest, ARecordWhoseValueLiesOutOfBoundsDoesNotReachTheMailConverter) {
  AddMessage({Wide(0x001A, u"IPM.Note"), Value(0x0E04, 0x1F, 0x803F0), Value(0x0E07, 3, 1)});
  Recover();
  EXPECT_THAT(IdsSeenBy(ItemKind::kMail), ElementsAre(0x001A, 0x0E07));
}

TEST_F(MessageReaderTest, OtherKindsSeeEveryRecord) {
  AddMessage({Wide(0x001A, u"IPM.Task"), Value(0x0E04, 0x1F, 0x803F0), Value(0x0E07, 3, 1)});
  Recover();
  EXPECT_THAT(IdsSeenBy(ItemKind::kTask), ElementsAre(0x001A, 0x0E04, 0x0E07));
}

TEST_F(MessageReaderTest, TheRawValuesOfThreePropertiesAreKeptAheadOfTheConverter) {
  std::vector<std::uint16_t> seen;
  hook_ = [&](ConversionScope& scope, const PropertyRecord& record) {
    if (record.wPropId == 0x1095) {
      seen = {scope.mail->importanceSeen, scope.mail->sensitivitySeen, scope.mail->flagIconSeen};
    }
  };
  AddMessage({Value(0x0017, 3, 0x2), Wide(0x001A, u"IPM.Note"), Value(0x0036, 3, 0x70001), Value(0x1095, 3, 6)});
  Recover();
  EXPECT_THAT(seen, ElementsAre(2, 4, 6)) << "a value out of bounds is not kept";
}

TEST_F(MessageReaderTest, TheStateOfAMailStartsAnewForEachMessage) {
  std::vector<bool> toSeen;
  hook_ = [&](ConversionScope& scope, const PropertyRecord& record) {
    if (record.wPropId != 0x0E07) return;
    toSeen.push_back(scope.mail->toSeen);
    scope.mail->toSeen = true;
  };
  AddMessage({Wide(0x001A, u"IPM.Note"), Value(0x0E07, 3, 1)});
  AddMessage({Wide(0x001A, u"IPM.Note"), Value(0x0E07, 3, 1)});
  Recover();
  EXPECT_THAT(toSeen, ElementsAre(false, false));
}

TEST_F(MessageReaderTest, ADamagedClassTextBecomesAMailOfThatClass) {
  AddMessage({Wide(0x001A, u"xyz.Thing"), Wide(0x0037, u"Hello")});
  Recover();
  EXPECT_THAT(Trace("AddItem"),
              ElementsAre(R"({"op":"AddItem","id":1,"folder":"\\\\out\\Inbox","class":"xyz.Thing"})"));
  EXPECT_EQ(Trace("Save").size(), 1u);
}

TEST_F(MessageReaderTest, AContactWithoutASubjectTakesItsFullName) {
  hook_ = [&](ConversionScope&, const PropertyRecord&) {};
  AddMessage({Wide(0x001A, u"IPM.Contact")});
  Recover();
  EXPECT_THAT(Trace(), ElementsAre(testing::StartsWith(R"({"op":"AddItem")"),
                                   R"({"op":"Put","id":1,"field":"Subject","value":""})", R"({"op":"Save","id":1})"));
}

TEST_F(MessageReaderTest, EightBitStoresGiveEightBitTexts) {
  UseFormat(FORMAT_ANSI, StoreKind::kPst);
  AddFolder(0x8062, kTop, u"Ansi");
  AddMessage({Narrow(0x001A, "IPM.Note"), Narrow(0x0037, "caf\xE9")}, 0, 0x8062);
  Recover();
  EXPECT_THAT(Trace("Put"), Contains(R"({"op":"Put","id":1,"field":"Subject","value":"caf\u00E9"})"));
}

TEST_F(MessageReaderTest, AMessageIsFoundThroughTheNextLowerId) {
  AddBlock(0x40, HeapBlock({Wide(0x001A, u"IPM.Note")}));
  AddNode(0x200024, 0x41, 0, kInbox);
  Recover();
  EXPECT_EQ(Trace("Save").size(), 1u);
}

TEST_F(MessageReaderTest, TheLogNamesEachItem) {
  run_.log = this;
  AddMessage({Wide(0x001A, u"IPM.Note"), Wide(0x0037, u"Hello")});
  AddMessage({Wide(0x001A, u"IPM.Contact")});
  AddMessage({Wide(0x001A, u"IPM.Task")});
  AddMessage({Wide(0x001A, u"IPM.Appointment")});
  AddMessage({Wide(0x001A, u"IPM.Schedule.Meeting.Request")});
  AddMessage({Wide(0x001A, u"IPM.Journal")});
  AddMessage({Wide(0x001A, u"IPM.StickyNote")});
  Recover();
  const std::size_t start = log_.find(u"\r\n\r\nMail");
  ASSERT_NE(start, text::Text::npos);
  EXPECT_EQ(log_.substr(start),
            u"\r\n\r\nMail Subject: Hello\r\nStatus: Recovered\r\n"
            u"\r\n\r\nContact Subject: \r\n\r\nTask Item: \r\n\r\nAppointment: \r\n\r\nMeeting: "
            u"\r\n\r\nJournals: \r\n\r\nNotes: ");
}

TEST_F(MessageReaderTest, LoggingDoesNotChangeTheTrace) {
  AddMessage({Wide(0x001A, u"IPM.Note"), Wide(0x0037, u"Hello")});
  AddMessage({Wide(0x001A, u"IPM.Task")});
  run_.log = this;
  Recover();
  const auto logged = trace_.lines;
  EXPECT_EQ(logged.size(), 7u) << "one folder, a mail of four lines, a task of two";
}

}  // namespace
}  // namespace velmora::recovery
