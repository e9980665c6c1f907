// Where whole conversions put the items of each kind.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "output/kinds/conversion.h"
#include "output/kinds/new_store.h"
#include "output/kinds/source.h"
#include "store/format/little_endian.h"

namespace velmora::kinds {
namespace {

using output::DefaultFolder;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr forge::Nid kUnknownFolder = 0x99992;
constexpr Nid kRootFolder{0x122};
constexpr std::size_t kEntryIdSize = 24;

struct Home {
  DefaultFolder kind;
  text::TextView name;
  text::TextView containerClass;
  text::TextView messageClass;  ///< of an item that belongs there
  PropTag pointer;              ///< on the root folder, where Outlook looks for it
};

constexpr Home kHomes[] = {
    {DefaultFolder::kCalendar, u"Calendar", u"IPF.Appointment", u"IPM.Appointment", 0x36D00102},
    {DefaultFolder::kContacts, u"Contacts", u"IPF.Contact", u"IPM.Contact", 0x36D10102},
    {DefaultFolder::kJournal, u"Journal", u"IPF.Journal", u"IPM.Activity", 0x36D20102},
    {DefaultFolder::kNotes, u"Notes", u"IPF.StickyNote", u"IPM.StickyNote", 0x36D30102},
    {DefaultFolder::kTasks, u"Tasks", u"IPF.Task", u"IPM.Task", 0x36D40102},
};

forge::Message Of(text::TextView messageClass) {
  return {.messageClass = std::u16string(messageClass), .subject = std::u16string(messageClass)};
}

std::vector<std::string> ClassesIn(const output::Ref<output::RDOFolder>& folder) {
  std::vector<std::string> classes;
  for (const auto& item : ItemsOf(folder)) classes.push_back(text::ToUtf8(item->MessageClass()));
  return classes;
}

TEST(Placement, EachKindHasItsDefaultFolderInTheNewStore) {
  forge::Mailbox box;
  box.AddMessage(box.AddFolder({.name = u"Inbox"}), Of(u"IPM.Note"));
  Conversion conversion(box.Finish(), "source.pst");
  const NewStore store(conversion.Store());
  auto root = store.Node(kRootFolder);
  for (const Home& home : kHomes) {
    const auto entryId = root.Binary(home.pointer);
    ASSERT_TRUE(entryId && entryId->size() == kEntryIdSize) << text::ToUtf8(home.name);
    auto pointedAt = store.Node(LoadNid(*entryId, kEntryIdSize - 4));
    EXPECT_EQ(pointedAt.Text(0x3001001F), home.name);
    EXPECT_EQ(pointedAt.Text(0x3613001F), home.containerClass);

    const auto folder = conversion.DefaultFolder(home.kind);
    ASSERT_TRUE(folder) << text::ToUtf8(home.name);
    EXPECT_EQ(folder->Name(), home.name);
    EXPECT_EQ(folder->ContainerClass(), home.containerClass);
    EXPECT_EQ(conversion.Folder(home.name)->Name(), home.name) << "right below the top";
  }
}

TEST(Placement, ItemsOfAnUnknownFolderGoBelowTheDefaultFolderOfTheirKind) {
  forge::Mailbox box;
  box.AddFolder({.name = u"Inbox"});
  for (const Home& home : kHomes) box.AddMessage(kUnknownFolder, Of(home.messageClass));
  for (const auto* other : {u"IPM.DistList", u"IPM.TaskRequest", u"IPM.Schedule.Meeting.Request", u"IPM.Note"}) {
    box.AddMessage(kUnknownFolder, Of(other));
  }
  Conversion conversion(box.Finish(), "source.pst");
  EXPECT_THAT(ClassesIn(conversion.Folder(u"Contacts\\Lost & Found")), ElementsAre("IPM.Contact", "IPM.DistList"));
  EXPECT_THAT(ClassesIn(conversion.Folder(u"Tasks\\Lost & Found")), ElementsAre("IPM.Task", "IPM.TaskRequest"));
  EXPECT_THAT(ClassesIn(conversion.Folder(u"Calendar\\Lost & Found")),
              ElementsAre("IPM.Appointment", "IPM.Schedule.Meeting.Request"));
  EXPECT_THAT(ClassesIn(conversion.Folder(u"Journal\\Lost & Found")), ElementsAre("IPM.Activity"));
  EXPECT_THAT(ClassesIn(conversion.Folder(u"Notes\\Lost & Found")), ElementsAre("IPM.StickyNote"));
  EXPECT_EQ(conversion.Report().recovery.lost.size(), 1u) << "the mail has no place";
}

TEST(Placement, ItemsOfAFolderStayThereWhateverTheirKind) {
  forge::Mailbox box;
  const forge::Nid folder = box.AddFolder({.name = u"All sorts"});
  std::vector<std::string> wanted;
  for (const Home& home : kHomes) {
    box.AddMessage(folder, Of(home.messageClass));
    wanted.push_back(text::ToUtf8(home.messageClass));
  }
  Conversion conversion(box.Finish(), "source.pst");
  EXPECT_EQ(ClassesIn(conversion.Folder(u"All sorts")), wanted);
  for (const Home& home : kHomes) EXPECT_THAT(ClassesIn(conversion.Folder(home.name)), IsEmpty());
}

TEST(Placement, AFolderThatIsCalledLikeADefaultFolderIsThatFolder) {
  forge::Mailbox box;
  for (const Home& home : kHomes) {
    const forge::Nid folder =
        box.AddFolder({.name = std::u16string(home.name), .containerClass = std::u16string(home.containerClass)});
    box.AddMessage(folder, Of(home.messageClass));
  }
  Conversion conversion(box.Finish(), "source.pst");
  for (const Home& home : kHomes) {
    EXPECT_THAT(ClassesIn(conversion.DefaultFolder(home.kind)), ElementsAre(text::ToUtf8(home.messageClass)));
  }
}

}  // namespace
}  // namespace velmora::kinds
