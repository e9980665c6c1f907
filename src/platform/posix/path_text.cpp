#include "platform/path_text.h"

#include "platform/utf8.h"

namespace velmora::platform {
namespace {

/// A byte that is no UTF-8 travels as this lone surrogate plus the byte.
constexpr char32_t kByteEscape = 0xDC00;
constexpr char32_t kReplacement = 0xFFFD;

bool IsEscape(char32_t c) { return c >= kByteEscape + 0x80 && c <= kByteEscape + 0xFF; }

}  // namespace

std::u16string TextOfPath(const std::filesystem::path& path) {
  std::u16string text;
  for (std::string_view rest = path.native(); !rest.empty();) {
    const Utf8Sequence first = FirstSequence(rest);
    const bool isText = first.length != 0 && !IsSurrogate(first.c);
    AppendUnits(text, isText ? first.c : kByteEscape + static_cast<unsigned char>(rest[0]));
    rest.remove_prefix(isText ? first.length : 1);
  }
  return text;
}

std::filesystem::path PathOf(std::u16string_view text) {
  std::string bytes;
  for (std::size_t at = 0; at < text.size();) {
    const char32_t c = NextCharacter(text, at);
    if (IsEscape(c)) {
      bytes += static_cast<char>(c - kByteEscape);
    } else {
      AppendUtf8(bytes, IsSurrogate(c) ? kReplacement : c);
    }
  }
  return bytes;
}

std::string BytesOfPath(const std::filesystem::path& path) { return path.native(); }

std::filesystem::path PathOf(std::string_view bytes) { return bytes; }

}  // namespace velmora::platform
