// Text inside the program is UTF-16 throughout, as mail stores hold it: a text of a damaged store may
// hold lone surrogates, and they travel unchanged.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace velmora::text {

using Text = std::u16string;
using TextView = std::u16string_view;

/// UTF-8 of a text; a lone surrogate becomes U+FFFD.
std::string ToUtf8(TextView text);

/// Text of UTF-8 bytes; a malformed sequence becomes U+FFFD.
Text FromUtf8(std::string_view bytes);

/// Are the bytes UTF-8 from end to end? ASCII alone?
bool IsUtf8(std::string_view bytes);
bool IsAscii(std::string_view bytes);
bool IsAscii(TextView text);

/// The number in decimal digits.
Text Decimal(std::int64_t number);

/// Equality without regard to case (simple case folding of the Unicode standard, no locale).
bool EqualIgnoringCase(TextView a, TextView b);

/// The text in capitals (simple case mapping of the Unicode standard, no locale): as many code points as before.
Text UpperCased(TextView text);

/// The form of a text under which texts equal without regard to case are identical; a key for maps.
Text CaseFolded(TextView text);

}  // namespace velmora::text
