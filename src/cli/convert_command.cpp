#include "cli/convert_command.h"

#include <fmt/format.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <memory>

#include "cli/complete_conversion.h"
#include "cli/console.h"
#include "cli/field_conversion.h"
#include "conversion/free_space.h"
#include "conversion/notices.h"
#include "platform/file_system.h"
#include "platform/path_text.h"
#include "platform/process.h"
#include "platform/stop_signals.h"
#include "platform/terminal.h"

namespace velmora::cli {
namespace {

using platform::StandardStream;

void WriteError(std::string_view text) { static_cast<void>(platform::WriteTo(StandardStream::kError, text)); }

ProgressStyle StyleOfTerminal(const Options& options) {
  const char* noColor = std::getenv("NO_COLOR");
  ProgressStyle style;
  style.bar = platform::IsTerminal(StandardStream::kError);
  style.color = style.bar && (noColor == nullptr || *noColor == '\0');
  style.columns = platform::TerminalColumns(StandardStream::kError);
  style.stages = options.verify ? kVerifiedStages : options.complete ? kCompleteStages : kFieldStages;
  return style;
}

/// A path as the run has it: absolute, whatever folder the program was started in.
text::Text FullPath(const std::string& path) {
  return platform::TextOfPath(platform::AbsolutePath(platform::PathOf(path)));
}

/// A separator at its end says nothing; where it is a backslash, the base-folder rule would take the path for a drive's
/// root.
text::Text FullFolder(const std::string& path) {
  std::filesystem::path full = platform::AbsolutePath(platform::PathOf(path));
  if (std::filesystem::path::preferred_separator == '\\') {
    while (!full.has_filename() && full.has_relative_path()) full = full.parent_path();
  }
  return platform::TextOfPath(full);
}

std::unique_ptr<Conversion> MakeConversion(const Options& options, const text::Text& source, RunTargets& targets,
                                           const platform::SourceOpener& openSource) {
  if (options.complete) return std::make_unique<CompleteConversion>(options, source, openSource);
  return std::make_unique<FieldConversion>(options, source, targets, openSource);
}

/// Everything of one call of the program that the parts of its work share.
class ConvertCommand {
 public:
  ConvertCommand(const Options& options, const platform::SourceOpener& openSource)
      : options_(options),
        workers_(options.jobs),
        progress_(StyleOfTerminal(options), WriteError),
        console_(options.quiet || options.noProgress ? nullptr : &progress_, WriteError,
                 [this] { conversion_->BeforeClose(); }),
        conversion_(MakeConversion(options, source_, targets_, openSource)) {
    conversion_->Context().observer = &console_;
    conversion_->Context().workers = &workers_;
  }

  ExitCode Run() {
    if (const auto opened = targets_.Open(options_, workers_); !opened) {
      console_.Say("velmora-convert: " + TextOf(opened.error()));
      return ExitCode::kNoOutput;
    }
    const ExitCode code = RunSteps();
    progress_.Clear();
    return Finish(code);
  }

 private:
  void Complain(std::string_view what) { console_.Say(fmt::format("velmora-convert: {}", what)); }

  ExitCode RunSteps() {
    engine::RunContext& run = conversion_->Context();
    if (!options_.dryRun && !conversion::HasEnoughFreeSpace(destination_, source_)) {
      ended_ = engine::Notice{engine::NoticeKind::kNotEnoughSpace, {}, {}};
      run.Say(*ended_);
      return ExitCodeOf(ended_->kind);
    }
    const platform::StopSignals signals([](void* control) { static_cast<engine::RunControl*>(control)->RequestStop(); },
                                        &run.control);
    const conversion::RunEnd end = conversion_->Run(options_.dryRun ? targets_.TemporaryFolder() : destination_);
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
    for (const std::string& complaint : conversion_->Complaints()) Complain(complaint);
    return conversion_->CodeOfDone();
  }

  /// Names the first read of the source that failed; false where none did.
  bool ReportReadFailure() {
    const auto& failure = conversion_->ReadFailure();
    if (!failure) return false;
    Complain(fmt::format("reading failed: {} at {}: {}", TextOf(failure->object), failure->offset.value_or(0),
                         failure->message));
    return true;
  }

  std::string StopText() const {
    if (options_.dryRun || !conversion_->HasStore()) return "Stopped. No store was written.";
    return "Stopped. Recovered at: " + text::ToUtf8(conversion_->Destination());
  }

  /// Result, report and trace; a file that cannot be written is a failure of its own.
  ExitCode Finish(ExitCode code) {
    bool written = true;
    const auto note = [&](const platform::Failure& failure) {
      console_.Say("velmora-convert: " + TextOf(failure));
      written = false;
    };
    if (const std::string result = options_.quiet ? "" : conversion_->Result(console_.IsDone()); !result.empty()) {
      const auto stream = options_.report == "-" ? StandardStream::kError : StandardStream::kOutput;
      if (const auto said = platform::WriteTo(stream, result); !said) note(said.error());
    }
    if (const auto failure =
            targets_.Finish([this](const ReportSink& sink) { conversion_->WriteReport(Frame(), sink); }))
      note(*failure);
    const bool isGood = code == ExitCode::kDone || code == ExitCode::kLosses;
    return isGood && !written ? ExitCode::kInputOutput : code;
  }

  ReportFrame Frame() const {
    ReportFrame frame;
    frame.source = source_;
    const text::Text made = conversion_->Destination();
    frame.destination = made.empty() ? destination_ : targets_.Shown(made, destination_);
    if (ended_) frame.refusal = conversion::TextOf(*ended_).text;
    frame.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - begin_).count();
    frame.peakRssKiB = platform::PeakRssKiB();
    return frame;
  }

  const std::chrono::steady_clock::time_point begin_ = std::chrono::steady_clock::now();
  const Options& options_;
  const text::Text source_ = FullPath(options_.source);
  const text::Text destination_ = FullFolder(options_.destination);
  platform::Workers workers_;
  RunTargets targets_;
  Progress progress_;
  Console console_;
  const std::unique_ptr<Conversion> conversion_;
  std::optional<engine::Notice> ended_;  ///< what the run ended with before it was done
};

}  // namespace

ExitCode Convert(const Options& options, const platform::SourceOpener& openSource) {
  return ConvertCommand(options, openSource).Run();
}

}  // namespace velmora::cli
