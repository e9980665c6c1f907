#include "platform/process.h"

#include <thread>
#include <utility>

#include "platform/path_text.h"
#include "platform/windows/handle.h"
#include "platform/windows/system_failure.h"
#include "platform/windows/wide_text.h"

namespace velmora::platform {
namespace {

/// A word of a command line such that the program which is started finds it as it was: backslashes count double where
/// a quotation mark follows.
std::wstring Quoted(std::wstring_view word) {
  std::wstring quoted = L"\"";
  std::size_t backslashes = 0;
  for (const wchar_t unit : word) {
    if (unit == L'"') quoted.append(backslashes + 1, L'\\');
    backslashes = unit == L'\\' ? backslashes + 1 : 0;
    quoted += unit;
  }
  return quoted.append(backslashes, L'\\') += L'"';
}

}  // namespace

Result<std::filesystem::path> ProgramPath() {
  std::wstring path(MAX_PATH, L'\0');
  while (true) {
    const DWORD length = ::GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
    if (length == 0) return Fail(::GetLastError(), std::string("path of the program"));
    if (length < path.size()) {
      path.resize(length);
      return std::filesystem::path(path);
    }
    path.resize(2 * path.size());
  }
}

Result<void> StartProgram(const std::filesystem::path& file, const std::vector<std::string>& arguments,
                          std::function<void(bool well)> onEnd) {
  std::wstring command = Quoted(file.native());
  for (const std::string& argument : arguments) command += L" " + Quoted(WideOf(argument));
  STARTUPINFOW start{};
  start.cb = sizeof start;
  PROCESS_INFORMATION started{};
  if (!::CreateProcessW(file.c_str(), command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &start, &started)) {
    const DWORD error = ::GetLastError();
    const bool isMissing = KindOf(error) == FailureKind::kNotFound;
    return tl::unexpected(
        Failure{isMissing ? FailureKind::kNotFound : FailureKind::kDenied, BytesOfPath(file), {}, WordsOf(error)});
  }
  ::CloseHandle(started.hThread);
  if (!onEnd) {
    ::CloseHandle(started.hProcess);
    return {};
  }
  std::thread([process = Handle(started.hProcess), onEnd = std::move(onEnd)] {
    DWORD code = 1;
    const bool known = ::WaitForSingleObject(process.Get(), INFINITE) == WAIT_OBJECT_0 &&
                       ::GetExitCodeProcess(process.Get(), &code) != 0;
    onEnd(known && code == 0);
  }).detach();
  return {};
}

std::vector<std::string> RunningPrograms() {
  std::vector<std::string> names;
  const Handle snapshot(::CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0));
  PROCESSENTRY32W entry{};
  entry.dwSize = sizeof entry;
  if (!snapshot.IsOpen()) return names;
  for (BOOL more = ::Process32FirstW(snapshot.Get(), &entry); more; more = ::Process32NextW(snapshot.Get(), &entry)) {
    names.push_back(NarrowOf(entry.szExeFile));
  }
  return names;
}

std::uint64_t PeakRssKiB() {
  PROCESS_MEMORY_COUNTERS counters{};
  counters.cb = sizeof counters;
  if (!::GetProcessMemoryInfo(::GetCurrentProcess(), &counters, sizeof counters)) return 0;
  return counters.PeakWorkingSetSize / 1024;
}

}  // namespace velmora::platform
