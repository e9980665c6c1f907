#include "cli/field_conversion.h"

#include "cli/result_text.h"
#include "platform/path_text.h"

namespace velmora::cli {

FieldConversion::FieldConversion(const Options& options, const text::Text& source, RunTargets& targets,
                                 const platform::SourceOpener& openSource)
    : options_(options),
      outLook_(
          state_, [&targets] { return targets.MakeOutput(); }, openSource) {
  state_.run.smartScan = options.smart;
  state_.codePage = options.codePage;
  state_.sourcePath = source;
  state_.sourceFileName = platform::TextOfPath(platform::PathOf(options.source).filename());
  outLook_.logEnabled = options.log;
}

conversion::RunEnd FieldConversion::Run(const text::Text& destination) {
  state_.destinationPath = destination;
  return conversion::RunConversion(outLook_, state_);
}

void FieldConversion::BeforeClose() {
  if (state_.run.runAborted || !outLook_.Session() || state_.logPath.empty()) return;
  contents_ = conversion::CountStore(*outLook_.Session(), state_.convertedName, state_.logPath);
}

ExitCode FieldConversion::CodeOfDone() const {
  return outLook_.Report().recovery.lost.empty() ? ExitCode::kDone : ExitCode::kLosses;
}

std::string FieldConversion::Result(bool isDone) const {
  const auto& left = outLook_.Report().left;
  if (!isDone && !left) return {};
  return (left ? ContentsText(state_.convertedName, left->contents)
               : ResultText(options_.dryRun ? text::Text() : state_.destinationPath, state_.convertedName, contents_)) +
         LossText(outLook_.Report().recovery, options_.report);
}

}  // namespace velmora::cli
