#include "engine/block_collector.h"

#include <limits>

#include "engine/block_classifier.h"
#include "engine/block_trailer.h"

namespace velmora::engine {

void BlockCollector::KeepAgain() {
  ++state_.blockRecordCount;
  ClassifyAndRecord();
}

void BlockCollector::Propose(const BlockRecord& record) {
  atHand_ = record;
  if (record.size >= kTrailerView ||
      record.offset > static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max()))
    return;
  const ByteView tail = window_.Peek(record.offset + record.size, kTrailerView - record.size);
  if (HasTrailerAt(state_.layout, record.bid, record.size, tail)) ClassifyAndRecord();
}

void BlockCollector::ClassifyAndRecord() {
  run_.control.PausePoint();
  if (smart_) ClassifyBlock(state_, window_, atHand_);
  file_.Append(atHand_);
}

}  // namespace velmora::engine
