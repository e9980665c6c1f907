// The Smart Scan's look into a block: is it a message that no node refers to?
#pragma once

#include "engine/source_window.h"
#include "engine/store_scan.h"

namespace velmora::engine {

/// Lists the block in `orphans` if it looks like a message (a heap signature, or a sub-node block that
/// begins with an attachment table) and no node refers to it; true when it was listed. While the encoding
/// of the store is unknown, a block with a sound trailer also serves to detect it.
bool ClassifyBlock(StoreScan& scan, SourceWindow& window, const PlacedBlock& block);

}  // namespace velmora::engine
