#include "platform/path_text.h"

#include "platform/windows/wide_text.h"

namespace velmora::platform {

static_assert(sizeof(wchar_t) == sizeof(char16_t));

std::u16string TextOfPath(const std::filesystem::path& path) { return {path.native().begin(), path.native().end()}; }

std::filesystem::path PathOf(std::u16string_view text) { return std::wstring(text.begin(), text.end()); }

std::string BytesOfPath(const std::filesystem::path& path) { return NarrowOf(path.native()); }

std::filesystem::path PathOf(std::string_view bytes) { return WideOf(bytes); }

}  // namespace velmora::platform
