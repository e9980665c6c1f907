// What of the source could not be read, as losses.
#pragma once

#include "engine/source.h"
#include "recovery/recovery_report.h"

namespace velmora::conversion {

/// Stretches that a report lists; of those beyond it has the number and the bytes.
inline constexpr std::size_t kMostUnreadRanges = 1000;

/// Adds a loss for each stretch: nobody knows what stood there, and what did is not in the new store.
void ReportUnreadRanges(const engine::BadRanges& bad, recovery::RecoveryReport& report);

}  // namespace velmora::conversion
