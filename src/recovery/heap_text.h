// Texts as a store holds them, in a heap or in a block of their own.
#pragma once

#include <string_view>

#include "store/format/byte_view.h"
#include "text/code_page.h"
#include "text/text.h"

namespace velmora::recovery {

/// UTF-16 up to the first NUL. The bytes are taken as if zeros followed them, so an odd last byte makes a unit.
text::Text WideText(ByteView bytes);

/// The bytes up to the first NUL.
std::string_view UpToNul(ByteView bytes);

/// 8-bit text up to the first NUL.
text::Text NarrowText(ByteView bytes, const text::CodePage& codePage);

/// The one or the other, by the width of the store's texts.
text::Text CopyHeapText(ByteView bytes, bool wide, const text::CodePage& codePage);

}  // namespace velmora::recovery
