// What people read where a store is not all of its file, or the file became more than was read.
#pragma once

#include <string>
#include <vector>

#include "conversion/complete_run.h"

namespace velmora::cli {

/// Where the store lies, what of it is missing, what else the file holds and what it grew by, a sentence each; none
/// where the file is the store from its first byte to its last, and stayed so.
std::vector<std::string> PlaceLines(const conversion::CompleteReport& report);

}  // namespace velmora::cli
