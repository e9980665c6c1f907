// Which steps of the block scan may show a block, told from the bytes of a step and those right ahead of it alone: the
// scan goes over the whole source once more, and hardly any of its steps shows one.
#pragma once

#include <cstdint>

#include "engine/pieces_ahead.h"
#include "store/format/generation.h"

namespace velmora::engine {

inline constexpr std::uint32_t kBlockScanStep = 4096;  ///< in every format

/// What the scan takes for a trailer depends on the bytes ahead of a slot: at least as many have to stand ahead of a
/// step.
inline constexpr std::uint32_t kLeadOfBlockStep = 4096;

/// May the Normal Scan find anything in the step at the offset, which lies in the piece? Where it says no, there is
/// nothing.
bool MayShowBlocks(const Generation& layout, const Piece& piece, std::uint64_t offset);

}  // namespace velmora::engine
