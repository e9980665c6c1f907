#include "text/text.h"

#include <unicode/uchar.h>
#include <unicode/utf16.h>
#include <unicode/utf8.h>

#include <algorithm>

#include "text/runs.h"
#include "text/utf8_check.h"

namespace velmora::text {
namespace {

constexpr char32_t kReplacement = 0xFFFD;

char* PutUtf8(char* out, char32_t c) {
  std::int32_t length = 0;
  U8_APPEND_UNSAFE(out, length, static_cast<UChar32>(c));
  return out + length;
}

char16_t* PutUtf16(char16_t* out, char32_t c) {
  std::int32_t length = 0;
  U16_APPEND_UNSAFE(out, length, static_cast<UChar32>(c));
  return out + length;
}

/// The text with each code point replaced by what `map` gives for it.
template <class Map>
Text Mapped(TextView text, Map map) {
  Text out(2 * text.size(), u'\0');
  char16_t* end = out.data();
  for (std::size_t i = 0; i < text.size();) {
    UChar32 c = 0;
    U16_NEXT(text.data(), i, text.size(), c);
    end = PutUtf16(end, static_cast<char32_t>(map(c)));
  }
  out.resize(static_cast<std::size_t>(end - out.data()));
  return out;
}

constexpr UChar32 AsciiFolded(UChar32 c) { return c >= 'A' && c <= 'Z' ? c + ('a' - 'A') : c; }

constexpr UChar32 AsciiCapital(UChar32 c) { return c >= 'a' && c <= 'z' ? c - ('a' - 'A') : c; }

}  // namespace

std::string ToUtf8(TextView text) {
  std::size_t most = 0;
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t run = PlainRun(text.data() + at, text.size() - at, kBeyondAscii);
    most += run;
    for (at += run; at < text.size() && text[at] >= 0x80; ++at) most += 3;  // of a pair, each half
  }
  std::string out(most, '\0');
  char* end = out.data();
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t run = PlainRun(text.data() + at, text.size() - at, kBeyondAscii);
    CopyUnits(text.data() + at, run, end);
    end += run;
    at += run;
    while (at < text.size() && text[at] >= 0x80) {
      UChar32 c = 0;
      U16_NEXT(text.data(), at, text.size(), c);
      end = PutUtf8(end, U_IS_SURROGATE(c) ? kReplacement : static_cast<char32_t>(c));
    }
  }
  out.resize(static_cast<std::size_t>(end - out.data()));
  return out;
}

Text Decimal(std::int64_t number) { return FromUtf8(std::to_string(number)); }

Text FromUtf8(std::string_view bytes) {
  const auto* data = reinterpret_cast<const unsigned char*>(bytes.data());
  const auto size = static_cast<std::int64_t>(bytes.size());
  Text out(bytes.size(), u'\0');
  char16_t* end = out.data();
  bool broken = false;
  for (std::int64_t at = 0; at < size;) {
    const std::size_t run = AsciiRun(data + at, static_cast<std::size_t>(size - at));
    CopyUnits(data + at, run, end);
    end += run;
    at += static_cast<std::int64_t>(run);
    if (run != 0) broken = false;
    while (at < size && data[at] >= 0x80) {
      UChar32 c = 0;
      std::int64_t next = at;
      U8_NEXT(data, next, size, c);
      if (c >= 0) end = PutUtf16(end, static_cast<char32_t>(c));
      if (c < 0 && !broken) *end++ = static_cast<char16_t>(kReplacement);  // one for each malformed run
      broken = c < 0;
      at = next;
    }
  }
  out.resize(static_cast<std::size_t>(end - out.data()));
  return out;
}

bool IsUtf8(std::string_view bytes) { return Utf8Checks().back()(bytes); }

bool IsAscii(std::string_view bytes) {
  const auto* data = reinterpret_cast<const unsigned char*>(bytes.data());
  return AsciiRun(data, bytes.size()) == bytes.size();
}

bool IsAscii(TextView text) { return PlainRun(text.data(), text.size(), kBeyondAscii) == text.size(); }

Text CaseFolded(TextView text) {
  return Mapped(text, [](UChar32 c) { return c < 0x80 ? AsciiFolded(c) : u_foldCase(c, U_FOLD_CASE_DEFAULT); });
}

Text UpperCased(TextView text) {
  return Mapped(text, [](UChar32 c) { return c < 0x80 ? AsciiCapital(c) : u_toupper(c); });
}

bool EqualIgnoringCase(TextView a, TextView b) {
  const std::size_t both = std::min(a.size(), b.size());
  for (std::size_t i = 0; i < both; ++i) {
    if (a[i] >= 0x80 || b[i] >= 0x80) return CaseFolded(a.substr(i)) == CaseFolded(b.substr(i));
    if (AsciiFolded(a[i]) != AsciiFolded(b[i])) return false;
  }
  return a.size() == b.size();
}

}  // namespace velmora::text
