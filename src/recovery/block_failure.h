// Why a node or block gave nothing: the failure is made where it happens, and the report says it.
#pragma once

#include <cstdint>
#include <string_view>

#include "engine/block_record.h"
#include "platform/failure.h"
#include "store/format/ids.h"
#include "text/text.h"

namespace velmora::recovery {

using platform::Failure;
using platform::FailureKind;

/// The reason of what was not tried because the allowance was spent.
inline constexpr text::TextView kClaimsTooMuch = u"the store claims more than it can hold";
Failure TooMuchClaimed();

/// Bit 1 of an id marks the blocks that name other blocks: lists of a value's pieces, lists of sub-nodes. It only
/// serves the report: what a block is, its first bytes tell.
constexpr bool IsInternalBid(std::uint32_t bid) { return IsInternal(Bid{bid}); }

/// No record of that id, or no id.
Failure BlockNotFound(std::uint32_t bid);

/// What is wrong with a block, said behind its id and place: "could not be read".
Failure BlockFailure(FailureKind kind, const engine::BlockRecord& record, std::string_view why);

/// The system could not read it.
Failure BlockNotRead(const engine::BlockRecord& record);

/// What is said without naming a block: "it has no name".
Failure PlainFailure(FailureKind kind, std::string_view why);

/// In the report's words: "its data block 0x1184 at offset 24000 could not be read".
text::Text ReasonOf(const Failure& failure);

/// A number as people write it in this trade: "0x1184".
text::Text HexOf(std::uint64_t number);
text::Text DecimalOf(std::uint64_t number);

}  // namespace velmora::recovery
