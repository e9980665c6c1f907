// What a finished conversion says: where the new store is and what it holds.
#pragma once

#include <string>
#include <string_view>

#include "conversion/run_report.h"
#include "conversion/summary.h"

namespace velmora::cli {

/// A line a folder, and one for all.
std::string ContentsText(text::TextView storeName, const conversion::StoreContents& contents);

/// The losses by kind and number, in one sentence, and how to see them one by one; empty when nothing is lost.
/// `reportPath` is the value of the option: empty when there is no report.
std::string LossText(const recovery::RecoveryReport& report, std::string_view reportPath);

/// `destination` empty: nothing was written.
std::string ResultText(text::TextView destination, text::TextView storeName, const conversion::StoreContents& contents);

}  // namespace velmora::cli
