#include "cli/file_output.h"

#include <span>

#include "platform/path_text.h"

namespace velmora::cli {
namespace {

constexpr std::size_t kPiece = 256 * 1024;

}  // namespace

platform::Result<OutputFile> OutputFile::Create(const std::string& path) {
  auto file = platform::CreateFile(platform::PathOf(path), platform::Existing::kRefuse);
  if (!file) return tl::unexpected(file.error());
  return OutputFile(std::move(*file));
}

void OutputFile::Append(std::string_view bytes) {
  waiting_ += bytes;
  if (waiting_.size() >= kPiece) Finish();
}

const std::optional<platform::Failure>& OutputFile::Finish() {
  if (!failure_) {
    if (auto written = file_->WriteAt(file_->Size(), std::as_bytes(std::span(waiting_))); !written) {
      failure_ = written.error();
    }
  }
  waiting_.clear();
  return failure_;
}

}  // namespace velmora::cli
