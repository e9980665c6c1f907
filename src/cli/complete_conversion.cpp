#include "cli/complete_conversion.h"

#include <algorithm>
#include <iterator>

#include "cli/complete_report_html.h"
#include "cli/complete_report_json.h"
#include "cli/complete_result_text.h"
#include "cli/place_words.h"
#include "cli/result_text.h"
#include "platform/path_text.h"

namespace velmora::cli {
namespace {

/// Whether a report of that name is for people.
bool IsPage(const std::string& path) {
  const text::Text name = text::FromUtf8(path);
  constexpr text::TextView kEnding = u".html";
  return name.size() >= kEnding.size() &&
         text::EqualIgnoringCase(text::TextView(name).substr(name.size() - kEnding.size()), kEnding);
}

}  // namespace

CompleteConversion::CompleteConversion(const Options& options, const text::Text& source,
                                       const platform::SourceOpener& openSource)
    : options_(options) {
  request_.source = platform::PathOf(source);
  request_.copy.hidden = options.hidden;
  request_.copy.deleted = options.deleted;
  request_.copy.codePage = options.codePage;
  request_.at = options.at;
  request_.verify = options.verify;
  request_.dryRun = options.dryRun;
  request_.log = options.log;
  request_.open = openSource;
}

conversion::RunEnd CompleteConversion::Run(const text::Text& destination) {
  request_.destination = platform::PathOf(destination);
  const conversion::RunEnd end = conversion::RunComplete(request_, run_, report_);
  isStopped_ = end == conversion::RunEnd::kStopped;
  return end;
}

text::Text CompleteConversion::Destination() const {
  return platform::TextOfPath(HasStore() ? report_.store : request_.destination);
}

ExitCode CompleteConversion::CodeOfDone() const {
  const complete::Account& account = report_.account;
  if (!account.differences.empty() || account.differencesNotListed != 0) return ExitCode::kInputOutput;
  return account.IsWhole() ? ExitCode::kDone : ExitCode::kLosses;
}

std::vector<std::string> CompleteConversion::Complaints() const {
  std::vector<std::string> lines = PlaceLines(report_);
  std::ranges::move(DifferenceLines(report_.account), std::back_inserter(lines));
  return lines;
}

std::string CompleteConversion::Result(bool isDone) const {
  // Of a run that could not write any further people want to know how far it came.
  if (!isDone && (isStopped_ || !HasStore())) return {};
  const std::string done = isDone ? DoneText(options_.dryRun ? text::Text() : Destination()) : std::string();
  return done + CountsText(report_.account) + LossesText(report_.account, options_.report);
}

void CompleteConversion::WriteReport(const ReportFrame& frame, const ReportSink& sink) const {
  if (IsPage(options_.report)) {
    WriteCompleteReportHtml(frame, report_, {options_.dryRun, isStopped_}, sink);
  } else {
    sink(CompleteReportJson(frame, report_));
  }
}

}  // namespace velmora::cli
