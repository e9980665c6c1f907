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

NdbWriter::NdbWriter(platform::ByteStore& file, CryptMethod cryptMethod)
    : blocks_(file, cryptMethod), rgnid_(FirstCounters()) {}

Result<std::unique_ptr<NdbWriter>> NdbWriter::Create(platform::ByteStore& file, CryptMethod cryptMethod) {
  std::unique_ptr<NdbWriter> ndb(new NdbWriter(file, cryptMethod));
  if (auto started = ndb->blocks_.Start(); !started) return tl::unexpected(started.error());
  const Page dList = DListPage(ndb->blocks_.Map(), ndb->blocks_.NewPageBid());
  if (auto written = ndb->blocks_.WriteFixed(kDListOffset, dList); !written) return tl::unexpected(written.error());
  if (auto committed = ndb->Commit(); !committed) return tl::unexpected(committed.error());
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

Result<void> NdbWriter::SetNode(Nid nid, const NodeTrees& trees, Nid nidParent) {
  if (auto usable = blocks_.Usable(); !usable) return usable;
  if (nid == kNoNid) return Fail(FailureKind::kNotSupported, "node", 0, "node ids are used up");
  if (trees.bidSub != kNoBid && !IsInternal(trees.bidSub)) {
    return Corrupt(Named("node", nid), Value(trees.bidSub), "the sub-node tree is a data block");
  }
  if (auto referred = blocks_.Refer(std::array{trees.bidData, trees.bidSub}); !referred) return referred;
  const NodeTrees old = nodes_.Find(nid).value_or(NodeEntry{}).trees;
  nodes_.Set({nid, trees, nidParent});
  NoteNid(nid);
  changed_ = true;
  return Release(old);
}

Result<void> NdbWriter::RemoveNode(Nid nid) {
  if (auto usable = blocks_.Usable(); !usable) return usable;
  const std::optional<NodeEntry> node = nodes_.Find(nid);
  if (!node) return {};
  nodes_.Remove(nid);
  changed_ = true;
  return Release(node->trees);
}

Result<void> NdbWriter::Release(const NodeTrees& trees) {
  if (auto released = blocks_.Release(trees.bidData); !released) return released;
  return blocks_.Release(trees.bidSub);
}

Result<void> NdbWriter::Discard(const NodeTrees& trees) {
  if (auto usable = blocks_.Usable(); !usable) return usable;
  if (auto freed = blocks_.Discard(trees.bidData); !freed) return freed;
  return blocks_.Discard(trees.bidSub);
}

void NdbWriter::Hold(const NodeTrees& trees) {
  blocks_.Hold(trees.bidData);
  blocks_.Hold(trees.bidSub);
}

void NdbWriter::LetGo(const NodeTrees& trees) {
  if (!blocks_.Usable()) return;
  // A failure to free stops the writing, so the next change tells of it.
  (void)blocks_.LetGo(trees.bidData);
  (void)blocks_.LetGo(trees.bidSub);
}

Result<DataTree> NdbWriter::WriteData(std::span<const std::byte> bytes) {
  if (bytes.size() > kMaxTreeSize) {
    return Fail(FailureKind::kNotSupported, "data tree", bytes.size(), "a value cannot be larger than 4 GiB");
  }
  std::vector<Bid> bids;
  Result<DataTree> tree;
  for (std::size_t at = 0; tree && at < bytes.size(); at += kMaxBlockData) {
    const Result<Bid> bid = WriteDataBlock(bytes.subspan(at, std::min(bytes.size() - at, kMaxBlockData)));
    if (bid) {
      bids.push_back(*bid);
    } else {
      tree = tl::unexpected(bid.error());
    }
  }
  if (tree) tree = WriteTreeOver(bids, bytes.size());
  if (!tree) {
    for (const Bid bid : bids) static_cast<void>(Discard({bid}));
  }
  return tree;
}

Result<Bid> NdbWriter::WriteDataBlock(std::span<const std::byte> bytes) { return blocks_.WriteData(bytes); }

Result<Bid> NdbWriter::WriteInternalBlock(std::span<const std::byte> content) { return blocks_.WriteInternal(content); }

Result<DataTree> NdbWriter::WriteTreeOver(std::span<const Bid> dataBids, std::uint64_t size) {
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
    const Result<Bid> xblock = write(dataBids.first(count), 1, below);
    if (!xblock) return tl::unexpected(xblock.error());
    xblocks.push_back(*xblock);
    dataBids = dataBids.subspan(count);
    left -= below;
  }
  if (xblocks.size() == 1) return DataTree{xblocks[0], size};
  const Result<Bid> root = write(xblocks, 2, size);
  if (!root) return tl::unexpected(root.error());
  return DataTree{*root, size};
}

std::uint32_t NdbWriter::NewRowVersion() { return dwUnique_++; }

Result<void> NdbWriter::ReadBlock(Bid bid, std::vector<std::byte>& out) const { return blocks_.Read(bid, out); }

std::optional<NodeEntry> NdbWriter::FindNode(Nid nid) const { return nodes_.Find(nid); }

Result<void> NdbWriter::Reserve(std::uint64_t bytes, std::size_t nodes) {
  // The object or table of a node has a data tree and a sub-node tree.
  const std::size_t blocks = 2 * nodes + static_cast<std::size_t>(bytes / kMaxBlockData);
  return blocks_.Reserve(bytes + TreeBytes(nodes_.Count() + nodes, NbtEntry::kSize), blocks);
}

void NdbWriter::DrawOnReserve() { blocks_.DrawOnReserve(); }

Result<void> NdbWriter::Commit() {
  if (auto usable = blocks_.Usable(); !usable) return usable;
  if (!changed_) return {};
  return Publish(AMapValid::kInvalid);
}

Result<void> NdbWriter::Seal() {
  if (sealed_) return {};
  if (auto usable = blocks_.Usable(); !usable) return usable;
  if (auto discarded = blocks_.DiscardUnreferenced(); !discarded) return discarded;
  if (auto published = Publish(AMapValid::kValid2); !published) return published;
  sealed_ = true;
  blocks_.Trim();
  blocks_.Stop({FailureKind::kDenied, "store", 0, "the store is closed"});
  return {};
}

// Everything that the header will name is on disk before the header is.
Result<void> NdbWriter::Publish(AMapValid mapsValid) {
  nodes_.Compact();
  blocks_.DrawOnReserve();
  std::vector<std::uint64_t> pages;
  const Result<Bref> blockTree = WriteBlockTree(blocks_, pages);
  const Result<Bref> nodeTree = blockTree ? WriteNodeTree(blocks_, nodes_, pages) : blockTree;
  if (!nodeTree) {
    for (const std::uint64_t ib : pages) blocks_.FreePage(ib);
    return tl::unexpected(nodeTree.error());
  }
  blocks_.Settle(treePages_);
  treePages_ = std::move(pages);
  if (mapsValid == AMapValid::kValid2) {
    if (auto written = WriteMaps(); !written) return written;
  }
  if (auto flushed = blocks_.Flush(); !flushed) return flushed;

  const AllocationMap& map = blocks_.Map();
  const Root root{.ibFileEof = map.FileSize(),
                  .ibAMapLast = AreaOffset(map.AreaCount() - 1),
                  .cbAMapFree = map.FreeBytes(),
                  .brefNbt = *nodeTree,
                  .brefBbt = *blockTree,
                  .fAMapValid = mapsValid};
  const Header header{blocks_.BidNextP(), blocks_.Table().BidNextB(), dwUnique_, rgnid_, root, blocks_.Method()};
  if (auto written = blocks_.WriteFixed(0, Encode(header)); !written) return written;
  changed_ = false;
  return blocks_.Flush();
}

Result<void> NdbWriter::WriteMaps() {
  const AllocationMap& map = blocks_.Map();
  for (std::uint32_t area = 0; area < map.AreaCount(); ++area) {
    if (auto written = blocks_.WriteFixed(AreaOffset(area), AMapPage(map, area)); !written) return written;
  }
  return blocks_.WriteFixed(kDListOffset, DListPage(map, blocks_.NewPageBid()));
}

}  // namespace velmora::ndb
