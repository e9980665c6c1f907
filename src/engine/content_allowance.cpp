#include "engine/content_allowance.h"

#include <algorithm>

namespace velmora::engine {

ContentAllowance::ContentAllowance(std::uint64_t sourceBytes, bool packed, std::uint64_t nodesAndBlocks)
    : bytes_(std::max(kLeastBytes, sourceBytes * (packed ? kPackedTimesOver : kTimesOver))),
      parts_(std::max(kLeastParts, nodesAndBlocks * kPartsEach)),
      heldByNode_(std::clamp(sourceBytes, kLeastHeld, kMostHeld)),
      held_(heldByNode_),
      kept_(kLeastKept + sourceBytes),
      losses_(kLeastLosses + sourceBytes / kBytesOfLoss) {}

ContentAllowance ContentAllowance::Of(const ScannedStore& store, std::uint32_t nodesLeft) {
  return {store.source.Size(), store.layout.formatId == FORMAT_UNICODE_4K,
          std::uint64_t{nodesLeft} + store.blockRecordCount};
}

ContentAllowance ContentAllowance::ForReport(const ScannedStore& store) {
  return {store.source.Size() / kTimesOver, false, 0};
}

void ContentAllowance::BeginNode() {
  bytesOfNode_ = kBytesOfNode;
  held_ = heldByNode_;
}

bool ContentAllowance::TakeBytes(std::uint64_t count) {
  const std::uint64_t ofNode = std::min(count, bytesOfNode_);
  bytesOfNode_ -= ofNode;
  return Take(bytes_, count - ofNode);
}

bool ContentAllowance::Take(std::uint64_t& left, std::uint64_t count) {
  if (count > left) {
    left = 0;
    return false;
  }
  left -= count;
  return true;
}

}  // namespace velmora::engine
