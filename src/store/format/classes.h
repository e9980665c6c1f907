// The classes by which mail stores tell what an item is and what a folder holds.
#pragma once

#include <cstdint>
#include <optional>

#include "text/text.h"

namespace velmora {

inline constexpr text::TextView kMailMessageClass = u"IPM.Note";

/// The kinds of items, in the order in which a record is offered to their converters.
enum class ItemKind { kMail, kContact, kTask, kAppointment, kMeeting, kJournal, kNote };

/// A class that makes an item more than a mail, without the "IPM." or "IPF." before it: damaged stores and old
/// programs have both.
struct ItemClassName {
  text::TextView name;
  ItemKind kind;
};

inline constexpr ItemClassName kItemClasses[] = {
    {u"Contact", ItemKind::kContact},
    {u"DistList", ItemKind::kContact},
    {u"Journal", ItemKind::kJournal},
    {u"Activity", ItemKind::kJournal},
    {u"Task", ItemKind::kTask},
    {u"TaskRequest", ItemKind::kTask},
    {u"TaskRequest.Update", ItemKind::kTask},
    {u"TaskRequest.Decline", ItemKind::kTask},
    {u"StickyNote", ItemKind::kNote},
    {u"Appointment", ItemKind::kAppointment},
    {u"Schedule.Meeting.Canceled", ItemKind::kMeeting},
    {u"Schedule.Meeting.Request", ItemKind::kMeeting},
    {u"Schedule.Meeting.Resp.Neg", ItemKind::kMeeting},
    {u"Schedule.Meeting.Resp.Pos", ItemKind::kMeeting},
    {u"Schedule.Meeting.Resp.Tent", ItemKind::kMeeting},
};

/// The kind of a class of the table, letter case and length exact; nothing for any other.
constexpr std::optional<ItemKind> KindOfClass(text::TextView itemClass) {
  constexpr std::size_t kPrefixLength = 4;
  const text::TextView prefix = itemClass.substr(0, kPrefixLength);
  if (prefix != u"IPM." && prefix != u"IPF.") return std::nullopt;
  for (const ItemClassName& row : kItemClasses) {
    if (row.name == itemClass.substr(kPrefixLength)) return row.kind;
  }
  return std::nullopt;
}

/// Default folder kinds (the values of Outlook's enumeration).
enum class DefaultFolder : std::int32_t {
  kDeletedItems = 3,
  kOutbox = 4,
  kSentMail = 5,
  kCalendar = 9,
  kContacts = 10,
  kJournal = 11,
  kNotes = 12,
  kTasks = 13,
  kDrafts = 16,
  kConflicts = 19,
  kSyncIssues = 20,
  kLocalFailures = 21,
  kServerFailures = 22,
  kJunk = 23,
};

/// Container class of a folder that nobody gave another.
inline constexpr text::TextView kMailContainerClass = u"IPF.Note";

/// Container class of a default folder.
constexpr text::TextView ContainerClassOf(DefaultFolder kind) {
  switch (kind) {
    case DefaultFolder::kCalendar:
      return u"IPF.Appointment";
    case DefaultFolder::kContacts:
      return u"IPF.Contact";
    case DefaultFolder::kJournal:
      return u"IPF.Journal";
    case DefaultFolder::kNotes:
      return u"IPF.StickyNote";
    case DefaultFolder::kTasks:
      return u"IPF.Task";
    default:
      return kMailContainerClass;
  }
}

}  // namespace velmora
