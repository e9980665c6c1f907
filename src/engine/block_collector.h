// Takes in what the block scan finds: classifies, counts and records it.
#pragma once

#include <cstdint>

#include "engine/block_index.h"
#include "engine/block_trailer.h"
#include "engine/engine_state.h"
#include "engine/index_file.h"
#include "engine/run.h"
#include "engine/source_window.h"

namespace velmora::engine {

/// Remembers the record at hand, which is the last one that was kept or proposed, since a trailer whose
/// block would lie outside the file records that one again.
class BlockCollector {
 public:
  BlockCollector(EngineState& state, RunContext& run, SourceWindow& window, IndexFile& file)
      : state_(state),
        run_(run),
        window_(window),
        file_(file),
        fileSize_(state.source->Size()),
        smart_(run.smartScan) {}

  /// Makes the record the one at hand and keeps it.
  void Keep(const BlockRecord& record) {
    atHand_ = record;
    KeepAgain();
  }

  /// Keeps the record at hand: classified in a Smart Scan, counted, recorded.
  void KeepAgain();

  /// Smart Scan only: makes the record the one at hand, and records it, without counting it, if a trailer
  /// of its id and size stands behind it.
  void Propose(const BlockRecord& record) {
    atHand_ = record;
    if (record.size >= kTrailerView || record.offset >= fileSize_) return;
    const ByteView tail = window_.Peek(record.offset + record.size, kTrailerView - record.size);
    if (HasTrailerAt(state_.layout.Pitch(), record.bid, record.size, tail)) ClassifyAndRecord();
  }

  bool IsSmart() const { return smart_; }

 private:
  void ClassifyAndRecord();

  EngineState& state_;
  RunContext& run_;
  SourceWindow& window_;
  IndexFile& file_;
  const std::uint64_t fileSize_;
  const bool smart_;
  BlockRecord atHand_;
};

}  // namespace velmora::engine
