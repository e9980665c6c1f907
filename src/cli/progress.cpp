#include "cli/progress.h"

#include <fmt/format.h>

#include <algorithm>

#include "cli/plain_words.h"

namespace velmora::cli {
namespace {

constexpr std::chrono::seconds kBetweenLines{5};
constexpr int kBarWidth = 30;

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
  caption_ = StageCaption(stage);
  copied_.clear();
  if (style_.bar) return Draw();
  if (caption_.empty()) return;
  write_(fmt::format("{}\n", caption_));
  lastLine_ = std::chrono::steady_clock::now();
}

void Progress::OnPercentage(std::uint32_t percentage) {
  if (percentage > 100 || (drawn_ && percentage == percentage_)) return;
  percentage_ = percentage;
  if (style_.bar) return Draw();
  const auto now = std::chrono::steady_clock::now();
  if (now - lastLine_ < kBetweenLines) return;
  write_(fmt::format("{}%{}{}\n", percentage_, copied_.empty() ? "" : ": ", copied_));
  lastLine_ = now;
}

void Progress::OnCopied(const engine::ItemsCopied& copied) {
  copied_ = fmt::format("{} of {} items, {}", copied.items, copied.itemsTotal, SizeText(copied.bytes));
}

void Progress::Draw() {
  const int filled = static_cast<int>(percentage_) * kBarWidth / 100;
  const std::string bar = std::string(static_cast<std::size_t>(filled), '#') +
                          std::string(static_cast<std::size_t>(kBarWidth - filled), '.');
  // "[" bar "] 100% " before the words; the last column stays free, so that no terminal wraps.
  const int room = std::max(0, style_.columns - kBarWidth - 9);
  const std::string_view words = copied_.empty() ? caption_ : std::string_view(copied_);
  write_(fmt::format("\r\033[K[{}{}{}] {:3}% {}", style_.color ? "\033[32m" : "", bar, style_.color ? "\033[0m" : "",
                     percentage_, words.substr(0, static_cast<std::size_t>(room))));
  drawn_ = true;
}

void Progress::Clear() {
  if (!drawn_) return;
  write_("\r\033[K");
  drawn_ = false;
}

}  // namespace velmora::cli
