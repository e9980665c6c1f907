// Values as they are stored. Of several elements, fixed ones stand back to back; texts and byte strings stand behind a
// table of offsets.
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <vector>

#include "store/format/little_endian.h"
#include "text/text.h"

namespace velmora::ltp {

/// The value bytes of PtypMultipleBinary; no elements give no bytes.
std::vector<std::byte> EncodeMultiple(std::span<const std::span<const std::byte>> elements);

/// The value bytes of PtypMultipleString.
std::vector<std::byte> EncodeMultiple(std::span<const text::Text> elements);

/// The elements of a value of variable element size, as views into `value`; nothing when the table of offsets does not
/// fit.
[[nodiscard]] std::optional<std::vector<std::span<const std::byte>>> DecodeMultiple(std::span<const std::byte> value);

/// The number that a value holds, the flag, or the text; nothing where there is no value or its size is another.
template <class T>
std::optional<T> NumberIn(const std::optional<std::vector<std::byte>>& value) {
  if (!value || value->size() != sizeof(T)) return std::nullopt;
  return Load<T>(*value, 0);
}
std::optional<bool> FlagIn(const std::optional<std::vector<std::byte>>& value);
std::optional<text::Text> TextIn(const std::optional<std::vector<std::byte>>& value);

/// The value bytes of a text, and back (an odd last byte is dropped).
std::vector<std::byte> EncodeText(text::TextView text);
text::Text DecodeText(std::span<const std::byte> value);

}  // namespace velmora::ltp
