// How far a run has come, on standard error.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "conversion/notices.h"

namespace velmora::cli {

/// The caption of a stage; empty for the one that has none.
std::string_view StageCaption(std::uint32_t stage);

struct ProgressStyle {
  bool bar = false;  ///< a terminal: one line, drawn anew. Else plain lines, at each stage and now and then
  bool color = false;
  int columns = 80;
};

class Progress {
 public:
  using Write = std::function<void(std::string_view)>;
  Progress(ProgressStyle style, Write write) : style_(style), write_(std::move(write)) {}

  void OnStage(std::uint32_t stage);
  /// A percentage above 100 is passed over.
  void OnPercentage(std::uint32_t percentage);
  /// Shown with the next percentage.
  void OnCopied(const engine::ItemsCopied& copied);

  /// Takes the bar away, so that something else can be written.
  void Clear();

 private:
  void Draw();

  ProgressStyle style_;
  Write write_;
  std::string_view caption_;
  std::string copied_;  ///< in this stage
  std::uint32_t percentage_ = 0;
  bool drawn_ = false;
  std::chrono::steady_clock::time_point lastLine_{};
};

}  // namespace velmora::cli
