#include "platform/shell.h"

#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <sstream>
#include <string_view>
#include <utility>

#include "platform/process.h"

namespace velmora::platform {
namespace {

constexpr std::chrono::seconds kTimeToRefuse{5};

std::optional<std::filesystem::path> FindProgram(std::string_view name) {
  const char* path = std::getenv("PATH");
  std::istringstream folders(path != nullptr ? path : "/usr/local/bin:/usr/bin:/bin");
  for (std::string folder; std::getline(folders, folder, ':');) {
    std::filesystem::path candidate = std::filesystem::path(folder) / name;
    if (!folder.empty() && ::access(candidate.c_str(), X_OK) == 0) return candidate;
  }
  return std::nullopt;
}

/// The failure that a target which is no web address has by itself.
std::optional<int> LocalFailure(const std::string& target) {
  if (target.find("://") != std::string::npos) return std::nullopt;
  std::error_code ignored;
  const std::filesystem::path path(target);
  if (std::filesystem::exists(path, ignored)) {
    return ::access(path.c_str(), R_OK) == 0 ? std::nullopt : std::optional(kShellDenied);
  }
  return std::filesystem::exists(path.parent_path(), ignored) ? kShellFileNotFound : kShellPathNotFound;
}

}  // namespace

int OpenWithShell(const std::string& target, std::function<void()> onRefusal) {
  if (const std::optional<int> failure = LocalFailure(target)) return *failure;
  const std::optional<std::filesystem::path> opener = FindProgram("xdg-open");
  if (!opener) return kShellNoProgram;
  // On some desktops the opener lives as long as the program that it has started: an end that comes late is that of
  // the program.
  const auto begin = std::chrono::steady_clock::now();
  const auto onEnd = [begin, onRefusal = std::move(onRefusal)](bool well) {
    if (!well && onRefusal && std::chrono::steady_clock::now() - begin < kTimeToRefuse) onRefusal();
  };
  return StartProgram(*opener, {target}, onEnd) ? kShellSuccess : kShellNoProgram;
}

bool OpenInBrowser(const std::string& address) {
  // The first is there under a Windows layer, the second is what the system calls its browser.
  for (const std::string_view name : {"iexplore.exe", "x-www-browser"}) {
    const std::optional<std::filesystem::path> browser = FindProgram(name);
    if (browser && StartProgram(*browser, {address})) return true;
  }
  return false;
}

}  // namespace velmora::platform
