// What a file shows of stores wherever in it they lie: headers, maps, tree pages and blocks whose checksum fits, and
// what each of them tells of the offset at which it was written.
//
// A store that stands where it was written needs none of this. It is for files from which the front is missing, that
// begin with something else, or that hold several stores: there things may begin at any byte.
#pragma once

#include <cstdint>
#include <vector>

#include "engine/run.h"
#include "engine/source.h"
#include "store/format/generation.h"

namespace velmora::engine {

enum class MarkKind : std::uint8_t { kHeader, kMap, kPage, kBlock };

struct Mark {
  std::uint64_t place = 0;  ///< of its first byte in the file
  std::uint64_t id = 0;     ///< of a page or block; a map has its offset for one, a header the length of its file
  std::uint32_t size = 0;   ///< with padding and trailer
  std::uint32_t crc = 0;
  std::uint16_t sig = 0;
  MarkKind kind = MarkKind::kBlock;
  FormatId format = FORMAT_UNICODE;

  friend auto operator<=>(const Mark&, const Mark&) = default;
};

/// Where the first byte of a store lies in the file; ahead of the file's own where the front of the store is missing.
using Origin = std::int64_t;

/// The offset in its store, for a store that begins there.
constexpr std::uint64_t OffsetOf(const Mark& mark, Origin origin) {
  return mark.place - static_cast<std::uint64_t>(origin);
}

/// What its offset in the store is a multiple of.
std::uint32_t StepOf(const Mark& mark);

/// Whether it may have been written into a store that begins there.
bool MayBeOf(const Mark& mark, Origin origin);

/// By ascending place. In a large file only some of those that stand close together.
std::vector<Mark> FindMarks(const Source& source, RunContext& run);

}  // namespace velmora::engine
