#include "cli/run_targets.h"

#include "output/trace/tee.h"
#include "output/trace/trace_library.h"
#include "platform/path_text.h"
#include "platform/terminal.h"
#include "store/messaging/pst_library.h"

namespace velmora::cli {

platform::Result<void> RunTargets::Open(const Options& options, platform::Workers& workers) {
  workers_ = &workers;
  codePage_ = options.codePage;
  isDryRun_ = options.dryRun;
  reportToOutput_ = options.report == "-";
  if (isDryRun_) {
    auto folder = platform::TemporaryFolder::Create();
    if (!folder) return tl::unexpected(folder.error());
    temporary_.emplace(std::move(*folder));
  }
  if (!options.report.empty() && !reportToOutput_) {
    auto file = OutputFile::Create(options.report);
    if (!file) return tl::unexpected(file.error());
    reportFile_.emplace(std::move(*file));
  }
  if (!options.trace.empty()) {
    auto file = OutputFile::Create(options.trace);
    if (!file) return tl::unexpected(file.error());
    trace_ = std::make_unique<TraceFile>(std::move(*file));
  }
  return {};
}

conversion::RunOutput RunTargets::MakeOutput() {
  output::TraceSink* sink = trace_ != nullptr ? static_cast<output::TraceSink*>(trace_.get()) : &noTrace_;
  auto trace = std::make_shared<output::TraceLibrary>(*sink);
  if (isDryRun_) return {std::move(trace), {}};

  messaging::PstLibraryOptions options;
  options.configFolder = platform::ConfigFolder().value_or(platform::RuntimeFolder());
  options.codePage = codePage_;
  options.workers = workers_;
  auto store = std::make_shared<messaging::PstLibrary>(std::move(options));
  const auto seal = [store] { return store->Seal(); };
  const auto fullTables = [store] { return store->FullTables(); };
  if (trace_ == nullptr) return {store, seal, fullTables};
  return {std::make_shared<output::Tee>(std::vector<std::shared_ptr<output::OutputLibrary>>{store, std::move(trace)}),
          seal, fullTables};
}

text::Text RunTargets::TemporaryFolder() const {
  return temporary_ ? platform::TextOfPath(temporary_->Path()) : text::Text();
}

text::Text RunTargets::Shown(const text::Text& path, const text::Text& destination) const {
  const text::Text temporary = TemporaryFolder();
  if (temporary.empty() || !path.starts_with(temporary)) return path;
  return destination + path.substr(temporary.size());
}

std::optional<platform::Failure> RunTargets::Finish(const std::function<void(const ReportSink&)>& writeReport) {
  std::optional<platform::Failure> failure;
  if (trace_ != nullptr) failure = trace_->File().Finish();
  if (reportFile_) {
    writeReport([this](std::string_view piece) { reportFile_->Append(piece); });
    if (const auto& failed = reportFile_->Finish(); failed && !failure) failure = failed;
  }
  if (reportToOutput_) {
    writeReport([&failure](std::string_view piece) {
      const auto written = platform::WriteTo(platform::StandardStream::kOutput, piece);
      if (!written && !failure) failure = written.error();
    });
  }
  return failure;
}

}  // namespace velmora::cli
