#include "workflow/worker_link.h"

#include <QThread>

namespace velmora::workflow {

WorkerLink::WorkerLink(MessageHandler onMessage, BoxHandler onBox)
    : onMessage_(std::move(onMessage)), onBox_(std::move(onBox)) {}

void WorkerLink::OnMessage(const engine::RunMessage& message) {
  CallAndWait([this, message] { onMessage_(message); });
}

void WorkerLink::OnBox(engine::BoxKind kind, text::TextView title, text::TextView message) {
  CallAndWait([this, kind, title = text::Text(title), message = text::Text(message)] { onBox_(kind, title, message); });
}

void WorkerLink::CallAndWait(std::function<void()> call) {
  if (QThread::currentThread() == thread()) return call();
  std::unique_lock lock(mutex_);
  if (abandoned_) throw engine::RunStopped{};
  pending_ = std::move(call);
  const std::uint64_t number = ++asked_;
  Summon();
  changed_.wait(lock, [&] { return answered_ == number || abandoned_; });
  if (!abandoned_) return;
  pending_.reset();
  throw engine::RunStopped{};
}

void WorkerLink::Summon() {
  QMetaObject::invokeMethod(
      this, [this] { Serve(); }, Qt::QueuedConnection);
}

void WorkerLink::Serve() {
  std::unique_lock lock(mutex_);
  if (!pending_ || held_) return;
  const std::function<void()> call = std::move(*pending_);
  const std::uint64_t number = asked_;
  pending_.reset();
  lock.unlock();
  call();
  lock.lock();
  answered_ = number;
  changed_.notify_all();
}

void WorkerLink::Hold() {
  const std::lock_guard lock(mutex_);
  held_ = true;
}

void WorkerLink::Resume() {
  const std::lock_guard lock(mutex_);
  held_ = false;
  if (pending_) Summon();
}

void WorkerLink::Abandon() {
  const std::lock_guard lock(mutex_);
  held_ = false;
  abandoned_ = true;
  changed_.notify_all();
}

void WorkerLink::Reset() {
  const std::lock_guard lock(mutex_);
  pending_.reset();
  held_ = abandoned_ = false;
}

}  // namespace velmora::workflow
