#include "platform/workers.h"

#include <malloc.h>

#include <algorithm>
#include <utility>

namespace velmora::platform {

unsigned DefaultJobs() { return std::max(1u, std::thread::hardware_concurrency()); }

Workers::Workers(unsigned jobs) {
#ifdef M_ARENA_MAX
  // Blocks that one thread reads another gives back: pools of each thread's own would keep tens of megabytes, and in
  // one for all they would wait for each other.
  if (jobs > 1) ::mallopt(M_ARENA_MAX, 2);
#endif
#ifdef M_MMAP_THRESHOLD
  // The large tables of the scans go back to the system when they are done with, in place of leaving gaps.
  ::mallopt(M_MMAP_THRESHOLD, 4 << 20);
#endif
#ifdef M_TRIM_THRESHOLD
  // What is read ahead and given back is asked for again at once, a page at a time if the system has it meanwhile.
  ::mallopt(M_TRIM_THRESHOLD, 4 << 20);
#endif
  for (unsigned i = 1; i < jobs; ++i) threads_.emplace_back([this] { Work(); });
}

Workers& Workers::WithoutThreads() {
  static Workers none(1);
  return none;
}

Workers::~Workers() {
  {
    const std::lock_guard lock(mutex_);
    isEnding_ = true;
  }
  started_.notify_all();
  for (std::thread& thread : threads_) thread.join();
}

std::unique_ptr<Workers::Step> Workers::Start(std::function<void()> work) {
  auto step = std::make_unique<Step>(*this, std::move(work));
  if (threads_.empty()) return step;
  {
    const std::lock_guard lock(mutex_);
    waiting_.push_back(step.get());
  }
  started_.notify_one();
  return step;
}

void Workers::Work() {
  std::unique_lock lock(mutex_);
  while (true) {
    started_.wait(lock, [&] { return isEnding_ || !waiting_.empty(); });
    if (waiting_.empty()) return;
    DoFirst(lock);
  }
}

/// Does the step that waits longest. The mutex is held before and behind it.
void Workers::DoFirst(std::unique_lock<std::mutex>& lock) {
  Step& step = *waiting_.front();
  waiting_.pop_front();
  step.state_ = Step::State::kRunning;
  lock.unlock();
  step.Run();
  lock.lock();
  step.state_ = Step::State::kDone;
  done_.notify_all();  // the step may be gone as soon as the mutex is free
}

void Workers::Step::Run() {
  try {
    work_();
  } catch (...) {
    failure_ = std::current_exception();
  }
}

void Workers::Step::Wait() {
  std::unique_lock lock(workers_.mutex_);
  if (state_ == State::kWaiting) {
    std::erase(workers_.waiting_, this);
    state_ = State::kRunning;
    lock.unlock();
    Run();
    lock.lock();
    state_ = State::kDone;
  }
  workers_.done_.wait(lock, [&] { return state_ == State::kDone; });
  if (failure_) std::rethrow_exception(failure_);
}

void Workers::Step::WorkUntilDone() {
  {
    std::unique_lock lock(workers_.mutex_);
    while (state_ != State::kDone && !workers_.waiting_.empty()) workers_.DoFirst(lock);
  }
  Wait();
}

Workers::Step::State Workers::Step::Now() const {
  const std::lock_guard lock(workers_.mutex_);
  return state_;
}

Workers::Step::~Step() {
  std::unique_lock lock(workers_.mutex_);
  if (state_ == State::kWaiting) std::erase(workers_.waiting_, this);
  workers_.done_.wait(lock, [&] { return state_ != State::kRunning; });
}

}  // namespace velmora::platform
