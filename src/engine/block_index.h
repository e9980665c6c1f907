// The index of the source's blocks: FirstTableItem.dat on disk, and the look-up over it.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "engine/page_layout.h"
#include "platform/file.h"

namespace velmora::engine {

/// A block's place in the source. In the index file a record is 16 bytes: bid, size (u32 each), offset
/// (u64), little-endian.
struct BlockRecord {
  std::uint32_t bid = 0;     ///< low 32 bits of the block id
  std::uint32_t size = 0;    ///< stored size in bytes; after inflation a holder keeps the inflated size here
  std::uint64_t offset = 0;  ///< file offset in bytes

  friend bool operator==(const BlockRecord&, const BlockRecord&) = default;
};

/// The file holds records in chunks of 4000, each chunk sorted by `bid`; across chunks there is no order,
/// and a look-up takes the first chunk that holds the id. This class gives that answer from one sorted
/// table in memory (16 bytes a block), so a look-up costs O(log n) whatever the number of chunks.
///
/// Among different records of one `bid` in a chunk the first in file order whose block trailer proves
/// itself (id and signature) wins, else the first.
class BlockIndex {
 public:
  static constexpr std::uint32_t kChunkRecords = 4000;

  /// Takes the records in file order, before any sorting of the chunks. `source` serves to prove trailers.
  void Build(std::vector<BlockRecord> records, const platform::ByteSource& source, const PageLayout& layout);

  std::optional<BlockRecord> Find(std::uint32_t id) const;

  void Clear() { sorted_ = {}; }

 private:
  std::vector<BlockRecord> sorted_;  ///< by bid, one record a bid
};

}  // namespace velmora::engine
