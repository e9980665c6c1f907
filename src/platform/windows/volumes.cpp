#include "platform/volumes.h"

#include <string>

#include "platform/windows/long_path.h"
#include "platform/windows/win32.h"

namespace velmora::platform {

std::vector<Volume> MountedVolumes() {
  std::vector<Volume> volumes;
  wchar_t drives[26 * 4 + 1];  // "C:\", each with a zero at its end
  const DWORD length = ::GetLogicalDriveStringsW(static_cast<DWORD>(std::size(drives)), drives);
  if (length >= std::size(drives)) return volumes;
  for (std::wstring_view rest(drives, length); !rest.empty();) {
    const std::wstring drive(rest.substr(0, rest.find(L'\0')));
    rest.remove_prefix(drive.size() + 1);
    const UINT type = ::GetDriveTypeW(drive.c_str());
    const bool isRemovable = type == DRIVE_REMOVABLE || type == DRIVE_CDROM;
    if (isRemovable || type == DRIVE_FIXED || type == DRIVE_REMOTE) volumes.push_back({drive, isRemovable});
  }
  return volumes;
}

std::vector<FolderEntry> ListFolder(const std::filesystem::path& folder) {
  std::vector<FolderEntry> entries;
  WIN32_FIND_DATAW found{};
  const HANDLE search = ::FindFirstFileW(LongPath(folder / L"*").c_str(), &found);
  if (search == INVALID_HANDLE_VALUE) return entries;
  do {
    const std::wstring_view name = found.cFileName;
    const bool isFolder = (found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
    // A link to a folder, and the place where another volume is mounted, are none.
    const bool isLink = (found.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0;
    if (name != L"." && name != L".." && !(isFolder && isLink)) entries.push_back({name, isFolder, false});
  } while (::FindNextFileW(search, &found));
  ::FindClose(search);
  return entries;
}

}  // namespace velmora::platform
