#include "text/plausibility.h"

#include <algorithm>

#include <unicode/utf16.h>

namespace velmora::text {
namespace {

bool IsWellFormed(TextView text) {
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char16_t unit = text[i];
    if (unit == 0xFFFE || unit == 0xFFFF) return false;
    if (unit < 0x20 && unit != u'\t' && unit != u'\r' && unit != u'\n') return false;
    if (U16_IS_LEAD(unit)) {
      if (i + 1 == text.size() || !U16_IS_TRAIL(text[i + 1])) return false;
      ++i;
    } else if (U16_IS_TRAIL(unit)) {
      return false;
    }
  }
  return true;
}

}  // namespace

bool LooksLikeText(TextView text) {
  if (text.empty()) return false;
  if (IsWellFormed(text)) return true;
  Text swapped(text);
  std::ranges::transform(swapped, swapped.begin(),
                         [](char16_t unit) { return static_cast<char16_t>((unit << 8) | (unit >> 8)); });
  return IsWellFormed(swapped);
}

}  // namespace velmora::text
