// Pieces of a source in memory, whose bytes are given away a block at a time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <span>
#include <vector>

#include "engine/source.h"

namespace velmora::engine {

class PiecesRead {
 public:
  explicit PiecesRead(const Source& source) : source_(source) {}

  /// Reads what lies from one offset up to another. What cannot be read is zeros.
  void Read(std::uint64_t begin, std::uint64_t end);

  /// Where the next piece begins, from that offset on; the largest offset where none does. What is read ahead of it does
  /// not reach into it, or else some of it is not found any more.
  std::uint64_t NextBegin(std::uint64_t offset) const;

  /// Whether one piece holds all of these bytes.
  bool Holds(std::uint64_t offset, std::size_t size) const;

  /// The bytes at an offset, for whoever asks first, who may change them: none where no piece holds them all or others
  /// have a part of them. They live as long as this object.
  std::span<std::byte> Claim(std::uint64_t offset, std::size_t size);

 private:
  struct Piece {
    std::unique_ptr<std::byte[]> bytes;
    std::size_t size = 0;
    std::vector<std::uint8_t> claimed;  ///< a flag for each unit that is counted from the piece's begin
  };

  /// By the offset of the first byte.
  std::map<std::uint64_t, Piece> pieces_;
  const Source& source_;
};

}  // namespace velmora::engine
