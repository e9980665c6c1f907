// What the command line asks for.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "cli/exit_codes.h"
#include "platform/workers.h"
#include "text/code_page.h"

namespace velmora::cli {

struct Options {
  std::string source;
  std::string destination;
  bool smart = false;
  bool complete = false;  ///< whole objects in place of fields
  bool hidden = false;
  bool deleted = false;
  bool verify = false;
  unsigned jobs = platform::DefaultJobs();
  std::optional<std::uint64_t> at;  ///< where in the source the store begins that is wanted
  text::CodePage codePage = text::CodePage::Lossless();
  std::string report;  ///< empty: none; "-": standard output
  std::string trace;   ///< empty: none
  bool dryRun = false;
  bool log = false;
  bool quiet = false;
  bool noProgress = false;
};

/// A text in place of a run: help and version for standard output, a mistake for standard error.
struct Answer {
  ExitCode code = ExitCode::kDone;
  std::string text;
};

/// Takes the words behind the program's name. Of the options, what names a file is in the form of
/// platform::BytesOfPath.
std::variant<Options, Answer> ParseCommandLine(std::vector<std::string> words);

/// What --help says.
std::string HelpText();

}  // namespace velmora::cli
