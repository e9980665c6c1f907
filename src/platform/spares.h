// Tools that are dear to make, kept for whoever needs one next.
#pragma once

#include <memory>
#include <mutex>
#include <utility>
#include <vector>

namespace velmora::platform {

/// As many tools as were ever in use at a time. They are not `thread_local`: the runtime of Windows frees what a thread
/// keeps so before it destroys it.
template <class Tool>
class Spares {
 public:
  /// Goes back when this goes.
  class Loan {
   public:
    Loan(Spares& spares, std::unique_ptr<Tool> tool) : spares_(spares), tool_(std::move(tool)) {}
    ~Loan() {
      const std::lock_guard lock(spares_.mutex_);
      spares_.tools_.push_back(std::move(tool_));
    }
    Loan(const Loan&) = delete;
    Loan& operator=(const Loan&) = delete;

    Tool& operator*() const { return *tool_; }
    Tool* operator->() const { return tool_.get(); }

   private:
    Spares& spares_;
    std::unique_ptr<Tool> tool_;
  };

  /// One that nobody uses, else a new one.
  Loan Take() {
    {
      const std::lock_guard lock(mutex_);
      if (!tools_.empty()) {
        auto tool = std::move(tools_.back());
        tools_.pop_back();
        return Loan(*this, std::move(tool));
      }
    }
    return Loan(*this, std::make_unique<Tool>());
  }

 private:
  std::mutex mutex_;
  std::vector<std::unique_ptr<Tool>> tools_;
};

}  // namespace velmora::platform
