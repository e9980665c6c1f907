// Standard output and standard error as a person sees them.
#pragma once

#include <string_view>

#include "platform/failure.h"

namespace velmora::platform {

enum class StandardStream { kOutput, kError };

/// True when the stream is a terminal.
bool IsTerminal(StandardStream stream);

/// Columns of the terminal; 80 where it does not say.
int TerminalColumns(StandardStream stream);

/// Writes all of `bytes` to the stream, unbuffered.
Result<void> WriteTo(StandardStream stream, std::string_view bytes);

}  // namespace velmora::platform
