#include "store/ltp/heap_writer.h"

#include <algorithm>
#include <cassert>
#include <cstring>

#include "store/format/failures.h"
#include "store/format/little_endian.h"

namespace velmora::ltp {

namespace {

// Offsets of the nibbles in a HNHDR and in a HNBITMAPHDR.
constexpr std::size_t kFillLevelsInFirst = 8;
constexpr std::size_t kFillLevelsInOthers = 2;
static_assert(kFillLevelsInFirst + kFillLevelsInHnHdr / 2 == kHnHdrSize);
static_assert(kFillLevelsInOthers + kFillLevelsInBitmapHdr / 2 == kHnBitmapHdrSize);

/// Most heaps have no more in a block.
constexpr std::size_t kCommonItems = 64;

}  // namespace

void HeapPosition::Advance(std::size_t size) {
  if (itemCount == kMaxHeapItemsPerBlock || PageMapEnd(itemsEnd + size, itemCount + 1) > kMaxBlockData) {
    ++block;
    itemsEnd = HeadSize(block);
    itemCount = 0;
  }
  itemsEnd += size;
  ++itemCount;
}

HeapWriter::HeapWriter(ndb::NdbWriter& ndb, ClientSig clientSig, std::size_t maxBlocks)
    : ndb_(ndb), clientSig_(clientSig), maxBlocks_(maxBlocks) {}

HeapWriter::~HeapWriter() { Clear(); }

Hid HeapWriter::Add(std::span<const std::byte> item) {
  if (item.empty() || item.size() > kMaxHeapItem) {
    RaiseCorrupt(ObjectKind::kHeap, item.size(), "a heap item is empty or too large");
  }
  HeapPosition next = position_;
  next.Advance(item.size());
  if (next.block >= maxBlocks_) Raise(FailureKind::kNotSupported, ObjectKind::kHeap, next.block, "the heap is full");
  if (bids_.empty()) OpenBlock(0);
  if (next.block != position_.block) {
    CloseBlock(kMaxBlockData);
    OpenBlock(next.block);
  }
  position_ = next;
  std::memcpy(Buffer()->data() + next.itemsEnd - item.size(), item.data(), item.size());
  ends_.push_back(static_cast<std::uint16_t>(next.itemsEnd));
  return MakeHid(static_cast<std::uint32_t>(next.block), static_cast<std::uint32_t>(next.itemCount));
}

void HeapWriter::Patch(Hid hid, std::span<const std::byte> bytes) {
  const std::vector<std::uint16_t>& ends = position_.block == 0 ? ends_ : firstEnds_;
  const std::uint32_t item = ItemOf(hid);
  assert(BlockOf(hid) == 0 && item > 0 && item <= ends.size());
  const std::size_t start = item == 1 ? kHnHdrSize : ends[item - 2];
  assert(start + bytes.size() <= ends[item - 1]);
  std::memcpy(first_->data() + start, bytes.data(), bytes.size());
}

ndb::DataTree HeapWriter::Finish(Hid hidUserRoot) {
  assert(!bids_.empty());
  const std::size_t last = position_.block;
  const std::uint64_t size = position_.HeapSize();
  const auto sizeOf = [&](std::size_t block) {
    return block == last ? static_cast<std::size_t>(size - last * kMaxBlockData) : kMaxBlockData;
  };
  CloseBlock(sizeOf(last));
  if (last >= kFillLevelsInHnHdr) {
    const std::size_t held = last - (last - kFillLevelsInHnHdr) % kFillLevelsInBitmapHdr;
    WriteBlock(held, sizeOf(held));
  }
  Store<std::uint32_t>(*first_, 4, hidUserRoot);
  WriteBlock(0, sizeOf(0));
  const ndb::DataTree tree = ndb_.WriteTreeOver(bids_, size);
  bids_.clear();
  Clear();
  return tree;
}

void HeapWriter::Clear() {
  for (const Bid bid : bids_) ndb_.Discard({bid});
  bids_.clear();
  ends_.clear();
  position_ = {};
  first_ = {};
  levels_ = {};
  current_ = {};
}

void HeapWriter::OpenBlock(std::size_t block) {
  if (HasBitmapHdr(block) && block > kFillLevelsInHnHdr) {
    WriteBlock(block - kFillLevelsInBitmapHdr, kMaxBlockData);
  }
  ndb::BlockBuffer& buffer = BufferOf(block);
  if (!buffer) buffer = ndb_.TakeBuffer();
  std::fill_n(buffer->begin(), HeadSize(block), std::byte{0});
  if (block == 0) {
    (*buffer)[2] = std::byte{kHeapSig};
    (*buffer)[3] = static_cast<std::byte>(clientSig_);
  }
  bids_.push_back(kNoBid);
  ends_.clear();
  ends_.reserve(kCommonItems);
}

// Ends the block at hand with its page map, and cuts or fills it to `size` bytes. Block 0 and the blocks with
// fill levels stay in memory.
void HeapWriter::CloseBlock(std::size_t size) {
  const std::size_t block = position_.block;
  const std::size_t ibHnpm = (position_.itemsEnd + 1) & ~std::size_t{1};
  const std::span<std::byte> bytes = std::span(*Buffer()).first(size);
  std::fill(bytes.begin() + static_cast<std::ptrdiff_t>(position_.itemsEnd), bytes.end(), std::byte{0});
  Store<std::uint16_t>(bytes, 0, static_cast<std::uint16_t>(ibHnpm));
  Store<std::uint16_t>(bytes, ibHnpm, static_cast<std::uint16_t>(ends_.size()));  // cAlloc; cFree stays 0
  Store<std::uint16_t>(bytes, ibHnpm + 4, static_cast<std::uint16_t>(HeadSize(block)));
  for (std::size_t i = 0; i < ends_.size(); ++i) Store<std::uint16_t>(bytes, ibHnpm + 6 + 2 * i, ends_[i]);
  SetFillLevel(block, FillLevel(position_.itemsEnd, position_.itemCount));
  if (block == 0) firstEnds_ = ends_;
  if (block != 0 && !HasBitmapHdr(block)) WriteBlock(block, size);
}

// The level of a block stands in block 0 or in the last block with a HNBITMAPHDR up to it.
void HeapWriter::SetFillLevel(std::size_t block, std::uint8_t level) {
  const bool inFirst = block < kFillLevelsInHnHdr;
  const std::size_t nibble = inFirst ? block : (block - kFillLevelsInHnHdr) % kFillLevelsInBitmapHdr;
  std::byte& byte = inFirst ? (*first_)[kFillLevelsInFirst + nibble / 2] : (*levels_)[kFillLevelsInOthers + nibble / 2];
  byte |= static_cast<std::byte>(level << (nibble % 2 * 4));
}

void HeapWriter::WriteBlock(std::size_t block, std::size_t size) {
  bids_[block] = ndb_.WriteDataBlock(std::span(*BufferOf(block)).first(size));
}

}  // namespace velmora::ltp
