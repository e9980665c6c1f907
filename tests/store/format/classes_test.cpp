#include "store/format/classes.h"

#include <gtest/gtest.h>

namespace velmora {
namespace {

TEST(Classes, TellTheKindOfAnItemUnderEitherPrefix) {
  EXPECT_EQ(KindOfClass(u"IPM.Contact"), ItemKind::kContact);
  EXPECT_EQ(KindOfClass(u"IPF.DistList"), ItemKind::kContact);
  EXPECT_EQ(KindOfClass(u"IPM.TaskRequest.Decline"), ItemKind::kTask);
  EXPECT_EQ(KindOfClass(u"IPM.Appointment"), ItemKind::kAppointment);
  EXPECT_EQ(KindOfClass(u"IPF.Schedule.Meeting.Resp.Tent"), ItemKind::kMeeting);
  EXPECT_EQ(KindOfClass(u"IPM.Activity"), ItemKind::kJournal);
  EXPECT_EQ(KindOfClass(u"IPM.StickyNote"), ItemKind::kNote);
}

TEST(Classes, AreComparedExactly) {
  for (const text::TextView other : {u"IPM.Note", u"IPM.contact", u"ipm.Contact", u"IPM.Contact.Custom",
                                     u"IPM.TaskRequest.", u"Contact", u"IPC.Contact", u"IPM.", u"IPM", u""}) {
    EXPECT_EQ(KindOfClass(other), std::nullopt);
  }
}

TEST(Classes, OfDefaultFoldersAreThoseOfTheirItems) {
  EXPECT_EQ(ContainerClassOf(DefaultFolder::kTasks), u"IPF.Task");
  EXPECT_EQ(ContainerClassOf(DefaultFolder::kNotes), u"IPF.StickyNote");
  EXPECT_EQ(ContainerClassOf(DefaultFolder::kSyncIssues), u"IPF.Note");
  EXPECT_EQ(ContainerClassOf(static_cast<DefaultFolder>(99)), u"IPF.Note");
}

}  // namespace
}  // namespace velmora
