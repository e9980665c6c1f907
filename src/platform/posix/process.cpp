#include "platform/process.h"

#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <fstream>
#include <iterator>
#include <system_error>
#include <thread>
#include <utility>

extern char** environ;

namespace velmora::platform {
namespace {

std::string ReadAll(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

/// The base name of a process: of its command line's first word, or its short name where it has none.
std::string NameOf(const std::filesystem::path& process) {
  std::string command = ReadAll(process / "cmdline");
  command = command.substr(0, command.find('\0'));
  // Programs of other systems that run under a layer give their own path, with their own separators.
  if (!command.empty()) return command.substr(command.find_last_of("/\\") + 1);
  std::string name = ReadAll(process / "comm");
  if (!name.empty() && name.back() == '\n') name.pop_back();
  return name;
}

}  // namespace

Result<std::filesystem::path> ProgramPath() {
  std::error_code error;
  std::filesystem::path path = std::filesystem::read_symlink("/proc/self/exe", error);
  if (error) return tl::unexpected(Failure{FailureKind::kInputOutput, "/proc/self/exe", {}, error.message()});
  return path;
}

Result<void> StartProgram(const std::filesystem::path& file, const std::vector<std::string>& arguments,
                          std::function<void(bool well)> onEnd) {
  std::string name = file.native();
  std::vector<std::string> words = arguments;
  std::vector<char*> argv{name.data()};
  for (std::string& word : words) argv.push_back(word.data());
  argv.push_back(nullptr);
  pid_t pid = 0;
  if (const int error = ::posix_spawn(&pid, name.c_str(), nullptr, nullptr, argv.data(), environ); error != 0) {
    return tl::unexpected(Failure{error == ENOENT ? FailureKind::kNotFound : FailureKind::kDenied,
                                  name,
                                  {},
                                  std::generic_category().message(error)});
  }
  // The thread takes its result even if nobody asks for it, so that no dead process is left behind.
  std::thread([pid, onEnd = std::move(onEnd)] {
    int status = 0;
    const bool known = ::waitpid(pid, &status, 0) == pid;
    if (onEnd) onEnd(known && WIFEXITED(status) && WEXITSTATUS(status) == 0);
  }).detach();
  return {};
}

std::vector<std::string> RunningPrograms() {
  std::vector<std::string> names;
  std::error_code error;
  for (std::filesystem::directory_iterator entry("/proc", error), end; !error && entry != end; entry.increment(error)) {
    const std::string number = entry->path().filename().native();
    if (!std::all_of(number.begin(), number.end(), [](unsigned char c) { return std::isdigit(c) != 0; })) continue;
    if (std::string name = NameOf(entry->path()); !name.empty()) names.push_back(std::move(name));
  }
  return names;
}

std::uint64_t PeakRssKiB() {
  rusage usage{};
  if (::getrusage(RUSAGE_SELF, &usage) != 0) return 0;
  return static_cast<std::uint64_t>(usage.ru_maxrss);
}

}  // namespace velmora::platform
