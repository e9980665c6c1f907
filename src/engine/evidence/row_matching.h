// Which message a row of a contents table tells of, when no node entry of it is left.
//
// The row repeats properties of the message. A row and a message that agree in one of the two most telling properties
// that the row has are compared in all others; of the pairs those with the fewest differences come first, then those
// that agree in most, then the newest message; each row and each message is used once, and with more than two
// differences it is no match. Messages whose block is known to be live come ahead of those of which that is not known.
//
// A copy that is made within a store shares the blocks of what it was made from: a row that is left and equals in
// everything a message that has its row, or its node, is a copy of it. Of messages that equal the same row and have
// values in the same sub-nodes all but the newest are older versions, whose turn comes last.
#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <unordered_map>
#include <vector>

#include "engine/evidence/context_facts.h"
#include "store/ltp/table_context.h"

namespace velmora::engine {

class RowMatching {
 public:
  /// A row for which a message is wanted. Besides this, 4 bytes are kept for each cell.
  struct Row {
    Nid nid{};
    std::uint32_t table = 0;  ///< as the caller counts them
    std::uint32_t firstCell = 0;
    std::uint16_t schema = 0;
    bool isHidden = false;
  };

  /// Takes in a row of the table that the caller has open.
  void AddRow(Row row, ltp::TableContext& table, std::size_t number);
  std::span<const Row> Rows() const { return rows_; }

  /// Rows are complete, messages follow.
  void Seal();

  /// `message` as the caller counts them; the newer, the higher.
  void Offer(std::uint32_t message, bool isHidden, ltp::PropertyContext& context);

  /// What may become of a message that was offered.
  enum class Use : std::uint8_t { kFreeAndLive, kFree, kOlder, kTaken, kNever };

  /// The message of each row; kNone where there is none, and where none is wanted.
  static constexpr std::uint32_t kNone = UINT32_MAX;
  std::vector<std::uint32_t> Settle(const std::vector<bool>& isWanted, std::vector<Use> uses,
                                    const MessageContexts& messages) const;

 private:
  using Hashes = std::vector<std::uint32_t>;
  static constexpr std::size_t kKeyCount = 6;

  /// A row under a telling property that it has.
  struct Key {
    std::uint8_t property = 0;
    std::uint32_t value = 0;
    std::uint32_t detail = 0;  ///< of size and subject, so that rows which share the first are told apart
    std::uint32_t row = 0;
    friend auto operator<=>(const Key&, const Key&) = default;
  };

  struct Pair {
    std::uint32_t row = 0;
    std::uint32_t message = 0;
    std::uint8_t differences = 0;
    std::uint8_t agreements = 0;
    std::uint8_t turn = 0;  ///< rows that are equal are offered to equal messages in turn
  };

  std::uint16_t SchemaOf(const ltp::TableContext& table);
  std::span<const std::uint32_t> CellsOf(const Row& row) const {
    return std::span(cells_).subspan(row.firstCell, schemas_[row.schema].size());
  }
  std::uint32_t CellOf(const Row& row, std::uint16_t id) const;
  static std::uint64_t WholeOf(std::uint16_t schema, bool isHidden, std::span<const std::uint32_t> cells);
  std::uint64_t WholeOf(const Row& row) const { return WholeOf(row.schema, row.isHidden, CellsOf(row)); }
  class Settling;
  std::optional<Pair> Compare(std::uint32_t row, std::span<const std::uint32_t> values) const;

  std::vector<std::vector<PropTag>> schemas_;  ///< the columns that are compared
  std::map<std::vector<PropTag>, std::uint16_t> schemaNumbers_;
  std::vector<Row> rows_;
  Hashes cells_;
  std::vector<Key> keys_;             ///< in order
  std::vector<std::uint32_t> turns_;  ///< how often the rows from that key on were offered
  std::unordered_map<std::uint64_t, std::vector<std::uint32_t>> equals_;  ///< by all cells: messages that equal a row
  std::vector<Pair> pairs_;
};

}  // namespace velmora::engine
