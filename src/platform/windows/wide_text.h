// Texts for the system, which takes 16-bit units.
#pragma once

#include <string>
#include <string_view>

namespace velmora::platform {

/// Units of UTF-8, in which a lone surrogate may be encoded like any other unit; a byte that is not part of a valid
/// sequence becomes U+FFFD.
std::wstring WideOf(std::string_view bytes);

/// The reverse of WideOf.
std::string NarrowOf(std::wstring_view units);

}  // namespace velmora::platform
