#include "platform/utf8.h"

namespace velmora::platform {

Utf8Sequence FirstSequence(std::string_view bytes) {
  const auto byteAt = [&](std::size_t at) { return static_cast<unsigned char>(bytes[at]); };
  const unsigned char lead = byteAt(0);
  if (lead < 0x80) return {lead, 1};
  const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
  if (lead < 0xC0 || lead > 0xF7 || bytes.size() < length) return {};
  char32_t c = lead & (0x7Fu >> length);
  for (std::size_t at = 1; at < length; ++at) {
    if ((byteAt(at) & 0xC0) != 0x80) return {};
    c = c << 6 | (byteAt(at) & 0x3Fu);
  }
  constexpr char32_t kLeast[] = {0, 0, 0x80, 0x800, 0x10000};
  return c < kLeast[length] || c > 0x10FFFF ? Utf8Sequence{} : Utf8Sequence{c, length};
}

void AppendUtf8(std::string& bytes, char32_t c) {
  constexpr unsigned char kLeads[] = {0, 0, 0xC0, 0xE0, 0xF0};
  const std::size_t length = c < 0x80 ? 1 : c < 0x800 ? 2 : c < 0x10000 ? 3 : 4;
  bytes += static_cast<char>(kLeads[length] | c >> (6 * (length - 1)));
  for (std::size_t left = length - 1; left-- > 0;) bytes += static_cast<char>(0x80 | (c >> (6 * left) & 0x3F));
}

}  // namespace velmora::platform
