// Is Outlook installed, does it run, and in which mode? Decisions over a registry and a process list.
#pragma once

#include "workflow/services.h"

namespace velmora::workflow {

inline constexpr std::string_view kOutlook2000Key = R"(SOFTWARE\Microsoft\Office\9.0\Outlook\Setup)";

/// Whether one of the two install keys opens for query and set.
bool IsOutlookInstalled(const platform::Registry& registry);

/// Whether one of the first 1,024 processes has the exact name "OUTLOOK.EXE"; case counts.
bool IsOutlookRunning(const Services& services);

/// Whether Outlook 2000 is there and in internet-only mode.
bool IsOutlook2000InInternetMode(const platform::Registry& registry);

/// What "I Accept" does: starts Outlook unless it runs, then sets the mode, then waits a moment.
void ChangeOutlook2000Mode(const Services& services);

}  // namespace velmora::workflow
