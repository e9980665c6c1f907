// Which steps of the block scan may show a block, told from the bytes of a step and those right ahead of it alone: the
// scan goes over the whole source once more, and hardly any of its steps shows one.
#pragma once

#include <cstdint>

#include "engine/pieces_ahead.h"
#include "store/format/generation.h"

namespace velmora::engine {

inline constexpr std::uint32_t kBlockScanStep = 4096;  ///< in every format

/// What the scan takes for a trailer depends on the eight bytes ahead of a slot, and on more where these are zeros, so
/// bytes have to stand ahead of a step. As many as are given up at a time on a bad disk: pieces of the source with such
/// a lead give up what they would without one.
inline constexpr std::uint32_t kLeadOfBlockStep = 4096;

/// May the Normal Scan find anything in the step at the offset, which lies in the piece? Where it says no, there is
/// nothing.
bool MayShowBlocks(const Generation& layout, const Piece& piece, std::uint64_t offset);

}  // namespace velmora::engine
