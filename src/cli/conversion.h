// One of the two conversions, as the command line runs it.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "cli/exit_codes.h"
#include "cli/report_frame.h"
#include "conversion/worker.h"

namespace velmora::cli {

class Conversion {
 public:
  virtual ~Conversion() = default;

  virtual engine::RunContext& Context() = 0;

  /// Runs it on the calling thread, into a folder of its own below `destination`.
  virtual conversion::RunEnd Run(const text::Text& destination) = 0;

  /// The run is about to close the new store.
  virtual void BeforeClose() {}

  // Of the run, once it is over.

  /// Path of the new store, or the folder that was to hold it where it was not named yet; empty before a run.
  virtual text::Text Destination() const = 0;
  /// Whether the new store was made.
  virtual bool HasStore() const = 0;
  /// The first read of the source that failed.
  virtual const std::optional<platform::Failure>& ReadFailure() const = 0;
  /// How a run ends that came to its end.
  virtual ExitCode CodeOfDone() const = 0;
  /// What went wrong in a run that came to its end, a line each; commonly nothing.
  virtual std::vector<std::string> Complaints() const { return {}; }
  /// What people read at the end; empty where there is nothing to tell.
  virtual std::string Result(bool isDone) const = 0;
  virtual void WriteReport(const ReportFrame& frame, const ReportSink& sink) const = 0;
};

}  // namespace velmora::cli
