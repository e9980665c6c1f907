// Takes in what the block scan finds: classifies, counts and records it.
#pragma once

#include <cstdint>

#include "engine/block_trailer.h"
#include "engine/index_file.h"
#include "engine/run.h"
#include "engine/source_window.h"
#include "engine/store_scan.h"

namespace velmora::engine {

/// The Smart Scan's look into a block: is it a message that no node refers to? Lists the block in `orphans` if it looks
/// like a message (a heap signature, or a sub-node block that begins with an attachment table) and no node refers to
/// it; true when it was listed. While the encoding of the store is unknown, a block with a sound trailer also serves to
/// detect it.
bool ClassifyBlock(StoreScan& scan, SourceWindow& window, const PlacedBlock& block);

/// Remembers the block at hand, which is the last one that was kept or proposed, since a trailer whose
/// block would lie outside the file records that one again.
class BlockCollector {
 public:
  BlockCollector(StoreScan& scan, RunContext& run, SourceWindow& window, IndexFile& file)
      : scan_(scan),
        run_(run),
        window_(window),
        file_(file),
        fileSize_(scan.found->source.Size()),
        smart_(run.smartScan) {}

  /// Makes the block the one at hand and keeps it.
  void Keep(const PlacedBlock& block) {
    atHand_ = block;
    KeepAgain();
  }

  /// Keeps the block at hand: classified in a Smart Scan, counted, recorded.
  void KeepAgain();

  /// Smart Scan only: makes the block the one at hand, and records it, without counting it, if a trailer
  /// of its id and size stands behind it.
  void Propose(const PlacedBlock& block) {
    atHand_ = block;
    if (block.size >= kTrailerView || block.offset >= fileSize_) return;
    const ByteView tail = window_.Peek(block.offset + block.size, kTrailerView - block.size);
    if (HasTrailerAt(scan_.found->layout.idWidth, LowBid(block.bid), block.size, tail)) ClassifyAndRecord();
  }

  bool IsSmart() const { return smart_; }

 private:
  void ClassifyAndRecord();

  StoreScan& scan_;
  RunContext& run_;
  SourceWindow& window_;
  IndexFile& file_;
  const std::uint64_t fileSize_;
  const bool smart_;
  PlacedBlock atHand_;
};

}  // namespace velmora::engine
