// The observer of a run at the command line.
#pragma once

#include <functional>
#include <optional>

#include "cli/progress.h"
#include "conversion/run_state.h"

namespace velmora::cli {

/// Shows progress, if there is one, and notices with their title, and keeps what the exit code depends on.
class Console : public engine::RunObserver {
 public:
  /// `progress` null: none is shown. `beforeClose` is called when the run is about to close.
  Console(Progress* progress, Progress::Write write, std::function<void()> beforeClose)
      : progress_(progress), write_(std::move(write)), beforeClose_(std::move(beforeClose)) {}

  void OnEvent(const engine::Event& event) override;

  /// One line from the program itself.
  void Say(std::string_view line);

  bool IsDone() const { return done_; }
  /// The last notice of an error; nothing: none came.
  const std::optional<engine::Notice>& LastError() const { return lastError_; }

 private:
  Progress* progress_;
  Progress::Write write_;
  std::function<void()> beforeClose_;
  bool done_ = false;
  std::optional<engine::Notice> lastError_;
};

}  // namespace velmora::cli
