#include "forge/rtf.h"

#include <algorithm>

#include "forge/checksum.h"

namespace velmora::forge {
namespace {

constexpr std::uint32_t kCompressedMark = 0x75465A4C;
constexpr std::uint32_t kStoredMark = 0x414C454D;
constexpr std::size_t kPreloaded = 207;  // bytes that the dictionary holds before the first one of a text
constexpr std::size_t kDictionary = 4096;

// Groups of a flag byte and up to eight items; bit 1 marks a reference, and one to the place that would be
// written next ends the text.
Bytes FormLiterals(std::string_view text) {
  Bytes out;
  for (std::size_t at = 0;; at += 8) {
    const std::string_view part = text.substr(at, 8);
    const bool last = part.size() < 8;
    Append(out, last ? 1U << part.size() : 0U, 1);
    Append(out, ToBytes(part));
    if (!last) continue;
    const std::size_t reference = ((kPreloaded + text.size()) % kDictionary) << 4;
    Append(out, reference >> 8, 1);
    Append(out, reference & 0xFF, 1);
    return out;
  }
}

}  // namespace

Bytes FormRtf(std::string_view rtf, RtfForm form) {
  const bool compressed = form == RtfForm::kCompressed;
  const Bytes content = compressed ? FormLiterals(rtf) : ToBytes(rtf);
  Bytes out;
  Append(out, content.size() + 12, 4);
  Append(out, rtf.size(), 4);
  Append(out, compressed ? kCompressedMark : kStoredMark, 4);
  Append(out, compressed ? Checksum(content) : 0, 4);
  Append(out, content);
  return out;
}

}  // namespace velmora::forge
