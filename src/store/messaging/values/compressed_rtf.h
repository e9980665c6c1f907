// RTF bodies as stores keep them: a head of 16 bytes, then the text, compressed ("LZFu") or plain ("MELA").
//
//   0  COMPSIZE  bytes behind this field        8  magic
//   4  RAWSIZE   bytes of the text             12  CRC of all behind the head; 0 for MELA
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "store/format/byte_view.h"
#include "text/text.h"

namespace velmora::messaging {

/// Compresses a text.
Bytes CompressRtf(std::string_view rtf);

/// The text of a stream. A wrong CRC, a wrong size and a cut end are put up with: what can be decoded is
/// given. Nothing when the bytes are no such stream by their head.
std::optional<std::string> DecompressRtf(std::string_view stream);

/// The property for an RTF body given as text, empty for no body. The text's bytes may be a compressed
/// stream already, as 8-bit text or as the UTF-16 units' own bytes: a sound one is kept as it is, a damaged
/// one is made anew from what can be read of it. Other text is RTF, and is compressed; in it a character
/// that is not of the lossless page becomes the RTF escape of its code.
Bytes StoreRtf(text::TextView body);

/// The RTF text of the property.
text::Text RtfText(std::string_view property);

}  // namespace velmora::messaging
