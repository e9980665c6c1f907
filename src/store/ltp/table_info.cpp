#include "store/ltp/table_info.h"

#include "store/format/failures.h"
#include "store/format/little_endian.h"

namespace velmora::ltp {

std::vector<std::byte> Encode(const TableInfo& info) {
  std::vector<std::byte> out(TableInfo::kHeadSize + info.columns.size() * TableInfo::kColumnSize);
  Store<std::uint8_t>(out, 0, static_cast<std::uint8_t>(ClientSig::kTableContext));
  Store<std::uint8_t>(out, 1, static_cast<std::uint8_t>(info.columns.size()));
  for (std::size_t i = 0; i < info.rgib.size(); ++i) Store<std::uint16_t>(out, 2 + 2 * i, info.rgib[i]);
  Store<std::uint32_t>(out, 10, info.hidRowIndex);
  Store<std::uint32_t>(out, 14, info.hnidRows);
  std::size_t at = TableInfo::kHeadSize;
  for (const Column& column : info.columns) {
    Store<std::uint32_t>(out, at, column.tag);
    Store<std::uint16_t>(out, at + 4, column.ibData);
    Store<std::uint8_t>(out, at + 6, column.cbData);
    Store<std::uint8_t>(out, at + 7, column.iBit);
    at += TableInfo::kColumnSize;
  }
  return out;
}

TableInfo DecodeTableInfo(std::span<const std::byte> bytes, const Generation& generation) {
  const std::size_t cCols = Load<std::uint8_t>(bytes, 1);
  if (Load<std::uint8_t>(bytes, 0) != static_cast<std::uint8_t>(ClientSig::kTableContext) ||
      bytes.size() < TableInfo::kHeadSize + cCols * TableInfo::kColumnSize) {
    RaiseCorrupt(ObjectKind::kTable, bytes.size(), "no description of a table");
  }
  TableInfo info;
  for (std::size_t i = 0; i < info.rgib.size(); ++i) info.rgib[i] = Load<std::uint16_t>(bytes, 2 + 2 * i);
  const std::size_t cebOffset = info.rgib[2];
  const std::size_t rowSize = info.rgib[3];
  if (rowSize == 0 || rowSize > generation.maxBlockData || cebOffset > rowSize ||
      rowSize - cebOffset < (cCols + 7) / 8) {
    RaiseCorrupt(ObjectKind::kTable, rowSize, "the size of a row does not fit");
  }
  info.hidRowIndex = Load<std::uint32_t>(bytes, 10);
  info.hnidRows = Load<std::uint32_t>(bytes, 14);
  info.columns.reserve(cCols);
  for (std::size_t i = 0; i < cCols; ++i) {
    const std::size_t at = TableInfo::kHeadSize + i * TableInfo::kColumnSize;
    const Column column{Load<std::uint32_t>(bytes, at), Load<std::uint16_t>(bytes, at + 4),
                        Load<std::uint8_t>(bytes, at + 6), Load<std::uint8_t>(bytes, at + 7)};
    const bool fits = column.ibData + std::size_t{column.cbData} <= cebOffset &&
                      column.cbData == CellSize(TypeOf(column.tag)) && column.iBit / 8u < rowSize - cebOffset;
    if (fits) info.columns.push_back(column);
  }
  return info;
}

}  // namespace velmora::ltp
