#include "store/ltp/property_context_writer.h"

#include <algorithm>
#include <array>
#include <bit>

#include "store/format/failures.h"
#include "store/format/little_endian.h"
#include "store/ltp/bth.h"
#include "store/ltp/property_value.h"

namespace velmora::ltp {
namespace {

constexpr Hid kHeaderHid = MakeHid(0, 1);
constexpr std::uint64_t kMaxInteger32 = 0x7FFFFFFF;

}  // namespace

PropertyContextWriter::PropertyContextWriter(ndb::NdbWriter& ndb)
    : ndb_(ndb), heap_(ndb, ClientSig::kPropertyContext), subnodes_(ndb), nextSubnodeIndex_(kFirstFreeNidIndex) {}

void PropertyContextWriter::Add(PropTag tag, std::span<const std::byte> value) {
  CheckValue(tag, value);
  valueBytes_ += value.size();
  if (IsInline(TypeOf(tag))) {
    std::array<std::byte, sizeof(std::uint32_t)> word{};
    std::copy(value.begin(), value.end(), word.begin());
    return AddRecord(tag, Load<std::uint32_t>(word, 0));
  }
  if (value.size() <= kHeapValueLimit) return AddHeapValue(tag, value);
  AddSubnodeValue(tag, ndb_.WriteData(value));
}

void PropertyContextWriter::AddBoolean(PropTag tag, bool value) { Add(tag, BytesOf<std::uint8_t>(value ? 1 : 0)); }

void PropertyContextWriter::AddInteger16(PropTag tag, std::int16_t value) {
  Add(tag, BytesOf(static_cast<std::uint16_t>(value)));
}

void PropertyContextWriter::AddInteger32(PropTag tag, std::int32_t value) {
  Add(tag, BytesOf(static_cast<std::uint32_t>(value)));
}

void PropertyContextWriter::AddInteger64(PropTag tag, std::int64_t value) {
  Add(tag, BytesOf(static_cast<std::uint64_t>(value)));
}

void PropertyContextWriter::AddFloating64(PropTag tag, double value) {
  Add(tag, BytesOf(std::bit_cast<std::uint64_t>(value)));
}

void PropertyContextWriter::AddText(PropTag tag, text::TextView value) {
  Add(tag, std::as_bytes(std::span(value.data(), value.size())));
}

void PropertyContextWriter::AddStream(PropTag tag, ndb::DataTreeWriter& value) {
  if (value.Size() <= kHeapValueLimit) {
    Add(tag, value.Buffered());
    value.Clear();
    return;
  }
  AddTree(tag, value.Finish());
}

void PropertyContextWriter::AddTree(PropTag tag, const ndb::DataTree& tree) {
  if (FixedSize(TypeOf(tag))) RaiseCorrupt({ObjectKind::kProperty, tag}, tree.size, "the property has no tree");
  CheckSize(tag, tree.size);
  valueBytes_ += tree.size;
  AddSubnodeValue(tag, tree);
}

void PropertyContextWriter::AddObject(PropTag tag, Nid nid, std::uint32_t size) {
  if (TypeOf(tag) != PropType::kObject) {
    RaiseCorrupt({ObjectKind::kProperty, tag}, Value(nid), "the property is no object");
  }
  valueBytes_ += size;
  std::array<std::byte, 8> value;
  Store(value, 0, Value(nid));
  Store<std::uint32_t>(value, 4, size);
  AddHeapValue(tag, value);
}

void PropertyContextWriter::AddDataSize(PropTag tag) {
  dataSizeId_ = IdOf(tag);
  AddInteger32(tag, 0);
}

void PropertyContextWriter::AddSubnode(Nid nid, const ndb::WrittenNode& node) { subnodes_.Add(nid, node); }

Nid PropertyContextWriter::NewSubnodeNid() { return MakeNid(NidType::kLtp, nextSubnodeIndex_++); }

bool PropertyContextWriter::Has(std::uint16_t id) const {
  return std::any_of(records_.begin(), records_.end(), [id](const PropertyRecord& r) { return r.wPropId == id; });
}

ndb::WrittenNode PropertyContextWriter::Finish() {
  struct ClearAtEnd {
    PropertyContextWriter& writer;
    ~ClearAtEnd() { writer.Clear(); }
  } clear{*this};
  return WriteNode();
}

ndb::WrittenNode PropertyContextWriter::WriteNode() {
  OpenHeap();
  std::sort(records_.begin(), records_.end(), [](const auto& a, const auto& b) { return a.wPropId < b.wPropId; });
  for (std::size_t i = 1; i < records_.size(); ++i) {
    if (records_[i - 1].wPropId == records_[i].wPropId) {
      RaiseCorrupt({ObjectKind::kProperty, records_[i].Tag()}, records_[i].Tag(), "the property is added twice");
    }
  }
  const ndb::SubnodeTree subnodes = subnodes_.Finish();
  // The size does not depend on its own value, so it can stand in the tree that it counts.
  HeapPosition end = heap_.Position();
  AdvanceOverBth(end, kPropertyLayout, records_.size());
  const std::uint64_t dataSize = end.HeapSize() + subnodes.dataSize;
  for (PropertyRecord& record : records_) {
    if (record.wPropId == dataSizeId_)
      record.dwValueHnid = static_cast<std::uint32_t>(std::min(dataSize, kMaxInteger32));
  }
  const auto encode = [this](std::size_t index, std::span<std::byte> out) {
    const PropertyRecord& record = records_[index];
    Store<std::uint16_t>(out, 0, record.wPropId);
    Store<std::uint16_t>(out, 2, static_cast<std::uint16_t>(record.wPropType));
    Store<std::uint32_t>(out, 4, record.dwValueHnid);
  };
  WriteBth(heap_, kHeaderHid, kPropertyLayout, records_.size(), encode);
  return {{heap_.Finish(kHeaderHid).bid, subnodes.bid}, dataSize};
}

void PropertyContextWriter::Clear() {
  heap_.Clear();
  subnodes_.Clear();
  records_.clear();
  dataSizeId_.reset();
  nextSubnodeIndex_ = kFirstFreeNidIndex;
  valueBytes_ = 0;
}

void PropertyContextWriter::OpenHeap() {
  if (heap_.Position().itemCount == 0) heap_.Add(std::array<std::byte, kBthHeaderSize>{});
}

void PropertyContextWriter::AddRecord(PropTag tag, std::uint32_t dwValueHnid) {
  records_.push_back({IdOf(tag), TypeOf(tag), dwValueHnid});
}

void PropertyContextWriter::AddHeapValue(PropTag tag, std::span<const std::byte> value) {
  if (value.empty()) return AddRecord(tag, 0);
  OpenHeap();
  AddRecord(tag, heap_.Add(value));
}

void PropertyContextWriter::AddSubnodeValue(PropTag tag, const ndb::DataTree& tree) {
  const Nid nid = NewSubnodeNid();
  subnodes_.Add(nid, {{tree.bid}, tree.size});
  AddRecord(tag, Value(nid));
}

}  // namespace velmora::ltp
