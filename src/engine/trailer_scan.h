// Finds blocks by the trailers behind them, where no page of the block tree tells of them.
#pragma once

#include <cstdint>
#include <optional>

#include "engine/block_collector.h"
#include "engine/source_window.h"
#include "store/format/generation.h"

namespace velmora::engine {

/// Looks at every 16-byte slot as if it were a trailer. In the ANSI layout the trailer's words stand where
/// it looks; in the wide layouts it takes the halves of the id for size and signature, so there it finds
/// next to nothing.
class TrailerScan {
 public:
  /// All must outlive the object.
  TrailerScan(const Generation& layout, std::uint64_t fileSize, SourceWindow& window, BlockCollector& collector)
      : layout_(layout), fileSize_(fileSize), window_(window), collector_(collector) {}

  /// Scans the slots of `length` bytes at the offset, which the window holds as far as the file goes.
  void ScanSlots(std::uint64_t offset, std::uint32_t length);

 private:
  /// What a slot says of the block before it.
  struct Trailer {
    std::uint64_t id;
    std::uint16_t size;
    std::uint16_t signature;
  };

  template <std::size_t kIdWidth>
  void ScanWindow(std::size_t begin, std::size_t end);

  /// Records each place at which the block may begin, for the trailer at `slot` and the last byte before it
  /// that is not 0.
  void RecoverFromTrailer(std::uint64_t slot, std::uint64_t last, const Trailer& trailer);

  /// The offset of the last byte before `end` that is not 0; nothing when the file begins with zeros up to
  /// there.
  std::optional<std::uint64_t> LastNonZeroBefore(std::uint64_t end);

  const Generation& layout_;
  const std::uint64_t fileSize_;
  SourceWindow& window_;
  BlockCollector& collector_;
};

}  // namespace velmora::engine
