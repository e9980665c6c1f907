#include "platform/shell.h"

#include <cstdint>

#include "platform/windows/wide_text.h"
#include "platform/windows/win32.h"

namespace velmora::platform {
namespace {

int Execute(const wchar_t* file, const wchar_t* parameters) {
  return static_cast<int>(
      reinterpret_cast<std::intptr_t>(::ShellExecuteW(nullptr, L"open", file, parameters, nullptr, SW_SHOWNORMAL)));
}

}  // namespace

/// The codes that the system gives are those of the header; it says at once that it has no program.
int OpenWithShell(const std::string& target, std::function<void()>) { return Execute(WideOf(target).c_str(), nullptr); }

bool OpenInBrowser(const std::string& address) {
  return Execute(L"iexplore.exe", WideOf(address).c_str()) >= kShellSuccess;
}

}  // namespace velmora::platform
