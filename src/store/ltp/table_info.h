// The description of a table in its heap (TCINFO).
//
//   0 bType 0x7C | 1 cCols u8 | 2 rgib u16[4] | 10 hidRowIndex u32 | 14 hnidRows u32 | 18 hidIndex u32 (0)
//   22 columns: tag u32 | ibData u16 | cbData u8 | iBit u8
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "store/format/heap_format.h"
#include "store/ltp/table_schema.h"
#include "store/ndb/block_source.h"

namespace velmora::ltp {

struct TableInfo {
  static constexpr std::size_t kHeadSize = 22;
  static constexpr std::size_t kColumnSize = 8;

  std::array<std::uint16_t, 4> rgib{};
  Hid hidRowIndex = 0;
  Hnid hnidRows = 0;  ///< the row matrix; 0 when there are no rows
  std::vector<Column> columns;
};

std::vector<std::byte> Encode(const TableInfo& info);

/// Raises kCorrupt when the numbers do not fit each other; a column whose cell leaves the row is left out.
[[nodiscard]] TableInfo DecodeTableInfo(std::span<const std::byte> bytes, const Generation& generation);

/// Whether the bit of a column is set in the cell-existence bytes of a row; both lie in the row.
inline bool HasCell(std::span<const std::byte> row, std::size_t cebOffset, std::uint8_t iBit) {
  return (row[cebOffset + iBit / 8] & std::byte(0x80 >> iBit % 8)) != std::byte{0};
}

}  // namespace velmora::ltp
