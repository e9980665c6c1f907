// The look-up over the records of the source's blocks.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "engine/block_record.h"
#include "engine/packed_list.h"
#include "engine/packed_sorter.h"
#include "engine/run.h"
#include "engine/source.h"
#include "store/format/generation.h"

namespace velmora::engine {

/// By the low half of the id. The high half is 0 as a rule, and takes one bit then.
struct PlacedBlockFields {
  using Key = std::uint64_t;

  static PackedFields Of(const PlacedBlock& block) {
    return {
        .key = LowBid(block.bid), .offset = block.offset, .marks = Value(block.bid) >> kLowBits, .size = block.size};
  }
  static PlacedBlock BlockOf(const PackedFields& fields) {
    return {fields.marks << kLowBits | fields.key, fields.size, fields.offset};
  }

 private:
  static constexpr unsigned kLowBits = 32;
};

using PlacedBlocks = PackedList<PlacedBlock, PlacedBlockFields>;

/// In one sorted list in memory, one block for each id: a look-up costs O(log n).
///
/// In a large store some bytes look like a trailer by chance, and old pages of the block tree may name
/// places that now hold something else; so an id may come with several records. Of those the one counts
/// whose block proves itself best (see Proof), the first in file order among equals. That holds for the low half of an
/// id, by which the field-by-field rules look up, and for the whole id.
///
/// Memory: about 6 bytes a record, 8 of a store whose blocks stand in no order, while it is built and behind that.
/// While it settles, a record whose id has others takes 13 bytes more, and is there twice if it stays.
class BlockIndex {
 public:
  /// Takes in blocks; those of one id in file order, within one call and from call to call.
  void Add(std::span<const PlacedBlock> blocks);

  /// To be called once, behind the last of them; the look-ups see them all then. Reads the blocks of ids with several
  /// records.
  void Settle(const Source& source, const Generation& layout, RunContext& run);

  /// By the low half of the id.
  std::optional<BlockRecord> Find(std::uint32_t low) const;

  /// By the whole id.
  std::optional<PlacedBlock> FindExact(Bid bid) const;

  /// Bytes that it takes.
  std::size_t Memory() const;

 private:
  static std::uint32_t LowIdOf(const PlacedBlock& block) { return LowBid(block.bid); }
  using Sorter = PackedSorter<PlacedBlocks, LowIdOf>;

  std::vector<PlacedBlock> pending_;  ///< not in a piece yet
  Sorter sorter_;
  /// Once settled: the block that counts for a low half leads, and those of other whole ids follow in the order of
  /// these.
  PlacedBlocks blocks_;
};

}  // namespace velmora::engine
