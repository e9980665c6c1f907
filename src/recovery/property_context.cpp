#include "recovery/property_context.h"

#include <utility>

namespace velmora::recovery {

using engine::StoreKind;

namespace {

constexpr std::uint32_t kTreeHeaderSize = 8;

bool IsOtherKind(StoreKind kind) { return kind != StoreKind::kOst && kind != StoreKind::kPst; }

bool Inflates(const engine::ScannedStore& store, const ContextRules& rules) {
  return rules.inflatesOtherKinds || store.storeKind == StoreKind::kOst;
}

}  // namespace

HeapHeader ReadHeapHeader(ByteView block) { return {block.U16(0), block.U16(kOffHeapWord), block.U32(4)}; }

PropertyRecord ReadPropertyRecord(ByteView block, std::uint64_t offset) {
  return {block.U16(offset), static_cast<PropType>(block.U16(offset + 2)), block.U32(offset + 4)};
}

std::optional<HeapRange> ReadHeapRange(ByteView block, std::uint32_t position) {
  if (std::uint64_t{position} + 4 > block.Size()) return std::nullopt;
  return HeapRange{block.U16(position), block.U16(position + 2u)};
}

std::optional<HeapRange> RangeOf(ByteView block, std::uint16_t ibHnpm, std::uint32_t hid, EmptyEnd emptyEnd) {
  const auto range = ReadHeapRange(block, HeapPosition(ibHnpm, hid));
  if (!range || range->start > range->end || range->end > block.Size()) return std::nullopt;
  if (range->end == 0 && emptyEnd == EmptyEnd::kRefused) return std::nullopt;
  return range;
}

bool InflateUnlessHeap(const engine::ScannedStore& store, Bytes& bytes) {
  if (store.layout.formatId != FORMAT_UNICODE_4K) return false;
  if (engine::IsHeapSignature(ByteView(bytes).U16(kOffHeapWord))) return false;
  Bytes inflated = bytes;
  if (engine::BlockReader(store).InflateBlock(inflated) == 0) return false;
  bytes = std::move(inflated);
  return true;
}

platform::Result<Bytes> ReadHeapBlock(const engine::ScannedStore& store, CryptMethod encoding,
                                      const engine::BlockRecord& record, std::uint32_t id, const ContextRules& rules) {
  auto bytes = engine::BlockReader(store).ReadChunk(record.offset, record.size);
  if (!bytes) return tl::unexpected(BlockNotRead(record));
  if (rules.decodesOst || store.storeKind == StoreKind::kPst) DecodeBlock(encoding, Bid{id}, *bytes);
  if (Inflates(store, rules)) InflateUnlessHeap(store, *bytes);
  return std::move(*bytes);
}

platform::Result<Bytes> ReadHeapBlock(const engine::ScannedStore& store, const engine::BlockRecord& record,
                                      std::uint32_t id, const ContextRules& rules, engine::ContentAllowance& allowance) {
  if (!allowance.TakeBytes(record.size)) return tl::unexpected(TooMuchClaimed());
  auto bytes = ReadHeapBlock(store, store.blockEncoding, record, id, rules);
  const bool inflated = bytes && bytes->size() > record.size;
  if (inflated && !allowance.TakeBytes(bytes->size())) return tl::unexpected(TooMuchClaimed());
  return bytes;
}

Failure PropertyContext::FailureOf(const engine::ScannedStore& store, const engine::BlockRecord& record,
                                   const ContextRules& rules) const {
  const auto corrupt = [&record](std::string_view why) { return BlockFailure(FailureKind::kCorrupt, record, why); };
  if (record.offset + record.size > store.source.Size()) return corrupt("is cut off by the end of the source");
  if (fault_ != Fault::kSignature) return corrupt("holds a property context that is damaged");
  if (IsInternalBid(record.bid)) {
    return BlockFailure(FailureKind::kNotSupported, record,
                        "is a list of blocks, and only what stands in one block is read");
  }
  const bool stillPacked = Inflates(store, rules) && store.layout.formatId == FORMAT_UNICODE_4K &&
                           !engine::IsHeapSignature(header_.signature) && block_.Size() == record.size;
  if (stillPacked) return corrupt("could not be inflated");
  return corrupt("is no property context: its signature is " + text::ToUtf8(HexOf(header_.signature)));
}

PropertyContext::PropertyContext(ByteView block, const engine::ScannedStore& store, const ContextRules& rules)
    : block_(block), header_(ReadHeapHeader(block)), fault_(Open(store, rules)) {}

PropertyContext::Fault PropertyContext::Open(const engine::ScannedStore& store, const ContextRules& rules) {
  const StoreKind storeKind = store.storeKind;
  if (!engine::AcceptsSignature(storeKind, header_.signature, rules.acceptsOtherKinds)) return Fault::kSignature;

  const auto root = RangeOf(block_, header_.ibHnpm, header_.hidUserRoot, rules.emptyEnd);
  if (!root) return Fault::kRootRange;

  const bool marked = block_.U16(root->start) == kTreeMarker;
  switch (rules.treeHeader) {
    case ContextRules::TreeHeader::kEightBytes:
      if (root->end - root->start != kTreeHeaderSize) return Fault::kTreeHeader;
      break;
    case ContextRules::TreeHeader::kMarkerUnlessOther:
      if (!marked && !IsOtherKind(storeKind)) return Fault::kTreeHeader;
      break;
    case ContextRules::TreeHeader::kMarker:
      if (!marked || IsOtherKind(storeKind)) return Fault::kTreeHeader;
      break;
  }

  // The entry behind the root's in the page map: that the array was allocated right behind the tree header is
  // all that the name-to-id reader goes by. Whether that entry lies in the block is not asked.
  const std::uint64_t rootPosition = HeapPosition(header_.ibHnpm, header_.hidUserRoot);
  const auto records = rules.recordsFollowRoot
                           ? HeapRange{block_.U16(rootPosition + 2), block_.U16(rootPosition + 4)}
                           : RangeOf(block_, header_.ibHnpm, block_.U32(root->start + 4u), rules.emptyEnd);
  if (!records || records->start > records->end || records->end > block_.Size()) return Fault::kRecordRange;
  records_ = *records;
  return Fault::kNone;
}

}  // namespace velmora::recovery
