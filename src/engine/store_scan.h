// What the scanning steps hand from one to the next on the way to a ScannedStore.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>

#include "engine/referenced_ids.h"
#include "engine/scanned_store.h"

namespace velmora::engine {

struct StoreScan {
  std::unique_ptr<ScannedStore> found = std::make_unique<ScannedStore>();  ///< so far; null behind FinishScan

  std::uint64_t percentBase = 0;  ///< a hundredth of the source; 0 for a tiny one
  ReferencedIds referencedIds;    ///< Smart Scan only, from the node scan to the end of the block scan
  bool encodingUnknown = true;
  std::filesystem::path outputFolder;  ///< holds the new store and the index file; empty before the set-up

  /// How far a scan has come at this offset of the source, in percent; above 100 behind the end. A source
  /// of less than 100 bytes has no hundredth to count in: everything of it is done.
  std::uint32_t PercentOfSource(std::uint64_t offset) const {
    return percentBase == 0 ? 100 : static_cast<std::uint32_t>(offset / percentBase);
  }
};

}  // namespace velmora::engine
