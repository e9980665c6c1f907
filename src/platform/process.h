// Programs: this one, those that it starts, those that run beside it.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "platform/failure.h"

namespace velmora::platform {

/// Full path of the running program's file.
Result<std::filesystem::path> ProgramPath();

/// Starts a program file with those arguments and does not wait for it. Fails when the file cannot be run.
/// `onEnd` is called in a thread of its own once the program has ended; `well`: with the code 0.
Result<void> StartProgram(const std::filesystem::path& file, const std::vector<std::string>& arguments = {},
                          std::function<void(bool well)> onEnd = {});

/// Base names of the programs that run now, each as its process names itself (cut at 15 bytes by the
/// system where the process does not give its command line).
std::vector<std::string> RunningPrograms();

/// The largest resident size of this process so far, in KiB.
std::uint64_t PeakRssKiB();

}  // namespace velmora::platform
