// Reading back stores, and the heaps, properties and tables in them, over whatever bytes: once as a file, and
// once cut into blocks that need prove nothing, so that inputs reach what checksums would keep them from.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <span>
#include <vector>

#include "platform/memory_file.h"
#include "store/format/little_endian.h"
#include "store/ltp/property_context.h"
#include "store/ltp/table_context.h"
#include "store/ndb/data_tree_reader.h"
#include "store/ndb/store_reader.h"
#include "store/ndb/subnode_tree_reader.h"

namespace velmora {
namespace {

constexpr std::size_t kMostLooks = 100;

void Require(bool holds) {
  if (!holds) std::abort();
}

void ReadProperties(const ndb::BlockSource& source, const ndb::NodeTrees& node) {
  auto context = IfReadable([&] { return ltp::PropertyContext::Open(source, node); });
  if (!context) return;
  std::size_t looks = 0;
  for (const PropertyRecord& record : context->Records()) {
    if (++looks > kMostLooks) break;
    const auto value = IfReadable([&] { return context->Read(record.Tag()); });
    const auto size = IfReadable([&] { return context->SizeOf(record.Tag()); });
    static_cast<void>(IfReadable([&] { return context->TreeOf(record.Tag()); }));
    static_cast<void>(context->ReadObject(record.Tag()));
    Require(!value || *value);
    Require(context->Binary(record.Tag()) == value.value_or(std::nullopt));
    if (value && size) Require((*value)->size() == **size);
  }
}

void ReadRows(const ndb::BlockSource& source, const ndb::NodeTrees& node) {
  auto table = IfReadable([&] { return ltp::TableContext::Open(source, node); });
  if (!table) return;
  const std::vector<ltp::Column> columns(table->Columns().begin(), table->Columns().end());
  for (std::size_t row = 0; row < std::min<std::size_t>(table->RowCount(), 10); ++row) {
    Require(table->RowId(*table->FindRow(table->RowId(row))) == table->RowId(row));
    for (const ltp::Column& column : columns) {
      const auto cell = IfReadable([&] { return table->Cell(row, column.tag); });
      const auto text = table->Text(row, column.tag);
      Require(text.has_value() == (cell && *cell));
    }
  }
  Require(!IfReadable([&] { return table->Cell(table->RowCount(), columns.empty() ? 0 : columns[0].tag); }) ||
          columns.empty());
}

/// A tolerant reader hands on at least what a strict one does, and what it does not note is the same.
void ReadTolerantly(const ndb::BlockSource& source, const ndb::NodeTrees& node) {
  ndb::Faults faults;
  const auto strictTree = IfReadable([&] { return ndb::DataTreeReader::Open(source, node.bidData); });
  if (auto tree = IfReadable([&] { return ndb::DataTreeReader::Open(source, node.bidData, &faults); })) {
    const auto all = IfReadable([&] { return tree->ReadAll(1 << 20); });
    if (all && faults.Count() == 0) Require(strictTree && *all == ndb::DataTreeReader(*strictTree).ReadAll(1 << 20));
  } else {
    Require(!strictTree);
  }
  const auto subnodes = IfReadable([&] { return ndb::ListSubnodes(source, node.bidSub, &faults); });
  const auto strictSubnodes = IfReadable([&] { return ndb::ListSubnodes(source, node.bidSub); });
  Require(!strictSubnodes || subnodes == strictSubnodes);
  if (auto context = IfReadable([&] { return ltp::PropertyContext::Open(source, node, &faults); })) {
    std::size_t looks = 0;
    for (const PropertyRecord& record : context->Records()) {
      if (++looks > kMostLooks) break;
      static_cast<void>(IfReadable([&] { return context->Read(record.Tag()); }));
    }
  } else {
    Require(!IfReadable([&] { return ltp::PropertyContext::Open(source, node); }));
  }
  if (auto table = IfReadable([&] { return ltp::TableContext::Open(source, node, &faults); })) {
    for (std::size_t row = 0; row < std::min<std::size_t>(table->RowCount(), 10); ++row) {
      static_cast<void>(
          IfReadable([&] { return table->Cell(row, table->Columns().empty() ? 0 : table->Columns()[0].tag); }));
    }
  } else {
    Require(!IfReadable([&] { return ltp::TableContext::Open(source, node); }));
  }
  Require(faults.List().size() <= ndb::Faults::kMostListed && faults.Count() >= faults.List().size());
}

void ReadNode(const ndb::BlockSource& source, const ndb::NodeTrees& node) {
  if (auto tree = IfReadable([&] { return ndb::DataTreeReader::Open(source, node.bidData); })) {
    const auto all = IfReadable([&] { return tree->ReadAll(1 << 20); });
    if (all) Require(all->size() == tree->Size());
    std::vector<std::byte> piece(10000);
    const auto read = IfReadable([&] { return tree->ReadAt(tree->Size() / 2, piece); });
    if (all && read) {
      Require(std::equal(piece.begin(), piece.begin() + static_cast<std::ptrdiff_t>(*read),
                         all->begin() + static_cast<std::ptrdiff_t>(tree->Size() / 2)));
    }
  }
  const auto subnodes = IfReadable([&] { return ndb::ListSubnodes(source, node.bidSub); });
  if (subnodes && !subnodes->empty()) {
    static_cast<void>(IfReadable([&] { return ndb::FindSubnode(source, node.bidSub, subnodes->back().nid); }));
  }
  static_cast<void>(IfReadable([&] { return ndb::DataSizeOf(source, node); }));
  ReadProperties(source, node);
  ReadRows(source, node);
  ReadTolerantly(source, node);
}

/// The input as blocks: a length in two bytes before each. A block id counts them, and begins anew at the end.
class Blocks : public ndb::BlockSource {
 public:
  Blocks(std::span<const std::byte> bytes, const Generation& format) : format_(format) {
    while (bytes.size() > 2) {
      const std::size_t length = Load<std::uint16_t>(bytes, 0) % (generations::kUnicode4k.maxBlockData + 1);
      bytes = bytes.subspan(2);
      blocks_.push_back(bytes.first(std::min(length, bytes.size())));
      bytes = bytes.subspan(blocks_.back().size());
    }
  }

  const Generation& Format() const override { return format_; }

  bool FindBlock(Bid bid, std::vector<std::byte>& out) const override {
    if (blocks_.empty()) return false;
    const auto block = blocks_[Value(bid) / kBidStep % blocks_.size()];
    out.assign(block.begin(), block.end());
    return true;
  }
  std::optional<ndb::NodeEntry> FindNode(Nid) const override { return std::nullopt; }

 private:
  const Generation& format_;
  std::vector<std::span<const std::byte>> blocks_;
};

}  // namespace
}  // namespace velmora

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace velmora;
  const std::span<const std::byte> bytes(reinterpret_cast<const std::byte*>(data), size);
  const platform::MemoryFile file({bytes.begin(), bytes.end()});
  if (const auto store = IfReadable([&] { return ndb::StoreReader::Open(file); })) {
    std::size_t looks = 0;
    for (const ndb::NodeEntry& node : (*store)->Nodes()) {
      if (++looks > kMostLooks) break;
      ReadNode(**store, node.trees);
    }
  }
  for (const FormatId format : {FORMAT_ANSI, FORMAT_UNICODE, FORMAT_UNICODE_4K}) {
    ReadNode(Blocks(bytes, LayoutOf(format)), {Bid{4}, Bid{4 | kBidInternal}});
    ReadNode(Blocks(bytes, LayoutOf(format)), {Bid{4 | kBidInternal}, Bid{8 | kBidInternal}});
  }
  return 0;
}
