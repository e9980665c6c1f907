#include "text/text.h"

#include <unicode/uchar.h>
#include <unicode/utf16.h>
#include <unicode/utf8.h>

namespace velmora::text {
namespace {

constexpr char32_t kReplacement = 0xFFFD;

/// A byte of a file name that is no UTF-8 travels as this lone surrogate plus the byte.
constexpr char16_t kByteEscape = 0xDC00;

void AppendUtf8(std::string& out, char32_t c) {
  if (c < 0x80) return out.push_back(static_cast<char>(c));
  char buffer[4];
  int32_t length = 0;
  U8_APPEND_UNSAFE(buffer, length, static_cast<UChar32>(c));
  out.append(buffer, static_cast<std::size_t>(length));
}

void AppendUtf16(Text& out, char32_t c) {
  if (c > 0xFFFF) {
    out.push_back(U16_LEAD(c));
    out.push_back(U16_TRAIL(c));
  } else {
    out.push_back(static_cast<char16_t>(c));
  }
}

/// The text with each code point replaced by what `map` gives for it.
template <class Map>
Text Mapped(TextView text, Map map) {
  Text out;
  out.reserve(text.size());
  for (std::size_t i = 0; i < text.size();) {
    UChar32 c = 0;
    U16_NEXT(text.data(), i, text.size(), c);
    AppendUtf16(out, static_cast<char32_t>(map(c)));
  }
  return out;
}

/// Calls `valid` for each code point and `invalid` for each byte that is not part of a valid sequence.
template <class Valid, class Invalid>
void ForEachUtf8(std::string_view bytes, Valid valid, Invalid invalid) {
  const auto* data = reinterpret_cast<const std::uint8_t*>(bytes.data());
  const auto length = static_cast<std::int64_t>(bytes.size());
  for (std::int64_t i = 0; i < length;) {
    UChar32 c = 0;
    std::int64_t next = i;
    U8_NEXT(data, next, length, c);
    if (c >= 0) {
      valid(static_cast<char32_t>(c));
    } else {
      for (; i < next; ++i) invalid(data[i]);
    }
    i = next;
  }
}

}  // namespace

std::string ToUtf8(TextView text) {
  std::string out;
  out.reserve(text.size());
  for (std::size_t i = 0; i < text.size();) {
    UChar32 c = 0;
    U16_NEXT(text.data(), i, text.size(), c);
    AppendUtf8(out, U_IS_SURROGATE(c) ? kReplacement : static_cast<char32_t>(c));
  }
  return out;
}

Text Decimal(std::int64_t number) { return FromUtf8(std::to_string(number)); }

Text FromUtf8(std::string_view bytes) {
  Text out;
  out.reserve(bytes.size());
  bool broken = false;  // one replacement for each malformed run
  ForEachUtf8(
      bytes,
      [&](char32_t c) {
        AppendUtf16(out, c);
        broken = false;
      },
      [&](std::uint8_t) {
        if (!broken) out.push_back(static_cast<char16_t>(kReplacement));
        broken = true;
      });
  return out;
}

Text FromFileName(std::string_view bytes) {
  Text out;
  out.reserve(bytes.size());
  ForEachUtf8(
      bytes, [&](char32_t c) { AppendUtf16(out, c); },
      [&](std::uint8_t byte) { out.push_back(static_cast<char16_t>(kByteEscape + byte)); });
  return out;
}

std::string ToFileName(TextView text) {
  std::string out;
  out.reserve(text.size());
  for (std::size_t i = 0; i < text.size();) {
    UChar32 c = 0;
    U16_NEXT(text.data(), i, text.size(), c);
    if (c >= kByteEscape + 0x80 && c <= kByteEscape + 0xFF) {
      out.push_back(static_cast<char>(c - kByteEscape));
    } else {
      AppendUtf8(out, U_IS_SURROGATE(c) ? kReplacement : static_cast<char32_t>(c));
    }
  }
  return out;
}

Text CaseFolded(TextView text) {
  return Mapped(text, [](UChar32 c) { return u_foldCase(c, U_FOLD_CASE_DEFAULT); });
}

Text UpperCased(TextView text) {
  return Mapped(text, [](UChar32 c) { return u_toupper(c); });
}

bool EqualIgnoringCase(TextView a, TextView b) { return CaseFolded(a) == CaseFolded(b); }

}  // namespace velmora::text
