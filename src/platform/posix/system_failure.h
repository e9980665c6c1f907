// Failures of system calls.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

#include "platform/failure.h"

namespace velmora::platform {

/// What an error number means to the program.
FailureKind KindOf(int error);

/// The failure of that error number, in the system's words.
tl::unexpected<Failure> Fail(int error, const std::string& object, std::optional<std::uint64_t> offset = {});
tl::unexpected<Failure> Fail(int error, const std::filesystem::path& path);

}  // namespace velmora::platform
