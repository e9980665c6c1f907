#include "engine/block_trailer.h"

#include "engine/zero_runs.h"
#include "store/format/signature.h"

namespace velmora::engine {

bool HasBlockTrailer(const Generation& layout, std::uint64_t offset, ByteView tail) {
  const auto first = FirstNonZero(tail.Bytes(), 0);
  if (!first) return false;
  const std::uint64_t slot = (*first + 1) / 16 * 16;
  const std::uint16_t signature = tail.U16(slot + (layout.wideFormat ? 2 : 6));
  return signature != 0 && signature == ComputeSig(offset, tail.U32(slot + 8));
}

}  // namespace velmora::engine
