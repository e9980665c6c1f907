// Texts as they stand in a page: nothing that a store holds becomes a part of the page.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "text/text.h"

namespace velmora::cli::page {

/// UTF-8 for the content of an element or for an attribute in double quotes.
std::string Escaped(std::string_view utf8);

/// A text of a store for the content of an element: on one line, cut where it is long, and set apart, so that letters
/// that run from right to left turn nothing around them.
std::string StoreText(text::TextView text);

/// "1,381".
std::string Grouped(std::uint64_t number);

/// "1 item", "1,381 items".
std::string Counted(std::uint64_t number, std::string_view one, std::string_view many);

/// A row of a list of facts; `value` is markup.
std::string Fact(std::string_view name, std::string_view value);

/// A cell of a table. What is not 0 has the look of `look`, a class in page.css.
std::string NumberCell(std::uint64_t number, std::string_view look);

}  // namespace velmora::cli::page
