// The conversion that copies whole objects, as the command line runs it.
#pragma once

#include "cli/conversion.h"
#include "cli/options.h"
#include "conversion/complete_run.h"

namespace velmora::cli {

class CompleteConversion : public Conversion {
 public:
  /// `options` outlives it; `source` is the full path.
  CompleteConversion(const Options& options, const text::Text& source, const platform::SourceOpener& openSource);

  engine::RunContext& Context() override { return run_; }
  conversion::RunEnd Run(const text::Text& destination) override;

  text::Text Destination() const override;
  bool HasStore() const override { return !report_.store.empty(); }
  const std::optional<platform::Failure>& ReadFailure() const override { return report_.readFailure; }
  ExitCode CodeOfDone() const override;
  std::vector<std::string> Complaints() const override;
  std::string Result(bool isDone) const override;
  void WriteReport(const ReportFrame& frame, const ReportSink& sink) const override;

 private:
  const Options& options_;
  engine::RunContext run_;
  conversion::CompleteRequest request_;
  conversion::CompleteReport report_;
  bool isStopped_ = false;
};

}  // namespace velmora::cli
