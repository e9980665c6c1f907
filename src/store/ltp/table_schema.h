// The columns of a table and where their cells stand in a row.
#pragma once

#include <array>
#include <cstdint>
#include <span>

#include "store/format/prop_tag.h"
#include "store/format/property_tags.h"

namespace velmora::ltp {

/// One column (TCOLDESC).
struct Column {
  PropTag tag = 0;
  std::uint16_t ibData = 0;  ///< offset of the cell in the row
  std::uint8_t cbData = 0;   ///< bytes of the cell: CellSize of the type
  std::uint8_t iBit = 0;     ///< bit of the cell in the cell-existence bytes
};

/// Bytes of a cell: the value itself for types of up to 8 bytes, else the 4 bytes of the value's HNID.
constexpr std::uint8_t CellSize(PropType type) {
  const std::optional<std::size_t> size = FixedSize(type);
  return size.has_value() && *size <= 8 ? static_cast<std::uint8_t>(*size) : 4;
}

inline constexpr std::size_t kMaxColumns = 255;
inline constexpr std::size_t kMaxRowSize = 1024;

/// Columns by ascending tag, and the ends of the groups of a row: cells of 8 and 4 bytes, of 2, of 1, and
/// the cell-existence bytes, whose end is the size of the row.
struct TableSchema {
  std::span<const Column> columns;
  std::array<std::uint16_t, 4> rgib{};

  constexpr std::size_t RowSize() const { return rgib[3]; }
};

/// Whether a schema keeps all rules: columns by ascending tag, cells in their groups and without overlap,
/// iBit a permutation, row id and row version in their fixed places. A constexpr schema can be asserted.
constexpr bool IsSound(const TableSchema& schema) {
  const auto& [cells4, cells2, cells1, rowSize] = schema.rgib;
  const std::size_t count = schema.columns.size();
  if (count < 2 || count > kMaxColumns || rowSize > kMaxRowSize) return false;
  if (cells4 > cells2 || cells2 > cells1 || cells4 % 4 != 0 || (cells2 - cells4) % 2 != 0) return false;
  if (rowSize != cells1 + (count + 7) / 8) return false;
  std::array<bool, kMaxRowSize> taken{};
  std::array<bool, 256> bits{};
  bool hasId = false;
  bool hasVersion = false;
  for (std::size_t i = 0; i < count; ++i) {
    const Column& column = schema.columns[i];
    if (i > 0 && schema.columns[i - 1].tag >= column.tag) return false;
    const std::size_t size = CellSize(TypeOf(column.tag));
    if (column.cbData != size || column.iBit >= count || bits[column.iBit]) return false;
    bits[column.iBit] = true;
    const std::size_t first = size >= 4 ? 0 : size == 2 ? cells4 : cells2;
    const std::size_t end = size >= 4 ? cells4 : size == 2 ? cells2 : cells1;
    if (column.ibData < first || column.ibData + size > end) return false;
    if ((size >= 4 && column.ibData % 4 != 0) || (size == 2 && column.ibData % 2 != 0)) return false;
    for (std::size_t b = column.ibData; b < column.ibData + size; ++b) {
      if (taken[b]) return false;
      taken[b] = true;
    }
    if (column.tag == tag::kLtpRowId) hasId = column.ibData == 0 && column.iBit == 0;
    if (column.tag == tag::kLtpRowVer) hasVersion = column.ibData == 4 && column.iBit == 1;
  }
  return hasId && hasVersion;
}

}  // namespace velmora::ltp
