#include "recovery/message_classes.h"

#include <gtest/gtest.h>

namespace velmora::recovery {
namespace {

using output::DefaultFolder;

void ExpectItem(text::TextView messageClass, ItemKind kind) {
  const ItemClass itemClass = Classify(messageClass);
  EXPECT_EQ(itemClass.verdict, ClassVerdict::kItem) << text::ToUtf8(messageClass);
  EXPECT_EQ(itemClass.kind, kind) << text::ToUtf8(messageClass);
}

TEST(MessageClasses, EachKindHasItsClasses) {
  for (const auto* name : {u"IPF.Contact", u"IPM.Contact", u"IPF.DistList", u"IPM.DistList"}) {
    ExpectItem(name, ItemKind::kContact);
  }
  for (const auto* name : {u"IPF.Journal", u"IPM.Journal", u"IPF.Activity", u"IPM.Activity"}) {
    ExpectItem(name, ItemKind::kJournal);
  }
  for (const auto* name : {u"IPM.Task", u"IPF.Task", u"IPM.TaskRequest", u"IPF.TaskRequest", u"IPM.TaskRequest.Update",
                           u"IPF.TaskRequest.Update", u"IPM.TaskRequest.Decline", u"IPF.TaskRequest.Decline"}) {
    ExpectItem(name, ItemKind::kTask);
  }
  for (const auto* name : {u"IPM.StickyNote", u"IPF.StickyNote"}) ExpectItem(name, ItemKind::kNote);
  for (const auto* name : {u"IPM.Appointment", u"IPF.Appointment"}) ExpectItem(name, ItemKind::kAppointment);
  for (const auto* tail : {u"Canceled", u"Request", u"Resp.Neg", u"Resp.Pos", u"Resp.Tent"}) {
    ExpectItem(text::Text(u"IPM.Schedule.Meeting.") + tail, ItemKind::kMeeting);
    ExpectItem(text::Text(u"IPF.Schedule.Meeting.") + tail, ItemKind::kMeeting);
  }
  for (const auto* name :
       {u"IPM.Note", u"IPF.Note", u"NOTE", u"Report.IPM.Note.IPNRN", u"Report.IPM.Note.IPNNRN",
        u"Report.IPF.Note.IPNRN", u"Report.IPF.Note.IPNNRN", u"IPM.Report", u"IPF.Report", u"REPORT.IPM.Note.NDR",
        u"REPORT.IPF.Note.NDR", u"IPM.NOTE.Omtool.NDR", u"REPORT.IPM.Note.DR", u"REPORT.IPF.Note.DR",
        u"IPM.NOTE.Omtool.DR", u"IPF.NOTE.Omtool.DR", u"IPM.MessageManager"}) {
    ExpectItem(name, ItemKind::kMail);
  }
}

TEST(MessageClasses, MailClassesIgnoreTheLetterCaseAndOthersDoNot) {
  ExpectItem(u"ipm.note", ItemKind::kMail);
  ExpectItem(u"Note", ItemKind::kMail);
  EXPECT_EQ(Classify(u"ipm.contact").verdict, ClassVerdict::kDamaged);
  EXPECT_EQ(Classify(u"IPM.CONTACT").verdict, ClassVerdict::kRefused);
}

TEST(MessageClasses, ALongerClassBuiltOnNoteIsRefused) {
  EXPECT_EQ(Classify(u"IPM.Note.SMIME").verdict, ClassVerdict::kRefused);
}

TEST(MessageClasses, OneCharacterInItsPlaceIsEnoughForARefusal) {
  EXPECT_EQ(Classify(u"Ixx").verdict, ClassVerdict::kRefused);
  EXPECT_EQ(Classify(u"xPx").verdict, ClassVerdict::kRefused);
  for (const auto* name : {u"xxM", u"xxF", u"xxC"}) EXPECT_EQ(Classify(name).verdict, ClassVerdict::kRefused);
  EXPECT_EQ(Classify(u"xxm").verdict, ClassVerdict::kDamaged);
  EXPECT_EQ(Classify(u"ixp").verdict, ClassVerdict::kDamaged);
}

TEST(MessageClasses, ConfigurationsAndRulesAreRefused) {
  for (const auto* name : {u"IPM.Configuration.Calendar", u"IPM.ExtendedRule.Message", u"IPM.Rule.Message",
                           u"IPM.Microsoft.MigrationStatus"}) {
    EXPECT_EQ(Classify(name).verdict, ClassVerdict::kRefused);
  }
}

TEST(MessageClasses, ATextOfFewerThanThreeCharactersIsNoClass) {
  EXPECT_EQ(Classify(u"").verdict, ClassVerdict::kNoClass);
  EXPECT_EQ(Classify(u"IP").verdict, ClassVerdict::kNoClass);
}

TEST(MessageClasses, SpecialPlacementKnowsADefaultFolderForEachKind) {
  EXPECT_EQ(SpecialPlacementOf(u"IPM.DistList")->defaultFolder, DefaultFolder::kContacts);
  EXPECT_EQ(SpecialPlacementOf(u"IPM.Appointment")->defaultFolder, DefaultFolder::kCalendar);
  EXPECT_EQ(SpecialPlacementOf(u"IPF.Schedule.Meeting.Resp.Neg")->defaultFolder, DefaultFolder::kCalendar);
  EXPECT_EQ(SpecialPlacementOf(u"IPM.Activity")->defaultFolder, DefaultFolder::kJournal);
  EXPECT_EQ(SpecialPlacementOf(u"IPM.StickyNote")->defaultFolder, DefaultFolder::kNotes);
  EXPECT_EQ(SpecialPlacementOf(u"IPF.TaskRequest")->defaultFolder, DefaultFolder::kTasks);
}

TEST(MessageClasses, SomeClassesThatBecomeNoSpecialItemArePlacedInTheSpecialWayToo) {
  for (const auto* name : {u"IPM.Configuration.HomeTimeZone", u"IPM.Configuration.Calendar",
                           u"IPM.Configuration.AvailabilityOptions", u"IPM.Configuration.WorkHours"}) {
    ASSERT_TRUE(SpecialPlacementOf(name));
    EXPECT_EQ(SpecialPlacementOf(name)->defaultFolder, DefaultFolder::kCalendar);
  }
  for (const auto* name : {u"IPM.ExtendedRule.Message", u"IPM.Configuration.RssRule", u"IPM.Microsoft.MigrationStatus",
                           u"IPM.MessageManager", u"IPM.Rule.Message"}) {
    ASSERT_TRUE(SpecialPlacementOf(name));
    EXPECT_EQ(SpecialPlacementOf(name)->defaultFolder, std::nullopt);
  }
}

TEST(MessageClasses, OrdinaryClassesHaveNoSpecialPlacement) {
  for (const auto* name : {u"IPM.Note", u"IPM.contact", u"IPM.Configuration.Other", u""}) {
    EXPECT_FALSE(SpecialPlacementOf(name));
  }
}

}  // namespace
}  // namespace velmora::recovery
