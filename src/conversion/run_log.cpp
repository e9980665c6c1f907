#include "conversion/run_log.h"

#include <fmt/chrono.h>

#include <ctime>
#include <span>

namespace velmora::conversion {

void AppendToLog(platform::ByteStore& file, text::TextView piece) {
  static_cast<void>(file.WriteAt(file.Size(), std::as_bytes(std::span(piece))));
}

void RunLogFile::Write(text::TextView piece) {
  if (file_ != nullptr) {
    AppendToLog(*file_, piece);
  } else if (!over_) {
    waiting_ += piece;
  }
}

void RunLogFile::Open(const std::filesystem::path& path) {
  auto file = platform::CreateFile(path, platform::Existing::kReplace);
  if (!file) return Close();
  file_ = std::move(*file);
  AppendToLog(*file_, u"\uFEFF");
  AppendToLog(*file_, waiting_);
  waiting_.clear();
}

void RunLogFile::Close() {
  over_ = true;
  file_.reset();
  waiting_.clear();
}

text::Text LogTime() {
  return text::FromUtf8(fmt::format("{:%A, %B %d, %Y,%H:%M:%S}", fmt::localtime(std::time(nullptr))));
}

}  // namespace velmora::conversion
