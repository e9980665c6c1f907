// How far a block proves to be what a record of the index says.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "engine/block_record.h"
#include "engine/run.h"
#include "engine/source.h"
#include "store/format/byte_view.h"
#include "store/format/generation.h"

namespace velmora::engine {

/// In ascending order of trust.
enum class [[nodiscard]] Proof : std::uint8_t{
    kNone,
    kTrailer,  ///< the trailer at the published place has the record's id and the signature of the block's place
    kWhole,    ///< besides, it has the record's size and the checksum of the bytes as they are stored
};

/// The end of the block with its trailer, as a file offset.
std::uint64_t EndOf(const Generation& layout, const PlacedBlock& block);

/// `bytes` begin at the block's place and have the whole block with its trailer, as far as the source goes. Of the ids
/// only the low 32 bits are compared. The checksum is taken of `mostSummed` bytes at most, and what it takes is taken
/// off.
Proof ProveBlock(const Generation& layout, const PlacedBlock& block, ByteView bytes, std::uint64_t& mostSummed);

/// Proves the blocks at the positions `chosen`; the others keep kNone. By position.
///
/// The blocks are read in the order of their places, so no part of the source is read twice but for the
/// ends of its blocks, however many records point into it. Blocks of a sound store do not overlap; where
/// those of the records do, checksums are computed over as many bytes as the source has, and blocks beyond
/// that are proven by their trailers alone.
std::vector<Proof> ProveBlocks(const Source& source, const Generation& layout, RunContext& run,
                               std::span<const PackedBlock> blocks, std::vector<std::uint32_t> chosen);

}  // namespace velmora::engine
