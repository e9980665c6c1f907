#include "recovery/heap_text.h"

#include <algorithm>

namespace velmora::recovery {

text::Text WideText(ByteView bytes) {
  text::Text result((bytes.Size() + 1) / 2, u'\0');
  std::ranges::copy(bytes.Chars(), reinterpret_cast<char*>(result.data()));
  if (const std::size_t nul = result.find(u'\0'); nul != text::Text::npos) result.resize(nul);
  return result;
}

text::Text NarrowText(ByteView bytes, const text::CodePage& codePage) {
  const std::string_view chars = bytes.Chars();
  return codePage.Decode(chars.substr(0, chars.find('\0')));
}

text::Text CopyHeapText(ByteView bytes, bool wide, const text::CodePage& codePage) {
  return wide ? WideText(bytes) : NarrowText(bytes, codePage);
}

}  // namespace velmora::recovery
