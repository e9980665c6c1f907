#include "store/messaging/values/stored_text.h"

#include <algorithm>

#include "text/runs.h"

namespace velmora::messaging {
namespace {

constexpr char16_t kReplacement = 0xFFFD;

bool IsLead(char16_t unit) { return unit >= 0xD800 && unit <= 0xDBFF; }
bool IsTrail(char16_t unit) { return unit >= 0xDC00 && unit <= 0xDFFF; }

/// Surrogates, in pairs or not, and NULs.
constexpr auto kNotPlain = [](char16_t unit) {
  return static_cast<char16_t>(static_cast<int>((unit & 0xF800) == 0xD800) | static_cast<int>(unit == 0));
};

/// The first place from `at` on that no store may hold; the size where there is none.
std::size_t NextUnstorable(text::TextView text, std::size_t at) {
  for (;;) {
    at += text::PlainRun(text.data() + at, text.size() - at, kNotPlain);
    const bool isPair = at + 1 < text.size() && IsLead(text[at]) && IsTrail(text[at + 1]);
    if (!isPair) return at;
    at += 2;
  }
}

}  // namespace

text::TextView WithoutNulsAtEnd(text::TextView text) {
  while (!text.empty() && text.back() == 0) text.remove_suffix(1);
  return text;
}

bool IsStorable(text::TextView text) { return NextUnstorable(text, 0) == text.size(); }

text::Text Storable(text::TextView text) {
  text::Text out(WithoutNulsAtEnd(text));
  for (std::size_t at = NextUnstorable(out, 0); at < out.size(); at = NextUnstorable(out, at + 1)) {
    out[at] = kReplacement;
  }
  return out;
}

text::TextView CutToUnits(text::TextView text, std::size_t units) {
  if (text.size() <= units) return text;
  if (units > 0 && IsLead(text[units - 1]) && IsTrail(text[units])) --units;
  return text.substr(0, units);
}

text::Text NameOf(text::TextView text) {
  text::Text name = Storable(text);
  std::replace_if(
      name.begin(), name.end(), [](char16_t unit) { return unit < u' '; }, u' ');
  name.resize(CutToUnits(name, kNameLimit).size());
  return name;
}

text::TextView CutToCharacters(text::TextView text, std::size_t characters) {
  if (text.size() <= characters) return text;
  std::size_t end = 0;
  for (; characters > 0 && end < text.size(); --characters) {
    end += IsLead(text[end]) && end + 1 < text.size() && IsTrail(text[end + 1]) ? 2 : 1;
  }
  return text.substr(0, end);
}

text::TextView Trimmed(text::TextView text) {
  constexpr text::TextView kBlanks = u" \t\r\n";
  const std::size_t start = text.find_first_not_of(kBlanks);
  if (start == text::TextView::npos) return {};
  return text.substr(start, text.find_last_not_of(kBlanks) - start + 1);
}

text::Text AsciiUpper(text::TextView text) {
  text::Text out(text);
  std::transform(out.begin(), out.end(), out.begin(),
                 [](char16_t unit) { return unit >= u'a' && unit <= u'z' ? static_cast<char16_t>(unit - 32) : unit; });
  return out;
}

std::vector<text::Text> SplitList(text::TextView list, text::TextView separators) {
  std::vector<text::Text> parts;
  while (!list.empty()) {
    const std::size_t end = list.find_first_of(separators);
    const text::TextView part = Trimmed(list.substr(0, end));
    if (!part.empty()) parts.emplace_back(part);
    if (end == text::TextView::npos) break;
    list.remove_prefix(end + 1);
  }
  return parts;
}

text::Text JoinList(const std::vector<text::Text>& parts) {
  text::Text out;
  for (const text::Text& part : parts) {
    if (!out.empty()) out += u"; ";
    out += part;
  }
  return out;
}

}  // namespace velmora::messaging
