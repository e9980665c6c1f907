#include "store/ltp/property_context.h"

#include <algorithm>
#include <bit>

#include "store/format/failures.h"
#include "store/format/little_endian.h"
#include "store/ltp/bth.h"
#include "store/ndb/data_tree_reader.h"

namespace velmora::ltp {

PropertyContext PropertyContext::Open(const ndb::BlockSource& source, const ndb::NodeTrees& node, ndb::Faults* faults) {
  Heap heap = Heap::Open(source, node.bidData, ClientSig::kPropertyContext, faults);
  const std::vector<std::byte> bytes = ReadBth(heap, heap.UserRoot(), kPropertyLayout, kMaxProperties, faults);
  PropertyContext context(source, std::move(heap), node.bidSub, faults);
  context.records_.reserve(bytes.size() / kPropertyLayout.LeafRecord());
  for (std::size_t at = 0; at < bytes.size(); at += kPropertyLayout.LeafRecord()) {
    context.records_.push_back({Load<std::uint16_t>(bytes, at),
                                static_cast<PropType>(Load<std::uint16_t>(bytes, at + 2)),
                                Load<std::uint32_t>(bytes, at + 4)});
  }
  // In a damaged tree the order may be wrong and ids may repeat; the first of an id counts.
  std::vector<PropertyRecord>& records = context.records_;
  const auto id = &PropertyRecord::wPropId;
  if (!std::ranges::is_sorted(records, {}, id)) std::ranges::stable_sort(records, {}, id);
  records.erase(std::ranges::unique(records, {}, id).begin(), records.end());
  return context;
}

const PropertyRecord* PropertyContext::Find(std::uint16_t id) const {
  const auto record = std::ranges::lower_bound(records_, id, {}, &PropertyRecord::wPropId);
  return record != records_.end() && record->wPropId == id ? &*record : nullptr;
}

const PropertyRecord* PropertyContext::FindTag(PropTag tag) {
  if (last_ < records_.size() && records_[last_].Tag() == tag) return &records_[last_];
  const PropertyRecord* record = Find(IdOf(tag));
  if (record != nullptr) last_ = static_cast<std::size_t>(record - records_.data());
  return record != nullptr && record->Tag() == tag ? record : nullptr;
}

std::optional<std::vector<std::byte>> PropertyContext::Read(PropTag tag, std::uint64_t limit) {
  std::vector<std::byte> value;
  if (!Read(tag, limit, value)) return std::nullopt;
  return value;
}

bool PropertyContext::Read(PropTag tag, std::uint64_t limit, std::vector<std::byte>& out) {
  const PropertyRecord* record = FindTag(tag);
  if (record == nullptr) return false;
  const std::optional<std::size_t> size = FixedSize(record->wPropType);
  if (size && *size <= sizeof(record->dwValueHnid)) {
    out.resize(sizeof(record->dwValueHnid));
    Store<std::uint32_t>(out, 0, record->dwValueHnid);
    out.resize(*size);
    return true;
  }
  ReadHnid(*source_, heap_, bidSub_, record->dwValueHnid, limit, faults_, out);
  if (size && out.size() != *size) {
    RaiseCorrupt({ObjectKind::kProperty, tag}, out.size(), "the value does not fit its type");
  }
  return true;
}

std::optional<std::vector<std::byte>> PropertyContext::Binary(PropTag tag) {
  const PropertyRecord* record = FindTag(tag);
  if (record == nullptr) return std::nullopt;
  const bool isInHeap = !IsInline(record->wPropType) && record->dwValueHnid != 0 && IsHid(record->dwValueHnid);
  if (isInHeap && !heap_.Find(record->dwValueHnid)) return std::nullopt;  // the common loss, found without raising
  return IfReadable([&] { return Read(tag); }).value_or(std::nullopt);
}

std::optional<double> PropertyContext::Floating64(PropTag tag) {
  const auto bits = NumberIn<std::uint64_t>(Binary(tag));
  return bits ? std::optional(std::bit_cast<double>(*bits)) : std::nullopt;
}

std::optional<PropertyContext::Object> PropertyContext::ReadObject(PropTag tag) {
  const std::optional<std::vector<std::byte>> value = Binary(tag);
  if (TypeOf(tag) != PropType::kObject || !value || value->size() != 8) return std::nullopt;
  return Object{LoadNid(*value, 0), Load<std::uint32_t>(*value, 4)};
}

std::optional<std::uint64_t> PropertyContext::SizeOf(PropTag tag) {
  const PropertyRecord* record = FindTag(tag);
  if (record == nullptr) return std::nullopt;
  if (const std::optional<std::size_t> size = FixedSize(record->wPropType)) return *size;
  if (record->dwValueHnid == 0) return 0;
  if (IsHid(record->dwValueHnid)) return heap_.Item(record->dwValueHnid).size();
  return TreeOf(tag)->size;
}

std::optional<Bid> PropertyContext::BidOf(PropTag tag) {
  const PropertyRecord* record = FindTag(tag);
  if (record == nullptr || IsInline(record->wPropType) || IsHid(record->dwValueHnid)) return std::nullopt;
  const std::optional<ndb::SubnodeEntry> subnode = FindSubnode(Nid{record->dwValueHnid});
  if (!subnode) {
    RaiseCorrupt({ObjectKind::kProperty, tag}, record->dwValueHnid, "the value's sub-node is not there");
  }
  return subnode->trees.bidData;
}

std::optional<ndb::DataTree> PropertyContext::TreeOf(PropTag tag) {
  const auto bid = BidOf(tag);
  if (!bid) return std::nullopt;
  return ndb::DataTree{*bid, ndb::DataTreeReader::Open(*source_, *bid, faults_).Size()};
}

std::optional<ndb::DataTreeReader> PropertyContext::OpenTree(PropTag tag) {
  const auto bid = BidOf(tag);
  if (!bid) return std::nullopt;
  return ndb::DataTreeReader::Open(*source_, *bid, faults_);
}

std::optional<ndb::SubnodeEntry> PropertyContext::FindSubnode(Nid nid) const {
  return ndb::FindSubnode(*source_, bidSub_, nid);
}

std::vector<ndb::SubnodeEntry> PropertyContext::Subnodes() const {
  return ndb::ListSubnodes(*source_, bidSub_, faults_);
}

}  // namespace velmora::ltp
