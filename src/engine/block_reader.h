// The block reader of the field-by-field rules: finds a block by the low half of its id, reads it as it is stored,
// undoes its encoding and, in the 4K format, inflates it. It takes nothing for proven.
#pragma once

#include <cstdint>
#include <optional>
#include <span>

#include "engine/scanned_store.h"
#include "store/format/byte_view.h"

namespace velmora::engine {

/// Keeps nothing of its own, so it may be made wherever it is needed.
class BlockReader {
 public:
  explicit BlockReader(const ScannedStore& store) : store_(store) {}

  /// The record of a block; nothing for id 0 or an unknown id. Nothing is tried in its place.
  std::optional<BlockRecord> FindBlock(std::uint32_t id) const;

  /// The callers' rule: `id`, else `id - 1`, since an id in a table may carry a low bit that the index lacks.
  std::optional<BlockRecord> FindBlockOrLower(std::uint32_t id) const;

  /// `length` bytes at the offset; a short read at the end of the file leaves zeros behind the data.
  /// Nothing when the read failed.
  std::optional<Bytes> ReadChunk(std::uint64_t offset, std::uint32_t length) const;

  /// Decodes in place with the encoding of the store; the cyclic key is `id`.
  void DecodeBlock(std::uint32_t id, std::span<std::byte> bytes) const;

  /// Replaces the bytes by their inflated content (at most 100,000 bytes in, 200,000 out, one inflate call)
  /// and returns the new size, which is 0 for a stream that is not valid. In formats other than 4K it
  /// changes nothing and returns the size.
  std::uint32_t InflateBlock(Bytes& bytes) const;

 private:
  const ScannedStore& store_;
};

}  // namespace velmora::engine
