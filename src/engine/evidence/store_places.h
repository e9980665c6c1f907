// Which stores lie in a file, and where: from which the front may be missing, in which something else may stand ahead
// of a store, and in which several stores may stand one behind the other.
//
// What was written into one store from one beginning is a stretch of the file. A stretch within another is what that
// store holds: a store that is attached to a message, or parts of itself in the wrong place. Of two stretches, one
// behind the other, the second continues the first, bytes between having been lost or put in, if its offsets go on
// behind those of the first, no id of a block has other content in it, and, where they are far apart, pages of the one
// name what stands in the other. Otherwise it is another store.
#pragma once

#include <optional>
#include <vector>

#include "engine/evidence/store_origins.h"

namespace velmora::engine {

struct StorePlace {
  Origin origin = 0;
  std::uint64_t from = 0;  ///< in the file
  std::uint64_t to = 0;
  std::uint64_t provenBytes = 0;  ///< of what proves itself, at least
  bool hasHeader = false;
  /// From there on nothing tells whether it is of this store or of another.
  std::optional<std::uint64_t> doubtfulFrom;

  /// Of the store's front, that the file does not have.
  std::uint64_t Missing() const { return origin < 0 ? static_cast<std::uint64_t>(-origin) : 0; }

  friend bool operator==(const StorePlace&, const StorePlace&) = default;
};

/// In the order in which they stand in the file. Two passes over it.
std::vector<StorePlace> FindStores(const Source& source, RunContext& run);

/// The one that a person means by the file: that which begins where the file begins, else the one that most is proven
/// of. `stores` is not empty.
std::size_t MainStore(const std::vector<StorePlace>& stores);

}  // namespace velmora::engine
