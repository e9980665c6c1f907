// The conversion that rebuilds items field by field, as the command line runs it.
#pragma once

#include "cli/conversion.h"
#include "cli/options.h"
#include "cli/report_json.h"
#include "cli/run_targets.h"
#include "conversion/out_look.h"

namespace velmora::cli {

class FieldConversion : public Conversion {
 public:
  /// `options` and `targets` outlive it; `source` is the full path.
  FieldConversion(const Options& options, const text::Text& source, RunTargets& targets,
                  const platform::SourceOpener& openSource);

  engine::RunContext& Context() override { return state_.run; }
  conversion::RunEnd Run(const text::Text& destination) override;
  void BeforeClose() override;

  text::Text Destination() const override { return state_.destinationPath; }
  bool HasStore() const override { return !state_.logPath.empty(); }
  const std::optional<platform::Failure>& ReadFailure() const override { return outLook_.Report().readFailure; }
  ExitCode CodeOfDone() const override;
  std::string Result(bool isDone) const override;
  void WriteReport(const ReportFrame& frame, const ReportSink& sink) const override {
    sink(ReportJson(frame, outLook_.Report()));
  }

 private:
  const Options& options_;
  conversion::RunState state_;
  conversion::COutLook outLook_;
  conversion::StoreContents contents_;
};

}  // namespace velmora::cli
