// The blocks that a node entry would name: those that no other block names.
//
// A list of data blocks stands for the first of them, by which the whole is a context or a table. What an older block
// names counts as named too, since an id never comes back with another meaning.
#pragma once

#include <vector>

#include "engine/evidence/evidence_view.h"
#include "engine/run.h"

namespace velmora::engine {

/// By ascending id.
struct TopBlocks {
  std::vector<Bid> contexts;
  std::vector<Bid> tables;
  std::vector<Bid> lists;  ///< of sub-nodes
};

TopBlocks FindTopBlocks(const EvidenceView& view, RunContext& run);

}  // namespace velmora::engine
