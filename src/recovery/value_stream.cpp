#include "recovery/value_stream.h"

#include <cstring>
#include <utility>

#include "recovery/block_failure.h"
#include "recovery/heap_text.h"
#include "recovery/property_context.h"
#include "store/format/block.h"
#include "store/format/property_tags.h"

namespace velmora::recovery {

using engine::ScannedStore;

namespace {

/// Sub-node blocks that lead to sub-node blocks: a sound value has one level, one that names itself has no end.
constexpr int kDeepestChain = 32;

/// A packed block below this size is taken for a list of block ids.
constexpr std::uint32_t kIdListBelow = 1001;
constexpr std::uint32_t kIdListArea = 100000;

enum class Reached { kPlainBlock, kList, kThroughSubNode };

/// What the last block of a walk tells of the whole value. A list that is none, since its id is that of a data block,
/// stands for the data in it.
std::uint64_t TotalOf(const engine::BlockRecord& record, ByteView block) {
  const std::uint16_t signature = block.U16(0);
  if (!IsInternalBid(record.bid)) return signature == kXBlock ? record.size : 0;
  return signature == kXBlock || signature == kXxBlock ? block.U32(4) : 0;
}

Reached WalkChain(const ScannedStore& store, engine::BlockRecord at, engine::ContentAllowance& allowance,
                  BlockChain& chain) {
  const engine::BlockReader blocks(store);
  const Generation& layout = store.layout;
  bool throughSubNode = false;
  for (int depth = 0; depth < kDeepestChain; ++depth) {
    if (!allowance.TakeBytes(at.size)) break;
    const auto bytes = blocks.ReadChunk(at.offset, at.size);
    if (!bytes) break;
    const ByteView block(*bytes);
    const std::uint16_t signature = block.U16(0);
    chain.last = at;
    chain.lastSignature = signature;
    chain.total = TotalOf(at, block);
    if (signature == kXBlock) {
      chain.singleDataBid = 0;
      chain.hasList = true;
      for (std::uint32_t slot = InternalHead::kSize; slot < block.Size(); slot += layout.idWidth) {
        chain.pieces.push_back(block.U32(slot));
      }
      return throughSubNode ? Reached::kThroughSubNode : Reached::kList;
    }
    if (signature != kSlBlock) break;
    const std::uint32_t bid = block.U32(layout.subnodeHeadSize + layout.idWidth);  // bidData of the first entry
    const auto record = blocks.FindBlockOrLower(bid);
    if (!record) {
      chain.missing = bid;
      break;
    }
    chain.singleDataBid = bid;
    throughSubNode = true;
    at = *record;
  }
  return throughSubNode ? Reached::kThroughSubNode : Reached::kPlainBlock;
}

void WriteSingleBlock(const ScannedStore& store, BlockChain& chain, engine::ContentAllowance& allowance,
                      const PieceWriter& write) {
  const std::uint32_t id = chain.singleDataBid;
  const engine::BlockReader blocks(store);
  const auto record = blocks.FindBlockOrLower(id);
  if (!record) return;
  const auto block = ReadDataBlock(store, *record, id, allowance);
  if (!block) return;
  if (!block->inflated || record->size >= kIdListBelow) return write(block->bytes);

  chain.takenForList = true;
  chain.total = block->bytes.size();
  const ByteView list = ByteView(block->bytes).Slice(0, kIdListArea);
  for (std::uint32_t at = InternalHead::kSize; at < list.Size(); at += 8) {
    const std::uint16_t listed = list.U16(at);
    const auto listedRecord = blocks.FindBlockOrLower(listed);
    if (!listedRecord) continue;
    const bool full = listedRecord->size >= engine::kMostBlockData;
    if (const auto piece = ReadDataBlock(store, *listedRecord, listed, allowance, !full)) write(piece->bytes);
  }
}

/// Gives each piece that is there to `take`, as long as they may be held.
template <class Take>
void ForEachPiece(const ScannedStore& store, BlockChain& chain, engine::ContentAllowance& allowance, Take take) {
  const engine::BlockReader blocks(store);
  for (const std::uint32_t bid : chain.pieces) {
    const auto record = blocks.FindBlock(bid);
    if (!record) continue;
    const auto piece = ReadDataBlock(store, *record, record->bid, allowance);
    if (!piece) continue;
    if (!allowance.TakeHeld(piece->bytes.size())) break;
    chain.read += piece->bytes.size();
    take(ByteView(piece->bytes));
  }
}

}  // namespace

const text::CodePage& BodyCodePage(std::uint16_t tag, const text::CodePage& codePage) {
  return tag == IdOf(tag::kHtml) || tag == IdOf(tag::kRtfCompressed) ? text::CodePage::Lossless() : codePage;
}

bool BuildBlockChain(const ScannedStore& store, const engine::BlockRecord& record, engine::ContentAllowance& allowance,
                     BlockChain& chain) {
  return WalkChain(store, record, allowance, chain) == Reached::kList;
}

bool BuildBlockChainAt(const ScannedStore& store, const engine::BlockRecord& record,
                       engine::ContentAllowance& allowance, BlockChain& chain) {
  return WalkChain(store, record, allowance, chain) != Reached::kPlainBlock;
}

text::Text MissingOf(const BlockChain& chain, std::uint64_t written) {
  const text::Text instead =
      written == 0 ? text::Text() : u"; " + DecimalOf(written) + u" bytes of a list stand in its place";
  if (chain.missing != 0) return ReasonOf(BlockNotFound(chain.missing)) + instead;
  if (chain.takenForList) return u"its " + DecimalOf(chain.total) + u" bytes were taken for a list of blocks" + instead;
  if (!chain.hasList && IsInternalBid(chain.last.bid)) {
    if (chain.lastSignature != kXxBlock) return u"its list of sub-nodes cannot be read" + instead;
    return u"its " + DecimalOf(chain.total) + u" bytes stand in a data tree of two levels, which is not read" + instead;
  }
  if (!chain.hasList && written == 0) {
    if (chain.last.bid == 0) return text::Text(kClaimsTooMuch);
    return ReasonOf(BlockNotRead(chain.last));
  }
  if (chain.total == 0 || written == chain.total) return {};
  if (written > chain.total) {
    return DecimalOf(written) + u" bytes were read where there are " + DecimalOf(chain.total);
  }
  return DecimalOf(chain.total - written) + u" of " + DecimalOf(chain.total) + u" bytes are missing";
}

std::optional<DataBlock> ReadDataBlock(const ScannedStore& store, const engine::BlockRecord& record, std::uint32_t id,
                                       engine::ContentAllowance& allowance, bool inflates) {
  if (!allowance.TakeBytes(record.size)) return std::nullopt;
  const engine::BlockReader blocks(store);
  auto bytes = blocks.ReadChunk(record.offset, record.size);
  if (!bytes) return std::nullopt;
  blocks.DecodeBlock(id, *bytes);
  const bool inflated = inflates && InflateUnlessHeap(store, *bytes);
  if (inflated && !allowance.TakeBytes(bytes->size())) return std::nullopt;
  return DataBlock{std::move(*bytes), inflated};
}

text::Text ReadStreamAsText(const ScannedStore& store, BlockChain& chain, std::uint16_t kind,
                            const text::CodePage& codePage, engine::ContentAllowance& allowance) {
  const engine::BlockReader blocks(store);
  const bool wide = store.layout.wideFormat;
  const text::CodePage& page = BodyCodePage(kind, codePage);
  if (!chain.hasList) {
    const auto record = blocks.FindBlockOrLower(chain.singleDataBid);
    if (!record) return {};
    const auto single = ReadDataBlock(store, *record, record->bid, allowance);
    if (!single || !allowance.TakeHeld(single->bytes.size())) return {};
    if (!wide) return NarrowText(ByteView(single->bytes), page);
    text::Text whole(single->bytes.size() / 2, u'\0');  // all of the block's units, NULs included
    if (!whole.empty()) std::memcpy(whole.data(), single->bytes.data(), 2 * whole.size());
    return whole;
  }

  text::Text result;
  ForEachPiece(store, chain, allowance, [&](ByteView piece) { result += CopyHeapText(piece, wide, page); });
  return result;
}

std::string ReadStreamAsBytes(const ScannedStore& store, BlockChain& chain, engine::ContentAllowance& allowance) {
  std::string result;
  ForEachPiece(store, chain, allowance, [&](ByteView piece) { result += UpToNul(piece); });
  return result;
}

void WriteStreamToFile(const ScannedStore& store, BlockChain& chain, engine::ContentAllowance& allowance,
                       const PieceWriter& write) {
  if (!chain.hasList) return WriteSingleBlock(store, chain, allowance, write);
  const engine::BlockReader blocks(store);
  for (const std::uint32_t bid : chain.pieces) {
    if (bid == 0) continue;
    const auto record = blocks.FindBlockOrLower(bid);
    if (!record) continue;
    if (const auto piece = ReadDataBlock(store, *record, bid, allowance)) write(piece->bytes);
  }
}

}  // namespace velmora::recovery
