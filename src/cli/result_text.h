// What a finished conversion says: where the new store is and what it holds.
#pragma once

#include <string>

#include "conversion/summary.h"

namespace velmora::cli {

/// A line a folder, and one for all.
std::string ContentsText(text::TextView storeName, const conversion::StoreContents& contents);

/// `destination` empty: nothing was written.
std::string ResultText(text::TextView destination, text::TextView storeName, const conversion::StoreContents& contents);

}  // namespace velmora::cli
