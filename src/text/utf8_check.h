// Whether bytes are UTF-8, in each way that this processor has: one character after the other, or many bytes at a time.
#pragma once

#include <span>
#include <string_view>

namespace velmora::text {

/// True for well-formed UTF-8 from end to end: no character is longer than it need be, beyond U+10FFFF, or a surrogate.
using Utf8Check = bool (*)(std::string_view bytes);

/// All give the same; the fastest stands last.
std::span<const Utf8Check> Utf8Checks();

}  // namespace velmora::text
