#include "store/ndb/store_reader.h"

#include <algorithm>
#include <array>

#include "store/format/block.h"
#include "store/format/failures.h"
#include "store/format/header.h"

namespace velmora::ndb {
namespace {

constexpr std::uint8_t kMaxLevel = 8;  // at 20 entries a page: more blocks than a file can hold

}  // namespace

std::unique_ptr<StoreReader> StoreReader::Open(const platform::ByteSource& file) {
  std::array<std::byte, Header::kSize> bytes;
  const std::size_t read = ValueOrRaise(file.ReadAt(0, bytes));
  if (read != bytes.size()) RaiseCorrupt(ObjectKind::kHeader, read, "the file is shorter than a header");
  const Header header = DecodeHeader(bytes);
  if (file.Size() >> kIbBits != 0) {
    Raise(FailureKind::kNotSupported, ObjectKind::kStore, file.Size(), "the file is too large");
  }

  std::unique_ptr<StoreReader> store(new StoreReader(file));
  store->format_ = header.generation;
  store->cryptMethod_ = header.bCryptMethod;
  store->ReadTree(PageType::kBbt, header.root.brefBbt);
  store->ReadTree(PageType::kNbt, header.root.brefNbt);
  const auto sortAndThin = [](auto& list, auto id) {
    std::ranges::stable_sort(list, {}, id);
    list.erase(std::ranges::unique(list, {}, id).begin(), list.end());
    list.shrink_to_fit();
  };
  sortAndThin(store->blocks_, &Block::bid);
  sortAndThin(store->nodes_, &NodeEntry::nid);
  return store;
}

// A page is looked at once, so the walk ends whatever the references say.
void StoreReader::ReadTree(PageType type, const Bref& root) {
  struct Expected {
    Bref ref;
    int level;  ///< -1 for the root, whose level is not known
  };
  const std::size_t pageSize = format_->pageSize;
  std::vector<bool> seen(file_.Size() / pageSize + 1);
  std::vector<Expected> pending{{root, -1}};
  std::vector<std::byte> page(pageSize);
  while (!pending.empty()) {
    const auto [ref, level] = pending.back();
    pending.pop_back();
    if (ref.ib % pageSize != 0 || ref.ib >= file_.Size() || seen[ref.ib / pageSize]) {
      Note(ref, "a tree refers to a place that is no page, or to a page twice");
      continue;
    }
    seen[ref.ib / pageSize] = true;
    const Result<std::size_t> read = file_.ReadAt(ref.ib, page);
    if (!read || *read != pageSize || !ProvesItself(page, type, ref, *format_)) {
      Note(ref, "the trailer of a page does not fit");
      continue;
    }
    const BtPageHead head = DecodeBtPageHead(page, *format_);
    const bool isNodeLeaf = head.cLevel == 0 && type == PageType::kNbt;
    const std::size_t entrySize = isNodeLeaf ? format_->nodeEntrySize : format_->blockEntrySize;
    if (head.cbEnt != entrySize || head.cEnt > MaxEntries(entrySize, *format_) || head.cLevel > kMaxLevel ||
        (level >= 0 && head.cLevel != level)) {
      Note(ref, "the level or the entries of a page do not fit");
      continue;
    }
    if (head.cLevel == 0) {
      ReadLeaf(type, page, head);
      continue;
    }
    for (std::size_t i = head.cEnt; i-- > 0;) {
      const auto entry = std::span<const std::byte>(page).subspan(i * entrySize, entrySize);
      pending.push_back({DecodeBtEntry(entry, *format_).ref, head.cLevel - 1});
    }
  }
}

void StoreReader::ReadLeaf(PageType type, PageView page, const BtPageHead& head) {
  for (std::size_t i = 0; i < head.cEnt; ++i) {
    const auto bytes = page.subspan(i * head.cbEnt, head.cbEnt);
    if (type == PageType::kNbt) {
      const NbtEntry entry = DecodeNbtEntry(bytes, *format_);
      nodes_.push_back({entry.nid, {entry.bidData, entry.bidSub}, entry.nidParent});
      continue;
    }
    const BbtEntry entry = DecodeBbtEntry(bytes, *format_);
    if (entry.cb == 0 || entry.cb > format_->maxBlockData || entry.ref.ib >= file_.Size()) {
      Note(entry.ref, "a block has an impossible size or place");
      continue;
    }
    blocks_.push_back({Canonical(entry.ref.bid), entry.ref.ib | std::uint64_t{entry.cb} << kIbBits});
  }
}

bool StoreReader::FindBlock(Bid bid, std::vector<std::byte>& out) const {
  bid = Canonical(bid);
  const auto block = std::ranges::lower_bound(blocks_, bid, {}, &Block::bid);
  if (block == blocks_.end() || block->bid != bid) return false;
  const std::uint64_t ib = block->ibAndCb & ((std::uint64_t{1} << kIbBits) - 1);
  const std::size_t cb = block->ibAndCb >> kIbBits;
  out.resize(BlockSizeOnDisk(cb, *format_));
  const std::size_t read = ValueOrRaise(file_.ReadAt(ib, out));
  const std::string_view why = WhyNotBlock(std::span(out).first(read), {bid, ib}, cb, *format_);
  if (!why.empty()) RaiseCorrupt({ObjectKind::kBlock, bid}, ib, why);
  if (!UnpackBlock(out, bid, cb, cryptMethod_, *format_)) {
    RaiseCorrupt({ObjectKind::kBlock, bid}, ib, "the block does not inflate to its size");
  }
  return true;
}

std::optional<NodeEntry> StoreReader::FindNode(Nid nid) const {
  const auto node = std::ranges::lower_bound(nodes_, nid, {}, &NodeEntry::nid);
  if (node == nodes_.end() || node->nid != nid) return std::nullopt;
  return *node;
}

void StoreReader::Note(const Bref& ref, std::string_view why) {
  damage_.Add(Corrupt({ObjectKind::kPageOrBlock, ref.bid}, ref.ib, why));
}

}  // namespace velmora::ndb
