// Why a node or block gave nothing: found where it happens, and carried to the report unchanged.
#pragma once

#include <cstdint>

#include "engine/block_record.h"
#include "store/format/ids.h"
#include "text/text.h"

namespace velmora::recovery {

/// The reason of what was not tried because the allowance was spent.
inline constexpr text::TextView kClaimsTooMuch = u"the store claims more than it can hold";

/// Bit 1 of an id marks the blocks that name other blocks: lists of a value's pieces, lists of sub-nodes. It only
/// serves the report: what a block is, its first bytes tell.
constexpr bool IsInternalBid(std::uint32_t bid) { return IsInternal(Bid{bid}); }

struct BlockFault {
  enum class Cause {
    kNotFound,     ///< no record of that id
    kNotRead,      ///< the system could not read it
    kCutOff,       ///< it lies beyond the end of the source, or its end does
    kNotInflated,  ///< stored as a packed stream, it seems, but it is none
    kList,         ///< a list of blocks: of a heap in several blocks not even the first is read
    kSignature,    ///< not the signature of what was looked for
    kBrokenHeap,   ///< the signature is right; the heap or the tree in it is not
    kTooMuch,      ///< not read: the store claims more than it can hold
    // Of lists of sub-nodes
    kOverfull,    ///< more entries than it can hold
    kUpperLevel,  ///< a list of lists
    // Of folders
    kNoEncoding,  ///< looked at before the encoding of the store was known
    kMessage,     ///< the block of a message
    kOutside,     ///< its name or class is not in the block
    kNoName,
    kNoText,  ///< its name is empty, or does not look like text
  };

  Cause cause = Cause::kNotFound;
  std::uint32_t bid = 0;
  std::uint64_t offset = 0;     ///< in the source; means nothing of a block that was not found
  std::uint16_t signature = 0;  ///< the word found where one was looked for

  static BlockFault NotFound(std::uint32_t bid) { return {.cause = Cause::kNotFound, .bid = bid}; }
  static BlockFault Of(Cause cause, const engine::BlockRecord& record, std::uint16_t signature = 0) {
    return {cause, record.bid, record.offset, signature};
  }

  friend bool operator==(const BlockFault&, const BlockFault&) = default;
};

/// In plain words: "its data block 0x1184 at offset 24000 could not be read".
text::Text TextOf(const BlockFault& fault);

/// A number as people write it in this trade: "0x1184".
text::Text HexOf(std::uint64_t number);
text::Text DecimalOf(std::uint64_t number);

}  // namespace velmora::recovery
