#include "store/format/block.h"

namespace velmora {

void Encode(const BlockTrailer& trailer, std::span<std::byte> out) {
  Store<std::uint16_t>(out, 0, trailer.cb);
  Store<std::uint16_t>(out, 2, trailer.wSig);
  Store<std::uint32_t>(out, 4, trailer.dwCRC);
  Store(out, 8, trailer.bid);
}

BlockTrailer DecodeBlockTrailer(std::span<const std::byte> in) {
  return {Load<std::uint16_t>(in, 0), Load<std::uint16_t>(in, 2), Load<std::uint32_t>(in, 4), LoadBid(in, 8)};
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
