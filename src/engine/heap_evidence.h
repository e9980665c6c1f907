// What the first bytes of a heap tell: that it is one, and how the store encodes its blocks.
#pragma once

#include <cstdint>
#include <optional>

#include "engine/block_record.h"
#include "engine/source.h"
#include "store/format/encoding.h"

namespace velmora::engine {

/// "pst", "ost", "pab" or the empty text, by the client magic; branches on it are exact.
enum class StoreKind { kNone, kPst, kOst, kPab };

/// 0xBCEC property context, 0x7CEC table context, 0x8CEC and 0xECEC: the word at offset 2 of a heap.
bool IsHeapSignature(std::uint16_t word);

/// May a heap with this signature be read? "ost": all four; "pst": 0xBCEC; other kinds: `whenOther`.
bool AcceptsSignature(StoreKind kind, std::uint16_t word, bool whenOther);

/// Tries none, permutative, cyclic on the first four bytes of the block until a heap signature that the
/// store kind accepts appears; nothing when none does.
std::optional<CryptMethod> DetectEncoding(const Source& source, StoreKind kind, const BlockRecord& block);

}  // namespace velmora::engine
