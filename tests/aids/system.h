// The system that the tests run on, for those that hold on one alone: they are skipped on the other, with the reason.
#pragma once

#include <filesystem>

namespace velmora::test {

inline constexpr bool kIsWindows = std::filesystem::path::preferred_separator == '\\';

/// Why the checker of stores cannot be asked, where it cannot.
inline constexpr const char* kWithoutTools =
    kIsWindows ? "the tools do not run there" : "no folder of tools beside the sources; VELMORA_TOOLS names one";

}  // namespace velmora::test
