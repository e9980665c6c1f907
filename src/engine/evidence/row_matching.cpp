#include "engine/evidence/row_matching.h"

#include <algorithm>
#include <ranges>
#include <tuple>
#include <unordered_set>

#include "store/format/property_tags.h"

namespace velmora::engine {
namespace {

/// In the order in which they are asked: the least likely to repeat come first.
constexpr std::uint16_t kTelling[] = {IdOf(tag::kLastModificationTime),
                                      IdOf(tag::kMessageDeliveryTime),
                                      0x0071,
                                      IdOf(tag::kSubject),
                                      IdOf(tag::kMessageSize),
                                      0x3001};

/// Cells that a row has of its own, or that are made anew for it; those of the synchronisation among them.
bool IsOfTheRow(std::uint16_t id) {
  static constexpr std::uint16_t kOfTheRow[] = {0x0E05, 0x0E17, 0x0E30, 0x0E33, 0x0E34, 0x1097, 0x3013, 0x65E2, 0x65E3};
  return std::ranges::count(kOfTheRow, id) != 0 || (id >= 0x6600 && id < 0x6800);
}

constexpr std::uint32_t kAbsent = 0;  ///< in place of the hash of a value
constexpr std::uint32_t kUnread = 1;  ///< it is there, but nothing can be said of it
constexpr int kMostDifferences = 2;
constexpr int kLeastAgreements = 6;  ///< of a copy
constexpr std::size_t kMostColumns = 64;
constexpr std::size_t kMostSchemas =
    8;                         ///< that a message is compared under; the stores of one program have two or three
constexpr int kKeysOfRow = 2;  ///< one of them may have changed, or be missing in the message
constexpr std::size_t kMostRows = 16;  ///< that a message is compared with for one telling property
constexpr std::size_t kMostPairs = 4;  ///< that are kept of a message

std::uint32_t Hashed(std::span<const std::byte> bytes) { return std::max(HashOf(bytes), kUnread + 1); }

std::uint32_t DetailOf(std::uint32_t size, std::uint32_t subject) { return size * 31 + subject; }

std::uint32_t ValueOf(ltp::PropertyContext& context, std::uint16_t id) {
  if (context.Find(id) == nullptr) return kAbsent;
  const auto value = SmallValue(context, id);
  return value ? Hashed(*value) : kUnread;
}

std::uint32_t ValueOf(ltp::PropertyContext& context, PropTag column) {
  const PropertyRecord* record = context.Find(IdOf(column));
  if (record != nullptr && record->Tag() != column) return kUnread;
  return ValueOf(context, IdOf(column));
}

}  // namespace

std::uint16_t RowMatching::SchemaOf(const ltp::TableContext& table) {
  std::vector<PropTag> columns;
  for (const ltp::Column& column : table.Columns()) {
    if (columns.size() < kMostColumns && !IsOfTheRow(IdOf(column.tag))) {
      columns.push_back(column.tag);
    }
  }
  const auto [number, isNew] = schemaNumbers_.emplace(columns, static_cast<std::uint16_t>(schemas_.size()));
  if (isNew && schemas_.size() < UINT16_MAX) schemas_.push_back(std::move(columns));
  return number->second;
}

void RowMatching::AddRow(Row row, ltp::TableContext& table, std::size_t number) {
  row.schema = SchemaOf(table);
  row.firstCell = static_cast<std::uint32_t>(cells_.size());
  if (row.schema == UINT16_MAX) return;  // no store has as many kinds of tables
  for (const PropTag column : schemas_[row.schema]) {
    const auto cell = IfReadable([&] { return table.Cell(number, column); });
    cells_.push_back(!cell ? kUnread : !*cell ? kAbsent : Hashed(**cell));
  }
  rows_.push_back(row);
}

std::uint32_t RowMatching::CellOf(const Row& row, std::uint16_t id) const {
  const std::vector<PropTag>& columns = schemas_[row.schema];
  const auto column = std::ranges::find(columns, id, IdOf);
  return column == columns.end() ? kAbsent : CellsOf(row)[static_cast<std::size_t>(column - columns.begin())];
}

std::uint64_t RowMatching::WholeOf(std::uint16_t schema, bool isHidden, std::span<const std::uint32_t> cells) {
  std::uint64_t hash = std::uint64_t{schema} << 1 | std::uint64_t{isHidden};
  for (const std::uint32_t cell : cells) hash = (hash ^ cell) * 0x9E3779B97F4A7C15 + (hash >> 29);
  return hash;
}

void RowMatching::Seal() {
  for (std::uint32_t number = 0; number < rows_.size(); ++number) {
    const Row& row = rows_[number];
    const auto agreeing = std::ranges::count_if(CellsOf(row), [](std::uint32_t cell) { return cell > kUnread; });
    if (agreeing >= kLeastAgreements) equals_[WholeOf(row)];
    int keys = 0;
    for (std::uint8_t property = 0; property < kKeyCount && keys < kKeysOfRow; ++property) {
      const std::uint32_t value = CellOf(row, kTelling[property]);
      if (value <= kUnread) continue;
      ++keys;
      const std::uint32_t detail = DetailOf(CellOf(row, IdOf(tag::kMessageSize)), CellOf(row, IdOf(tag::kSubject)));
      keys_.push_back({property, value, detail, number});
    }
  }
  std::ranges::sort(keys_);
  turns_.resize(keys_.size());
}

std::optional<RowMatching::Pair> RowMatching::Compare(std::uint32_t row, std::span<const std::uint32_t> values) const {
  Pair pair{.row = row};
  const std::span<const std::uint32_t> cells = CellsOf(rows_[row]);
  for (std::size_t i = 0; i < cells.size(); ++i) {
    if (cells[i] == kUnread || values[i] == kUnread) continue;
    if (cells[i] != values[i]) ++pair.differences;
    if (cells[i] == values[i] && cells[i] != kAbsent) ++pair.agreements;
  }
  if (pair.differences > kMostDifferences) return std::nullopt;
  return pair;
}

void RowMatching::Offer(std::uint32_t message, bool isHidden, ltp::PropertyContext& context) {
  std::map<std::uint16_t, Hashes> valuesOf;  // by schema
  const auto values = [&](std::uint16_t schema) -> const Hashes& {
    Hashes& hashes = valuesOf[schema];
    if (hashes.empty()) {
      for (const PropTag column : schemas_[schema]) hashes.push_back(ValueOf(context, column));
    }
    return hashes;
  };
  for (std::uint16_t schema = 0; schema < std::min(schemas_.size(), kMostSchemas); ++schema) {
    const auto equal = equals_.find(WholeOf(schema, isHidden, values(schema)));
    if (equal != equals_.end()) equal->second.push_back(message);
  }

  const std::uint32_t detail =
      DetailOf(ValueOf(context, IdOf(tag::kMessageSize)), ValueOf(context, IdOf(tag::kSubject)));
  std::vector<Pair> found;
  for (std::uint8_t property = 0; property < kKeyCount; ++property) {
    const std::uint32_t value = ValueOf(context, kTelling[property]);
    if (value <= kUnread) continue;
    const auto like = [](const Key& key) { return std::tuple(key.property, key.value); };
    const auto inDetail = [](const Key& key) { return std::tuple(key.property, key.value, key.detail); };
    const auto all = std::ranges::equal_range(keys_, std::tuple(property, value), {}, like);
    const auto equal = std::ranges::equal_range(keys_, std::tuple(property, value, detail), {}, inDetail);
    std::size_t turn = 0;
    const auto consider = [&](const Key& key) {
      const Row& row = rows_[key.row];
      const bool isKnown = valuesOf.contains(row.schema) || valuesOf.size() < kMostSchemas;
      const bool isFirst = std::ranges::count(found, key.row, &Pair::row) == 0;
      if (row.isHidden != isHidden || !isKnown || !isFirst) return;
      if (auto pair = Compare(key.row, values(row.schema))) {
        pair->message = message;
        pair->turn = static_cast<std::uint8_t>(turn);
        found.push_back(*pair);
      }
    };
    if (!equal.empty()) {
      const std::size_t first = turns_[static_cast<std::size_t>(equal.begin() - keys_.begin())]++;
      for (; turn < std::min(equal.size(), kMostRows); ++turn) consider(equal[(first + turn) % equal.size()]);
    }
    for (auto key = all.begin(); key != all.end() && turn < kMostRows; ++key, ++turn) {
      if (key->detail != detail) consider(*key);
    }
  }
  std::ranges::sort(found, {},
                    [](const Pair& pair) { return std::tuple(pair.differences, -int{pair.agreements}, pair.turn); });
  if (found.size() > kMostPairs) found.resize(kMostPairs);
  pairs_.insert(pairs_.end(), found.begin(), found.end());
}

/// Gives the rows their messages, best pairs first.
class RowMatching::Settling {
 public:
  Settling(const RowMatching& matching, const std::vector<bool>& isWanted, std::vector<Use> uses,
           const MessageContexts& messages)
      : matching_(matching),
        isWanted_(isWanted),
        uses_(std::move(uses)),
        messages_(messages),
        messageOf_(matching.rows_.size(), kNone),
        isTaken_(uses_.size()) {
    for (std::size_t i = 0; i < uses_.size(); ++i) isTaken_[i] = uses_[i] == Use::kTaken;
    for (const auto& [whole, equal] : matching_.equals_) MarkOlder(equal);
  }

  void TakePairs(Use from, Use to) {
    std::vector<Pair> pairs;
    std::ranges::copy_if(matching_.pairs_, std::back_inserter(pairs), [&](const Pair& pair) {
      return isWanted_[pair.row] && uses_[pair.message] >= from && uses_[pair.message] <= to;
    });
    std::ranges::sort(pairs, {}, [&](const Pair& pair) {
      return std::tuple(uses_[pair.message], pair.differences, -int{pair.agreements}, ~pair.message, pair.turn,
                        pair.row);
    });
    for (const Pair& pair : pairs) {
      if (messageOf_[pair.row] != kNone || isTaken_[pair.message]) continue;
      if (to == Use::kOlder && TakeCopy(pair.row)) continue;
      messageOf_[pair.row] = pair.message;
      isTaken_[pair.message] = true;
    }
  }

  // Of a great many equal ones not each pair was looked at.
  void TakeEquals() {
    std::unordered_map<std::uint64_t, std::size_t> looked;
    for (std::uint32_t row = 0; row < messageOf_.size(); ++row) {
      if (!isWanted_[row] || messageOf_[row] != kNone) continue;
      const std::span<const std::uint32_t> equal = EqualsOf(row);
      for (std::size_t& at = looked[WholeOf(row)]; at < equal.size() && messageOf_[row] == kNone; ++at) {
        const std::uint32_t message = equal[equal.size() - 1 - at];  // the newest first
        if (uses_[message] > Use::kFree || isTaken_[message]) continue;
        messageOf_[row] = message;
        isTaken_[message] = true;
      }
      if (messageOf_[row] == kNone) TakeCopy(row);
    }
  }

  // Rows that are equal get their messages in order: the ids of nodes and of values grow with time, and both stay when
  // a message is written anew.
  void OrderAmongEquals() {
    const auto firstKey = [this](std::uint32_t message) {
      const auto keys = messages_.KeysOf(messages_.facts[message]);
      return keys.empty() ? kNoNid : std::ranges::min(keys);
    };
    std::map<std::uint64_t, std::vector<std::uint32_t>> equalRows;
    for (std::uint32_t row = 0; row < messageOf_.size(); ++row) {
      if (messageOf_[row] != kNone) equalRows[WholeOf(row)].push_back(row);
    }
    for (auto& [whole, rows] : equalRows) {
      std::ranges::sort(rows, {}, [&](std::uint32_t row) { return std::pair(matching_.rows_[row].nid, row); });
      std::vector<std::uint32_t> messages;
      for (const std::uint32_t row : rows) messages.push_back(messageOf_[row]);
      std::ranges::sort(messages, {}, [&](std::uint32_t message) { return std::pair(firstKey(message), message); });
      for (std::size_t i = 0; i < rows.size(); ++i) messageOf_[rows[i]] = messages[i];
    }
  }

  std::vector<std::uint32_t> Messages() && { return std::move(messageOf_); }

 private:
  void MarkOlder(std::span<const std::uint32_t> equal) {
    std::unordered_set<Nid> keysOfNewer;
    for (const std::uint32_t message : equal | std::views::reverse) {
      if (uses_[message] == Use::kNever || messages_.facts[message].hasCommonKeys) continue;
      const auto keys = messages_.KeysOf(messages_.facts[message]);
      const bool isOlder = std::ranges::any_of(keys, [&](Nid key) { return keysOfNewer.contains(key); });
      if (isOlder && uses_[message] == Use::kFree) uses_[message] = Use::kOlder;
      keysOfNewer.insert(keys.begin(), keys.end());
    }
  }

  std::uint64_t WholeOf(std::uint32_t row) const { return matching_.WholeOf(matching_.rows_[row]); }

  std::span<const std::uint32_t> EqualsOf(std::uint32_t row) const {
    const auto equal = matching_.equals_.find(WholeOf(row));
    return equal == matching_.equals_.end() ? std::span<const std::uint32_t>() : equal->second;
  }

  /// Makes the row a copy of the newest message that equals it and has its row or its node.
  bool TakeCopy(std::uint32_t row) {
    const auto [known, isNew] = originals_.try_emplace(WholeOf(row), kNone);
    if (known->second == kNone) {
      const auto equal = EqualsOf(row) | std::views::reverse;
      const auto original = std::ranges::find_if(equal, [&](std::uint32_t message) { return isTaken_[message]; });
      if (original != equal.end()) known->second = *original;
    }
    messageOf_[row] = known->second;
    return messageOf_[row] != kNone;
  }

  const RowMatching& matching_;
  const std::vector<bool>& isWanted_;
  std::vector<Use> uses_;
  const MessageContexts& messages_;
  std::vector<std::uint32_t> messageOf_;
  std::vector<bool> isTaken_;
  std::unordered_map<std::uint64_t, std::uint32_t> originals_;  ///< of copies, by all cells
};

std::vector<std::uint32_t> RowMatching::Settle(const std::vector<bool>& isWanted, std::vector<Use> uses,
                                               const MessageContexts& messages) const {
  Settling settling(*this, isWanted, std::move(uses), messages);
  settling.TakePairs(Use::kFreeAndLive, Use::kFree);
  settling.TakeEquals();
  settling.TakePairs(Use::kOlder, Use::kOlder);
  settling.OrderAmongEquals();
  return std::move(settling).Messages();
}

}  // namespace velmora::engine
