// What every step of a run shares: the flags, the one observer, the pause points.
#pragma once

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <optional>

#include "engine/event.h"
#include "platform/workers.h"
#include "text/text.h"

namespace velmora::engine {

/// The text log of a run, LogInformation.log. It only tells; nothing of a run depends on it.
class RunLog {
 public:
  virtual ~RunLog() = default;
  /// Appends the characters as they stand: line ends are part of the text.
  virtual void Write(text::TextView text) = 0;
};

/// Thrown through a run that is stopped for good. It is no failure: no frame of the run catches it, so it
/// does not derive from std::exception.
struct RunStopped {};

/// Thrown by a step that ends the worker after its notice and its clean-up; caught by the worker alone.
struct WorkerEnded {};

/// Holds and stops a run from another thread (or, RequestStop alone, from a signal handler).
class RunControl {
 public:
  /// Called by the worker at every page, block, node and item. Waits while the run is held; throws
  /// RunStopped when it is to stop.
  void PausePoint();

  void Hold();
  void Resume();

  /// Async-signal-safe; a worker that is held must be resumed to see it.
  void RequestStop() noexcept { stop_.store(true, std::memory_order_relaxed); }

  /// Fit for the next run: neither held nor stopped.
  void Reset();

 private:
  std::atomic<bool> stop_{false};
  std::atomic<bool> held_{false};
  std::mutex mutex_;
  std::condition_variable resumed_;
};

/// The flags and partners of a run. `runEnded` is raised by the worker as its last action and cleared by
/// the frame; `runAborted` says that a step failed and said so.
struct RunContext {
  std::atomic<bool> runEnded{false};
  std::atomic<bool> runAborted{false};
  std::atomic<bool> smartScan{false};
  RunObserver* observer = nullptr;  ///< not owned; null: nobody listens
  /// Not owned; they do what of the run needs not be done in order.
  platform::Workers* workers = &platform::Workers::WithoutThreads();
  RunLog* log = nullptr;  ///< not owned; null while the log switch is off
  RunControl control;

  /// One piece of the log, if the switch is on.
  void Log(text::TextView piece) const {
    if (log != nullptr) log->Write(piece);
  }

  void Say(const Event& event) const {
    if (observer != nullptr) observer->OnEvent(event);
  }
  void BeginStage(std::uint32_t stage);
  /// Says the number when it is another one than before.
  void SayProgress(std::uint64_t percentage, Phase phase = Phase::kLater);
  /// Says how much is copied, and the percentage of the bytes that this is, when that is another one than before.
  void SayCopied(const ItemsCopied& copied);

  /// Says why the run cannot go on, and raises `runAborted`.
  void Abort(Notice notice);

 private:
  std::optional<Progress> said_;  ///< in this stage
};

}  // namespace velmora::engine
