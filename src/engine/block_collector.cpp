#include "engine/block_collector.h"

#include "engine/block_classifier.h"

namespace velmora::engine {

void BlockCollector::KeepAgain() {
  ++scan_.found->blockRecordCount;
  ClassifyAndRecord();
}

void BlockCollector::ClassifyAndRecord() {
  run_.control.PausePoint();
  if (smart_) ClassifyBlock(scan_, window_, atHand_);
  file_.Append(atHand_);
}

}  // namespace velmora::engine
