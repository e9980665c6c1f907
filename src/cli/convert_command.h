// One conversion, from the options to the exit code.
#pragma once

#include "cli/options.h"
#include "platform/file.h"

namespace velmora::cli {

/// Data goes to standard output, everything else to standard error.
ExitCode Convert(const Options& options, const platform::SourceOpener& openSource = platform::OpenForReading);

}  // namespace velmora::cli
