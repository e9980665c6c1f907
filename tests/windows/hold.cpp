// velmora-hold FILE SHARE - holds a file open, as another program does, until standard input ends. SHARE is what others
// may do meanwhile: "all", "read" or "none".
#include <cstdio>
#include <string_view>

#include "platform/windows/handle.h"

int wmain(int count, wchar_t** words) {
  if (count != 3) return 2;
  const std::wstring_view share = words[2];
  const DWORD shares = share == L"all"    ? FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE
                       : share == L"read" ? FILE_SHARE_READ
                                          : 0;
  const velmora::platform::Handle file(
      ::CreateFileW(words[1], GENERIC_READ | GENERIC_WRITE, shares, nullptr, OPEN_EXISTING, 0, nullptr));
  if (!file.IsOpen()) return 1;
  std::puts("held");
  std::fflush(stdout);
  while (std::getchar() != EOF) {
  }
  return 0;
}
