#include "engine/evidence/inflate_part.h"

#include <zlib.h>

#include <memory>

namespace velmora::engine {

std::vector<std::byte> InflatePart(std::span<const std::byte> packed, std::size_t most) {
  std::vector<std::byte> out(most);
  z_stream stream{};
  if (inflateInit(&stream) != Z_OK) return {};
  const std::unique_ptr<z_stream, decltype(&inflateEnd)> end(&stream, inflateEnd);
  stream.next_in = reinterpret_cast<Bytef*>(const_cast<std::byte*>(packed.data()));
  stream.avail_in = static_cast<uInt>(packed.size());
  stream.next_out = reinterpret_cast<Bytef*>(out.data());
  stream.avail_out = static_cast<uInt>(out.size());
  inflate(&stream, Z_SYNC_FLUSH);  // a stream that breaks has delivered what was ahead of it
  out.resize(most - stream.avail_out);
  return out;
}

}  // namespace velmora::engine
