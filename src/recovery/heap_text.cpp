#include "recovery/heap_text.h"

namespace velmora::recovery {

text::Text WideText(engine::ByteView bytes) {
  text::Text result;
  result.reserve((bytes.Size() + 1) / 2);
  for (std::size_t offset = 0; offset < bytes.Size(); offset += 2) {
    const char16_t unit = bytes.U16(offset);
    if (unit == 0) break;
    result.push_back(unit);
  }
  return result;
}

text::Text NarrowText(engine::ByteView bytes, const text::CodePage& codePage) {
  const std::string_view chars = bytes.Chars();
  return codePage.Decode(chars.substr(0, chars.find('\0')));
}

text::Text CopyHeapText(engine::ByteView bytes, bool wide, const text::CodePage& codePage) {
  return wide ? WideText(bytes) : NarrowText(bytes, codePage);
}

}  // namespace velmora::recovery
