#include "platform/user_folders.h"

#include <atomic>
#include <system_error>

#include "platform/file.h"
#include "platform/windows/handle.h"
#include "platform/windows/long_path.h"
#include "platform/windows/system_failure.h"
#include "platform/windows/wide_text.h"

namespace velmora::platform {
namespace {

Result<std::filesystem::path> KnownFolder(const KNOWNFOLDERID& id) {
  wchar_t* path = nullptr;
  const HRESULT result = ::SHGetKnownFolderPath(id, KF_FLAG_DONT_VERIFY, nullptr, &path);
  std::filesystem::path folder = path != nullptr ? path : L"";
  ::CoTaskMemFree(path);
  if (FAILED(result)) {
    return tl::unexpected(Failure{FailureKind::kNotFound, "profile", {}, "the user has no folder of that kind"});
  }
  return folder;
}

std::filesystem::path SystemTemporaryFolder() {
  wchar_t folder[MAX_PATH + 1];
  const DWORD length = ::GetTempPathW(static_cast<DWORD>(std::size(folder)), folder);
  return std::wstring(folder, length < std::size(folder) ? length : 0);
}

/// A link to a folder goes without what it leads to.
void DeleteTree(const std::filesystem::path& folder) {
  WIN32_FIND_DATAW found{};
  const HANDLE search = ::FindFirstFileW(LongPath(folder / L"*").c_str(), &found);
  if (search != INVALID_HANDLE_VALUE) {
    do {
      const std::wstring_view name = found.cFileName;
      if (name == L"." || name == L"..") continue;
      const std::filesystem::path path = folder / name;
      const bool isFolder = (found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
      const bool isLink = (found.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0;
      if (isFolder && !isLink) {
        DeleteTree(path);
      } else if (isFolder) {
        ::RemoveDirectoryW(LongPath(path).c_str());
      } else {
        ::DeleteFileW(LongPath(path).c_str());
      }
    } while (::FindNextFileW(search, &found));
    ::FindClose(search);
  }
  ::RemoveDirectoryW(LongPath(folder).c_str());
}

}  // namespace

Result<std::filesystem::path> ConfigFolder() {
  return KnownFolder(FOLDERID_RoamingAppData).map([](const std::filesystem::path& path) { return path / "velmora"; });
}

Result<std::filesystem::path> DataFolder() { return KnownFolder(FOLDERID_LocalAppData); }

std::filesystem::path RuntimeFolder() { return SystemTemporaryFolder() / "velmora"; }

Result<std::filesystem::path> WindowsDrive() {
  wchar_t folder[MAX_PATH + 1];
  const UINT length = ::GetWindowsDirectoryW(folder, static_cast<UINT>(std::size(folder)));
  if (length == 0 || length >= std::size(folder)) return Fail(::GetLastError(), std::string("folder of the system"));
  return std::filesystem::path(folder).root_path();
}

std::string UserName() {
  wchar_t name[256 + 1];
  DWORD length = static_cast<DWORD>(std::size(name));
  return ::GetUserNameW(name, &length) && length != 0 ? NarrowOf({name, length - 1}) : "";
}

Result<TemporaryFolder> TemporaryFolder::Create() {
  static std::atomic<unsigned> made = 0;
  while (true) {
    const std::filesystem::path path =
        SystemTemporaryFolder() /
        (L"velmora-" + std::to_wstring(::GetCurrentProcessId()) + L"-" + std::to_wstring(made++));
    const auto folder = CreateFolder(path);
    if (folder) return TemporaryFolder(path);
    if (folder.error().kind != FailureKind::kExists) return tl::unexpected(folder.error());
  }
}

TemporaryFolder::~TemporaryFolder() {
  if (!path_.empty()) DeleteTree(path_);
}

}  // namespace velmora::platform
