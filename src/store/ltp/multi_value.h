// Values of several elements: fixed ones stand back to back; texts and byte strings stand behind a table of
// offsets.
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <vector>

#include "text/text.h"

namespace velmora::ltp {

/// The value bytes of PtypMultipleBinary; no elements give no bytes.
std::vector<std::byte> EncodeMultiple(std::span<const std::span<const std::byte>> elements);

/// The value bytes of PtypMultipleString.
std::vector<std::byte> EncodeMultiple(std::span<const text::Text> elements);

/// The elements of a value of variable element size, as views into `value`; nothing when the table of offsets does not
/// fit.
[[nodiscard]] std::optional<std::vector<std::span<const std::byte>>> DecodeMultiple(std::span<const std::byte> value);

/// The value bytes of a text, and back (an odd last byte is dropped).
std::vector<std::byte> EncodeText(text::TextView text);
text::Text DecodeText(std::span<const std::byte> value);

}  // namespace velmora::ltp
