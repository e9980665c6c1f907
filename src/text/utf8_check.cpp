#include "text/utf8_check.h"

#include <unicode/utf8.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "text/runs.h"

#ifdef __x86_64__
#include <immintrin.h>
#endif

namespace velmora::text {
namespace {

bool CharacterByCharacter(std::string_view bytes) {
  const auto* data = reinterpret_cast<const unsigned char*>(bytes.data());
  const auto size = static_cast<std::int64_t>(bytes.size());
  for (std::int64_t at = 0; at < size;) {
    at += static_cast<std::int64_t>(AsciiRun(data + at, static_cast<std::size_t>(size - at)));
    while (at < size && data[at] >= 0x80) {
      UChar32 c = 0;
      U8_NEXT(data, at, size, c);
      if (c < 0) return false;
    }
  }
  return true;
}

#ifdef __x86_64__

/// A byte that may not stand behind another: both are told by their ranges. What is wrong with three or four bytes
/// shows in two of them, but for a continuation behind a continuation, which is right as the third or fourth byte
/// alone.
struct WrongPair {
  std::uint8_t mark;
  std::uint8_t firstLow, firstHigh;
  std::uint8_t secondLow, secondHigh;
};

constexpr std::uint8_t kContinuationTwice = 0x80;

// clang-format off
constexpr WrongPair kWrongPairs[] = {
    {0x01, 0x00, 0x7F, 0x80, 0xBF},  // a continuation of nothing
    {0x02, 0xC0, 0xFF, 0x00, 0x7F},  // nothing continues a first byte
    {0x02, 0xC0, 0xFF, 0xC0, 0xFF},
    {0x04, 0xC0, 0xC1, 0x80, 0xBF},  // two bytes for what takes one
    {0x08, 0xE0, 0xE0, 0x80, 0x9F},  // three for two
    {0x10, 0xED, 0xED, 0xA0, 0xBF},  // a surrogate
    {0x20, 0xF0, 0xF0, 0x80, 0x8F},  // four for three
    {0x20, 0xF5, 0xFF, 0x80, 0x8F},  // beyond U+10FFFF
    {0x40, 0xF4, 0xFF, 0x90, 0xBF},
    {kContinuationTwice, 0x80, 0xBF, 0x80, 0xBF},
};
// clang-format on

/// The marks of a pair by the halves of its bytes: those that all three of its entries have.
struct PairTable {
  std::array<std::uint8_t, 16> byHighOfFirst{};
  std::array<std::uint8_t, 16> byLowOfFirst{};
  std::array<std::uint8_t, 16> byHighOfSecond{};
};

/// The ranges end with halves of a byte, so those of one mark are all combinations of their halves.
constexpr PairTable kPairs = [] {
  PairTable table;
  for (const WrongPair& pair : kWrongPairs) {
    for (unsigned first = pair.firstLow; first <= pair.firstHigh; ++first) {
      table.byHighOfFirst[first >> 4] |= pair.mark;
      table.byLowOfFirst[first & 0xF] |= pair.mark;
    }
    for (unsigned second = pair.secondLow; second <= pair.secondHigh; ++second) {
      table.byHighOfSecond[second >> 4] |= pair.mark;
    }
  }
  return table;
}();

constexpr std::size_t kStep = 32;
constexpr std::size_t kBack = 3;  ///< bytes ahead of one that tell what it may be

__attribute__((target("avx2"))) inline __m256i At(const char* bytes) {
  return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(bytes));
}

__attribute__((target("avx2"))) inline __m256i OfEach(std::uint8_t byte) {
  return _mm256_set1_epi8(static_cast<char>(byte));
}

__attribute__((target("avx2"))) inline __m256i HighHalves(__m256i bytes) {
  return _mm256_and_si256(_mm256_srli_epi16(bytes, 4), OfEach(0xF));
}

__attribute__((target("avx2"))) inline __m256i LookUp(const std::array<std::uint8_t, 16>& rows, __m256i halves) {
  const __m128i table = _mm_loadu_si128(reinterpret_cast<const __m128i*>(rows.data()));
  return _mm256_shuffle_epi8(_mm256_broadcastsi128_si256(table), halves);
}

/// May these 32 bytes stand behind the three ahead of them?
__attribute__((target("avx2"))) inline bool AreRight(const char* bytes) {
  const __m256i these = At(bytes);
  if (_mm256_movemask_epi8(_mm256_or_si256(these, At(bytes - kBack))) == 0) return true;  // ASCII
  const __m256i before = At(bytes - 1);
  const __m256i marksOfFirst = _mm256_and_si256(LookUp(kPairs.byHighOfFirst, HighHalves(before)),
                                                LookUp(kPairs.byLowOfFirst, _mm256_and_si256(before, OfEach(0xF))));
  const __m256i marks = _mm256_and_si256(marksOfFirst, LookUp(kPairs.byHighOfSecond, HighHalves(these)));
  // The third byte behind a first one of three or four, and the fourth behind one of four, are continuations behind
  // others, and no more are: 0xE0 less 0x60 and 0xF0 less 0x70 are the mark of these.
  const __m256i isThird = _mm256_subs_epu8(At(bytes - 2), OfEach(0xE0 - kContinuationTwice));
  const __m256i isFourth = _mm256_subs_epu8(At(bytes - 3), OfEach(0xF0 - kContinuationTwice));
  const __m256i expected = _mm256_and_si256(_mm256_or_si256(isThird, isFourth), OfEach(kContinuationTwice));
  const __m256i wrong = _mm256_xor_si256(marks, expected);
  return _mm256_testz_si256(wrong, wrong) != 0;
}

/// The same for what stands from `begin` on, 32 bytes at most, with zeros where the text has nothing: a character that
/// is cut off has no continuation there.
__attribute__((target("avx2"))) bool IsEndRight(std::string_view text, std::size_t begin) {
  std::array<char, kBack + kStep> end{};
  const std::size_t ahead = std::min(begin, kBack);
  const std::string_view these = text.substr(begin - ahead, ahead + kStep);
  std::ranges::copy(these, end.begin() + static_cast<std::ptrdiff_t>(kBack - ahead));
  return AreRight(end.data() + kBack);
}

__attribute__((target("avx2"))) bool ThirtyTwoAtATime(std::string_view bytes) {
  if (!IsEndRight(bytes, 0)) return false;
  if (bytes.size() < kStep) return true;
  std::size_t at = kStep;
  for (; bytes.size() - at >= kStep; at += kStep) {
    if (!AreRight(bytes.data() + at)) return false;
  }
  return IsEndRight(bytes, at);
}

#endif

}  // namespace

std::span<const Utf8Check> Utf8Checks() {
  static const std::vector<Utf8Check> all = [] {
    std::vector<Utf8Check> ways = {CharacterByCharacter};
#ifdef __x86_64__
    if (__builtin_cpu_supports("avx2")) ways.push_back(ThirtyTwoAtATime);
#endif
    return ways;
  }();
  return all;
}

}  // namespace velmora::text
