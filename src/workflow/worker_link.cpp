#include "workflow/worker_link.h"

#include <QThread>
#include <chrono>
#include <utility>
#include <vector>

#include "workflow/panes/run_message.h"

namespace velmora::workflow {
namespace {

using Clock = std::chrono::steady_clock;

/// A worker that is this far ahead of the windows waits for them.
constexpr std::size_t kQueueLimit = 1000;

/// Between two turns the windows take what their user does.
constexpr auto kTurn = std::chrono::milliseconds(20);

/// What follows in the worker's thread counts on the windows having dealt with it: the session is closed behind the
/// closing stage, and folders of the new store can be opened behind the end.
bool WaitsForTheWindows(const engine::Event& event) {
  const auto* begun = std::get_if<engine::StageBegun>(&event);
  return (begun != nullptr && begun->stage == kClosingStage) || std::holds_alternative<engine::Notice>(event) ||
         std::holds_alternative<engine::ListCleared>(event) || std::holds_alternative<engine::Done>(event);
}

bool IsShownPercentage(const engine::Event& event) {
  const auto* progress = std::get_if<engine::Progress>(&event);
  return progress != nullptr && progress->percentage <= kLastPercentage;
}

}  // namespace

WorkerLink::WorkerLink(EventHandler onEvent) : onEvent_(std::move(onEvent)) {}

void WorkerLink::OnEvent(const engine::Event& event) {
  if (QThread::currentThread() == thread()) return onEvent_(event);
  std::function<void()> call = [this, event] { onEvent_(event); };
  if (const auto* known = std::get_if<engine::FoldersKnown>(&event)) {
    call = [this, top = known->topFolderNid,
            folders = std::vector<engine::FolderRecord>(known->folders.begin(), known->folders.end())] {
      onEvent_(engine::FoldersKnown{folders, top});
    };
  }
  if (WaitsForTheWindows(event)) return CallAndWait(std::move(call));
  std::unique_lock lock(mutex_);
  Enqueue(lock, {std::move(call), IsShownPercentage(event)});
}

void WorkerLink::CallAndWait(std::function<void()> call) {
  if (QThread::currentThread() == thread()) return call();
  std::unique_lock lock(mutex_);
  Enqueue(lock, {std::move(call)});
  changed_.wait(lock, [this, number = queued_] { return done_ >= number || abandoned_; });
  if (abandoned_) throw engine::RunStopped{};
}

void WorkerLink::Enqueue(std::unique_lock<std::mutex>& lock, QueuedCall next) {
  changed_.wait(lock, [this] { return queue_.size() < kQueueLimit || abandoned_; });
  if (abandoned_) throw engine::RunStopped{};
  if (next.isPercentage && !queue_.empty() && queue_.back().isPercentage) {
    queue_.back() = std::move(next);
    return;
  }
  queue_.push_back(std::move(next));
  ++queued_;
  PostServe();
}

void WorkerLink::PostServe() {
  if (std::exchange(posted_, true)) return;
  QMetaObject::invokeMethod(
      this, [this] { Serve(); }, Qt::QueuedConnection);
}

void WorkerLink::Serve() {
  const Clock::time_point end = Clock::now() + kTurn;
  std::unique_lock lock(mutex_);
  posted_ = false;
  while (!queue_.empty() && !held_) {
    if (Clock::now() >= end) return PostServe();
    const QueuedCall next = std::move(queue_.front());
    const std::uint64_t number = queued_ - queue_.size() + 1;
    queue_.pop_front();
    // A box that the call opens has a loop of its own, which serves what comes behind the call.
    if (!queue_.empty()) PostServe();
    lock.unlock();
    next.call();
    lock.lock();
    done_ = std::max(done_, number);
    changed_.notify_all();
  }
}

void WorkerLink::Hold() {
  const std::lock_guard lock(mutex_);
  held_ = true;
}

void WorkerLink::Resume() {
  const std::lock_guard lock(mutex_);
  held_ = false;
  if (!queue_.empty()) PostServe();
}

void WorkerLink::Abandon() {
  const std::lock_guard lock(mutex_);
  held_ = false;
  abandoned_ = true;
  queue_.clear();
  changed_.notify_all();
}

void WorkerLink::Reset() {
  const std::lock_guard lock(mutex_);
  queue_.clear();
  held_ = abandoned_ = false;
}

}  // namespace velmora::workflow
