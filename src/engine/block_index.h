// The look-up over the records of the source's blocks.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace velmora::engine {

struct EngineState;
struct RunContext;

/// A block's place in the source. In the index file a record is 16 bytes: bid, size (u32 each), offset
/// (u64), little-endian.
struct BlockRecord {
  std::uint32_t bid = 0;     ///< low 32 bits of the block id
  std::uint32_t size = 0;    ///< stored size in bytes; after inflation a holder keeps the inflated size here
  std::uint64_t offset = 0;  ///< file offset in bytes

  friend bool operator==(const BlockRecord&, const BlockRecord&) = default;
};

/// Brings records into the order of their ids; those of one id stay in the order in which they stand.
void SortByBid(std::span<BlockRecord> records);

/// One record for each id, in one sorted table in memory: a look-up costs O(log n).
///
/// In a large store some bytes look like a trailer by chance, and old pages of the block tree may name
/// places that now hold something else; so an id may come with several records. Of those the one counts
/// whose block proves itself best (see Proof), the first in file order among equals.
///
/// Memory: 16 bytes for each id once it is settled. While it is built, at most about four times as much for
/// each record: those that were taken in but not merged are never more than those that were (or 65,536),
/// and a merge works on a copy. Settling takes one byte more a record, and four where its id has others.
class BlockIndex {
 public:
  /// Takes in records; those of one id in file order, within one call and from call to call.
  void Add(std::span<const BlockRecord> records);

  /// To be called behind the last of them; Find sees them all then. Reads the blocks of ids with several
  /// records from the source of the state, of which this index may be a part.
  void Settle(EngineState& state, RunContext& run);

  std::optional<BlockRecord> Find(std::uint32_t id) const;

  void Clear();

 private:
  void Merge();
  void KeepTheBestOfEachId(EngineState& state, RunContext& run);

  std::vector<BlockRecord> sorted_;   ///< by bid, in file order among equals; copies side by side are dropped
  std::vector<BlockRecord> pending_;  ///< not merged yet
};

}  // namespace velmora::engine
