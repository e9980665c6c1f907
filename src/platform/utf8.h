// Characters as UTF-8 and as 16-bit units, for names of the system: the text layer lies above this one.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace velmora::platform {

struct Utf8Sequence {
  char32_t c = 0;
  std::size_t length = 0;  ///< 0: none that is valid
};

/// The sequence that bytes, of which there must be one, begin with. The shortest form of a character is the only one. A
/// surrogate counts as a character here.
Utf8Sequence FirstSequence(std::string_view bytes);

/// Appends a character, or a surrogate, as UTF-8.
void AppendUtf8(std::string& bytes, char32_t c);

/// The character at `at` of 16-bit units, with `at` moved behind it; a surrogate without its other half by itself.
template <class Unit>
char32_t NextCharacter(std::basic_string_view<Unit> units, std::size_t& at) {
  const char32_t unit = static_cast<char16_t>(units[at++]);
  if (unit < 0xD800 || unit > 0xDBFF || at == units.size()) return unit;
  const char32_t next = static_cast<char16_t>(units[at]);
  if (next < 0xDC00 || next > 0xDFFF) return unit;
  ++at;
  return 0x10000 + ((unit - 0xD800) << 10) + (next - 0xDC00);
}

/// Appends a character as one unit or two.
template <class Unit>
void AppendUnits(std::basic_string<Unit>& units, char32_t c) {
  if (c >= 0x10000) {
    units += static_cast<Unit>(0xD7C0 + (c >> 10));
    c = 0xDC00 + (c & 0x3FF);
  }
  units += static_cast<Unit>(c);
}

inline bool IsSurrogate(char32_t c) { return c >= 0xD800 && c <= 0xDFFF; }

}  // namespace velmora::platform
