#include "cli/convert_command.h"

#include <fmt/format.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>

#include "cli/console.h"
#include "cli/file_output.h"
#include "cli/report_json.h"
#include "cli/result_text.h"
#include "cli/run_targets.h"
#include "conversion/free_space.h"
#include "conversion/notices.h"
#include "conversion/worker.h"
#include "platform/process.h"
#include "platform/stop_signals.h"
#include "platform/terminal.h"

namespace velmora::cli {
namespace {

using platform::StandardStream;

void WriteError(std::string_view text) { static_cast<void>(platform::WriteTo(StandardStream::kError, text)); }

ProgressStyle StyleOfTerminal() {
  const char* noColor = std::getenv("NO_COLOR");
  ProgressStyle style;
  style.bar = platform::IsTerminal(StandardStream::kError);
  style.color = style.bar && (noColor == nullptr || *noColor == '\0');
  style.columns = platform::TerminalColumns(StandardStream::kError);
  return style;
}

/// A path as the run has it: absolute, whatever folder the program was started in.
text::Text FullPath(const std::string& path) {
  std::error_code error;
  const std::filesystem::path full = std::filesystem::absolute(path, error);
  return text::FromFileName(error ? path : full.string());
}

/// Everything of one call of the program that the parts of its work share.
class Conversion {
 public:
  Conversion(const Options& options, const platform::SourceOpener& openSource)
      : options_(options),
        progress_(StyleOfTerminal(), WriteError),
        console_(options.quiet || options.noProgress ? nullptr : &progress_, WriteError, [this] { CountFolders(); }),
        outLook_(
            state_, [this] { return targets_.MakeOutput(); }, openSource) {
    state_.run.observer = &console_;
    state_.run.smartScan = options.smart;
    state_.codePage = options.codePage;
    state_.sourcePath = FullPath(options.source);
    state_.sourceFileName = text::FromFileName(std::filesystem::path(options.source).filename().string());
    outLook_.logEnabled = options.log;
  }

  ExitCode Run() {
    if (const auto opened = targets_.Open(options_); !opened) {
      console_.Say("velmora-convert: " + TextOf(opened.error()));
      return ExitCode::kNoOutput;
    }
    const ExitCode code = RunSteps();
    progress_.Clear();
    return Finish(code);
  }

 private:
  ExitCode RunSteps() {
    const text::Text destination = FullPath(options_.destination);
    state_.destinationPath = options_.dryRun ? targets_.TemporaryFolder() : destination;
    if (!options_.dryRun && !conversion::HasEnoughFreeSpace(destination, state_.sourcePath)) {
      ended_ = engine::Notice{engine::NoticeKind::kNotEnoughSpace, {}, {}};
      state_.run.Say(*ended_);
      return ExitCodeOf(ended_->kind);
    }
    const platform::StopSignals signals([](void* control) { static_cast<engine::RunControl*>(control)->RequestStop(); },
                                        &state_.run.control);
    const conversion::RunEnd end = conversion::RunConversion(outLook_, state_);
    ended_ = console_.LastError();
    if (ended_) {
      if (!ended_->cause.message.empty()) console_.Say("velmora-convert: " + TextOf(ended_->cause));
      const ExitCode code = ExitCodeOf(ended_->kind);
      // Nobody knows whether a store is valid that could not be read.
      return code == ExitCode::kNotValid && ReportReadFailure() ? ExitCode::kInputOutput : code;
    }
    if (end == conversion::RunEnd::kStopped) {
      console_.Say(StopText());
      return ExitCode::kStopped;
    }
    if (!console_.IsDone()) return ExitCode::kAborted;
    ReportReadFailure();
    return outLook_.Report().recovery.lost.empty() ? ExitCode::kDone : ExitCode::kLosses;
  }

  /// Names the first read of the source that failed; false where none did.
  bool ReportReadFailure() {
    if (!outLook_.Report().readFailure) return false;
    const platform::Failure& failure = *outLook_.Report().readFailure;
    console_.Say(fmt::format("velmora-convert: reading failed: {} at {}: {}", TextOf(failure.object),
                             failure.offset.value_or(0), failure.message));
    return true;
  }

  std::string StopText() const {
    if (options_.dryRun || state_.logPath.empty()) return "Stopped. No store was written.";
    return "Stopped. Recovered at: " + text::ToUtf8(state_.destinationPath);
  }

  /// Result, report and trace; a file that cannot be written is a failure of its own.
  ExitCode Finish(ExitCode code) {
    bool written = true;
    const auto note = [&](const platform::Failure& failure) {
      console_.Say("velmora-convert: " + TextOf(failure));
      written = false;
    };
    const auto& left = outLook_.Report().left;
    if ((console_.IsDone() || left) && !options_.quiet) {
      const std::string result = (left ? ContentsText(state_.convertedName, left->contents)
                                       : ResultText(options_.dryRun ? text::Text() : state_.destinationPath,
                                                    state_.convertedName, contents_)) +
                                 LossText(outLook_.Report().recovery, options_.report);
      const auto stream = options_.report == "-" ? StandardStream::kError : StandardStream::kOutput;
      if (const auto said = platform::WriteTo(stream, result); !said) note(said.error());
    }
    if (const auto failure = targets_.Finish(Report())) note(*failure);
    const bool isGood = code == ExitCode::kDone || code == ExitCode::kLosses;
    return isGood && !written ? ExitCode::kInputOutput : code;
  }

  std::string Report() {
    ReportFrame frame;
    frame.source = state_.sourcePath;
    frame.destination = targets_.Shown(state_.destinationPath, FullPath(options_.destination));
    if (ended_) frame.refusal = conversion::TextOf(*ended_).text;
    frame.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - begin_).count();
    frame.peakRssKiB = platform::PeakRssKiB();
    return ReportJson(frame, outLook_.Report());
  }

  void CountFolders() {
    if (state_.run.runAborted || !outLook_.Session() || state_.logPath.empty()) return;
    contents_ = conversion::CountStore(*outLook_.Session(), state_.convertedName, state_.logPath);
  }

  const std::chrono::steady_clock::time_point begin_ = std::chrono::steady_clock::now();
  const Options& options_;
  RunTargets targets_;
  Progress progress_;
  Console console_;
  conversion::RunState state_;
  conversion::COutLook outLook_;
  std::optional<engine::Notice> ended_;  ///< what the run ended with before it was done
  conversion::StoreContents contents_;
};

}  // namespace

ExitCode Convert(const Options& options, const platform::SourceOpener& openSource) {
  return Conversion(options, openSource).Run();
}

}  // namespace velmora::cli
