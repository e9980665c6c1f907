// The look-up over the records of the source's blocks.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
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

/// Brings the records of one chunk into the order of the index file: by `bid`, in file order among equals.
void SortChunk(std::span<BlockRecord> chunk);

/// The index file holds records in chunks of 4000, each chunk sorted by `bid`; across chunks there is no
/// order, and a look-up takes the first chunk that holds the id. This class gives that answer from one
/// sorted table in memory, so a look-up costs O(log n) whatever the number of chunks.
///
/// Among different records of one `bid` in a chunk the first in file order whose block trailer proves
/// itself (id and signature) wins, else the first.
///
/// Memory: 16 bytes for each id once it is settled. While it is built, at most about four times that:
/// records that were taken in but not merged are never more than the ids that were (or 65,536), and a
/// merge works on a copy.
class BlockIndex {
 public:
  static constexpr std::uint32_t kChunkRecords = 4000;

  /// Takes in the next chunk, in the order of SortChunk. `source` serves to prove trailers.
  void AddChunk(std::span<const BlockRecord> chunk, const platform::ByteSource& source, const PageLayout& layout);

  /// To be called behind the last chunk; Find sees every chunk then.
  void Settle();

  /// Cuts records in file order into chunks and takes them all in.
  void Build(std::vector<BlockRecord> records, const platform::ByteSource& source, const PageLayout& layout);

  std::optional<BlockRecord> Find(std::uint32_t id) const;

  void Clear();

 private:
  void Merge();

  std::vector<BlockRecord> sorted_;   ///< by bid, one record a bid
  std::vector<BlockRecord> pending_;  ///< one record a bid and chunk, in the order of the chunks
};

}  // namespace velmora::engine
