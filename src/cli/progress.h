// How far a run has come, on standard error.
#pragma once

#include <array>
#include <chrono>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "conversion/notices.h"

namespace velmora::cli {

/// The caption of a stage; empty for the one that has none.
std::string_view StageCaption(std::uint32_t stage);

/// What share of a run each stage takes: the percentage of the whole at its end, by its number.
using StageEnds = std::array<std::uint32_t, 10>;

/// Measured over a store of a gigabyte on a disk (docs/performance.md); a stage that a run does not have takes none, nor
/// does closing alone.
inline constexpr StageEnds kFieldStages = {0, 0, 31, 32, 32, 35, 39, 39, 100, 100};
inline constexpr StageEnds kCompleteStages = {0, 0, 38, 39, 39, 39, 39, 39, 100, 100};
inline constexpr StageEnds kVerifiedStages = {0, 0, 16, 16, 16, 16, 16, 16, 43, 100};

struct ProgressStyle {
  bool bar = false;  ///< a terminal: one line, drawn anew. Else plain lines, at each stage and now and then
  bool color = false;
  int columns = 80;
  StageEnds stages = kFieldStages;
  std::function<std::chrono::steady_clock::time_point()> now = std::chrono::steady_clock::now;
};

class Progress {
 public:
  using Write = std::function<void(std::string_view)>;
  Progress(ProgressStyle style, Write write) : style_(style), write_(std::move(write)) {}

  void OnStage(std::uint32_t stage);
  /// Of the stage; one above 100 is passed over. The bar shows that of the whole run, and never goes back.
  void OnPercentage(std::uint32_t percentage);
  /// Shown with the next percentage.
  void OnCopied(const engine::ItemsCopied& copied);

  /// Takes the bar away, so that something else can be written.
  void Clear();

 private:
  void Draw();

  std::uint32_t OfRun(std::uint32_t percentage) const;

  ProgressStyle style_;
  Write write_;
  std::string_view caption_;
  std::string copied_;  ///< in this stage
  std::string pace_;    ///< likewise: items a second, and the time that is left
  std::uint32_t stage_ = 0;
  std::uint32_t percentage_ = 0;  ///< of the stage
  std::uint32_t ofRun_ = 0;
  std::string line_;  ///< as it was drawn last
  bool drawn_ = false;
  std::chrono::steady_clock::time_point lastLine_{};
  std::chrono::steady_clock::time_point stageBegun_{};
};

}  // namespace velmora::cli
