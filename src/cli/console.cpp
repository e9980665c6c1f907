#include "cli/console.h"

#include <fmt/format.h>

#include "conversion/notices.h"

namespace velmora::cli {
namespace {

constexpr std::uint32_t kClosing = 9;

}  // namespace

void Console::OnEvent(const engine::Event& event) {
  if (const auto* begun = std::get_if<engine::StageBegun>(&event)) {
    if (begun->stage == kClosing) beforeClose_();
    if (progress_ != nullptr) progress_->OnStage(begun->stage);
  } else if (const auto* progress = std::get_if<engine::Progress>(&event)) {
    if (progress_ != nullptr) progress_->OnPercentage(progress->percentage);
  } else if (const auto* copied = std::get_if<engine::ItemsCopied>(&event)) {
    if (progress_ != nullptr) progress_->OnCopied(*copied);
  } else if (const auto* notice = std::get_if<engine::Notice>(&event)) {
    const conversion::NoticeText text = conversion::TextOf(*notice);
    if (text.isError) lastError_ = *notice;
    Say(fmt::format("{}: {}", text::ToUtf8(text.title), text::ToUtf8(text.text)));
  } else if (std::holds_alternative<engine::Done>(event)) {
    done_ = true;
  }
}

void Console::Say(std::string_view line) {
  if (progress_ != nullptr) progress_->Clear();
  write_(fmt::format("{}\n", line));
}

}  // namespace velmora::cli
