#include "output/items/value_readers.h"

#include "recovery/heap_text.h"
#include "text/calendar.h"

namespace velmora::items {

using recovery::NarrowText;
using recovery::WideText;

namespace {

/// Layout of a list in its allocation: u32 count, then a u32 offset a value, then the values.
constexpr std::uint64_t OffsetOfValue(std::uint64_t index) { return 4 + 4 * index; }

/// The copied bytes of an 8-bit list begin behind its first offset. With one value, whose text stands right
/// there, that first offset (8) is taken for the length, so that as a rule the text is cut after 8 bytes
/// (docs/fidelity.md#short-list).
text::Text EightBitList(const recovery::MessageBlock& block, const text::CodePage& codePage, std::uint32_t start,
                        std::uint32_t length) {
  const std::uint32_t count = block.bytes.U32(start);
  const std::uint32_t copied = count == 1 ? block.bytes.U32(start + OffsetOfValue(0)) : length + 1;
  if (copied > block.record.size) return {};
  return NarrowText(block.bytes.Slice(start + OffsetOfValue(1), copied), codePage);
}

/// Each value ends where the next begins; the last one at the byte behind the allocation, which makes no
/// unit of its own.
text::Text UnicodeList(const recovery::MessageBlock& block, std::uint32_t start, std::uint32_t length) {
  const ByteView list = block.bytes.Slice(start, length + 1);
  const std::uint32_t count = list.U32(0);
  if (count > block.record.size) return {};
  // Values that overlap would let a small list grow without measure; a sound one holds each byte once.
  const std::size_t longestText = std::size_t{4} * block.record.size;
  text::Text joined;
  for (std::uint32_t i = 0; i < count && joined.size() < longestText; ++i) {
    const bool last = i + 1 == count;
    const std::uint64_t from = list.U32(OffsetOfValue(i));
    const std::uint64_t to = last ? length + 1 : list.U32(OffsetOfValue(i + 1));
    const ByteView value = list.Range(from, to);
    joined += WideText(value.Slice(0, value.Size() / 2 * 2));
    if (!last) joined.push_back(u';');
  }
  return joined;
}

}  // namespace

text::Text ReadStringValue(const recovery::MessageBlock& block, const text::CodePage& codePage, PropType type,
                           std::uint32_t position) {
  const std::uint32_t start = block.bytes.U16(position);
  const std::uint32_t end = block.bytes.U16(std::uint64_t{position} + 2);
  if (end < 16 || start == 0 || end <= start) return {};
  const std::uint32_t length = end - start;
  if (block.record.size < length + 4) return {};
  switch (type) {
    case PropType::kString:
      return WideText(block.bytes.Slice(start, length));
    case PropType::kString8:
      return NarrowText(block.bytes.Slice(start, length), codePage);
    case PropType::kMultipleString8:
      return EightBitList(block, codePage, start, length);
    case PropType::kMultipleString:
      return UnicodeList(block, start, length);
    default:
      return {};
  }
}

output::OleDate ReadTimeValue(const recovery::MessageBlock& block, PropType type, std::uint32_t position) {
  if (type != PropType::kTime) return {};
  const std::uint32_t start = block.bytes.U16(position);
  const std::uint32_t end = block.bytes.U16(std::uint64_t{position} + 2);
  return text::DateOf(end > start && end - start == 8 ? block.bytes.U64(start) : 0);
}

text::Text ReadHeapString(const recovery::ConversionScope& scope, const recovery::MessageBlock& block, PropType type,
                          std::uint32_t position, std::uint32_t value) {
  const std::uint32_t blockSize = block.record.size & 0xFFFF;  // an inflated block may be larger: its rest is not seen
  if (std::uint64_t{position} + 2 >= blockSize) return scope.subNodes->ReadSubnodeString(type, value);
  const std::uint32_t start = block.bytes.U16(position);
  const std::uint32_t end = block.bytes.U16(std::uint64_t{position} + 2);
  if (end + 2 >= blockSize) return scope.subNodes->ReadSubnodeString(type, value);
  if (start == 0 || end <= start) return {};
  switch (type) {
    case PropType::kString:
      return WideText(block.bytes.Range(start, end));
    case PropType::kString8:
      return NarrowText(block.bytes.Range(start, end), *scope.codePage);
    default:
      return {};
  }
}

}  // namespace velmora::items
