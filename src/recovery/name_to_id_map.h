// Reads the map of a store's named properties (node 0x61) in a tolerant way of its own.
#pragma once

#include <cstdint>
#include <set>
#include <tuple>

#include "engine/block_reader.h"
#include "recovery/named_prop_map.h"
#include "recovery/property_context.h"

namespace velmora::recovery {

/// One a run. Whatever the bytes, the work is bounded: recursion ends at depth 32, a pair of blocks that was read
/// is not read again under the same block encoding (it would add nothing), and all walks of a run together look at 128
/// MiB of blocks at most, hundreds of times what the largest map takes; beyond that they find nothing more.
class NameMapReader {
 public:
  NameMapReader(const engine::ScannedStore& store, NamedPropMap& map) : store_(store), blocks_(store), map_(map) {}

  /// Adds what is not yet in the map, read in the encoding that is known by now. Nothing is reported.
  void ReadNameToIdMap(std::uint32_t bidData, std::uint32_t bidSub, CryptMethod encoding);

 private:
  enum class Walk { kNameBlocks, kNameBlocksDeep };
  enum class NextStep { kEnd, kBlockWalks };

  /// The records of a heap that is the map itself.
  NextStep ReadContext(Bytes bytes, const engine::BlockRecord& record, const PropertyContext& context);
  void ReadGuids(ByteView block, HeapRange stream);
  /// True when the entry is a numeric name with a long id that the converters may know.
  bool ReadNameEntry(ByteView block, std::uint64_t offset);
  /// Every 8 bytes of the block are tried as an entry; true when one was taken.
  bool ReadNameEntries(ByteView block, std::uint64_t size);

  bool WalkNameBlocks(std::uint32_t bid, int depth = 1) { return WalkBlocks(Walk::kNameBlocks, bid, depth); }
  bool WalkNameBlocksDeep(std::uint32_t bid, int depth = 1) { return WalkBlocks(Walk::kNameBlocksDeep, bid, depth); }
  bool WalkBlocks(Walk walk, std::uint32_t bid, int depth);
  bool WalkListed(Walk walk, std::uint32_t bid, const engine::BlockRecord& outer, int depth);
  bool StepThroughSlots(ByteView block, std::uint32_t size, int depth);
  void FallbackWalks(std::uint16_t word, std::uint32_t bidData, std::uint32_t bidSub);

  /// Bytes of a block that the walks may still look at; false when there are none left.
  bool Take(std::uint64_t count);

  const engine::ScannedStore& store_;
  engine::BlockReader blocks_;
  NamedPropMap& map_;
  CryptMethod encoding_ = CryptMethod::kNone;
  std::set<std::tuple<std::uint32_t, std::uint32_t, CryptMethod>> read_;
  std::uint64_t left_ = std::uint64_t{128} << 20;
};

}  // namespace velmora::recovery
