// The observer of a run at the command line.
#pragma once

#include <functional>
#include <optional>

#include "cli/progress.h"
#include "conversion/run_state.h"

namespace velmora::cli {

/// Shows progress, if there is one, and boxes with their title, and keeps what the exit code depends on.
class Console : public engine::RunObserver {
 public:
  /// `progress` null: none is shown. `beforeClose` is called when the run is about to close.
  Console(Progress* progress, Progress::Write write, std::function<void()> beforeClose)
      : progress_(progress), write_(std::move(write)), beforeClose_(std::move(beforeClose)) {}

  void OnMessage(const engine::RunMessage& message) override;
  void OnBox(engine::BoxKind kind, text::TextView title, text::TextView message) override;

  /// One line from the program itself.
  void Say(std::string_view line);

  bool IsDone() const { return done_; }
  /// Text of the last error box; empty: none came.
  const text::Text& LastError() const { return lastError_; }

 private:
  Progress* progress_;
  Progress::Write write_;
  std::function<void()> beforeClose_;
  bool done_ = false;
  text::Text lastError_;
};

}  // namespace velmora::cli
