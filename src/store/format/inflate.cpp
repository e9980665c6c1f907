#include "store/format/inflate.h"

#include <libdeflate.h>

#include <memory>

namespace velmora {

bool Inflate(std::span<const std::byte> packed, std::span<std::byte> out) {
  // One for each thread: to make it takes as long as to inflate a small block.
  thread_local const std::unique_ptr<libdeflate_decompressor, decltype(&libdeflate_free_decompressor)> stream(
      libdeflate_alloc_decompressor(), libdeflate_free_decompressor);
  std::size_t size = 0;
  return stream != nullptr &&
         libdeflate_zlib_decompress(stream.get(), packed.data(), packed.size(), out.data(), out.size(), &size) ==
             LIBDEFLATE_SUCCESS &&
         size == out.size();
}

}  // namespace velmora
