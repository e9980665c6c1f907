// LogInformation.log: UTF-16LE, each piece written as it stands.
#pragma once

#include <filesystem>
#include <memory>

#include "engine/run.h"
#include "platform/file.h"

namespace velmora::conversion {

/// The log of one run. Pieces that come before the file is open wait in memory; what comes after it was
/// closed, or could not be made, is dropped: a log never changes a run.
class RunLogFile : public engine::RunLog {
 public:
  void Write(text::TextView piece) override;

  /// Makes the file, writes the mark 0xFEFF, then what waited.
  void Open(const std::filesystem::path& path);

  /// Closes the file for good. Pieces that still wait are dropped.
  void Close();

 private:
  bool over_ = false;
  text::Text waiting_;
  std::unique_ptr<platform::ByteStore> file_;
};

/// Appends a text to a log; a file that cannot be written is left as it is.
void AppendToLog(platform::ByteStore& file, text::TextView piece);

/// The present local time as "%A, %B %d, %Y,%H:%M:%S", in English.
text::Text LogTime();

}  // namespace velmora::conversion
