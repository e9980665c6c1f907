// A store that was copied in text mode, so that single bytes of it are gone, and what lies behind each stands
// elsewhere.
#pragma once

#include <cstdint>
#include <vector>

#include "engine/evidence/evidence.h"

namespace velmora::engine {

struct LostBytes {
  /// Where a CR has to be put back, by offsets of the result, ascending. In what cannot be proven with any of them put
  /// back, they stand at its end.
  std::vector<std::uint64_t> places;
  std::uint64_t things = 0;  ///< blocks and pages that prove themselves then
};

/// Of what lies behind `from`, ahead of which nothing was lost.
LostBytes FindLostBytes(const Source& source, std::uint64_t from, const Generation& layout, RunContext& run);

}  // namespace velmora::engine
