// Files that the command line writes beside the new store: report and trace.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "output/trace/json_line.h"
#include "platform/file.h"

namespace velmora::cli {

/// A file that did not exist before, written from its start in pieces. The first failure is kept and ends
/// the writing.
class OutputFile {
 public:
  static platform::Result<OutputFile> Create(const std::string& path);

  void Append(std::string_view bytes);

  /// Writes what still waits in memory; the first failure of all, if any.
  const std::optional<platform::Failure>& Finish();

 private:
  explicit OutputFile(std::unique_ptr<platform::ByteStore> file) : file_(std::move(file)) {}

  std::unique_ptr<platform::ByteStore> file_;
  std::string waiting_;
  std::optional<platform::Failure> failure_;
};

class TraceFile : public output::TraceSink {
 public:
  explicit TraceFile(OutputFile file) : file_(std::move(file)) {}
  void WriteLine(std::string_view line) override {
    file_.Append(line);
    file_.Append("\n");
  }
  OutputFile& File() { return file_; }

 private:
  OutputFile file_;
};

/// For a dry run without a trace.
class NoTrace : public output::TraceSink {
 public:
  void WriteLine(std::string_view) override {}
};

}  // namespace velmora::cli
