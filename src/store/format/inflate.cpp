#include "store/format/inflate.h"

#include <libdeflate.h>

#include "platform/spares.h"

namespace velmora {

namespace {

struct Decompressor {
  Decompressor() = default;
  ~Decompressor() { libdeflate_free_decompressor(stream); }
  Decompressor(const Decompressor&) = delete;
  Decompressor& operator=(const Decompressor&) = delete;

  libdeflate_decompressor* const stream = libdeflate_alloc_decompressor();  ///< null where there is no memory for one
};

}  // namespace

bool Inflate(std::span<const std::byte> packed, std::span<std::byte> out) {
  static platform::Spares<Decompressor> decompressors;  // to make one takes as long as to inflate a small block
  const auto decompressor = decompressors.Take();
  std::size_t size = 0;
  return decompressor->stream != nullptr &&
         libdeflate_zlib_decompress(decompressor->stream, packed.data(), packed.size(), out.data(), out.size(),
                                    &size) == LIBDEFLATE_SUCCESS &&
         size == out.size();
}

}  // namespace velmora
