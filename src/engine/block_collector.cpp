#include "engine/block_collector.h"

#include "engine/block_classifier.h"

namespace velmora::engine {

void BlockCollector::KeepAgain() {
  ++state_.blockRecordCount;
  ClassifyAndRecord();
}

void BlockCollector::ClassifyAndRecord() {
  run_.control.PausePoint();
  if (smart_) ClassifyBlock(state_, window_, atHand_);
  file_.Append(atHand_);
}

}  // namespace velmora::engine
