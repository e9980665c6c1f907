#include "forge/store.h"

#include <zlib.h>

#include <algorithm>

#include "forge/checksum.h"
#include "forge/encoding.h"

namespace velmora::forge {
namespace {

// Blocks shorter than this are never compressed.
constexpr std::size_t kSmallestCompressed = 490;

std::array<std::uint32_t, 32> FirstIndexes() {
  std::array<std::uint32_t, 32> indexes;
  indexes.fill(0x400);
  for (const unsigned search : {3U, 6U, 7U, 0x10U}) indexes[search] = 0x4000;
  indexes[4] = 0x10000;
  indexes[8] = 0x8000;
  return indexes;
}

struct BlockForm {
  Format format;
  Encoding encoding;
  std::uint32_t key;
  std::uint16_t dataSize;
  // What the trailer says.
  std::uint16_t size;
  std::uint16_t signature;
  std::uint16_t inflatedSize;
  Bid id;
};

// Encodes the data of a block and writes the trailer behind it.
void FormBlock(const BlockForm& form, Bytes& block) {
  const std::span<std::byte> data = std::span(block).first(form.dataSize);
  Encode(form.encoding, form.key, data);
  const std::uint32_t checksum = Checksum(data);
  const std::size_t trailer = block.size() - TraitsOf(form.format).blockTrailerSize;
  Put(block, trailer, form.size, 2);
  Put(block, trailer + 2, form.signature, 2);
  if (form.format == Format::kAnsi) {
    Put(block, trailer + 4, form.id, 4);
    Put(block, trailer + 8, checksum, 4);
  } else {
    Put(block, trailer + 4, checksum, 4);
    Put(block, trailer + 8, form.id, 8);
  }
  if (form.format == Format::kUnicode4k) {
    Put(block, trailer + 16, 2, 2);
    Put(block, trailer + 18, form.inflatedSize, 2);
  }
}

Bytes Deflate(std::span<const std::byte> data) {
  uLongf size = compressBound(static_cast<uLong>(data.size()));
  Bytes out(size);
  compress2(reinterpret_cast<Bytef*>(out.data()), &size, reinterpret_cast<const Bytef*>(data.data()),
            static_cast<uLong>(data.size()), Z_DEFAULT_COMPRESSION);
  out.resize(size);
  return out;
}

}  // namespace

Store::Store(StoreOptions options)
    : options_(options),
      traits_(TraitsOf(options.format)),
      sink_(std::make_unique<MemorySink>()),
      space_(traits_, options.pieces),
      lastIndex_(FirstIndexes()) {
  if (options.startOffset > space_.End()) space_.Take(space_.End(), options.startOffset - space_.End());
}

Store::Store(StoreOptions options, const std::filesystem::path& path) : Store(options) {
  sink_ = std::make_unique<FileSink>(path);
}

Bid Store::AddBlock(std::span<const std::byte> data, const BlockOptions& options) {
  Bytes stored;
  stored.reserve(data.size() + traits_.blockTrailerSize + traits_.slotSize);
  stored.assign(data.begin(), data.end());
  const bool compress = options_.format == Format::kUnicode4k && options.compressed.value_or(options_.compressed);
  if (compress && (options.compressed || stored.size() >= kSmallestCompressed)) {
    Bytes smaller = options_.pack != nullptr ? options_.pack(stored) : Deflate(stored);
    if (smaller.size() < stored.size() || options.compressed) stored = std::move(smaller);
  }
  return Place(std::move(stored), static_cast<std::uint16_t>(data.size()), false, options);
}

Bid Store::AddInternalBlock(std::span<const std::byte> data, const BlockOptions& options) {
  return Place(Bytes(data.begin(), data.end()), static_cast<std::uint16_t>(data.size()), true, options);
}

Bid Store::Place(Bytes data, std::uint16_t inflatedSize, bool internal, const BlockOptions& options) {
  Bid bid = nextBid_ | (internal ? 2U : 0U);
  if (options.bid) {
    bid = *options.bid;
    nextBid_ = std::max(nextBid_, (bid & ~Bid{3}) + 4);
  } else {
    nextBid_ += 4;
  }
  const auto size = static_cast<std::uint16_t>(data.size());
  const std::uint64_t slot = traits_.slotSize;
  data.resize((data.size() + traits_.blockTrailerSize + slot - 1) / slot * slot);

  std::uint64_t offset = options.offset.value_or(0);
  if (options.offset) {
    space_.Take(offset, data.size());
  } else {
    offset = space_.Allocate(data.size(), slot);
  }
  blockIndex_.try_emplace(bid, blocks_.size());
  blocks_.push_back({.bid = bid,
                     .offset = offset,
                     .placeSize = data.size(),
                     .size = size,
                     .inflatedSize = inflatedSize,
                     .listed = options.listed});
  const Bid trailerId = options.trailerId.value_or(bid);
  const BlockForm form = {.format = options_.format,
                          .encoding = internal || !options.encoded ? Encoding::kNone : options_.encoding,
                          .key = options.key.value_or(static_cast<std::uint32_t>(bid)),
                          .dataSize = size,
                          .size = options.trailerSize.value_or(size),
                          .signature = options.trailerSignature.value_or(Signature(offset, trailerId)),
                          .inflatedSize = inflatedSize,
                          .id = trailerId};
  sink_->WriteAt(offset, std::move(data), [form](Bytes& bytes) { FormBlock(form, bytes); });
  return bid;
}

void Store::CountReference(Bid bid) {
  const auto found = blockIndex_.find(bid & ~Bid{1});
  if (found != blockIndex_.end()) ++blocks_[found->second].refs;
}

void Store::AddNode(Nid nid, Bid bidData, Bid bidSub, Nid nidParent) {
  CountReference(bidData);
  CountReference(bidSub);
  NoteNid(nid);
  nodes_.push_back({.nid = nid, .bidData = bidData, .bidSub = bidSub, .nidParent = nidParent});
}

void Store::NoteNid(Nid nid) {
  std::uint32_t& last = lastIndex_[nid & 0x1F];
  last = std::max(last, nid >> 5);
}

void Store::ListBlock(const BlockEntry& entry) { extraEntries_.push_back(entry); }

PlacedPage Store::AddPage(const PageSpec& given) {
  PlacedPage page = WritePage(given);
  pages_.back().stray = page.stray = true;
  return page;
}

void Store::AddOldPage(const PageSpec& given) { space_.Free(AddPage(given).offset, traits_.pageSize); }

std::vector<BlockEntry> Store::FreeFrom(Bid first) {
  std::vector<BlockEntry> freed;
  for (auto block = blocks_.rbegin(); block != blocks_.rend() && block->bid >= first; ++block) {
    block->listed = false;
    space_.Free(block->offset, block->placeSize);
    freed.push_back({.bid = block->bid,
                     .offset = block->offset,
                     .size = block->size,
                     .refs = block->refs,
                     .inflatedSize = block->inflatedSize});
  }
  std::reverse(freed.begin(), freed.end());
  return freed;
}

PlacedPage Store::WritePage(const PageSpec& given) {
  std::uint64_t offset = given.offset.value_or(0);
  if (given.offset) {
    space_.Take(offset, traits_.pageSize);
  } else {
    offset = space_.Allocate(traits_.pageSize, traits_.pageSize);
  }
  const std::uint64_t pageId = given.pageId ? *given.pageId : nextPageId_++;
  sink_->WriteAt(offset, FormPage(options_.format, given, offset, pageId));
  pages_.push_back({.type = given.type, .level = given.level, .offset = offset, .pageId = pageId});
  return pages_.back();
}

Image Store::Finish() {
  const TreeRoot blockRoot = WriteBlockTree();
  const TreeRoot nodeRoot = WriteNodeTree();
  WriteMaps();
  const std::uint64_t fileSize = options_.fullLength ? space_.MappedEnd() : space_.End();
  sink_->GrowTo(fileSize);
  WriteHeader(nodeRoot, blockRoot, fileSize);
  return {.format = options_.format,
          .bytes = sink_->Finish(),
          .blocks = std::move(blocks_),
          .pages = std::move(pages_),
          .nodes = std::move(nodes_)};
}

}  // namespace velmora::forge
