#include "cli/progress.h"

#include <fmt/format.h>

#include <algorithm>

#include "cli/plain_words.h"

namespace velmora::cli {
namespace {

constexpr std::chrono::seconds kBetweenLines{5};
constexpr int kBarWidth = 30;

/// Earlier the pace of a copy is chance.
constexpr double kTellingSeconds = 2;

std::string DurationText(double seconds) {
  const auto whole = static_cast<long>(std::min(seconds, 359'999.0));
  if (whole < 60) return fmt::format("{} s", whole);
  if (whole < 3600) return fmt::format("{} min {} s", whole / 60, whole % 60);
  return fmt::format("{} h {} min", whole / 3600, whole / 60 % 60);
}

constexpr std::string_view kCaptions[] = {
    "Processing Wait...",  // no stage has this number
    "Opening OST file...",
    "Validating OST file...",
    "Creating new profile...",
    "",  // the node scan has no caption
    "Validating Folder Structure...",
    "Collecting Folder Names...",
    "Converting Folder Items...",
    "Converting Mail Items...",
    "Closing file...",
};

}  // namespace

std::string_view StageCaption(std::uint32_t stage) {
  return stage < std::size(kCaptions) ? kCaptions[stage] : kCaptions[0];
}

void Progress::OnStage(std::uint32_t stage) {
  stage_ = stage;
  caption_ = StageCaption(stage);
  copied_.clear();
  pace_.clear();
  stageBegun_ = style_.now();
  ofRun_ = std::max(ofRun_, OfRun(0));
  if (style_.bar) return Draw();
  if (caption_.empty()) return;
  write_(fmt::format("{}\n", caption_));
  lastLine_ = stageBegun_;
}

std::uint32_t Progress::OfRun(std::uint32_t percentage) const {
  if (stage_ == 0 || stage_ >= style_.stages.size()) return ofRun_;
  const std::uint32_t begin = style_.stages[stage_ - 1];
  return begin + (style_.stages[stage_] - begin) * percentage / 100;
}

void Progress::OnPercentage(std::uint32_t percentage) {
  if (percentage > 100 || (drawn_ && percentage == percentage_)) return;
  percentage_ = percentage;
  ofRun_ = std::max(ofRun_, OfRun(percentage));
  if (style_.bar) return Draw();
  const auto now = style_.now();
  if (now - lastLine_ < kBetweenLines) return;
  write_(fmt::format("{}%{}{}\n", percentage_, copied_.empty() ? "" : ": ", copied_));
  lastLine_ = now;
}

void Progress::OnCopied(const engine::ItemsCopied& copied) {
  copied_ = fmt::format("{} of {} items, {} of {}", copied.items, copied.itemsTotal, SizeText(copied.bytes),
                        SizeText(copied.bytesTotal));
  const double seconds = std::chrono::duration<double>(style_.now() - stageBegun_).count();
  if (copied.bytes == 0 || seconds < kTellingSeconds) return;
  const double bytesLeft = static_cast<double>(copied.bytesTotal - std::min(copied.bytes, copied.bytesTotal));
  const double left = bytesLeft / static_cast<double>(copied.bytes) * seconds;
  pace_ = fmt::format(", {:.0f} a second, {} left", static_cast<double>(copied.items) / seconds, DurationText(left));
}

void Progress::Draw() {
  const int filled = static_cast<int>(ofRun_) * kBarWidth / 100;
  const std::string bar = std::string(static_cast<std::size_t>(filled), '#') +
                          std::string(static_cast<std::size_t>(kBarWidth - filled), '.');
  // "[" bar "] 100% " before the words; the last column stays free, so that no terminal wraps.
  const int room = std::max(0, style_.columns - kBarWidth - 9);
  const std::string words = copied_.empty() ? std::string(caption_) : copied_ + pace_;
  std::string line =
      fmt::format("\r\033[K[{}{}{}] {:3}% {}", style_.color ? "\033[32m" : "", bar, style_.color ? "\033[0m" : "",
                  ofRun_, words.substr(0, static_cast<std::size_t>(room)));
  if (drawn_ && line == line_) return;
  line_ = std::move(line);
  write_(line_);
  drawn_ = true;
}

void Progress::Clear() {
  if (!drawn_) return;
  write_("\r\033[K");
  drawn_ = false;
}

}  // namespace velmora::cli
