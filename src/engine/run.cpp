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

void RunContext::ShowError(text::TextView message) const {
  Send(MSG_ERROR_NOTICE);
  if (observer != nullptr) observer->OnBox(BoxKind::kError, u"Error", message);
}

void RunContext::ShowInformation(text::TextView message) const {
  if (observer != nullptr) observer->OnBox(BoxKind::kInformation, u"Information", message);
}

}  // namespace velmora::engine
