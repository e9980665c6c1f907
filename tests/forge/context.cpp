#include "forge/context.h"

#include <algorithm>
#include <stdexcept>

namespace velmora::forge {
namespace {

constexpr std::size_t kRecordSize = 8;
constexpr std::size_t kAutoHeapLimit = 1024;

// Hands out the value words of records: in the record, in the heap or in a sub-node.
class ValueWriter {
 public:
  ValueWriter(Store& store, Heap& heap, Context& context, Nid firstNid)
      : store_(store), heap_(heap), context_(context), nextNid_(firstNid) {}

  std::uint32_t Write(const Property& property) {
    if (property.reference) return *property.reference;
    if (property.tree) return AddSubnode(*property.tree);
    Bytes room;
    const Bytes& data = StoredData(property, store_.traits().wide, room);
    if (IsInline(property.type)) {
      return static_cast<std::uint32_t>(Get(data, 0, std::min<std::size_t>(data.size(), 4)));
    }
    if (data.empty()) return 0;
    const bool inHeap =
        property.place == Place::kHeap || (property.place == Place::kAuto && data.size() <= kAutoHeapLimit);
    if (inHeap) return heap_.Add(data);
    context_.valueBytes += data.size();
    if (property.place == Place::kTree) return AddSubnode(store_.AddTree(data));
    return AddSubnode(store_.AddData(data, property.place == Place::kChain ? store_.traits().maxBlockData : 0));
  }

 private:
  Nid AddSubnode(Bid tree) {
    const Nid nid = nextNid_;
    nextNid_ += 0x20;
    context_.subnodes.push_back({.nid = nid, .bidData = tree});
    return nid;
  }

  Store& store_;
  Heap& heap_;
  Context& context_;
  Nid nextNid_;
};

void WriteTreeHeader(std::span<std::byte> header, const ContextOptions& options, std::uint8_t levels, Hid records) {
  Bytes full;
  Append(full, options.treeType, 1);
  Append(full, options.keySize, 1);
  Append(full, options.entrySize, 1);
  Append(full, options.levels.value_or(levels), 1);
  Append(full, options.recordRoot.value_or(records), 4);
  std::copy_n(full.begin(), std::min(full.size(), header.size()), header.begin());
}

}  // namespace

std::uint64_t Context::DataSize() const {
  std::uint64_t size = valueBytes;
  for (const Bytes& block : blocks) size += block.size();
  return size;
}

Context FormContext(Store& store, const PropertyList& properties, const ContextOptions& options) {
  std::vector<const Property*> sorted;
  sorted.reserve(properties.size());
  for (const Property& property : properties) sorted.push_back(&property);
  if (!options.keepOrder) {
    std::stable_sort(sorted.begin(), sorted.end(), [](const Property* a, const Property* b) { return a->id < b->id; });
  }
  Context context;
  Heap heap(store.options().format, options.clientSignature, options.heapSignature);
  const Hid root = heap.Add(Bytes(options.rootLength.value_or(8)));
  for (const Bytes& filler : options.fillers) heap.Add(filler);

  // The records come ahead of the values, so their place is taken first.
  std::vector<Hid> leaves;
  for (std::size_t at = 0; at < sorted.size(); at += options.recordsPerLeaf) {
    leaves.push_back(heap.Add(Bytes(std::min(options.recordsPerLeaf, sorted.size() - at) * kRecordSize)));
  }
  ValueWriter values(store, heap, context, options.firstValueNid);
  Bytes upper;
  for (std::size_t i = 0; i < sorted.size(); ++i) {
    const Property& property = *sorted[i];
    const std::size_t at = i % options.recordsPerLeaf * kRecordSize;
    const Hid leaf = leaves[i / options.recordsPerLeaf];
    const std::uint32_t value = values.Write(property);
    const std::span<std::byte> records = heap.At(leaf);
    Put(records, at, property.id, 2);
    Put(records, at + 2, StoredType(property, store.traits().wide), 2);
    Put(records, at + 4, value, 4);
    if (leaf >> store.traits().heapBlockShift == 0) context.records.emplace_back(property.id, heap.OffsetOf(leaf) + at);
    if (at == 0) {
      Append(upper, property.id, 2);
      Append(upper, leaf, 4);
    }
  }
  const bool twoLevels = leaves.size() > 1;
  const Hid records = twoLevels ? heap.Add(upper) : leaves.empty() ? 0 : leaves.front();
  WriteTreeHeader(heap.At(root), options, twoLevels ? 1 : 0, records);
  heap.SetUserRoot(options.userRoot.value_or(root));
  context.blocks = heap.Blocks();
  return context;
}

void SetRecordValue(Context& context, std::uint16_t id, std::uint32_t value) {
  const auto found = std::find_if(context.records.begin(), context.records.end(),
                                  [id](const auto& record) { return record.first == id; });
  if (found == context.records.end()) throw std::out_of_range("forge: no such record in the first block");
  Put(context.blocks.front(), found->second + 4, value, 4);
}

void AddContextNode(Store& store, Nid nid, Nid nidParent, const PropertyList& properties,
                    const ContextOptions& options) {
  const Context context = FormContext(store, properties, options);
  const Bid data = store.AddDataBlocks(context.blocks);
  store.AddNode(nid, data, store.AddSubnodes(context.subnodes), nidParent);
}

}  // namespace velmora::forge
