// The queue between the worker's thread and the windows.
#pragma once

#include <QObject>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <functional>
#include <mutex>

#include "engine/run.h"

namespace velmora::workflow {

/// Queues what a worker says for the thread of the windows, which takes it in order; the worker goes on meanwhile.
/// It waits where it must find the windows up to date: behind a notice, at the closing stage and at the end of the
/// run; and while they are far behind. Of two percentages in a row that nobody has taken, the newer one counts.
///
/// While the link is held nothing is handed over, so that a window's question stands over a page that does not
/// change. A worker that is abandoned leaves its call by engine::RunStopped, so that no thread ever waits
/// for one that waits for it.
class WorkerLink : public QObject, public engine::RunObserver {
  Q_OBJECT

 public:
  using EventHandler = std::function<void(const engine::Event&)>;

  /// To be made in the thread of the windows, in which the handler is called.
  explicit WorkerLink(EventHandler onEvent);

  // Called by the worker.
  void OnEvent(const engine::Event& event) override;

  /// Calls something in the thread of the windows, behind all that was said before, and waits for it. Throws
  /// engine::RunStopped when the worker is abandoned meanwhile; the call may still be under way then, so it owns
  /// what it needs.
  void CallAndWait(std::function<void()> call);

  // Called in the thread of the windows.
  void Hold();
  void Resume();
  void Abandon();

  /// Fit for the next worker; called before it says anything.
  void Reset();

 private:
  struct QueuedCall {
    std::function<void()> call;
    bool isPercentage = false;
  };

  void Enqueue(std::unique_lock<std::mutex>& lock, QueuedCall next);
  void Serve();
  void PostServe();

  EventHandler onEvent_;

  std::mutex mutex_;
  std::condition_variable changed_;
  std::deque<QueuedCall> queue_;
  std::uint64_t queued_ = 0;  ///< number of the last call that was queued
  std::uint64_t done_ = 0;    ///< number of the last call that has returned
  bool posted_ = false;       ///< a call of Serve is on its way
  bool held_ = false;
  bool abandoned_ = false;
};

}  // namespace velmora::workflow
