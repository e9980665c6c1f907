// File names as text and as bytes. A path is made from either here alone: the standard library would read bytes by the
// locale, and refuse or change names that are no text.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace velmora::platform {

/// Text of a path, from which PathOf makes the same path again, whatever its name is made of. Where the system's names
/// are bytes they are UTF-8, and each byte that is not part of a valid sequence becomes the lone surrogate U+DC00 +
/// byte; where they are 16-bit units the text has them as they are.
std::u16string TextOfPath(const std::filesystem::path& path);

/// The reverse of TextOfPath.
std::filesystem::path PathOf(std::u16string_view text);

/// Bytes of a path, as the command line has it and messages name it. They are the system's own; where names are 16-bit
/// units they are UTF-8, in which a lone surrogate is encoded like any other unit.
std::string BytesOfPath(const std::filesystem::path& path);

/// The reverse of BytesOfPath.
std::filesystem::path PathOf(std::string_view bytes);

}  // namespace velmora::platform
