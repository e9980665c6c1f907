#include "store/messaging/values/subject.h"

#include <algorithm>

#include "store/messaging/values/stored_text.h"

namespace velmora::messaging {
namespace {

constexpr char16_t kMark = 0x0001;
constexpr std::size_t kLongestPrefixWord = 3;

bool IsPrefixLetter(char16_t unit) {
  const bool digit = unit >= u'0' && unit <= u'9';
  const bool surrogate = unit >= 0xD800 && unit <= 0xDFFF;
  return unit > u' ' && unit != u':' && !digit && !surrogate;
}

/// Length of a prefix such as "Re: " or "AW: ", its blanks included; 0 without one.
std::size_t PrefixLength(text::TextView subject) {
  const std::size_t colon = subject.find(u':');
  if (colon == 0 || colon > kLongestPrefixWord) return 0;
  if (!std::all_of(subject.begin(), subject.begin() + static_cast<std::ptrdiff_t>(colon), IsPrefixLetter)) return 0;
  std::size_t end = colon + 1;
  while (end < subject.size() && subject[end] == u' ') ++end;
  return end > colon + 1 ? end : 0;
}

}  // namespace

text::TextView SubjectText(text::TextView stored) {
  if (stored.empty() || stored[0] != kMark) return stored;
  return stored.substr(std::min<std::size_t>(stored.size(), 2));
}

StoredSubject StoreSubject(text::TextView subject) {
  const text::Text clean = NameOf(SubjectText(subject));
  if (clean.empty()) return {};

  std::size_t prefix = PrefixLength(clean);
  if (subject[0] == kMark && subject[1] > 0) {
    // A prefix of characters beyond the basic plane counts differently from reader to reader.
    const std::size_t told = subject[1] - 1u;
    const auto end = clean.begin() + static_cast<std::ptrdiff_t>(std::min(told, clean.size()));
    const bool plain = std::none_of(clean.begin(), end, [](char16_t unit) { return unit >= 0xD800 && unit <= 0xDFFF; });
    if (told <= clean.size() && plain) prefix = told;
  }
  StoredSubject out;
  out.stored = {kMark, static_cast<char16_t>(prefix + 1)};
  out.stored += clean;
  out.normalized = clean.substr(prefix);
  return out;
}

}  // namespace velmora::messaging
