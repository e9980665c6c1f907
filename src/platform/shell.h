// What the desktop does with a file, a folder or an address.
#pragma once

#include <functional>
#include <string>

namespace velmora::platform {

/// Codes of OpenWithShell below this are failures.
inline constexpr int kShellSuccess = 33;

inline constexpr int kShellFileNotFound = 2;
inline constexpr int kShellPathNotFound = 3;
inline constexpr int kShellDenied = 5;
inline constexpr int kShellNoProgram = 31;

/// Opens a file, a folder or a web address in the program that the desktop has for it, and does not wait.
/// Returns kShellSuccess, or a code that tells why nothing was started. The desktop may find out a little later that
/// it has no program: `onRefusal` is then called, in a thread of its own.
int OpenWithShell(const std::string& target, std::function<void()> onRefusal = {});

/// Hands a web address to a browser by itself, for a desktop that has no program for it. Returns whether one
/// was started.
bool OpenInBrowser(const std::string& address);

}  // namespace velmora::platform
