// HTML bodies: bytes in a store, text at the operations.
//
// The text of a page that comes from a source carries the page's bytes, one to a character, by the lossless
// code page; whatever their own encoding, they go into the new store unchanged.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "text/code_page.h"
#include "text/text.h"

namespace velmora::messaging {

struct HtmlBody {
  std::string bytes;
  std::int32_t codePage = 0;  ///< the internet code page that tells how to read them
};

/// The bytes of a page and their code page. A text with characters that no byte carries is written as UTF-8.
HtmlBody StoreHtml(text::TextView page, const text::CodePage& fallback);

/// 65001 when the bytes are UTF-8 with a character beyond ASCII, else what the page's charset declaration names, else
/// `fallback`.
std::int32_t HtmlCodePage(std::string_view bytes, const text::CodePage& fallback);

/// The characters of a page.
text::Text HtmlText(std::string_view bytes, std::int32_t codePage);

}  // namespace velmora::messaging
