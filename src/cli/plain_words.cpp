#include "cli/plain_words.h"

#include <fmt/format.h>

#include <iterator>

namespace velmora::cli {
namespace {

/// Controls, the marks that begin, end and turn the direction of what follows them, and what is no character.
bool IsUnfitForALine(char16_t c) {
  return c < 0x20 || (c >= 0x7F && c <= 0x9F) || (c >= 0x2028 && c <= 0x202E) || (c >= 0x2066 && c <= 0x2069) ||
         c == 0x061C || c == 0x200E || c == 0x200F || c == 0xFEFF || c >= 0xFFFE;
}

}  // namespace

std::string SizeText(std::uint64_t bytes) {
  constexpr const char* kUnits[] = {"KB", "MB", "GB", "TB", "PB", "EB"};
  if (bytes < 1000) return fmt::format("{} {}", bytes, bytes == 1 ? "byte" : "bytes");
  double size = static_cast<double>(bytes) / 1000;
  std::size_t unit = 0;
  while (size >= 999.95 && unit + 1 < std::size(kUnits)) {
    size /= 1000;
    ++unit;
  }
  return fmt::format("{:.1f} {}", size, kUnits[unit]);
}

std::string DateText(text::FileTime time) {
  const text::DateParts parts = text::PartsOf(text::DateOf(time));
  return fmt::format("{:04}-{:02}-{:02} {:02}:{:02}", parts.year, parts.month, parts.day, parts.hour, parts.minute);
}

std::string OneLine(text::TextView text, std::size_t longest) {
  const bool isCut = text.size() > longest;
  // Not between the halves of a character.
  if (isCut && (text[longest - 1] & 0xFC00) == 0xD800 && (text[longest] & 0xFC00) == 0xDC00) --longest;
  text::Text line(text.substr(0, longest));
  for (char16_t& c : line) {
    if (IsUnfitForALine(c)) c = u' ';
  }
  if (isCut) line += u"...";
  return text::ToUtf8(line);
}

}  // namespace velmora::cli
