#include "engine/evidence/block_evidence.h"

#include <algorithm>
#include <array>
#include <vector>

#include "engine/evidence/inflate_part.h"
#include "engine/evidence/stretch.h"
#include "store/format/byte_view.h"
#include "store/format/heap_format.h"
#include "store/format/inflate.h"

namespace velmora::engine {
namespace {

/// Of a packed block: enough for the tables of the stream and the first bytes that come out of it.
constexpr std::size_t kPackedHead = 1024;

/// Bytes of a packed block's content that take no longer than the tables of its stream. So small are mostly properties
/// and tables, of which more than the first bytes is asked for.
constexpr std::size_t kSmall = 4096;

/// Memory for a part of a block's content.
using PartBytes = std::array<std::byte, kLargestBlock>;

/// Parts of a block's content under one method.
class Content {
 public:
  Content(std::span<const std::byte> stored, const BlockTrailer& trailer, CryptMethod method, PartBytes& part)
      : stored_(stored), trailer_(trailer), method_(method), part_(part) {}

  std::size_t Size() const { return trailer_.cbInflated; }
  bool IsPacked() const { return trailer_.cbInflated != trailer_.cb; }

  /// Whether a zlib stream begins so.
  bool BeginsPacked() {
    const auto head = ByteView(Decoded(0, 2)).U16(0);
    return (head & 0x0F) == 8 && ((head & 0xFF) << 8 | head >> 8) % 31 == 0;
  }

  ByteView Part(std::size_t at, std::size_t length) {
    if (!IsPacked()) return ByteView(Decoded(at, length));
    if (inflated_.size() < at + length) InflateUpTo(at + length);
    return ByteView(inflated_).Slice(at, length);
  }

 private:
  /// To inflate all takes less time than the same by parts, but of a large block the first bytes are mostly enough, and
  /// one that is hurt has parts alone.
  void InflateUpTo(std::size_t end) {
    if (!BeginsPacked()) return;
    const bool isHead = end <= kOffHeapWord + 2 && Size() > kSmall;
    const std::span<const std::byte> packed = Decoded(0, isHead ? kPackedHead : stored_.size());
    inflated_.resize(trailer_.cbInflated);
    if (isHead || !Inflate(packed, inflated_)) inflated_ = InflatePart(packed, end);
  }

  std::span<const std::byte> Decoded(std::size_t at, std::size_t length) {
    const auto bytes = ByteView(stored_).Slice(at, length).Bytes();
    const auto decoded = std::span(part_).first(bytes.size());
    std::ranges::copy(bytes, decoded.begin());
    DecodeBlock(method_, trailer_.bid, decoded, at);
    return decoded;
  }

  std::span<const std::byte> stored_;
  const BlockTrailer& trailer_;
  CryptMethod method_;
  PartBytes& part_;
  std::vector<std::byte> inflated_;  ///< as far as it was asked for
};

/// Properties or a table if these are the first bytes of such a heap and its page map fits, else data.
BlockKind KindOfContent(Content content) {
  const ByteView head = content.Part(0, kOffHeapWord + 2);
  const std::uint16_t word = head.U16(kOffHeapWord);
  const std::uint32_t offMap = head.U16(0);
  const bool isContext = word == HeapWord(ClientSig::kPropertyContext);
  if (!isContext && word != HeapWord(ClientSig::kTableContext)) return BlockKind::kData;

  const std::uint32_t offEnds = offMap + 4;
  if (offMap < kHnHdrSize || offEnds > content.Size()) return BlockKind::kData;
  const std::uint32_t count = content.Part(offMap, 2).U16(0) + 1u;
  if (count < 2 || offEnds + 2 * count > content.Size()) return BlockKind::kData;
  const ByteView ends = content.Part(offEnds, 2 * count);
  std::uint32_t before = kHnHdrSize;
  if (ends.U16(0) != before) return BlockKind::kData;
  for (std::uint32_t i = 0; i < count; ++i) {
    const std::uint32_t end = ends.U16(2 * i);
    if (end < before || end > offMap) return BlockKind::kData;
    before = end;
  }
  return isContext ? BlockKind::kPropertyContext : BlockKind::kTable;
}

BlockKind KindOfList(std::span<const std::byte> bytes, const Generation& layout) {
  const InternalBlock list(bytes, layout);
  if (!list.IsKnown() || list.EntryCount() != list.Head().cEnt) return BlockKind::kData;
  return list.Head().btype == BlockType::kDataTree ? BlockKind::kList : BlockKind::kSubnodes;
}

/// What `kindOf` makes of a block's content under each method.
template <typename KindOf>
Kinds UnderEach(std::span<const std::byte> stored, const BlockTrailer& trailer, const Generation& layout,
                KindOf kindOf) {
  Kinds kinds{};
  if (IsInternal(trailer.bid)) {
    kinds.fill(KindOfList(stored, layout));
  } else {
    PartBytes part;  // not set to zeros
    std::ranges::transform(kMethods, kinds.begin(),
                           [&](CryptMethod method) { return kindOf(Content(stored, trailer, method, part)); });
  }
  return kinds;
}

}  // namespace

Kinds KindsOf(std::span<const std::byte> stored, const BlockTrailer& trailer, const Generation& layout) {
  return UnderEach(stored, trailer, layout, KindOfContent);
}

Kinds KindsAtSight(std::span<const std::byte> stored, const BlockTrailer& trailer, const Generation& layout) {
  return UnderEach(stored, trailer, layout, [](Content content) {
    if (!content.IsPacked()) return KindOfContent(std::move(content));
    return content.BeginsPacked() ? BlockKind::kPacked : BlockKind::kData;
  });
}

BlockKind KindOf(std::span<const std::byte> stored, const BlockTrailer& trailer, const Generation& layout,
                 CryptMethod method) {
  if (IsInternal(trailer.bid)) return KindOfList(stored, layout);
  PartBytes part;  // not set to zeros
  return KindOfContent(Content(stored, trailer, method, part));
}

}  // namespace velmora::engine
