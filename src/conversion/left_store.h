// What a run that could not go on has left behind.
#pragma once

#include <cstdint>
#include <map>

#include "conversion/summary.h"
#include "store/operations.h"

namespace velmora::conversion {

/// The store on disk as whoever opens it finds it, whatever the run believed to have written.
struct LeftStore {
  StoreContents contents;
  std::map<text::Text, std::uint64_t> items;  ///< by message class
  output::AttachmentTotals attachments;
};

/// Opens the store at `path` anew and counts what is in it; the log at `logPath`, if there is one, gets its summary.
/// A store that cannot be opened holds nothing.
LeftStore ReadLeftStore(output::OutputLibrary& library, text::TextView path, text::TextView storeName,
                        text::TextView logPath);

}  // namespace velmora::conversion
