#include "store/messaging/folders/default_folders.h"

#include <algorithm>
#include <vector>

#include "store/format/property_tags.h"
#include "store/ltp/multi_value.h"

namespace velmora::messaging {
namespace {

struct KindRow {
  DefaultFolder kind;
  PropTag ofRoot = 0;   ///< its entry id on the root folder; 0 where it has no such property
  PropTag ofStore = 0;  ///< the same on the message store
};

// The last five stand in one property of the root, in this order; the fifth place is there when it is taken.
constexpr KindRow kKindRows[] = {
    {DefaultFolder::kDeletedItems, 0, tag::kIpmWastebasketEntryId},
    {DefaultFolder::kOutbox, 0, tag::kIpmOutboxEntryId},
    {DefaultFolder::kSentMail, 0, tag::kIpmSentMailEntryId},
    {DefaultFolder::kCalendar, 0x36D00102},
    {DefaultFolder::kContacts, 0x36D10102},
    {DefaultFolder::kJournal, 0x36D20102},
    {DefaultFolder::kNotes, 0x36D30102},
    {DefaultFolder::kTasks, 0x36D40102},
    {DefaultFolder::kDrafts, 0x36D70102},
    {DefaultFolder::kConflicts},
    {DefaultFolder::kSyncIssues},
    {DefaultFolder::kLocalFailures},
    {DefaultFolder::kServerFailures},
    {DefaultFolder::kJunk},
};
constexpr std::size_t kFirstOfArray = 9;

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

std::vector<std::pair<DefaultFolder, Nid>> DefaultFolders::All() const {
  std::vector<std::pair<DefaultFolder, Nid>> all;
  for (std::size_t i = 0; i < kKinds; ++i) {
    if (folders_[i] != Nid{}) all.emplace_back(kKindRows[i].kind, folders_[i]);
  }
  return all;
}

bool DefaultFolders::IsOfStore(DefaultFolder kind) {
  const KindRow* row = RowOf(kind);
  return row != nullptr && row->ofStore != 0;
}

void DefaultFolders::PutIntoStore(const Uid& recordKey, PropertyBag& store) const {
  for (std::size_t i = 0; i < kKinds; ++i) {
    if (kKindRows[i].ofStore == 0 || folders_[i] == Nid{}) continue;
    store.PutBytes(kKindRows[i].ofStore, NodeEntryId(recordKey, folders_[i]));
  }
}

void DefaultFolders::PutIntoRoot(const Uid& recordKey, PropertyBag& root) const {
  static_assert(std::size(kKindRows) == kKinds);
  std::vector<Bytes> array;
  for (std::size_t i = 0; i < kKinds; ++i) {
    const Bytes entryId = folders_[i] != Nid{} ? NodeEntryId(recordKey, folders_[i]) : Bytes();
    if (kKindRows[i].ofRoot != 0 && !entryId.empty()) root.PutBytes(kKindRows[i].ofRoot, entryId);
    if (i >= kFirstOfArray) array.push_back(entryId);
  }
  if (std::ranges::all_of(array, &Bytes::empty)) return;
  if (array.back().empty()) array.pop_back();
  const std::vector<std::span<const std::byte>> elements(array.begin(), array.end());
  root.PutBytes(tag::kAdditionalRenEntryIds, ltp::EncodeMultiple(elements));
}

void DefaultFolders::ReadFromRoot(const Uid& recordKey, ltp::PropertyContext& root) {
  const Bytes array = root.Binary(tag::kAdditionalRenEntryIds).value_or(Bytes());
  const auto elements = ltp::DecodeMultiple(array);
  for (std::size_t i = 0; i < kKinds; ++i) {
    Bytes entryId;
    if (kKindRows[i].ofRoot != 0) {
      entryId = root.Binary(kKindRows[i].ofRoot).value_or(Bytes());
    } else if (i >= kFirstOfArray && elements && i - kFirstOfArray < elements->size()) {
      const auto element = (*elements)[i - kFirstOfArray];
      entryId.assign(element.begin(), element.end());
    }
    if (const auto nid = NodeOfEntryId(entryId, recordKey)) folders_[i] = *nid;
  }
}

void DefaultFolders::ReadFromStore(const Uid& recordKey, ltp::PropertyContext& store) {
  for (std::size_t i = 0; i < kKinds; ++i) {
    if (kKindRows[i].ofStore == 0) continue;
    const Bytes entryId = store.Binary(kKindRows[i].ofStore).value_or(Bytes());
    if (const auto nid = NodeOfEntryId(entryId, recordKey)) folders_[i] = *nid;
  }
}

}  // namespace velmora::messaging
