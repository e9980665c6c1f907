#include "cli/console.h"

#include <fmt/format.h>

namespace velmora::cli {
namespace {

constexpr std::uint32_t kClosing = 9;

}  // namespace

void Console::OnMessage(const engine::RunMessage& message) {
  switch (message.code) {
    case engine::MSG_STAGE: {
      const std::uint32_t stage = message.detail == 1 ? kClosing : message.number;
      if (stage == kClosing) beforeClose_();
      if (progress_ != nullptr) progress_->OnStage(stage);
      break;
    }
    case engine::MSG_PROGRESS:
      if (progress_ != nullptr) progress_->OnPercentage(message.number);
      break;
    case engine::MSG_DONE:
      done_ = true;
      break;
    default:
      break;
  }
}

void Console::OnBox(engine::BoxKind kind, text::TextView title, text::TextView message) {
  if (kind == engine::BoxKind::kError) lastError_ = message;
  Say(fmt::format("{}: {}", text::ToUtf8(title), text::ToUtf8(message)));
}

void Console::Say(std::string_view line) {
  if (progress_ != nullptr) progress_->Clear();
  write_(fmt::format("{}\n", line));
}

}  // namespace velmora::cli
