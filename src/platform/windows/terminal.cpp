#include "platform/terminal.h"

#include <algorithm>
#include <span>
#include <string>

#include "platform/windows/system_failure.h"
#include "platform/windows/wide_text.h"

namespace velmora::platform {
namespace {

HANDLE HandleOf(StandardStream stream) {
  return ::GetStdHandle(stream == StandardStream::kOutput ? STD_OUTPUT_HANDLE : STD_ERROR_HANDLE);
}

bool IsConsole(HANDLE handle) {
  DWORD mode = 0;
  return ::GetConsoleMode(handle, &mode) != 0;
}

/// A console takes characters. A text that is written in pieces is cut between characters.
bool WriteToConsole(HANDLE console, std::string_view bytes) {
  constexpr std::size_t kMostAtOnce = 8192;
  const std::wstring units = WideOf(bytes);
  for (std::wstring_view rest = units; !rest.empty();) {
    DWORD written = 0;
    const auto length = static_cast<DWORD>(std::min(rest.size(), kMostAtOnce));
    if (!::WriteConsoleW(console, rest.data(), length, &written, nullptr) || written == 0) return false;
    rest.remove_prefix(written);
  }
  return true;
}

bool WriteToFile(HANDLE file, std::string_view bytes) {
  constexpr std::size_t kMostAtOnce = 1 << 30;
  while (!bytes.empty()) {
    DWORD written = 0;
    const auto length = static_cast<DWORD>(std::min(bytes.size(), kMostAtOnce));
    if (!::WriteFile(file, bytes.data(), length, &written, nullptr)) return false;
    if (written == 0) {
      ::SetLastError(ERROR_HANDLE_DISK_FULL);
      return false;
    }
    bytes.remove_prefix(written);
  }
  return true;
}

}  // namespace

/// One that does not know how to go back in a line and to colour it is none for this program.
bool IsTerminal(StandardStream stream) {
  const HANDLE handle = HandleOf(stream);
  DWORD mode = 0;
  return ::GetConsoleMode(handle, &mode) && ::SetConsoleMode(handle, mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING);
}

int TerminalColumns(StandardStream stream) {
  CONSOLE_SCREEN_BUFFER_INFO info{};
  if (!::GetConsoleScreenBufferInfo(HandleOf(stream), &info)) return 80;
  const int columns = info.srWindow.Right - info.srWindow.Left + 1;
  return columns > 0 ? columns : 80;
}

Result<void> WriteTo(StandardStream stream, std::string_view bytes) {
  const HANDLE handle = HandleOf(stream);
  if (IsConsole(handle) ? WriteToConsole(handle, bytes) : WriteToFile(handle, bytes)) return {};
  return tl::unexpected(Failure{FailureKind::kInputOutput, "standard stream", {}, WordsOf(::GetLastError())});
}

}  // namespace velmora::platform
