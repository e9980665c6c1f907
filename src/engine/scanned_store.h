// What is in a file, found once: the result of the scans, from which everything else is read.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "engine/block_index.h"
#include "engine/heap_evidence.h"
#include "engine/node_list.h"
#include "engine/source.h"
#include "store/format/encoding.h"
#include "store/format/generation.h"
#include "store/ndb/block_source.h"

namespace velmora::engine {

/// A block that no node refers to: one of the two ids is set, the other is 0.
struct OrphanBlock {
  std::uint32_t bidData = 0;  ///< a block with a heap signature
  std::uint32_t bidSub = 0;   ///< a sub-node block that begins with an attachment table
};

/// Built by the scanning steps (StoreScan) and constant from FinishScan on: any number of threads may read it then. A
/// rule that uses something up or reorders it keeps a list of its own.
struct ScannedStore : ndb::BlockSource {
  const Generation& Format() const override { return layout; }

  /// What the trees of a sound store hold under that id: the block proves itself by its trailer and checksum, is
  /// decoded and, in the 4K format, inflated (65,512 bytes at most). What could not be read is kept in `source`.
  [[nodiscard]] bool FindBlock(Bid bid, std::vector<std::byte>& out) const override;

  /// Of several records the first in the order of the list.
  std::optional<ndb::NodeEntry> FindNode(Nid nid) const override;

  Source source;  ///< and the ranges that could not be read
  StoreKind storeKind = StoreKind::kNone;
  Generation layout;

  NodeList nodes;
  std::uint32_t nodeCount = 0;  ///< one more than there are nodes

  BlockIndex index;
  std::uint32_t blockRecordCount = 0;
  /// Smart Scan only. The list ends in its empty element, so a Smart Scan has at least one; a Normal Scan none.
  std::vector<OrphanBlock> orphans;
  std::uint32_t orphanBlockCount = 0;

  CryptMethod blockEncoding = CryptMethod::kNone;
  /// Position in the node list of the node whose block showed the encoding: 0 where the block scan did, the size of the
  /// list where none does.
  std::size_t encodingFoundAt = 0;
};

}  // namespace velmora::engine
