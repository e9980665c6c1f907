// The trailer behind a block's data: the two ways in which the scans look for it.
#pragma once

#include <cstdint>

#include "engine/zero_runs.h"
#include "store/format/byte_view.h"
#include "store/format/checksum.h"
#include "store/format/generation.h"

namespace velmora::engine {

// Numbers of these rules, whatever the generation has.

/// Most bytes behind a block's data in which HasBlockTrailer looks.
constexpr std::uint32_t kTrailerReach = 8176;

/// Bytes from the start of a block that HasTrailerAt sees.
constexpr std::uint32_t kTrailerView = 8196;

/// Does a valid trailer stand in the first 16-byte slot that is not all zeros behind the data? `tail` are
/// the bytes of the block at `offset` from the next multiple of 16 of its size on.
inline bool HasBlockTrailer(const Generation& layout, std::uint64_t offset, ByteView tail) {
  const auto first = FirstNonZero(tail.Bytes(), 0);
  if (!first) return false;
  const std::uint64_t slot = (*first + 1) / 16 * 16;
  const std::uint16_t signature = tail.U16(slot + (layout.wideFormat ? 2 : 6));
  return signature != 0 && signature == ComputeSig(offset, tail.U32(slot + 8));
}

/// Does a trailer of this id and size stand right behind the data, or at the first byte that is not zero
/// from the third byte on? `tail` are the bytes behind the data, as far as they lie among the first
/// kTrailerView bytes of the block. In place, since a Smart Scan asks it for every 16 bytes of the file.
inline bool HasTrailerAt(std::uint32_t pitch, std::uint32_t id, std::uint32_t size, ByteView tail) {
  const auto fits = [&](std::size_t at) {
    return tail.U16(at) == size && tail.U32(at + pitch) == id && tail.U8(at + 2) != 0 && tail.U8(at + 3) != 0;
  };
  if (fits(0)) return true;
  const auto next = FirstNonZero(tail.Bytes(), 2);
  return next && fits(*next);
}

}  // namespace velmora::engine
