#include "complete/read_ahead.h"

#include <algorithm>

namespace velmora::complete {
namespace {

/// More batches than this would take more memory than they save time.
constexpr std::size_t kMostBatches = 8;

/// How many messages fill a batch nobody knows: the last one tells.
constexpr std::size_t kFewestMessages = 4;
constexpr std::size_t kFirstMessages = 32;
constexpr std::size_t kMostMessages = 512;

}  // namespace

ReadAhead::ReadAhead(const LiveStore& source, bool keepStored, platform::Workers& workers,
                     std::span<const ndb::NodeEntry> nodes, std::function<bool(const ndb::NodeEntry&)> isWanted)
    : source_(source),
      keepStored_(keepStored),
      workers_(workers),
      nodes_(nodes),
      isWanted_(std::move(isWanted)),
      messagesOfBatch_(kFirstMessages) {}

ReadAhead::~ReadAhead() { source_.Use(nullptr); }

void ReadAhead::Start() {
  Batch& batch = batches_.emplace_back();
  for (; next_ < nodes_.size() && batch.messages.size() < messagesOfBatch_; ++next_) {
    if (isWanted_(nodes_[next_])) batch.messages.push_back(nodes_[next_].trees);
  }
  batch.end = next_;
  batch.step = workers_.Start([this, &batch] {
    batch.blocks = std::make_unique<engine::BlocksAhead>(source_.Found(), batch.messages, keepStored_);
  });
}

void ReadAhead::Reach(std::size_t index) {
  const bool isNew = batches_.empty() || batches_.front().end <= index;
  while (!batches_.empty() && batches_.front().end <= index) {
    source_.Use(nullptr);
    batches_.pop_front();
  }
  if (!isNew) return;
  const std::size_t ahead = std::min<std::size_t>(workers_.Jobs(), kMostBatches);
  while (next_ < nodes_.size() && batches_.size() < ahead) Start();
  if (batches_.empty()) return;
  Batch& batch = batches_.front();
  // Whoever would wait for another one to read it reads one more meanwhile.
  if (batch.step->Now() == platform::Workers::Step::State::kRunning && next_ < nodes_.size()) Start();
  batch.step->WorkUntilDone();
  source_.Use(batch.blocks.get());
  if (batch.blocks->IsFull()) messagesOfBatch_ = std::max(messagesOfBatch_ * 3 / 4, kFewestMessages);
  if (batch.blocks->HasRoom()) messagesOfBatch_ = std::min(messagesOfBatch_ * 5 / 4, kMostMessages);
}

}  // namespace velmora::complete
