// Failures of system calls.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

#include "platform/failure.h"
#include "platform/windows/win32.h"

namespace velmora::platform {

/// What an error code means to the program.
FailureKind KindOf(DWORD error);

/// The system's words for an error code, in UTF-8.
std::string WordsOf(DWORD error);

/// The failure of that error code, in the system's words.
tl::unexpected<Failure> Fail(DWORD error, const std::string& object, std::optional<std::uint64_t> offset = {});
tl::unexpected<Failure> Fail(DWORD error, const std::filesystem::path& path);

}  // namespace velmora::platform
