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
/// and a merge works on a copy. Settling takes about 30 bytes for each record whose id has others.
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
  struct Entry {
    Entry() = default;
    explicit Entry(const PlacedBlock& block)
        : bid(Value(block.bid)), offsetAndSize(block.offset << kSizeBits | (block.size & 0xFFFF)) {}

    /// Offsets are below the size of a file, or up to 64 KiB below 0 where a trailer tells so; the sign gives these
    /// back.
    PlacedBlock Block() const {
      const auto offset = static_cast<std::int64_t>(offsetAndSize) >> kSizeBits;
      return {bid, static_cast<std::uint16_t>(offsetAndSize), static_cast<std::uint64_t>(offset)};
    }

    static constexpr int kSizeBits = 16;
    std::uint64_t bid = 0;
    std::uint64_t offsetAndSize = 0;
  };
  static_assert(sizeof(Entry) == 16);

  static bool Lower(const Entry& a, const Entry& b) {
    return static_cast<std::uint32_t>(a.bid) < static_cast<std::uint32_t>(b.bid);
  }
  std::span<const Entry> EntriesOf(std::uint32_t low) const;

  void Merge();
  void KeepTheBestOfEachId(const Source& source, const Generation& layout, RunContext& run);

  /// By the low half of the id, in file order among equals; copies side by side are dropped. Once settled, the block
  /// that counts for a low half leads, and those of other whole ids follow in the order of these.
  std::vector<Entry> sorted_;
  std::vector<Entry> pending_;  ///< not merged yet
};

}  // namespace velmora::engine
