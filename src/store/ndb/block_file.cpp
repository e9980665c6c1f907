#include "store/ndb/block_file.h"

#include <algorithm>
#include <cassert>

#include "store/format/checksum.h"
#include "store/format/failures.h"
#include "store/ndb/map_pages.h"

namespace velmora::ndb {

BlockFile::BlockFile(platform::ByteStore& file, CryptMethod cryptMethod)
    : file_(file), cryptMethod_(cryptMethod), window_(file) {}

Result<void> BlockFile::Start() {
  if (auto emptied = Kept(file_.Resize(0)); !emptied) return emptied;
  return OpenAreas();
}

Result<void> BlockFile::Reserve(std::uint64_t bytes, std::size_t blocks) {
  if (auto usable = Usable(); !usable) return usable;
  reservedBytes_ = bytes;
  reservedBlocks_ = blocks;
  drawsOnReserve_ = false;
  return KeepReserve();
}

void BlockFile::DrawOnReserve() {
  drawsOnReserve_ = true;
  full_.reset();
}

void BlockFile::Trim() {
  if (file_.Size() > map_.FileSize()) static_cast<void>(file_.Resize(map_.FileSize()));
}

Result<Bid> BlockFile::WriteData(std::span<const std::byte> data) { return Write(false, data); }

Result<Bid> BlockFile::WriteInternal(std::span<const std::byte> content) {
  std::vector<Bid> references;
  ForEachReference(InternalBlock(content, generations::kUnicode),
                   [&references](Bid bid) { references.push_back(bid); });
  if (auto referred = Refer(references); !referred) return tl::unexpected(referred.error());
  return Write(true, content);
}

Result<Bid> BlockFile::Write(bool internal, std::span<const std::byte> data) {
  assert(!data.empty() && data.size() <= kMaxBlockData);
  const std::optional<Bid> bid = table_.NextBid(internal);
  if (!bid) return Fail(FailureKind::kNotSupported, "store", 0, "block ids are used up");
  const std::size_t size = BlockSizeOnDisk(data.size());
  const Result<std::uint64_t> ib = Allocate(size, kSlotSize);
  if (!ib) return tl::unexpected(ib.error());
  const Result<std::span<std::byte>> place = Kept(window_.Place(*ib, size));
  if (!place) return tl::unexpected(place.error());
  const auto stored = place->first(data.size());
  const auto padding = place->subspan(data.size(), size - data.size() - kBlockTrailerSize);
  EncodeBlock(internal ? CryptMethod::kNone : cryptMethod_, *bid, data, stored);
  std::fill(padding.begin(), padding.end(), std::byte{0});
  const auto cb = static_cast<std::uint16_t>(data.size());
  Encode(BlockTrailer{cb, ComputeSig(*ib, Value(*bid)), WeakCrc(stored), *bid}, place->last(kBlockTrailerSize));
  table_.Append(internal, *ib, cb);
  return *bid;
}

Result<void> BlockFile::Read(Bid bid, std::vector<std::byte>& out) const {
  const std::optional<BlockTable::Block> block = table_.Find(Canonical(bid));
  if (!block) return Fail(FailureKind::kNotFound, Named("block", bid), Value(bid), "the store has no such block");
  out.resize(block->cb);
  const Result<std::size_t> read = window_.Read(block->ib, out);
  if (!read) return tl::unexpected(read.error());
  if (*read != out.size()) return Corrupt(Named("block", bid), block->ib, "the file ends within the block");
  if (!IsInternal(bid)) DecodeBlock(cryptMethod_, Canonical(bid), out);
  return {};
}

Result<void> BlockFile::Refer(std::span<const Bid> bids) {
  for (std::size_t i = 0; i < bids.size(); ++i) {
    const Bid bid = bids[i];
    if (bid == kNoBid || table_.AddReference(bid)) continue;
    for (const Bid counted : bids.first(i)) {
      if (counted != kNoBid) table_.DropReference(counted);
    }
    const std::string name = Named("block", bid);
    if (!table_.Find(bid)) return Fail(FailureKind::kNotFound, name, Value(bid), "the store has no such block");
    return Fail(FailureKind::kNotSupported, name, Value(bid), "too many nodes share the block");
  }
  return {};
}

Result<void> BlockFile::Release(Bid bid) {
  if (bid == kNoBid || table_.DropReference(bid) > 0 || holds_.contains(bid)) return {};
  return Free(bid);
}

Result<void> BlockFile::Discard(Bid bid) {
  const std::optional<BlockTable::Block> block = table_.Find(bid);
  if (!block || block->references > 0 || holds_.contains(bid)) return {};
  return Free(bid);
}

void BlockFile::Hold(Bid bid) {
  if (bid != kNoBid) ++holds_[bid];
}

Result<void> BlockFile::LetGo(Bid bid) {
  const auto held = holds_.find(bid);
  if (held == holds_.end() || --held->second > 0) return {};
  holds_.erase(held);
  return Discard(bid);
}

Result<void> BlockFile::DiscardUnreferenced() {
  holds_.clear();
  std::vector<Bid> loose;
  table_.ForEach([&loose](Bid bid, const BlockTable::Block& block) {
    if (block.references == 0) loose.push_back(bid);
    return true;
  });
  for (const Bid bid : loose) {
    if (auto freed = Free(bid); !freed) return freed;
  }
  return {};
}

Result<void> BlockFile::Free(Bid root) {
  std::vector<Bid> unreferenced{root};
  std::vector<std::byte> content;
  while (!unreferenced.empty()) {
    const Bid bid = unreferenced.back();
    unreferenced.pop_back();
    if (IsInternal(bid)) {
      if (auto read = Kept(Read(bid, content)); !read) return read;
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
  return {};
}

Result<Bref> BlockFile::WritePage(PageType type, Page& page) {
  const Result<std::uint64_t> ib = Allocate(kPageSize, kPageSize);
  if (!ib) return tl::unexpected(ib.error());
  const Bref ref{NewPageBid(), *ib};
  SealPage(page, type, ref);
  const Result<std::span<std::byte>> place = Kept(window_.Place(*ib, kPageSize));
  if (!place) return tl::unexpected(place.error());
  std::copy(page.begin(), page.end(), place->begin());
  return ref;
}

Result<void> BlockFile::WriteFixed(std::uint64_t ib, std::span<const std::byte> bytes) {
  if (auto usable = Usable(); !usable) return usable;
  if (auto flushed = Kept(window_.Flush()); !flushed) return flushed;
  return Kept(file_.WriteAt(ib, bytes));
}

Result<void> BlockFile::Flush() {
  if (auto usable = Usable(); !usable) return usable;
  if (auto flushed = Kept(window_.Flush()); !flushed) return flushed;
  return Kept(file_.Flush());
}

void BlockFile::Settle(std::span<const std::uint64_t> freedPages) {
  for (const std::uint64_t ib : freedPages) map_.FreeWithCommit(ib, kPageSize / kSlotSize);
  map_.Settle();
  firstUncommitted_ = table_.BidNextB();
}

Result<void> BlockFile::Usable() const {
  if (failure_) return tl::unexpected(*failure_);
  if (full_) return tl::unexpected(*full_);
  return {};
}

void BlockFile::Stop(const Failure& failure) {
  if (!failure_) failure_ = failure;
}

Result<std::uint64_t> BlockFile::Allocate(std::size_t size, std::size_t alignment) {
  if (auto usable = Usable(); !usable) return tl::unexpected(usable.error());
  const auto slots = static_cast<std::uint32_t>(size / kSlotSize);
  const std::optional<std::uint64_t> ib = map_.Allocate(slots, static_cast<std::uint32_t>(alignment / kSlotSize));
  if (!ib) return Fail(FailureKind::kNotSupported, "store", map_.FileSize(), "the store has reached its largest size");
  if (openAreas_ == map_.AreaCount()) return *ib;
  if (auto opened = OpenAreas(); !opened) {
    map_.Free(*ib, slots);
    return tl::unexpected(opened.error());
  }
  return *ib;
}

// The file grows here and nowhere else, so a disk that has no room left says so before anything is lost.
Result<void> BlockFile::KeepReserve() {
  std::uint64_t size = map_.FileSize();
  if (!drawsOnReserve_) {
    const std::uint64_t bytes = reservedBytes_ + TreeBytes(table_.Count() + reservedBlocks_, BbtEntry::kSize);
    // Blocks fill an area but for its maps and a rest that is too short for the next one.
    constexpr std::uint64_t kUsable = kAreaSize - kMostMapPages * kPageSize - kMaxBlockSize;
    size += (bytes / kUsable + 1) * kAreaSize;
  }
  auto reserved = file_.Reserve(size);
  if (!reserved && reserved.error().kind == FailureKind::kFull) {
    full_ = reserved.error();
    return reserved;
  }
  return Kept(reserved);
}

// The maps of a new area say that all of it is in use, until Seal writes what is: whoever trusts them
// although the header calls them not valid writes nowhere where the next commit will be.
Result<void> BlockFile::OpenAreas() {
  if (auto kept = KeepReserve(); !kept) return kept;
  for (; openAreas_ < map_.AreaCount(); ++openAreas_) {
    std::uint64_t ib = AreaOffset(openAreas_);
    for (const PageType type : MapPagesOf(openAreas_)) {
      const Result<std::span<std::byte>> place = Kept(window_.Place(ib, kPageSize));
      if (!place) return tl::unexpected(place.error());
      const Page page = FullMapPage(type, ib);
      std::copy(page.begin(), page.end(), place->begin());
      ib += kPageSize;
    }
  }
  return {};
}

}  // namespace velmora::ndb
