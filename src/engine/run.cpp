#include "engine/run.h"

namespace velmora::engine {

void RunControl::PausePoint() {
  if (held_.load(std::memory_order_relaxed)) {
    std::unique_lock lock(mutex_);
    resumed_.wait(lock, [this] { return !held_.load(std::memory_order_relaxed); });
  }
  if (stop_.load(std::memory_order_relaxed)) throw RunStopped{};
}

void RunControl::Hold() {
  const std::lock_guard lock(mutex_);
  held_.store(true, std::memory_order_relaxed);
}

void RunControl::Resume() {
  {
    const std::lock_guard lock(mutex_);
    held_.store(false, std::memory_order_relaxed);
  }
  resumed_.notify_all();
}

void RunControl::Reset() {
  stop_.store(false, std::memory_order_relaxed);
  Resume();
}

void RunContext::BeginStage(std::uint32_t stage) {
  said_.reset();
  Say(StageBegun{stage});
}

void RunContext::SayProgress(std::uint64_t percentage, Phase phase) {
  const Progress progress{static_cast<std::uint32_t>(percentage), phase};
  if (said_ == progress) return;
  said_ = progress;
  Say(progress);
}

void RunContext::SayCopied(const ItemsCopied& copied) {
  const std::uint64_t percentage = copied.bytesTotal == 0 ? 100 : copied.bytes * 100 / copied.bytesTotal;
  if (said_ && said_->percentage == percentage) return;
  Say(copied);
  SayProgress(percentage);
}

void RunContext::Abort(Notice notice) {
  Say(notice);
  runAborted = true;
}

}  // namespace velmora::engine
