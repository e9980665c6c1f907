// The system that the tests run on, for those that hold on one alone: they are skipped on the other, with the reason.
#pragma once

#include <filesystem>

namespace velmora::test {

inline constexpr bool kIsWindows = std::filesystem::path::preferred_separator == '\\';

}  // namespace velmora::test
