// How far a block proves to be what a record of the index says.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "engine/block_index.h"

namespace velmora::engine {

struct EngineState;
struct RunContext;

/// In ascending order of trust.
enum class Proof : std::uint8_t {
  kNone,
  kTrailer,  ///< the trailer at the published place has the record's id and the signature of the block's place
  kWhole,    ///< besides, it has the record's size and the checksum of the bytes as they are stored
};

/// Proves the records that `chosen` names by their positions in `records`; all others count as kNone. The
/// result has an element for each of `records`.
///
/// The blocks are read in the order of their places, so no part of the source is read twice but for the
/// ends of its blocks, however many records point into it. Blocks of a sound store do not overlap; where
/// those of the records do, checksums are computed over as many bytes as the source has, and blocks beyond
/// that are proven by their trailers alone.
std::vector<Proof> ProveBlocks(EngineState& state, RunContext& run, std::span<const BlockRecord> records,
                               std::vector<std::uint32_t> chosen);

}  // namespace velmora::engine
