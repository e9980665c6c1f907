#include "forge/table.h"

#include <algorithm>
#include <array>

namespace velmora::forge {
namespace {

constexpr std::uint16_t kRowId = 0x67F2;
constexpr std::uint16_t kRowVersion = 0x67F3;
constexpr std::size_t kIndexEntriesPerLeaf = 447;
constexpr std::size_t kAutoHeapLimit = 1024;
constexpr Nid kMatrixNid = 0x3F;
constexpr Nid kFirstCellNid = 0x803F;

struct PlacedColumn {
  Column column;
  std::uint16_t offset = 0;
  std::uint8_t size = 0;
  std::uint8_t bit = 0;
};

struct RowLayout {
  std::vector<PlacedColumn> columns;     // ascending by id
  std::array<std::size_t, 4> ends = {};  // of the cells of 4 and 8 bytes, of 2, of 1, of the existence bits
};

std::uint8_t CellSize(std::uint16_t type) {
  switch (type) {
    case kBool:
      return 1;
    case kInt16:
      return 2;
    case kInt64:
    case kTime:
    case kDouble:
    case kCurrency:
    case kFloatTime:
      return 8;
    default:
      return 4;
  }
}

bool IsText(std::uint16_t type) { return type == kString || type == kStringList; }

RowLayout LayOut(const std::vector<Column>& columns, bool wide) {
  RowLayout layout;
  layout.columns = {{.column = {kRowId, kInt32}}, {.column = {kRowVersion, kInt32}}};
  for (const Column& column : columns) layout.columns.push_back({.column = column});
  std::size_t at = 0;
  const auto placeAll = [&](auto wanted) {
    for (PlacedColumn& column : layout.columns) {
      column.size = CellSize(column.column.type);
      if (!wanted(column.size)) continue;
      column.offset = static_cast<std::uint16_t>(at);
      at += column.size;
    }
    return at;
  };
  layout.ends[0] = placeAll([](std::uint8_t size) { return size >= 4; });
  layout.ends[1] = placeAll([](std::uint8_t size) { return size == 2; });
  layout.ends[2] = placeAll([](std::uint8_t size) { return size == 1; });
  layout.ends[3] = at + (layout.columns.size() + 7) / 8;
  for (std::size_t i = 0; i < layout.columns.size(); ++i) layout.columns[i].bit = static_cast<std::uint8_t>(i);
  for (PlacedColumn& column : layout.columns) {
    if (!wide && IsText(column.column.type)) --column.column.type;
  }
  std::sort(layout.columns.begin(), layout.columns.end(),
            [](const PlacedColumn& a, const PlacedColumn& b) { return a.column.id < b.column.id; });
  return layout;
}

class TableWriter {
 public:
  TableWriter(Store& store, const std::vector<Column>& columns)
      : store_(store), layout_(LayOut(columns, store.traits().wide)), heap_(store.options().format, 0x7C) {}

  Context Write(const std::vector<Row>& rows) {
    const Hid indexHeader = heap_.Add(Bytes(8));
    const Hid info = heap_.Add(Bytes(22 + 8 * layout_.columns.size()));
    const auto [indexRoot, levels] = WriteIndex(rows);
    Bytes header;
    Append(header, 0xB5, 1);
    Append(header, 4, 1);
    Append(header, IndexWidth(), 1);
    Append(header, levels, 1);
    Append(header, indexRoot, 4);
    std::copy(header.begin(), header.end(), heap_.At(indexHeader).begin());
    const std::uint32_t matrix = WriteMatrix(rows);
    WriteInfo(heap_.At(info), indexHeader, matrix);
    heap_.SetUserRoot(info);
    context_.blocks = heap_.Blocks();
    std::sort(context_.subnodes.begin(), context_.subnodes.end(),
              [](const Subnode& a, const Subnode& b) { return a.nid < b.nid; });
    return std::move(context_);
  }

 private:
  std::size_t IndexWidth() const { return store_.traits().wide ? 4 : 2; }

  std::pair<Hid, std::uint8_t> WriteIndex(const std::vector<Row>& rows) {
    std::vector<std::pair<std::uint32_t, std::size_t>> order;
    for (std::size_t i = 0; i < rows.size(); ++i) order.emplace_back(rows[i].id, i);
    std::sort(order.begin(), order.end());
    Bytes level;
    std::vector<Bytes> leaves;
    for (std::size_t i = 0; i < order.size(); ++i) {
      if (i % kIndexEntriesPerLeaf == 0) leaves.emplace_back();
      Append(leaves.back(), order[i].first, 4);
      Append(leaves.back(), order[i].second, IndexWidth());
    }
    for (std::uint8_t levels = 0;; ++levels) {
      if (leaves.empty()) return {0, levels};
      if (leaves.size() == 1) return {heap_.Add(leaves.front()), levels};
      std::vector<Bytes> upper;
      for (std::size_t i = 0; i < leaves.size(); ++i) {
        if (i % kIndexEntriesPerLeaf == 0) upper.emplace_back();
        Append(upper.back(), Get(leaves[i], 0, 4), 4);
        Append(upper.back(), heap_.Add(leaves[i]), 4);
      }
      leaves = std::move(upper);
    }
  }

  std::uint32_t WriteMatrix(const std::vector<Row>& rows) {
    const std::size_t rowSize = layout_.ends[3];
    const std::size_t perBlock = store_.traits().maxBlockData / rowSize;
    std::vector<Bytes> blocks;
    for (std::size_t i = 0; i < rows.size(); ++i) {
      if (i % perBlock == 0) {
        if (!blocks.empty()) blocks.back().resize(store_.traits().maxBlockData);
        blocks.emplace_back();
      }
      Bytes& block = blocks.back();
      block.resize(block.size() + rowSize);
      FormRow(rows[i], std::span(block).last(rowSize));
    }
    if (blocks.empty()) return 0;
    if (blocks.size() == 1 && blocks.front().size() <= kAutoHeapLimit) return heap_.Add(blocks.front());
    for (const Bytes& block : blocks) context_.valueBytes += block.size();
    context_.subnodes.push_back({.nid = kMatrixNid, .bidData = store_.AddDataBlocks(blocks)});
    return kMatrixNid;
  }

  void FormRow(const Row& row, std::span<std::byte> bytes) {
    for (const PlacedColumn& column : layout_.columns) {
      if (column.column.id == kRowId) {
        Put(bytes, column.offset, row.id, 4);
      } else if (column.column.id == kRowVersion) {
        Put(bytes, column.offset, store_.NextRowVersion(), 4);
      } else if (const Property* cell = Find(row.cells, column.column.id)) {
        PutCell(bytes, column, *cell);
      } else {
        continue;
      }
      bytes[layout_.ends[2] + column.bit / 8] |= std::byte{0x80} >> (column.bit % 8);
    }
  }

  void PutCell(std::span<std::byte> row, const PlacedColumn& column, const Property& cell) {
    Bytes room;
    const Bytes& data = StoredData(cell, store_.traits().wide, room);
    const bool inRow = IsInline(column.column.type) || column.size == 8;
    std::uint64_t value = 0;
    if (inRow) {
      value = Get(data, 0, std::min<std::size_t>(data.size(), column.size));
    } else if (data.size() > kAutoHeapLimit) {
      value = nextCellNid_;
      context_.subnodes.push_back({.nid = nextCellNid_, .bidData = store_.AddData(data)});
      context_.valueBytes += data.size();
      nextCellNid_ += 0x20;
    } else if (!data.empty()) {
      value = heap_.Add(data);
    }
    Put(row, column.offset, value, column.size);
  }

  void WriteInfo(std::span<std::byte> info, Hid indexHeader, std::uint32_t matrix) const {
    Put(info, 0, 0x7C, 1);
    Put(info, 1, layout_.columns.size(), 1);
    for (std::size_t i = 0; i < 4; ++i) Put(info, 2 + 2 * i, layout_.ends[i], 2);
    Put(info, 10, indexHeader, 4);
    Put(info, 14, matrix, 4);
    for (std::size_t i = 0; i < layout_.columns.size(); ++i) {
      const PlacedColumn& column = layout_.columns[i];
      const std::size_t at = 22 + 8 * i;
      Put(info, at, column.column.type, 2);
      Put(info, at + 2, column.column.id, 2);
      Put(info, at + 4, column.offset, 2);
      Put(info, at + 6, column.size, 1);
      Put(info, at + 7, column.bit, 1);
    }
  }

  Store& store_;
  RowLayout layout_;
  Heap heap_;
  Context context_;
  Nid nextCellNid_ = kFirstCellNid;
};

}  // namespace

Context FormTable(Store& store, const std::vector<Column>& columns, const std::vector<Row>& rows) {
  return TableWriter(store, columns).Write(rows);
}

void AddTableNode(Store& store, Nid nid, const std::vector<Column>& columns, const std::vector<Row>& rows) {
  const Context table = FormTable(store, columns, rows);
  const Bid data = store.AddDataBlocks(table.blocks);
  store.AddNode(nid, data, store.AddSubnodes(table.subnodes), 0);
}

PropertyList CellsOf(const std::vector<Column>& columns, PropertyList properties) {
  PropertyList cells;
  cells.reserve(std::min(columns.size(), properties.size()));
  for (const Column& column : columns) {
    if (Property* property = Find(properties, column.id)) cells.push_back(std::move(*property));
  }
  return cells;
}

}  // namespace velmora::forge
