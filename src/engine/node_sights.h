// What a piece of the source shows to the scan for nodes.
#pragma once

#include <vector>

#include "engine/node_list.h"
#include "engine/page_walk.h"
#include "engine/pieces_ahead.h"
#include "engine/store_scan.h"
#include "store/format/generation.h"

namespace velmora::engine {

/// Bytes that a page is seen with: an entry may reach from it into what is read with it.
constexpr std::uint32_t ReadSizeOfNodes(const Generation& layout) {
  return layout.formatId == FORMAT_UNICODE_4K ? 65536 : 4096;
}

/// How the scan cuts a source.
PieceCut CutForNodes(const Generation& layout);

/// With `forBlocks`, which is for a Normal Scan, also tells which steps of the scan for blocks are worth a visit.
NodeSights LookForNodes(const Generation& layout, const Piece& piece, bool forBlocks);

}  // namespace velmora::engine
