#include "store/format/substitution.h"

#include <vector>

#ifdef __x86_64__
#include <immintrin.h>
#endif

namespace velmora {
namespace {

void OneByOne(const SubstitutionTable& table, std::span<const std::byte> from, std::span<std::byte> to) {
  for (std::size_t i = 0; i < from.size(); ++i) to[i] = std::byte{table[std::to_integer<std::size_t>(from[i])]};
}

#ifdef __x86_64__

/// The table stands in four registers; two look-ups of 128 rows each, and the highest bit of a byte picks one.
__attribute__((target("avx512f,avx512bw,avx512vbmi"))) void SixtyFourAtATime(const SubstitutionTable& table,
                                                                             std::span<const std::byte> from,
                                                                             std::span<std::byte> to) {
  const __m512i rows0 = _mm512_loadu_si512(table.data());
  const __m512i rows1 = _mm512_loadu_si512(table.data() + 64);
  const __m512i rows2 = _mm512_loadu_si512(table.data() + 128);
  const __m512i rows3 = _mm512_loadu_si512(table.data() + 192);
  const std::byte* in = from.data();
  std::byte* out = to.data();
  for (std::size_t left = from.size(); left > 0;) {
    const std::size_t step = left < 64 ? left : 64;
    const __mmask64 held = ~__mmask64{0} >> (64 - step);
    const __m512i bytes = _mm512_maskz_loadu_epi8(held, in);
    const __m512i low = _mm512_permutex2var_epi8(rows0, bytes, rows1);
    const __m512i high = _mm512_permutex2var_epi8(rows2, bytes, rows3);
    _mm512_mask_storeu_epi8(out, held, _mm512_mask_blend_epi8(_mm512_movepi8_mask(bytes), low, high));
    in += step;
    out += step;
    left -= step;
  }
}

/// Sixteen look-ups of 16 rows each, of which one finds a byte and the others give 0: a byte of other rows has its
/// highest bit set by then.
__attribute__((target("avx2"))) void ThirtyTwoAtATime(const SubstitutionTable& table, std::span<const std::byte> from,
                                                      std::span<std::byte> to) {
  const __m256i aRow = _mm256_set1_epi8(0x10);
  const __m256i beyondRow = _mm256_set1_epi8(0x70);
  const std::byte* in = from.data();
  std::byte* out = to.data();
  const std::size_t whole = from.size() / 32 * 32;
  for (std::size_t at = 0; at < whole; at += 32) {
    __m256i within = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(in + at));
    __m256i found = _mm256_setzero_si256();
#pragma GCC unroll 16
    for (std::size_t row = 0; row < table.size(); row += 16) {
      const auto* rows = reinterpret_cast<const __m128i*>(table.data() + row);
      found = _mm256_or_si256(found, _mm256_shuffle_epi8(_mm256_broadcastsi128_si256(_mm_loadu_si128(rows)),
                                                         _mm256_adds_epu8(within, beyondRow)));
      within = _mm256_sub_epi8(within, aRow);
    }
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(out + at), found);
  }
  OneByOne(table, from.subspan(whole), to.subspan(whole));
}

#endif

}  // namespace

std::span<const Substitution> Substitutions() {
  static const std::vector<Substitution> all = [] {
    std::vector<Substitution> ways = {OneByOne};
#ifdef __x86_64__
    if (__builtin_cpu_supports("avx2")) ways.push_back(ThirtyTwoAtATime);
    if (__builtin_cpu_supports("avx512vbmi") && __builtin_cpu_supports("avx512bw")) ways.push_back(SixtyFourAtATime);
#endif
    return ways;
  }();
  return all;
}

}  // namespace velmora
