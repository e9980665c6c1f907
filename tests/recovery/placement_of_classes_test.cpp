// Every class that is placed in a way of its own, from a folder that nobody knows.
#include "recovery/recovery_fixture.h"

namespace velmora::recovery {
namespace {

struct PlacedClass {
  const char* messageClass;
  const char* home;  ///< the folder below which its items go, as the trace writes it
  bool becomesAnItem = true;
};

constexpr const char* kContacts = R"(\\\\out\\Contacts)";
constexpr const char* kCalendar = R"(\\\\out\\Calendar)";
constexpr const char* kJournal = R"(\\\\out\\Journal)";
constexpr const char* kNotes = R"(\\\\out\\Notes)";
constexpr const char* kTasks = R"(\\\\out\\Tasks)";
constexpr const char* kTop = R"(\\\\out)";

constexpr PlacedClass kClasses[] = {
    {"IPF.Contact", kContacts},
    {"IPM.Contact", kContacts},
    {"IPF.DistList", kContacts},
    {"IPM.DistList", kContacts},
    {"IPF.Appointment", kCalendar},
    {"IPM.Appointment", kCalendar},
    {"IPM.Schedule.Meeting.Canceled", kCalendar},
    {"IPM.Schedule.Meeting.Request", kCalendar},
    {"IPM.Schedule.Meeting.Resp.Neg", kCalendar},
    {"IPM.Schedule.Meeting.Resp.Pos", kCalendar},
    {"IPM.Schedule.Meeting.Resp.Tent", kCalendar},
    {"IPF.Schedule.Meeting.Canceled", kCalendar},
    {"IPF.Schedule.Meeting.Request", kCalendar},
    {"IPF.Schedule.Meeting.Resp.Neg", kCalendar},
    {"IPF.Schedule.Meeting.Resp.Pos", kCalendar},
    {"IPF.Schedule.Meeting.Resp.Tent", kCalendar},
    {"IPM.Configuration.HomeTimeZone", kCalendar, false},
    {"IPM.Configuration.Calendar", kCalendar, false},
    {"IPM.Configuration.AvailabilityOptions", kCalendar, false},
    {"IPM.Configuration.WorkHours", kCalendar, false},
    {"IPF.Journal", kJournal},
    {"IPM.Journal", kJournal},
    {"IPF.Activity", kJournal},
    {"IPM.Activity", kJournal},
    {"IPF.StickyNote", kNotes},
    {"IPM.StickyNote", kNotes},
    {"IPM.Task", kTasks},
    {"IPF.Task", kTasks},
    {"IPM.TaskRequest.Decline", kTasks},
    {"IPF.TaskRequest.Decline", kTasks},
    {"IPM.TaskRequest.Update", kTasks},
    {"IPM.TaskRequest", kTasks},
    {"IPF.TaskRequest.Update", kTasks},
    {"IPF.TaskRequest", kTasks},
    {"IPM.ExtendedRule.Message", kTop, false},
    {"IPM.Configuration.RssRule", kTop, false},
    {"IPM.Microsoft.MigrationStatus", kTop, false},
    {"IPM.MessageManager", kTop},
    {"IPM.Rule.Message", kTop, false},
};

class PlacementOfClassesTest : public RecoveryTest, public testing::WithParamInterface<PlacedClass> {};

TEST_P(PlacementOfClassesTest, AnItemOfAnUnknownFolderGoesToLostAndFoundInItsHome) {
  const auto& [messageClass, home, becomesAnItem] = GetParam();
  AddTopAndInbox();
  AddMessage({TextRecord(0x001A, text::FromUtf8(messageClass))}, 0, 0x9999);
  Recover();
  std::vector<std::string> made = Trace("AddFolder");
  std::erase_if(made, [](const std::string& line) { return line.find("Inbox") != std::string::npos; });
  EXPECT_THAT(made, testing::ElementsAre(std::string(R"({"op":"AddFolder","parent":")") + home +
                                         R"(","name":"Lost & Found","type":")" + messageClass + "\"}"));
  const std::string item = std::string(R"({"op":"AddItem","id":1,"folder":")") + home + R"(\\Lost & Found","class":")" +
                           messageClass + "\"}";
  EXPECT_EQ(Trace("AddItem"), becomesAnItem ? std::vector{item} : std::vector<std::string>());
}

INSTANTIATE_TEST_SUITE_P(Classes, PlacementOfClassesTest, testing::ValuesIn(kClasses), [](const auto& test) {
  std::string name = test.param.messageClass;
  std::ranges::replace(name, '.', '_');
  return name;
});

class ClassTextTest : public RecoveryTest {};

TEST_F(ClassTextTest, ClassesAreComparedWithTheirLetterCase) {
  AddTopAndInbox();
  for (const auto* name : {u"IPM.CONTACT", u"ipm.task", u"IPM.Contact.Extended"}) {
    AddMessage({TextRecord(0x001A, name)}, 0, 0x9999);
  }
  Recover();
  EXPECT_THAT(Trace("AddFolder"), testing::Each(testing::HasSubstr("Inbox")));
  EXPECT_THAT(Trace("AddItem"), testing::IsEmpty());
}

}  // namespace
}  // namespace velmora::recovery
