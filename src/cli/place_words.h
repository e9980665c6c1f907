// What people read where a store is not all of its file.
#pragma once

#include <string>
#include <vector>

#include "conversion/complete_run.h"

namespace velmora::cli {

/// Where the store lies, what of it is missing, and what else the file holds, a sentence each; none where the file is
/// the store from its first byte to its last.
std::vector<std::string> PlaceLines(const conversion::CompleteReport& report);

}  // namespace velmora::cli
