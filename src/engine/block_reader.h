// Finds a block by its id, reads it, undoes its encoding and, in the 4K format, inflates it.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "engine/block_index.h"
#include "store/format/byte_view.h"

namespace velmora::engine {

struct EngineState;

/// 0xBCEC property context, 0x7CEC table context, 0x8CEC and 0xECEC: the word at offset 2 of a heap.
bool IsHeapSignature(std::uint16_t word);

/// Works on the state of one run; keeps nothing of its own, so it may be made wherever it is needed.
class BlockReader {
 public:
  explicit BlockReader(EngineState& state) : state_(state) {}

  /// The record of a block; nothing for id 0 or an unknown id. Nothing is tried in its place.
  std::optional<BlockRecord> FindBlock(std::uint32_t id) const;

  /// The callers' rule: `id`, else `id - 1`, since an id in a table may carry a low bit that the index lacks.
  std::optional<BlockRecord> FindBlockOrLower(std::uint32_t id) const;

  /// `length` bytes at the offset; a short read at the end of the file leaves zeros behind the data.
  /// Nothing when the read failed. `delivered`, if given, gets the number of bytes that the file had.
  std::optional<Bytes> ReadChunk(std::uint64_t offset, std::uint32_t length, std::uint32_t* delivered = nullptr) const;

  /// Tries none, permutative, cyclic on the first four bytes of the block until a heap signature that the
  /// store kind accepts appears; sets `blockEncoding` and returns true then, else changes nothing.
  /// `encodingUnknown` is the caller's to clear.
  bool DetectEncoding(std::uint32_t id, std::uint64_t offset, std::uint32_t size);

  /// Decodes in place with the run's encoding; the cyclic key is `id`.
  void DecodeBlock(std::uint32_t id, std::span<std::byte> bytes) const;

  /// Replaces the bytes by their inflated content (at most 100,000 bytes in, 200,000 out, one inflate call)
  /// and returns the new size, which is 0 for a stream that is not valid. In formats other than 4K it
  /// changes nothing and returns the size.
  std::uint32_t InflateBlock(Bytes& bytes) const;

  /// May a heap with this signature be read? "ost": all four; "pst": 0xBCEC; other kinds: `whenOther`.
  bool AcceptsSignature(std::uint16_t word, bool whenOther) const;

 private:
  EngineState& state_;
};

}  // namespace velmora::engine
