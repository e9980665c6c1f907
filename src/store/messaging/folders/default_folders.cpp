#include "store/messaging/folders/default_folders.h"

#include <algorithm>
#include <vector>

#include "store/format/property_tags.h"
#include "store/ltp/multi_value.h"

namespace velmora::messaging {
namespace {

struct KindRow {
  DefaultFolder kind;
  PropTag entryId = 0;  ///< on the root folder; 0 where it has no such property
};

// The last four stand in one property, in this order.
constexpr KindRow kKindRows[] = {
    {DefaultFolder::kDeletedItems},
    {DefaultFolder::kCalendar, 0x36D00102},
    {DefaultFolder::kContacts, 0x36D10102},
    {DefaultFolder::kJournal, 0x36D20102},
    {DefaultFolder::kNotes, 0x36D30102},
    {DefaultFolder::kTasks, 0x36D40102},
    {DefaultFolder::kConflicts},
    {DefaultFolder::kSyncIssues},
    {DefaultFolder::kLocalFailures},
    {DefaultFolder::kServerFailures},
};
constexpr std::size_t kFirstOfArray = 6;

const KindRow* RowOf(DefaultFolder kind) {
  const auto* const row = std::ranges::find(kKindRows, kind, &KindRow::kind);
  return row != std::end(kKindRows) ? row : nullptr;
}

}  // namespace

Nid DefaultFolders::Of(DefaultFolder kind) const {
  const KindRow* row = RowOf(kind);
  return row != nullptr ? folders_[static_cast<std::size_t>(row - kKindRows)] : Nid{};
}

void DefaultFolders::Set(DefaultFolder kind, Nid folder) {
  const KindRow* row = RowOf(kind);
  if (row != nullptr) folders_[static_cast<std::size_t>(row - kKindRows)] = folder;
}

void DefaultFolders::PutIntoRoot(const Uid& recordKey, PropertyBag& root) const {
  static_assert(std::size(kKindRows) == kKinds);
  std::vector<Bytes> array;
  for (std::size_t i = 0; i < kKinds; ++i) {
    const Bytes entryId = folders_[i] != Nid{} ? NodeEntryId(recordKey, folders_[i]) : Bytes();
    if (kKindRows[i].entryId != 0 && !entryId.empty()) root.PutBytes(kKindRows[i].entryId, entryId);
    if (i >= kFirstOfArray) array.push_back(entryId);
  }
  if (std::ranges::all_of(array, &Bytes::empty)) return;
  const std::vector<std::span<const std::byte>> elements(array.begin(), array.end());
  root.PutBytes(tag::kAdditionalRenEntryIds, ltp::EncodeMultiple(elements));
}

void DefaultFolders::ReadFromRoot(const Uid& recordKey, ltp::PropertyContext& root) {
  const Bytes array = root.Binary(tag::kAdditionalRenEntryIds).value_or(Bytes());
  const auto elements = ltp::DecodeMultiple(array);
  for (std::size_t i = 0; i < kKinds; ++i) {
    Bytes entryId;
    if (kKindRows[i].entryId != 0) {
      entryId = root.Binary(kKindRows[i].entryId).value_or(Bytes());
    } else if (i >= kFirstOfArray && elements && i - kFirstOfArray < elements->size()) {
      const auto element = (*elements)[i - kFirstOfArray];
      entryId.assign(element.begin(), element.end());
    }
    if (const auto nid = NodeOfEntryId(entryId, recordKey)) folders_[i] = *nid;
  }
}

}  // namespace velmora::messaging
