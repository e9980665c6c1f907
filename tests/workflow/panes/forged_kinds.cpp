#include "workflow/panes/forged_kinds.h"

#include <algorithm>
#include <span>

#include "forge/mailbox.h"
#include "output/items/expected_rows.h"
#include "workflow/panes/listed_rows.h"

namespace velmora::workflow {
namespace {

using items::testing::ExpectedRow;

struct KindRow {
  const char16_t* folder;
  const char16_t* folderClass;
  const char16_t* messageClass;
  std::span<const ExpectedRow> records;
  std::span<const ListedRow> listed;
};

const KindRow kKinds[] = {
    {u"Contacts", u"IPF.Contact", u"IPM.Contact", items::testing::kExpectedContact, kListedContactRows},
    {u"Tasks", u"IPF.Task", u"IPM.Task", items::testing::kExpectedTask, kListedTaskRows},
    {u"Calendar", u"IPF.Appointment", u"IPM.Appointment", items::testing::kExpectedAppointment, kListedCalendarRows},
    {u"Journal", u"IPF.Journal", u"IPM.Activity", items::testing::kExpectedJournal, kListedJournalRows},
    {u"Notes", u"IPF.StickyNote", u"IPM.StickyNote", items::testing::kExpectedNote, kListedNoteRows},
};

/// Records ahead of that of the class come before there is an item to take them.
constexpr std::uint16_t kClassId = 0x001A;

forge::Property PropertyOf(const ExpectedRow& row) {
  const std::string operation = row.operation;
  switch (row.sort) {
    case 'F':
      return forge::Bool(row.id, true);
    case 'N':
      return forge::Int32(row.id, 2);
    case 'S':
      return forge::Int16(row.id, 2);
    case 'D':
      return forge::Time(row.id, forge::TimeOf(2011, 5, 4, 1, 2, 3));
    default:
      return forge::Text(row.id, u"Value of " + std::u16string(operation.begin(), operation.end()));
  }
}

}  // namespace

const std::vector<ForgedKind>& ForgedKinds() {
  static const std::vector<ForgedKind> kinds = [] {
    std::vector<ForgedKind> all;
    for (const KindRow& kind : kKinds) {
      ForgedKind& forged = all.emplace_back();
      forged.folder = kind.folder;
      for (const ListedRow& row : kind.listed) {
        const auto carries = [&row](const ExpectedRow& record) {
          return record.operation == row.operation && record.id > kClassId;
        };
        if (std::ranges::any_of(kind.records, carries)) forged.labels.emplace_back(row.label);
      }
    }
    return all;
  }();
  return kinds;
}

forge::Image ForgeEveryKind() {
  // Without a map of names the local ids of named properties are the long ones.
  forge::Mailbox box({.client = forge::Client::kOffline}, {.nameMap = false});
  for (const KindRow& kind : kKinds) {
    const forge::Nid folder = box.AddFolder({.name = kind.folder, .containerClass = kind.folderClass});
    forge::Message item{.messageClass = kind.messageClass, .bare = true};
    for (const ExpectedRow& row : kind.records) forge::Set(item.properties, PropertyOf(row));
    box.AddMessage(folder, item);
  }
  // A store of fewer blocks than these is not taken for one.
  const forge::Nid filling = box.AddFolder({.name = u"Filling"});
  for (int i = 0; i < 60; ++i) box.AddMessage(filling, {.subject = u"Filling"});
  return box.Finish();
}

}  // namespace velmora::workflow
