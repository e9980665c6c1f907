#include "store/format/block.h"

#include "store/format/checksum.h"
#include "store/format/inflate.h"
#include "store/format/little_endian.h"

namespace velmora {
namespace {

BlockTrailer TrailerOf(std::span<const std::byte> block, const Generation& generation) {
  return DecodeBlockTrailer(block.last(generation.blockTrailerSize), generation);
}

}  // namespace

void Encode(const BlockTrailer& trailer, std::span<std::byte> out) {
  Store<std::uint16_t>(out, 0, trailer.cb);
  Store<std::uint16_t>(out, 2, trailer.wSig);
  Store<std::uint32_t>(out, generations::kUnicode.offBlockCrc, trailer.dwCRC);
  Store(out, generations::kUnicode.offBlockId, trailer.bid);
}

BlockTrailer DecodeBlockTrailer(std::span<const std::byte> in, const Generation& generation) {
  const auto cb = Load<std::uint16_t>(in, 0);
  return {cb, Load<std::uint16_t>(in, 2), Load<std::uint32_t>(in, generation.offBlockCrc),
          Bid{generation.LoadWord(in, generation.offBlockId)},
          generation.offInflatedSize != 0 ? Load<std::uint16_t>(in, generation.offInflatedSize) : cb};
}

std::string_view WhyNotBlock(std::span<const std::byte> block, const Bref& ref, std::size_t cb,
                             const Generation& generation) {
  if (block.size() != BlockSizeOnDisk(cb, generation)) return "the file ends within the block";
  const BlockTrailer trailer = TrailerOf(block, generation);
  if (Canonical(trailer.bid) != Canonical(ref.bid) || trailer.cb != cb ||
      trailer.wSig != ComputeSig(ref.ib, Value(trailer.bid))) {
    return "the trailer is another block's";
  }
  if (trailer.dwCRC != WeakCrc(block.first(cb))) return "the checksum does not fit";
  return {};
}

bool UnpackBlock(std::vector<std::byte>& block, Bid bid, std::size_t cb, CryptMethod method,
                 const Generation& generation) {
  const std::size_t cbInflated = TrailerOf(block, generation).cbInflated;
  block.resize(cb);
  if (IsInternal(bid)) return true;
  DecodeBlock(method, Canonical(bid), block);
  if (cbInflated == cb) return true;
  std::vector<std::byte> content(cbInflated);
  if (!Inflate(block, content)) return false;
  block = std::move(content);
  return true;
}

void Encode(const InternalHead& head, std::span<std::byte> out) {
  Store<std::uint8_t>(out, 0, static_cast<std::uint8_t>(head.btype));
  Store<std::uint8_t>(out, 1, head.cLevel);
  Store<std::uint16_t>(out, 2, head.cEnt);
  Store<std::uint32_t>(out, 4, head.lcbTotal);
}

InternalHead DecodeInternalHead(std::span<const std::byte> in) {
  return {static_cast<BlockType>(Load<std::uint8_t>(in, 0)), Load<std::uint8_t>(in, 1), Load<std::uint16_t>(in, 2),
          Load<std::uint32_t>(in, 4)};
}

}  // namespace velmora
