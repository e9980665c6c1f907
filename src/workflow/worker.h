// The thread of one run.
#pragma once

#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>

#include "engine/run.h"
#include "workflow/worker_link.h"

namespace velmora::workflow {

/// Runs one conversion. It begins once the run before it has ended, since both use one engine object. Held
/// and stopped by the windows, at the pause points of the run and wherever it waits for the windows.
class Worker {
 public:
  /// Starts at once. `before` is the worker of the run before it, or null. `control` and `link` outlive this.
  Worker(std::shared_ptr<Worker> before, engine::RunControl& control, WorkerLink& link, std::function<void()> run);

  /// Waits until the run has ended. In the thread of the windows it must have ended or been stopped by then: a run
  /// may wait for the windows.
  ~Worker();
  Worker(const Worker&) = delete;
  Worker& operator=(const Worker&) = delete;

  /// The run makes no progress until Resume. A run that has ended ignores this and what follows.
  void Hold();
  void Resume();

  /// The run ends early, for good. Does not wait for it.
  void Stop();

  /// Waits until the run has ended.
  void Join();

 private:
  void Main(std::function<void()> run);

  enum class Phase { Waiting, Running, Ended };

  std::shared_ptr<Worker> before_;
  engine::RunControl& control_;
  WorkerLink& link_;
  std::mutex mutex_;
  std::condition_variable changed_;
  Phase phase_ = Phase::Waiting;
  bool held_ = false;
  bool stopped_ = false;
  std::thread thread_;  ///< last: it uses all of the above
};

}  // namespace velmora::workflow
