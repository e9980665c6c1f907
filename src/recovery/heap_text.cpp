#include "recovery/heap_text.h"

#include <cstring>

#include "text/runs.h"

namespace velmora::recovery {

text::Text WideText(ByteView bytes) {
  text::Text result((bytes.Size() + 1) / 2, u'\0');
  const std::string_view chars = bytes.Chars();
  if (!chars.empty()) std::memcpy(result.data(), chars.data(), chars.size());
  const auto isNul = [](char16_t unit) { return static_cast<char16_t>(unit == 0); };
  result.resize(text::PlainRun(result.data(), result.size(), isNul));
  return result;
}

std::string_view UpToNul(ByteView bytes) {
  const std::string_view chars = bytes.Chars();
  return chars.substr(0, chars.find('\0'));
}

text::Text NarrowText(ByteView bytes, const text::CodePage& codePage) { return codePage.Decode(UpToNul(bytes)); }

text::Text CopyHeapText(ByteView bytes, bool wide, const text::CodePage& codePage) {
  return wide ? WideText(bytes) : NarrowText(bytes, codePage);
}

}  // namespace velmora::recovery
