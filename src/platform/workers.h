// The threads of one run: steps that depend on nothing but their input are done ahead of the thread that needs them.
//
// What a run writes never depends on how many there are: a step is started in the order in which its result is
// wanted, and whoever waits for one that nobody has begun does it himself. With one job there are no threads at all.
#pragma once

#include <condition_variable>
#include <deque>
#include <exception>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

namespace velmora::platform {

/// Jobs of a run where nobody says otherwise: as many as the processor has cores.
unsigned DefaultJobs();

class Workers {
 public:
  /// One step, begun or not. The last owner that goes waits for a step under work, and drops one that nobody has begun.
  class Step {
   public:
    Step(Workers& workers, std::function<void()> work) : workers_(workers), work_(std::move(work)) {}
    ~Step();
    Step(const Step&) = delete;
    Step& operator=(const Step&) = delete;

    /// Returns when it is done; does it where nobody has begun. Raises what it raised, as often as it is asked.
    void Wait();

    /// The same for a thread that has nothing else to do: while another has this one under work, it does those that
    /// wait.
    void WorkUntilDone();

    enum class State { kWaiting, kRunning, kDone };

    /// Another thread may have changed it by the time the caller looks at it: what waits may run, what runs be done.
    State Now() const;

   private:
    friend class Workers;

    void Run();

    Workers& workers_;
    std::function<void()> work_;
    State state_ = State::kWaiting;  ///< guarded by the mutex of the workers, like what follows
    std::exception_ptr failure_;
  };

  /// Starts threads for all `jobs` but one, which is the thread that waits.
  explicit Workers(unsigned jobs);

  /// All steps must be gone.
  ~Workers();
  Workers(const Workers&) = delete;
  Workers& operator=(const Workers&) = delete;

  /// One that does each step when it is waited for.
  static Workers& WithoutThreads();

  /// How many steps may be under work at a time, with that of the thread that waits.
  unsigned Jobs() const { return static_cast<unsigned>(threads_.size()) + 1; }

  /// Puts a step behind those that wait already. What it uses must live as long as the step.
  [[nodiscard]] std::unique_ptr<Step> Start(std::function<void()> work);

 private:
  void Work();
  void DoFirst(std::unique_lock<std::mutex>& lock);

  std::mutex mutex_;
  std::condition_variable started_;  ///< there is a step to do, or no more will come
  std::condition_variable done_;
  std::deque<Step*> waiting_;
  bool isEnding_ = false;
  std::vector<std::thread> threads_;
};

}  // namespace velmora::platform
