#include "store/messaging/text_list.h"

#include "store/messaging/stored_text.h"

namespace velmora::messaging {

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
