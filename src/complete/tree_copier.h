// Data trees from store to store.
#pragma once

#include <cstddef>
#include <vector>

#include "complete/live_store.h"
#include "store/ndb/data_tree_reader.h"
#include "store/ndb/ndb_writer.h"

namespace velmora::complete {

/// Whether the bytes of a data block are the same in both stores.
bool IsStoredAlike(const LiveStore& source, const ndb::NdbWriter& target);

/// Calls `take` with the blocks of a tree as they are stored, up to the first that a new store would not have so: each
/// but the last is full. Returns their number. `buffer` may be what they lie in while they are taken.
template <class Take>
std::size_t TakeStored(const LiveStore& source, const ndb::DataTreeReader& from, std::vector<std::byte>& buffer,
                       Take take) {
  std::uint64_t taken = 0;
  for (std::size_t i = 0; i < from.BlockCount(); ++i) {
    const auto data = source.FindStored(from.BidOf(i), buffer);
    if (!data) return i;
    taken += data->bytes.size();
    const bool isFull = data->bytes.size() == kMaxBlockData;
    if (!isFull && taken != from.Size()) return i;
    take(*data);
    if (!isFull) return i + 1;
  }
  return from.BlockCount();
}

/// One tree after another; keeps its buffers between them.
class TreeCopier {
 public:
  /// `source` must outlive it.
  explicit TreeCopier(const LiveStore& source) : source_(source) {}

  /// Writes what is there of a tree of the source, piece by piece. Raises FailureError for what cannot be read and
  /// OutputFailure for what cannot be written.
  ndb::DataTree Copy(ndb::DataTreeReader from, ndb::NdbWriter& target);

 private:
  const LiveStore& source_;
  std::vector<std::byte> piece_;
  std::vector<std::byte> block_;
};

}  // namespace velmora::complete
