// Where the stores begin of which a file shows marks.
//
// A header stands at the beginning of its store, a map names its own offset, and the signature of a page or block is
// made from its offset and id: with the id known, few offsets are left for each, and only one beginning fits all that
// were written into one store. So it is told even where neither header nor maps nor trees are left.
//
// A signature knows the low 32 bits of an offset alone: of beginnings that are apart by a multiple of 4 GiB the one
// counts that leaves the least missing ahead of the first of its marks, unless a header or a map tells it.
#pragma once

#include <vector>

#include "engine/evidence/store_marks.h"

namespace velmora::engine {

inline constexpr std::size_t kNoOrigin = SIZE_MAX;

struct MarkedOrigins {
  std::vector<Origin> origins;
  std::vector<std::size_t> of;  ///< for each mark its origin in `origins`, or kNoOrigin
};

MarkedOrigins FindOrigins(const std::vector<Mark>& marks, std::uint64_t fileSize);

}  // namespace velmora::engine
