// Every entry of a node page that the file still holds: the tree's own, and those of old pages.
#pragma once

#include <cstdint>
#include <vector>

#include "engine/run.h"
#include "engine/source.h"
#include "store/format/generation.h"
#include "store/ndb/block_source.h"

namespace velmora::engine {

/// A node as some page names it, with the blocks that it had then.
struct NodeVersions {
  std::vector<ndb::NodeEntry> entries;  ///< by ascending id; each once, however many pages repeat it
  std::uint64_t pages = 0;              ///< node pages that prove themselves, leaves and upper levels
};

/// Reads all pages of a source once. A page counts when its type, its id's signature and its checksum fit. Passes pause
/// points and says progress from 0 to 100.
NodeVersions FindNodeVersions(const Source& source, const Generation& layout, RunContext& run);

}  // namespace velmora::engine
