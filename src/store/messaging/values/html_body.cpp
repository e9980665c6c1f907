#include "store/messaging/values/html_body.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace velmora::messaging {
namespace {

constexpr std::int32_t kUtf8 = 65001;
constexpr std::size_t kDeclarationLimit = 4096;  // a charset declared further down is not looked for

struct NumberedPage {
  std::int32_t number;
  const char* name;
};

// Pages of mail whose number is not a part of their name.
constexpr NumberedPage kNumberedPages[] = {
    {20127, "US-ASCII"},    {20866, "KOI8-R"},      {21866, "KOI8-U"},      {28591, "ISO-8859-1"},
    {28592, "ISO-8859-2"},  {28593, "ISO-8859-3"},  {28594, "ISO-8859-4"},  {28595, "ISO-8859-5"},
    {28596, "ISO-8859-6"},  {28597, "ISO-8859-7"},  {28598, "ISO-8859-8"},  {28599, "ISO-8859-9"},
    {28603, "ISO-8859-13"}, {28605, "ISO-8859-15"}, {50220, "ISO-2022-JP"}, {50225, "ISO-2022-KR"},
    {51932, "EUC-JP"},      {51949, "EUC-KR"},      {54936, "GB18030"},
};

std::string Lower(std::string_view text) {
  std::string out(text);
  std::ranges::transform(out, out.begin(), [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; });
  return out;
}

/// The charset that a meta element near the top of the page names, in small letters; empty without one.
std::string DeclaredCharset(std::string_view bytes) {
  const std::string head = Lower(bytes.substr(0, kDeclarationLimit));
  for (std::size_t meta = head.find("<meta"); meta != std::string::npos; meta = head.find("<meta", meta + 1)) {
    const std::string_view element = std::string_view(head).substr(meta, head.find('>', meta) - meta);
    std::size_t at = element.find("charset");
    if (at == std::string_view::npos) continue;
    at = element.find_first_not_of(" \t\r\n", at + 7);
    if (at == std::string_view::npos || element[at] != '=') continue;
    at = element.find_first_not_of(" \t\r\n\"'", at + 1);
    if (at == std::string_view::npos) continue;
    return std::string(element.substr(at, element.find_first_of(" \t\r\n\"';/>", at) - at));
  }
  return {};
}

std::optional<std::int32_t> NumberOfCharset(const std::string& charset) {
  // A page that could be read far enough to find such a declaration is not in UTF-16.
  if (charset.starts_with("utf-16") || charset == "utf-8" || charset == "utf8") return kUtf8;
  for (const NumberedPage& page : kNumberedPages) {
    if (charset == Lower(page.name)) return page.number;
  }
  const auto page = text::CodePage::Find(charset);
  if (!page) return std::nullopt;
  return page->WindowsNumber();
}

std::optional<text::CodePage> PageOfNumber(std::int32_t number) {
  for (const NumberedPage& page : kNumberedPages) {
    if (number == page.number) return text::CodePage::Find(page.name);
  }
  return text::CodePage::Find(std::to_string(number));
}

}  // namespace

HtmlBody StoreHtml(text::TextView page, const text::CodePage& fallback) {
  std::string bytes = text::CodePage::Lossless().Encode(page);
  if (text::CodePage::Lossless().Decode(bytes) != page) return {text::ToUtf8(page), kUtf8};
  const std::int32_t codePage = HtmlCodePage(bytes, fallback);
  return {std::move(bytes), codePage};
}

std::int32_t HtmlCodePage(std::string_view bytes, const text::CodePage& fallback) {
  if (!text::IsAscii(bytes) && text::IsUtf8(bytes)) return kUtf8;
  return NumberOfCharset(DeclaredCharset(bytes)).value_or(fallback.WindowsNumber());
}

text::Text HtmlText(std::string_view bytes, std::int32_t codePage) {
  if (codePage == kUtf8) return text::FromUtf8(bytes);
  const auto page = PageOfNumber(codePage);
  return page ? page->Decode(bytes) : text::CodePage::Lossless().Decode(bytes);
}

}  // namespace velmora::messaging
