#include "platform/file_system.h"

#include "platform/file.h"
#include "platform/windows/handle.h"
#include "platform/windows/long_path.h"
#include "platform/windows/system_failure.h"

namespace velmora::platform {

std::filesystem::path AbsolutePath(const std::filesystem::path& path) { return FullPath(path); }

std::optional<std::filesystem::path> RealPath(const std::filesystem::path& path) {
  const Handle handle(::CreateFileW(LongPath(path).c_str(), 0, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                    nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr));
  if (!handle.IsOpen()) return std::nullopt;
  std::wstring place(MAX_PATH, L'\0');
  DWORD length = ::GetFinalPathNameByHandleW(handle.Get(), place.data(), static_cast<DWORD>(place.size()), 0);
  if (length >= place.size()) {
    place.resize(length + 1);
    length = ::GetFinalPathNameByHandleW(handle.Get(), place.data(), static_cast<DWORD>(place.size()), 0);
  }
  if (length == 0 || length >= place.size()) return std::nullopt;
  place.resize(length);
  return WithoutPrefix(std::move(place));
}

bool Exists(const std::filesystem::path& path) {
  return ::GetFileAttributesW(LongPath(path).c_str()) != INVALID_FILE_ATTRIBUTES;
}

Result<std::uint64_t> FileSize(const std::filesystem::path& path) {
  WIN32_FILE_ATTRIBUTE_DATA data{};
  if (!::GetFileAttributesExW(LongPath(path).c_str(), GetFileExInfoStandard, &data)) {
    return Fail(::GetLastError(), path);
  }
  return static_cast<std::uint64_t>(data.nFileSizeHigh) << 32 | data.nFileSizeLow;
}

std::optional<std::uint64_t> FreeSpace(const std::filesystem::path& folder) {
  ULARGE_INTEGER available{};
  std::wstring path = LongPath(folder);
  if (!path.ends_with(L'\\')) path += L'\\';  // the name of a share must end so
  if (!::GetDiskFreeSpaceExW(path.c_str(), &available, nullptr, nullptr)) return std::nullopt;
  return available.QuadPart;
}

Result<void> CreateFolders(const std::filesystem::path& path) {
  const std::filesystem::path full = FullPath(path);
  auto made = CreateFolder(full);
  if (!made && made.error().kind == FailureKind::kNotFound && full.has_relative_path() && full.parent_path() != full) {
    if (auto above = CreateFolders(full.parent_path()); !above) return above;
    made = CreateFolder(full);
  }
  if (!made && made.error().kind == FailureKind::kExists) {
    const DWORD attributes = ::GetFileAttributesW(LongPath(full).c_str());
    if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0) return {};
  }
  return made;
}

Result<void> Replace(const std::filesystem::path& from, const std::filesystem::path& to) {
  if (!::MoveFileExW(LongPath(from).c_str(), LongPath(to).c_str(), MOVEFILE_REPLACE_EXISTING)) {
    return Fail(::GetLastError(), to);
  }
  return {};
}

}  // namespace velmora::platform
