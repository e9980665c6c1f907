// One conversion, from the options to the exit code.
#pragma once

#include "cli/options.h"

namespace velmora::cli {

/// Data goes to standard output, everything else to standard error.
ExitCode Convert(const Options& options);

}  // namespace velmora::cli
