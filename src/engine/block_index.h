// The look-up over the records of the source's blocks.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "engine/block_record.h"
#include "engine/run.h"
#include "engine/source.h"
#include "store/format/generation.h"

namespace velmora::engine {

/// In one sorted table in memory, one block for each id: a look-up costs O(log n).
///
/// In a large store some bytes look like a trailer by chance, and old pages of the block tree may name
/// places that now hold something else; so an id may come with several records. Of those the one counts
/// whose block proves itself best (see Proof), the first in file order among equals. That holds for the low half of an
/// id, by which the field-by-field rules look up, and for the whole id.
///
/// Memory: 16 bytes for each id once it is settled. While it is built, at most about four times as much for
/// each record: those that were taken in but not merged are never more than those that were (or 65,536),
/// and a merge works on a copy. Settling takes one byte more a record, and four where its id has others.
class BlockIndex {
 public:
  /// Takes in blocks; those of one id in file order, within one call and from call to call.
  void Add(std::span<const PlacedBlock> blocks);

  /// To be called behind the last of them; the look-ups see them all then. Reads the blocks of ids with several
  /// records.
  void Settle(const Source& source, const Generation& layout, RunContext& run);

  /// By the low half of the id.
  std::optional<BlockRecord> Find(std::uint32_t low) const;

  /// By the whole id.
  std::optional<PlacedBlock> FindExact(Bid bid) const;

 private:
  std::span<const PackedBlock> EntriesOf(std::uint32_t low) const;
  void Merge();
  void KeepTheBestOfEachId(const Source& source, const Generation& layout, RunContext& run);

  /// By the low half of the id, in file order among equals; copies side by side are dropped. Once settled, the block
  /// that counts for a low half leads, and those of other whole ids follow in the order of these.
  std::vector<PackedBlock> sorted_;
  std::vector<PackedBlock> pending_;  ///< not merged yet
};

}  // namespace velmora::engine
