#include "platform/windows/wide_text.h"

#include "platform/utf8.h"

namespace velmora::platform {

std::wstring WideOf(std::string_view bytes) {
  std::wstring units;
  while (!bytes.empty()) {
    const Utf8Sequence first = FirstSequence(bytes);
    AppendUnits(units, first.length != 0 ? first.c : U'\uFFFD');
    bytes.remove_prefix(first.length != 0 ? first.length : 1);
  }
  return units;
}

std::string NarrowOf(std::wstring_view units) {
  std::string bytes;
  for (std::size_t at = 0; at < units.size();) AppendUtf8(bytes, NextCharacter(units, at));
  return bytes;
}

}  // namespace velmora::platform
