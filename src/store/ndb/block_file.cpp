#include "store/ndb/block_file.h"

#include <algorithm>
#include <cassert>
#include <cstring>

#include "store/format/failures.h"
#include "store/ndb/map_pages.h"

namespace velmora::ndb {

BlockFile::BlockFile(platform::ByteStore& file, CryptMethod cryptMethod, platform::Workers& workers)
    : file_(file), cryptMethod_(cryptMethod), window_(file, workers), room_(file, workers) {}

BlockFile::~BlockFile() {
  window_.Drop();
  Trim();
}

void BlockFile::Start() {
  Kept([&] { ValueOrRaise(room_.Clear()); });
  OpenAreas();
}

void BlockFile::Reserve(std::uint64_t bytes, std::size_t blocks) {
  CheckUsable();
  reservedBytes_ = bytes;
  reservedBlocks_ = blocks;
  drawsOnReserve_ = false;
  KeepReserve();
}

void BlockFile::DrawOnReserve() {
  drawsOnReserve_ = true;
  full_.reset();
}

void BlockFile::Trim() { static_cast<void>(room_.Trim(map_.FileSize())); }

Bid BlockFile::WriteData(std::span<const std::byte> data) { return Write(false, data, cryptMethod_); }

Bid BlockFile::WriteStored(const StoredData& data) { return Write(false, data.bytes, CryptMethod::kNone, data.crc); }

Bid BlockFile::WriteInternal(std::span<const std::byte> content) {
  references_.clear();
  ForEachReference(InternalBlock(content, generations::kUnicode), [this](Bid bid) { references_.push_back(bid); });
  Refer(references_);
  return Write(true, content, CryptMethod::kNone);
}

Bid BlockFile::Write(bool internal, std::span<const std::byte> data, CryptMethod encoding,
                     std::optional<std::uint32_t> crc) {
  assert(!data.empty() && data.size() <= kMaxBlockData);
  const std::optional<Bid> bid = table_.NextBid(internal);
  if (!bid) Raise(FailureKind::kNotSupported, ObjectKind::kStore, 0, "block ids are used up");
  const auto cb = static_cast<std::uint16_t>(data.size());
  const std::uint64_t ib = Allocate(BlockSizeOnDisk(data.size()), kSlotSize);
  std::memcpy(Kept([&] { return window_.Place({ib, cb, *bid, encoding, crc}); }).data(), data.data(), data.size());
  table_.Append(internal, ib, cb);
  return *bid;
}

bool BlockFile::Find(Bid bid, std::vector<std::byte>& out) const {
  const std::optional<BlockTable::Block> block = table_.Find(Canonical(bid));
  if (!block) return false;
  out.resize(block->cb);
  bool isEncoded = true;
  if (window_.ReadBlock(block->ib, out, isEncoded) != out.size()) {
    RaiseCorrupt({ObjectKind::kBlock, bid}, block->ib, "the file ends within the block");
  }
  if (isEncoded && !IsInternal(bid)) DecodeBlock(cryptMethod_, Canonical(bid), out);
  return true;
}

void BlockFile::Refer(std::span<const Bid> bids) {
  for (std::size_t i = 0; i < bids.size(); ++i) {
    const Bid bid = bids[i];
    if (bid == kNoBid || table_.AddReference(bid)) continue;
    for (const Bid counted : bids.first(i)) {
      if (counted != kNoBid) table_.DropReference(counted);
    }
    if (!table_.Find(bid)) throw FailureError(BlockSource::NoSuchBlock(bid));
    Raise(FailureKind::kNotSupported, {ObjectKind::kBlock, bid}, Value(bid), "too many nodes share the block");
  }
}

void BlockFile::Release(Bid bid) {
  if (bid == kNoBid || table_.DropReference(bid) > 0 || holds_.contains(bid)) return;
  Free(bid);
}

void BlockFile::Discard(Bid bid) {
  const std::optional<BlockTable::Block> block = table_.Find(bid);
  if (!IsUsable() || !block || block->references > 0 || holds_.contains(bid)) return;
  try {
    Free(bid);
  } catch (const FailureError&) {
    // It has stopped the writing.
  }
}

void BlockFile::Hold(Bid bid) {
  if (bid != kNoBid) ++holds_[bid];
}

void BlockFile::LetGo(Bid bid) {
  const auto held = holds_.find(bid);
  if (held == holds_.end() || --held->second > 0) return;
  holds_.erase(held);
  Discard(bid);
}

void BlockFile::DiscardUnreferenced() {
  holds_.clear();
  std::vector<Bid> loose;
  table_.ForEach([&loose](Bid bid, const BlockTable::Block& block) {
    if (block.references == 0) loose.push_back(bid);
  });
  for (const Bid bid : loose) Free(bid);
}

void BlockFile::Free(Bid root) {
  std::vector<Bid> unreferenced{root};
  std::vector<std::byte> content;
  while (!unreferenced.empty()) {
    const Bid bid = unreferenced.back();
    unreferenced.pop_back();
    if (IsInternal(bid)) {
      if (!Kept([&] { return Find(bid, content); })) throw FailureError(BlockSource::NoSuchBlock(bid));
      ForEachReference(InternalBlock(content, generations::kUnicode), [&](Bid child) {
        if (table_.DropReference(child) == 0 && !holds_.contains(child)) unreferenced.push_back(child);
      });
    }
    const BlockTable::Block block = *table_.Find(bid);
    const auto slots = static_cast<std::uint32_t>(BlockSizeOnDisk(block.cb) / kSlotSize);
    if (bid >= firstUncommitted_) {
      map_.Free(block.ib, slots);
    } else {
      map_.FreeWithCommit(block.ib, slots);
    }
    table_.Remove(bid);
  }
}

Bref BlockFile::WritePage(PageType type, Page& page) {
  const std::uint64_t ib = Allocate(kPageSize, kPageSize);
  const Bref ref{NewPageBid(), ib};
  SealPage(page, type, ref);
  std::ranges::copy(page, Kept([&] { return window_.Place(ib, kPageSize); }).begin());
  return ref;
}

void BlockFile::WriteFixed(std::uint64_t ib, std::span<const std::byte> bytes) {
  CheckUsable();
  Kept([&] {
    window_.Flush();
    ValueOrRaise(file_.WriteAt(ib, bytes));
  });
}

void BlockFile::Flush() {
  CheckUsable();
  Kept([&] {
    window_.Flush();
    ValueOrRaise(file_.Flush());
  });
}

void BlockFile::Settle(std::span<const std::uint64_t> freedPages) {
  for (const std::uint64_t ib : freedPages) map_.FreeWithCommit(ib, kPageSize / kSlotSize);
  map_.Settle();
  firstUncommitted_ = table_.BidNextB();
}

void BlockFile::CheckUsable() const {
  if (failure_) throw FailureError(*failure_);
  if (full_) throw FailureError(*full_);
}

void BlockFile::Stop(const Failure& failure) {
  if (!failure_) failure_ = failure;
}

std::uint64_t BlockFile::Allocate(std::size_t size, std::size_t alignment) {
  CheckUsable();
  const auto slots = static_cast<std::uint32_t>(size / kSlotSize);
  const std::optional<std::uint64_t> ib = map_.Allocate(slots, static_cast<std::uint32_t>(alignment / kSlotSize));
  if (!ib)
    Raise(FailureKind::kNotSupported, ObjectKind::kStore, map_.FileSize(), "the store has reached its largest size");
  if (openAreas_ == map_.AreaCount()) return *ib;
  try {
    OpenAreas();
  } catch (...) {
    map_.Free(*ib, slots);
    throw;
  }
  return *ib;
}

// The file grows here and nowhere else, so a disk that has no room left says so before anything is lost.
void BlockFile::KeepReserve() {
  std::uint64_t size = map_.FileSize();
  if (!drawsOnReserve_) {
    const std::uint64_t bytes = reservedBytes_ + TreeBytes(table_.Count() + reservedBlocks_, BbtEntry::kSize);
    // Blocks fill an area but for its maps and a rest that is too short for the next one.
    constexpr std::uint64_t kUsable = kAreaSize - kMostMapPages * kPageSize - kMaxBlockSize;
    size += (bytes / kUsable + 1) * kAreaSize;
  }
  auto reserved = room_.Require(size);
  if (!reserved && reserved.error().kind == FailureKind::kFull) {
    full_ = std::move(reserved.error());
    throw FailureError(*full_);
  }
  Kept([&] { ValueOrRaise(std::move(reserved)); });
}

// The maps of a new area say that all of it is in use, until Seal writes what is: whoever trusts them
// although the header calls them not valid writes nowhere where the next commit will be.
void BlockFile::OpenAreas() {
  KeepReserve();
  for (; openAreas_ < map_.AreaCount(); ++openAreas_) {
    std::uint64_t ib = AreaOffset(openAreas_);
    for (const PageType type : MapPagesOf(openAreas_)) {
      std::ranges::copy(FullMapPage(type, ib), Kept([&] { return window_.Place(ib, kPageSize); }).begin());
      ib += kPageSize;
    }
  }
}

}  // namespace velmora::ndb
