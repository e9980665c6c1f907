#include "workflow/panes/fill_kinds.h"

#include <gtest/gtest.h>

#include <map>
#include <span>
#include <string>

#include "text/text.h"
#include "workflow/panes/listed_rows.h"

namespace velmora::workflow {
namespace {

constexpr std::string_view kFormNames[] = {"text",
                                           "flag",
                                           "number",
                                           "date",
                                           "time",
                                           "sensitivity word",
                                           "importance word",
                                           "status word",
                                           "note colour words"};

void ExpectRows(PaneMessage message, std::span<const ListedRow> listed) {
  const FillKind* kind = FillKindOf(message);
  ASSERT_NE(kind, nullptr);
  ASSERT_EQ(kind->rows.size(), listed.size());
  for (std::size_t i = 0; i < listed.size(); ++i) {
    const GridRow& row = kind->rows[i];
    EXPECT_EQ(text::ToUtf8(row.label), listed[i].label);
    EXPECT_EQ(output::InfoOf(row.field).name, listed[i].operation) << listed[i].label;
    EXPECT_EQ(kFormNames[static_cast<std::size_t>(row.form)], listed[i].form) << listed[i].label;
  }
}

TEST(FillKindsTest, EveryRowOfAContactStandsInItsPlace) { ExpectRows(kFillContactsMessage, kListedContactRows); }
TEST(FillKindsTest, EveryRowOfATaskStandsInItsPlace) { ExpectRows(kFillTasksMessage, kListedTaskRows); }
TEST(FillKindsTest, EveryRowOfAnAppointmentStandsInItsPlace) { ExpectRows(kFillCalendarMessage, kListedCalendarRows); }
TEST(FillKindsTest, EveryRowOfAJournalEntryStandsInItsPlace) { ExpectRows(kFillJournalMessage, kListedJournalRows); }
TEST(FillKindsTest, EveryRowOfANoteStandsInItsPlace) { ExpectRows(kFillNotesMessage, kListedNoteRows); }

TEST(FillKindsTest, TheSecondAddressKeepsItsSlip) {
  const auto& rows = FillKindOf(kFillContactsMessage)->rows;
  EXPECT_TRUE(std::ranges::any_of(rows, [](const GridRow& row) { return row.label == u"Emai2 Address"; }));
}

TEST(FillKindsTest, MessagesAndDialogTextsOfTheFills) {
  const std::map<std::uint32_t, std::string> expected = {{32836, "Updating Contacts"},
                                                         {32838, "Updating Tasks"},
                                                         {32839, "Updating Calendars"},
                                                         {32840, "Updating Notes"},
                                                         {32841, "Updating Journals"}};
  ASSERT_EQ(FillKinds().size(), expected.size());
  for (const auto& [message, dialogText] : expected) {
    ASSERT_NE(FillKindOf(message), nullptr) << message;
    EXPECT_EQ(text::ToUtf8(FillKindOf(message)->dialogText), dialogText);
  }
  EXPECT_EQ(FillKindOf(32837), nullptr) << "this one clears";
}

TEST(FillKindsTest, AContactIsCaptionedByItsFullNameAndEverythingElseByItsSubject) {
  for (const FillKind& kind : FillKinds()) {
    const bool contacts = kind.message == kFillContactsMessage;
    EXPECT_EQ(kind.caption, contacts ? output::Field::FullName : output::Field::Subject);
  }
}

TEST(FillKindsTest, AFolderOfAKindIsShownByTheFillOfThatKind) {
  const std::map<std::u16string, std::uint32_t> expected = {
      {u"IPM.Contact", 32836},     {u"IPF.Contact", 32836},     {u"IPM.Task", 32838},       {u"IPF.Task", 32838},
      {u"IPM.Appointment", 32839}, {u"IPF.Appointment", 32839}, {u"IPM.StickyNote", 32840}, {u"IPF.StickyNote", 32840},
      {u"IPM.Journal", 32841},     {u"IPF.Journal", 32841},     {u"IPM.Activity", 32841},   {u"IPF.Activity", 32841},
  };
  for (const auto& [containerClass, message] : expected) {
    ASSERT_NE(FillKindOfClass(containerClass), nullptr) << text::ToUtf8(containerClass);
    EXPECT_EQ(FillKindOfClass(containerClass)->message, message) << text::ToUtf8(containerClass);
  }
}

TEST(FillKindsTest, AnyOtherFolderIsShownByTheList) {
  for (const char16_t* containerClass :
       {u"", u"IPF.Note", u"IPF.DistList", u"ipf.contact", u"IPF.Contact.Custom", u"IPM.TaskRequest",
        u"IPF.TaskRequest.Update", u"IPM.TaskRequest.Decline", u"IPF.TaskRequest.Accept",
        u"IPM.Schedule.Meeting.Request", u"IPF.Meeting", u"Contact", u"IPX.Contact"}) {
    EXPECT_EQ(FillKindOfClass(containerClass), nullptr) << text::ToUtf8(containerClass);
  }
}

}  // namespace
}  // namespace velmora::workflow
