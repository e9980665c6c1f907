#include "cli/page/html.h"

#include <fmt/format.h>

#include "cli/plain_words.h"

namespace velmora::cli::page {
namespace {

constexpr std::size_t kLongestText = 200;

}  // namespace

std::string Escaped(std::string_view utf8) {
  std::string text;
  text.reserve(utf8.size());
  for (const char c : utf8) {
    switch (c) {
      case '&':
        text += "&amp;";
        break;
      case '<':
        text += "&lt;";
        break;
      case '>':
        text += "&gt;";
        break;
      case '"':
        text += "&quot;";
        break;
      case '\'':
        text += "&#39;";
        break;
      default:
        text += c;
    }
  }
  return text;
}

std::string StoreText(text::TextView text) { return "<bdi>" + Escaped(OneLine(text, kLongestText)) + "</bdi>"; }

std::string Grouped(std::uint64_t number) {
  std::string digits = std::to_string(number);
  for (std::size_t at = digits.size(); at > 3;) {
    at -= 3;
    digits.insert(at, 1, ',');
  }
  return digits;
}

std::string Counted(std::uint64_t number, std::string_view one, std::string_view many) {
  return fmt::format("{} {}", Grouped(number), number == 1 ? one : many);
}

std::string Fact(std::string_view name, std::string_view value) {
  return fmt::format("<dt>{}</dt><dd>{}</dd>\n", name, value);
}

std::string NumberCell(std::uint64_t number, std::string_view look) {
  return fmt::format("<td class=\"number {}\">{}</td>", number == 0 ? "none" : look, Grouped(number));
}

}  // namespace velmora::cli::page
