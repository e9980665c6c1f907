// The block ids that node entries refer to, for the Smart Scan.
#pragma once

#include <cstdint>
#include <vector>

#include "engine/node_list.h"

namespace velmora::engine {

class ReferencedIds {
 public:
  /// Takes `bidData` and `bidSub` of every record that has a `bidSub`; records without one contribute
  /// nothing. Fewer than two ids build no table at all, and only id 0 counts as referenced then.
  void Build(const NodeList& nodes);

  /// True for id 0 and for every id of the table.
  bool IsReferencedId(std::uint32_t id) const;

  void Clear() { ids_ = {}; }

 private:
  std::vector<std::uint32_t> ids_;  ///< sorted
};

}  // namespace velmora::engine
