#include "platform/windows/long_path.h"

#include "platform/windows/win32.h"

namespace velmora::platform {
namespace {

constexpr std::wstring_view kPrefix = L"\\\\?\\";
constexpr std::wstring_view kSharePrefix = L"\\\\?\\UNC\\";
constexpr std::wstring_view kDevicePrefix = L"\\\\.\\";
constexpr std::wstring_view kShare = L"\\\\";

}  // namespace

std::wstring FullPath(const std::filesystem::path& path) {
  const std::wstring& given = path.native();
  if (given.empty() || given.starts_with(kPrefix)) return given;
  std::wstring full(MAX_PATH, L'\0');
  DWORD length = ::GetFullPathNameW(given.c_str(), static_cast<DWORD>(full.size()), full.data(), nullptr);
  if (length >= full.size()) {  // then it is the room that is needed, the final zero included
    full.resize(length);
    length = ::GetFullPathNameW(given.c_str(), static_cast<DWORD>(full.size()), full.data(), nullptr);
  }
  if (length == 0 || length >= full.size()) return given;
  full.resize(length);
  return full;
}

std::wstring LongPath(const std::filesystem::path& path) {
  const std::wstring full = FullPath(path);
  if (full.empty() || full.starts_with(kPrefix) || full.starts_with(kDevicePrefix)) return full;
  if (full.starts_with(kShare)) return std::wstring(kSharePrefix) + full.substr(kShare.size());
  return std::wstring(kPrefix) + full;
}

std::wstring WithoutPrefix(std::wstring path) {
  if (path.starts_with(kSharePrefix)) return path.replace(0, kSharePrefix.size(), kShare);
  if (path.starts_with(kPrefix)) path.erase(0, kPrefix.size());
  return path;
}

}  // namespace velmora::platform
