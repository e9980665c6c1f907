#include "recovery/name_to_id_map.h"

#include <algorithm>
#include <array>
#include <optional>

#include "store/format/block.h"
#include "store/format/name_map.h"
#include "store/format/prop_tag.h"

namespace velmora::recovery {

namespace {

constexpr std::uint32_t kFewestRecords = 50;
constexpr std::uint32_t kBucketSize = 2 * name_map::kEntrySize;
constexpr std::uint32_t kLowestLongId = 0x8001;
constexpr std::uint32_t kLongIdLimit = 0x8FFF;
constexpr std::uint32_t kReadBehindBucket = 512;
constexpr int kDeepestWalk = 32;

/// The last six bytes, read as a big-endian number, of the property sets whose names the converters know.
constexpr std::array<std::uint64_t, 4> kAcceptedGuidTails = {0x46, 0xAA003F1305, 0x317A210CC15B, 0xF0580DBBDF};

std::uint64_t GuidTail(ByteView block, std::uint64_t guid) {
  std::uint64_t tail = 0;
  for (std::uint64_t at = guid + 10; at < guid + name_map::kSetSize; ++at) tail = tail << 8 | block.U8(at);
  return tail;
}

}  // namespace

void NameMapReader::ReadNameToIdMap(std::uint32_t bidData, std::uint32_t bidSub, CryptMethod encoding) {
  if (!read_.emplace(bidData, bidSub, encoding).second) return;
  encoding_ = encoding;
  const auto record = blocks_.FindBlockOrLower(bidData);
  if (!record) return;
  auto bytes = ReadHeapBlock(store_, encoding_, *record, record->bid, kNameMapRules);
  if (!bytes) return;

  const PropertyContext context(ByteView(*bytes), store_, kNameMapRules);
  switch (context.GetFault()) {
    case PropertyContext::Fault::kSignature:
      return FallbackWalks(context.Header().signature, bidData, bidSub);
    case PropertyContext::Fault::kRootRange:
    case PropertyContext::Fault::kRecordRange:
      return;
    case PropertyContext::Fault::kTreeHeader:
      break;
    case PropertyContext::Fault::kNone:
      if (context.Count() < kFewestRecords) break;
      if (ReadContext(std::move(*bytes), *record, context) == NextStep::kEnd) return;
      break;
  }
  if (!WalkNameBlocks(bidSub)) WalkNameBlocksDeep(bidSub);
}

NameMapReader::NextStep NameMapReader::ReadContext(Bytes bytes, const engine::BlockRecord& record,
                                                   const PropertyContext& context) {
  const std::uint16_t ibHnpm = context.Header().ibHnpm;
  const std::uint32_t count = context.Count();
  const std::size_t blockSize = bytes.size();
  bool guidsDone = false;
  for (std::uint32_t index = 0; index < count; ++index) {
    const PropertyRecord property =
        ReadPropertyRecord(ByteView(bytes), context.Records().start + std::uint64_t{index} * kPropertyRecordSize);
    if (property.wPropType != PropType::kBinary) continue;

    if (!guidsDone) {  // the stream has the lowest id of the binary properties in the map
      const ByteView block(bytes);
      const std::uint32_t position = HeapPosition(ibHnpm, property.dwValueHnid);
      if (position > blockSize) return NextStep::kEnd;
      const HeapRange stream{block.U16(position), block.U16(position + 2u)};
      if (stream.end <= stream.start) return NextStep::kBlockWalks;
      ReadGuids(block, stream);
      guidsDone = true;
    }

    // Every record from here on, the stream's own included, is taken for a hash bucket.
    const std::uint32_t offset = (property.dwValueHnid >> 4 & 0xFFFF) + ibHnpm + 2;
    if (offset > blockSize) {
      if (!Take(offset + kReadBehindBucket)) return NextStep::kEnd;
      auto longer = blocks_.ReadChunk(record.offset, offset + kReadBehindBucket);
      if (!longer) return NextStep::kEnd;
      DecodeBlock(encoding_, Bid{record.bid}, *longer);
      bytes = std::move(*longer);
    }
    const ByteView block(bytes);
    const std::uint32_t start = block.U16(offset);
    const std::uint32_t end = block.U16(offset + 2u);
    if (start + kBucketSize == end) ReadNameEntry(block, start);
  }
  return NextStep::kBlockWalks;
}

void NameMapReader::ReadGuids(ByteView block, HeapRange stream) {
  std::uint8_t groupKey = 0;  // one byte: a longer stream begins again at 0
  for (std::uint32_t guid = stream.start; guid < stream.end; guid += name_map::kSetSize, ++groupKey) {
    if (std::ranges::count(kAcceptedGuidTails, GuidTail(block, guid)) != 0) map_.AddNamedPropGroup(groupKey);
  }
}

bool NameMapReader::ReadNameEntry(ByteView block, std::uint64_t offset) {
  if (offset + name_map::kEntrySize > block.Size()) return false;
  const bool stringName = (block.U8(offset + 4) & 1) != 0;
  if (stringName) return false;
  const std::uint32_t longId = block.U32(offset);
  if (longId < kLowestLongId || longId >= kLongIdLimit) return false;
  map_.AddNamedProp(longId, name_map::kFirstNamedId + block.U16(offset + name_map::kOffEntryId));
  return true;
}

bool NameMapReader::ReadNameEntries(ByteView block, std::uint64_t size) {
  bool taken = false;
  for (std::uint64_t offset = 0; offset <= std::min<std::uint64_t>(size, block.Size());
       offset += name_map::kEntrySize) {
    if (ReadNameEntry(block, offset)) taken = true;
  }
  return taken;
}

void NameMapReader::FallbackWalks(std::uint16_t word, std::uint32_t bidData, std::uint32_t bidSub) {
  for (const std::uint32_t bid : {bidSub, bidData}) {
    if (word == kSlBlock && WalkNameBlocks(bid)) return;
    if (word == kXBlock && WalkNameBlocksDeep(bid)) return;
  }
  for (const std::uint32_t bid : {bidSub, bidData}) {
    if (WalkNameBlocks(bid) || WalkNameBlocksDeep(bid)) return;
  }
}

bool NameMapReader::Take(std::uint64_t count) {
  if (count > left_) {
    left_ = 0;
    return false;
  }
  left_ -= count;
  return true;
}

bool NameMapReader::WalkBlocks(Walk walk, std::uint32_t bid, int depth) {
  if (depth > kDeepestWalk) return false;
  const auto record = blocks_.FindBlockOrLower(bid);
  if (!record || !Take(2ull * record->size)) return false;
  const auto bytes = blocks_.ReadChunk(record->offset, record->size);
  if (!bytes) return false;
  switch (ByteView(*bytes).U16(0)) {
    case kXBlock: {
      const auto behind = blocks_.ReadChunk(record->offset + 4, record->size);
      return behind && StepThroughSlots(ByteView(*behind), record->size, depth);
    }
    case kSlBlock:
      return WalkListed(walk, bid, *record, depth);
    default:
      return false;
  }
}

bool NameMapReader::StepThroughSlots(ByteView block, std::uint32_t size, int depth) {
  if (!Take(size)) return false;
  bool result = false;
  std::optional<bool> entries;  // a second pass over the same bytes would add nothing
  for (std::uint32_t slot = 0; slot < size / 4; ++slot) {
    // The value is the id, to the letter: a slot of 2 leads to block 2.
    switch (const std::uint16_t value = block.U16(slot * 4ull)) {
      case kSlBlock:
        result = WalkNameBlocks(value, depth + 1);
        break;
      case kXBlock:
        result = WalkNameBlocksDeep(value, depth + 1);
        break;
      default:
        if (!entries) entries = ReadNameEntries(block, size);
        if (*entries) result = true;
    }
  }
  return result;
}

bool NameMapReader::WalkListed(Walk walk, std::uint32_t bid, const engine::BlockRecord& outer, int depth) {
  const auto list = blocks_.ReadChunk(outer.offset + 4, outer.size);
  if (!list) return false;
  bool result = false;
  for (std::uint32_t pass = 0; pass < (outer.size + 4) / 4; ++pass) {
    const auto record = blocks_.FindBlockOrLower(ByteView(*list).U16(pass * 4ull + 4));
    if (!record || !Take(record->size)) continue;
    auto inner = blocks_.ReadChunk(record->offset, record->size);
    if (!inner) continue;
    DecodeBlock(encoding_, Bid{record->bid}, *inner);
    if (InflateUnlessHeap(store_, *inner) && !Take(inner->size())) continue;
    const auto innerSize = static_cast<std::uint32_t>(inner->size());
    if (ByteView(*inner).U16(0) != kXBlock) {
      if (ReadNameEntries(ByteView(*inner), innerSize)) result = true;
    } else if (walk == Walk::kNameBlocks) {
      result = WalkNameBlocksDeep(bid, depth + 1);
    } else {
      result = StepThroughSlots(ByteView(*list), innerSize, depth);
    }
  }
  return result;
}

}  // namespace velmora::recovery
