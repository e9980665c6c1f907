// What one call of the program writes to: store, trace, report.
#pragma once

#include <memory>
#include <optional>

#include "cli/file_output.h"
#include "cli/options.h"
#include "cli/report_frame.h"
#include "conversion/run_output.h"
#include "platform/user_folders.h"

namespace velmora::cli {

class RunTargets {
 public:
  /// Makes the files that are asked for and, for a dry run, the temporary folder. None of them may exist.
  /// `workers` write the store and must outlive the run.
  platform::Result<void> Open(const Options& options, platform::Workers& workers);

  /// The output library of the run: the store, and beside it the trace; in a dry run the trace alone.
  conversion::RunOutput MakeOutput();

  /// The folder in which a dry run keeps what it needs; empty otherwise.
  text::Text TemporaryFolder() const;

  /// A path of the run as people are to see it: one in the temporary folder of a dry run as if it lay in the
  /// destination.
  text::Text Shown(const text::Text& path, const text::Text& destination) const;

  /// Has the report written where it is wanted, and closes all files; the first failure.
  std::optional<platform::Failure> Finish(const std::function<void(const ReportSink&)>& writeReport);

 private:
  std::optional<platform::TemporaryFolder> temporary_;
  std::optional<OutputFile> reportFile_;
  std::unique_ptr<TraceFile> trace_;
  NoTrace noTrace_;
  platform::Workers* workers_ = nullptr;
  text::CodePage codePage_ = text::CodePage::Lossless();
  bool isDryRun_ = false;
  bool reportToOutput_ = false;
};

}  // namespace velmora::cli
