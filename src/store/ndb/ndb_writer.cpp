#include "store/ndb/ndb_writer.h"

#include <algorithm>
#include <cassert>

#include "store/format/failures.h"
#include "store/ndb/map_pages.h"

namespace velmora::ndb {
namespace {

// Node types whose ids share one counter: the four nodes of a folder, the four of a search folder.
constexpr std::array kFolderTypes = {NidType::kNormalFolder, NidType::kHierarchyTable, NidType::kContentsTable,
                                     NidType::kAssocContentsTable};
constexpr std::array kSearchFolderTypes = {NidType::kSearchFolder, NidType::kSearchUpdateQueue,
                                           NidType::kSearchCriteriaObject, NidType::kSearchContentsTable};

// Where the counters of an empty store stand; the ids of its fixed nodes lie below.
std::array<std::uint32_t, kNidTypeCount> FirstCounters() {
  std::array<std::uint32_t, kNidTypeCount> rgnid;
  rgnid.fill(kFirstFreeNidIndex - 1);
  for (const NidType type : kSearchFolderTypes) rgnid[static_cast<std::size_t>(type)] = 0x4000;
  rgnid[static_cast<std::size_t>(NidType::kNormalMessage)] = 0x10000;
  rgnid[static_cast<std::size_t>(NidType::kAssocMessage)] = 0x8000;
  return rgnid;
}

}  // namespace

NdbWriter::NdbWriter(platform::ByteStore& file, CryptMethod cryptMethod, platform::Workers& workers)
    : blocks_(file, cryptMethod, workers), rgnid_(FirstCounters()) {}

std::unique_ptr<NdbWriter> NdbWriter::Create(platform::ByteStore& file, CryptMethod cryptMethod,
                                             platform::Workers& workers) {
  std::unique_ptr<NdbWriter> ndb(new NdbWriter(file, cryptMethod, workers));
  ndb->blocks_.Start();
  ndb->blocks_.WriteFixed(kDListOffset, DListPage(ndb->blocks_.Map(), ndb->blocks_.NewPageBid()));
  ndb->Commit();
  return ndb;
}

Nid NdbWriter::NewNid(NidType type) {
  const std::uint32_t index = rgnid_[static_cast<std::size_t>(type)] + 1;
  if (index > kMaxNidIndex) return kNoNid;
  const Nid nid = MakeNid(type, index);
  NoteNid(nid);
  return nid;
}

void NdbWriter::NoteNid(Nid nid) {
  const auto raise = [this, nid](NidType type) {
    std::uint32_t& counter = rgnid_[static_cast<std::size_t>(type)];
    counter = std::max(counter, IndexOf(nid));
  };
  const NidType type = TypeOf(nid);
  raise(type);
  for (const std::span<const NidType, 4> group : {std::span(kFolderTypes), std::span(kSearchFolderTypes)}) {
    if (std::find(group.begin(), group.end(), type) != group.end()) std::for_each(group.begin(), group.end(), raise);
  }
}

void NdbWriter::SetNode(Nid nid, const NodeTrees& trees, Nid nidParent) {
  blocks_.CheckUsable();
  if (nid == kNoNid) Raise(FailureKind::kNotSupported, ObjectKind::kNode, 0, "node ids are used up");
  if (trees.bidSub != kNoBid && !IsInternal(trees.bidSub)) {
    RaiseCorrupt({ObjectKind::kNode, nid}, Value(trees.bidSub), "the sub-node tree is a data block");
  }
  blocks_.Refer(std::array{trees.bidData, trees.bidSub});
  const NodeTrees old = nodes_.Find(nid).value_or(NodeEntry{}).trees;
  nodes_.Set({nid, trees, nidParent});
  NoteNid(nid);
  changed_ = true;
  Release(old);
}

void NdbWriter::RemoveNode(Nid nid) {
  blocks_.CheckUsable();
  const std::optional<NodeEntry> node = nodes_.Find(nid);
  if (!node) return;
  nodes_.Remove(nid);
  changed_ = true;
  Release(node->trees);
}

void NdbWriter::Release(const NodeTrees& trees) {
  blocks_.Release(trees.bidData);
  blocks_.Release(trees.bidSub);
}

void NdbWriter::Discard(const NodeTrees& trees) {
  blocks_.Discard(trees.bidData);
  blocks_.Discard(trees.bidSub);
}

void NdbWriter::Hold(const NodeTrees& trees) {
  blocks_.Hold(trees.bidData);
  blocks_.Hold(trees.bidSub);
}

void NdbWriter::LetGo(const NodeTrees& trees) {
  if (!blocks_.IsUsable()) return;
  blocks_.LetGo(trees.bidData);
  blocks_.LetGo(trees.bidSub);
}

DataTree NdbWriter::WriteData(std::span<const std::byte> bytes) {
  if (bytes.size() > kMaxTreeSize) {
    Raise(FailureKind::kNotSupported, ObjectKind::kDataTree, bytes.size(), "a value cannot be larger than 4 GiB");
  }
  std::vector<Bid> bids;
  try {
    for (std::size_t at = 0; at < bytes.size(); at += kMaxBlockData) {
      bids.push_back(WriteDataBlock(bytes.subspan(at, std::min(bytes.size() - at, kMaxBlockData))));
    }
    return WriteTreeOver(bids, bytes.size());
  } catch (...) {
    for (const Bid bid : bids) Discard({bid});
    throw;
  }
}

Bid NdbWriter::WriteDataBlock(std::span<const std::byte> bytes) { return blocks_.WriteData(bytes); }

Bid NdbWriter::WriteStoredBlock(const StoredData& data) { return blocks_.WriteStored(data); }

Bid NdbWriter::WriteInternalBlock(std::span<const std::byte> content) { return blocks_.WriteInternal(content); }

DataTree NdbWriter::WriteTreeOver(std::span<const Bid> dataBids, std::uint64_t size) {
  if (dataBids.empty()) return DataTree{};
  if (dataBids.size() == 1) return DataTree{dataBids[0], size};
  const BlockBuffer buffer = TakeBuffer();
  const auto write = [&](std::span<const Bid> bids, std::uint8_t cLevel, std::uint64_t total) {
    Encode(InternalHead{BlockType::kDataTree, cLevel, static_cast<std::uint16_t>(bids.size()),
                        static_cast<std::uint32_t>(total)},
           *buffer);
    for (std::size_t i = 0; i < bids.size(); ++i) {
      Store(*buffer, InternalHead::kSize + i * kXEntrySize, bids[i]);
    }
    return WriteInternalBlock(std::span(*buffer).first(InternalHead::kSize + bids.size() * kXEntrySize));
  };
  std::vector<Bid> xblocks;
  for (std::uint64_t left = size; !dataBids.empty();) {
    const std::size_t count = std::min(dataBids.size(), kMaxXEntries);
    const std::uint64_t below = std::min<std::uint64_t>(left, count * kMaxBlockData);
    xblocks.push_back(write(dataBids.first(count), 1, below));
    dataBids = dataBids.subspan(count);
    left -= below;
  }
  if (xblocks.size() == 1) return DataTree{xblocks[0], size};
  return DataTree{write(xblocks, 2, size), size};
}

std::uint32_t NdbWriter::NewRowVersion() { return dwUnique_++; }

bool NdbWriter::FindBlock(Bid bid, std::vector<std::byte>& out) const { return blocks_.Find(bid, out); }

std::optional<NodeEntry> NdbWriter::FindNode(Nid nid) const { return nodes_.Find(nid); }

void NdbWriter::Reserve(std::uint64_t bytes, std::size_t nodes) {
  // The object or table of a node has a data tree and a sub-node tree.
  const std::size_t blocks = 2 * nodes + static_cast<std::size_t>(bytes / kMaxBlockData);
  blocks_.Reserve(bytes + TreeBytes(nodes_.Count() + nodes, NbtEntry::kSize), blocks);
}

void NdbWriter::DrawOnReserve() { blocks_.DrawOnReserve(); }

void NdbWriter::Commit() {
  blocks_.CheckUsable();
  if (changed_) Publish(AMapValid::kInvalid);
}

void NdbWriter::Seal() {
  if (sealed_) return;
  blocks_.CheckUsable();
  blocks_.DiscardUnreferenced();
  Publish(AMapValid::kValid2);
  sealed_ = true;
  blocks_.Trim();
  blocks_.Stop({FailureKind::kDenied, ObjectKind::kStore, 0, "the store is closed"});
}

// Everything that the header will name is on disk before the header is.
void NdbWriter::Publish(AMapValid mapsValid) {
  nodes_.Compact();
  blocks_.DrawOnReserve();
  std::vector<std::uint64_t> pages;
  Bref blockTree;
  Bref nodeTree;
  try {
    blockTree = WriteBlockTree(blocks_, pages);
    nodeTree = WriteNodeTree(blocks_, nodes_, pages);
  } catch (...) {
    for (const std::uint64_t ib : pages) blocks_.FreePage(ib);
    throw;
  }
  blocks_.Settle(treePages_);
  treePages_ = std::move(pages);
  if (mapsValid == AMapValid::kValid2) WriteMaps();
  blocks_.Flush();

  const AllocationMap& map = blocks_.Map();
  const Root root{.ibFileEof = map.FileSize(),
                  .ibAMapLast = AreaOffset(map.AreaCount() - 1),
                  .cbAMapFree = map.FreeBytes(),
                  .brefNbt = nodeTree,
                  .brefBbt = blockTree,
                  .fAMapValid = mapsValid};
  const Header header{blocks_.BidNextP(), blocks_.Table().BidNextB(), dwUnique_, rgnid_, root, blocks_.Method()};
  blocks_.WriteFixed(0, Encode(header));
  changed_ = false;
  blocks_.Flush();
}

void NdbWriter::WriteMaps() {
  const AllocationMap& map = blocks_.Map();
  for (std::uint32_t area = 0; area < map.AreaCount(); ++area) {
    blocks_.WriteFixed(AreaOffset(area), AMapPage(map, area));
  }
  blocks_.WriteFixed(kDListOffset, DListPage(map, blocks_.NewPageBid()));
}

}  // namespace velmora::ndb
