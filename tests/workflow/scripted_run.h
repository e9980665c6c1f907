// A run that a test drives step by step.
#pragma once

#include <atomic>
#include <condition_variable>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>

#include "conversion/worker.h"

namespace velmora::workflow {

/// Stands in for the engine: does what the test hands it, in the worker's thread, with a pause point behind
/// each piece of work, and ends as an engine's run ends.
class ScriptedRun {
 public:
  using Work = std::function<void(conversion::RunState&)>;

  void Do(Work work) { Push(std::move(work)); }

  void Say(engine::Event event) {
    Do([event = std::move(event)](conversion::RunState& state) { state.run.Say(event); });
  }

  /// The end of a whole run: Done unless the run was aborted, then `runEnded`.
  void Finish() {
    Do([this](conversion::RunState& state) {
      if (!state.run.runAborted) state.run.Say(engine::Done{});
      state.run.runEnded = true;
      leave_ = true;
    });
  }

  /// A failure that ends the worker: no flag is raised.
  void EndEarly() {
    Do([this](conversion::RunState&) { leave_ = true; });
  }

  conversion::RunEnd operator()(conversion::COutLook&, conversion::RunState& state) {
    ++begun;
    leave_ = false;
    try {
      while (!leave_) {
        state.run.control.PausePoint();
        if (Work work = Next()) {
          work(state);
          ++done;
        }
      }
    } catch (const engine::RunStopped&) {
      ++stopped;
      return conversion::RunEnd::kStopped;
    }
    return conversion::RunEnd::kFinished;
  }

  std::atomic<int> begun{0};    ///< runs
  std::atomic<int> done{0};     ///< pieces of work
  std::atomic<int> stopped{0};  ///< runs that were stopped for good

 private:
  void Push(Work work) {
    const std::lock_guard lock(mutex_);
    waiting_.push_back(std::move(work));
    changed_.notify_all();
  }

  /// The next piece, or nothing after a moment, so that pause points are met often.
  Work Next() {
    std::unique_lock lock(mutex_);
    if (!changed_.wait_for(lock, std::chrono::milliseconds(5), [this] { return !waiting_.empty(); })) return {};
    Work work = std::move(waiting_.front());
    waiting_.pop_front();
    return work;
  }

  std::mutex mutex_;
  std::condition_variable changed_;
  std::deque<Work> waiting_;
  bool leave_ = false;
};

}  // namespace velmora::workflow
