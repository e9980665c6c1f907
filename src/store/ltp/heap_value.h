// A value that lies in the heap or in a sub-node beside it.
#pragma once

#include <cstdint>
#include <vector>

#include "store/ltp/heap.h"
#include "store/ndb/block_source.h"

namespace velmora::ltp {

/// The bytes that `hnid` names in a node with that heap and those sub-nodes; none for 0. kNotSupported when
/// there are more than `limit`. With `faults`, what is lost of a sub-node's bytes reads as zeros.
[[nodiscard]] Result<std::vector<std::byte>> ReadHnid(const ndb::BlockSource& source, Heap& heap, Bid bidSub, Hnid hnid,
                                                      std::uint64_t limit, ndb::Faults* faults = nullptr);

}  // namespace velmora::ltp
