#include "store/ltp/heap_value.h"

#include "store/format/failures.h"
#include "store/ndb/data_tree_reader.h"
#include "store/ndb/subnode_tree_reader.h"

namespace velmora::ltp {

Result<std::vector<std::byte>> ReadHnid(const ndb::BlockSource& source, Heap& heap, Bid bidSub, Hnid hnid,
                                        std::uint64_t limit, ndb::Faults* faults) {
  if (hnid == 0) return std::vector<std::byte>{};
  if (IsHid(hnid)) {
    const Result<std::span<const std::byte>> item = heap.Item(hnid);
    if (!item) return tl::unexpected(item.error());
    return std::vector<std::byte>(item->begin(), item->end());
  }
  const auto subnode = ndb::FindSubnode(source, bidSub, Nid{hnid});
  if (!subnode) return tl::unexpected(subnode.error());
  if (!*subnode) return Corrupt(Named("sub-node", hnid), hnid, "the value's sub-node is not there");
  auto tree = ndb::DataTreeReader::Open(source, (*subnode)->trees.bidData, faults);
  if (!tree) return tl::unexpected(tree.error());
  return tree->ReadAll(limit);
}

}  // namespace velmora::ltp
