// A block as the bytes of a file show it.
#pragma once

#include <cstdint>

#include "store/format/ids.h"

namespace velmora::engine {

/// How far a page or block can be relied on.
enum class Grade : std::uint8_t {
  kProven,  ///< signature and checksum fit
  kMoved,   ///< the checksum fits: whole, but not where it was written, so that the places in pages may be wrong for it
  kNamed,   ///< a block that only the block tree tells of: its place and size are known, its content is not proven
  kHurt,    ///< the signature fits, the checksum does not: some of its bytes are wrong
};

/// What a block is, by its bytes.
enum class BlockKind : std::uint8_t {
  kData,
  kPropertyContext,  ///< the first block of a heap with properties
  kTable,            ///< the first block of a heap with a table
  kPacked,           ///< data that was not inflated yet to tell which of these it is (EvidenceBlocks::KindOf does)
  kList,             ///< XBLOCK or XXBLOCK: a list of data blocks
  kSubnodes,         ///< SLBLOCK or SIBLOCK: a list of sub-nodes
};

struct FoundBlock {
  Bid bid{};                 ///< canonical
  std::uint64_t offset = 0;  ///< of its first byte in the file
  std::uint16_t cb = 0;      ///< bytes of data as stored
  BlockKind kind = BlockKind::kData;
  Grade grade = Grade::kProven;
  bool isNamed = false;  ///< another block names it: it is no block that a node entry would name as its data or list

  bool operator==(const FoundBlock&) const = default;
};

/// Whether all bytes of a block are those that were written.
constexpr bool IsWhole(const FoundBlock& block) {
  return block.grade == Grade::kProven || block.grade == Grade::kMoved;
}

}  // namespace velmora::engine
