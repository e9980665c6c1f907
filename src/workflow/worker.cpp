#include "workflow/worker.h"

namespace velmora::workflow {

Worker::Worker(std::shared_ptr<Worker> before, engine::RunControl& control, WorkerLink& link, std::function<void()> run)
    : before_(std::move(before)),
      control_(control),
      link_(link),
      thread_([this, run = std::move(run)]() mutable { Main(std::move(run)); }) {}

Worker::~Worker() { thread_.join(); }

void Worker::Main(std::function<void()> run) {
  if (before_ != nullptr) before_->Join();
  before_.reset();
  {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [this] { return !held_ || stopped_; });
    if (!stopped_) {
      phase_ = Phase::Running;
      control_.Reset();
      link_.Reset();
    }
  }
  try {
    if (phase_ == Phase::Running) run();
  } catch (const engine::RunStopped&) {
    // Left while it had something to say that nobody listens to any more.
  }
  const std::lock_guard lock(mutex_);
  phase_ = Phase::Ended;
  changed_.notify_all();
}

void Worker::Hold() {
  const std::lock_guard lock(mutex_);
  held_ = true;
  if (phase_ != Phase::Running) return;
  control_.Hold();
  link_.Hold();
}

void Worker::Resume() {
  const std::lock_guard lock(mutex_);
  held_ = false;
  changed_.notify_all();
  if (phase_ != Phase::Running) return;
  control_.Resume();
  link_.Resume();
}

void Worker::Stop() {
  const std::lock_guard lock(mutex_);
  stopped_ = true;
  changed_.notify_all();
  if (phase_ != Phase::Running) return;
  control_.RequestStop();
  control_.Resume();
  link_.Abandon();
}

void Worker::Join() {
  std::unique_lock lock(mutex_);
  changed_.wait(lock, [this] { return phase_ == Phase::Ended; });
}

}  // namespace velmora::workflow
