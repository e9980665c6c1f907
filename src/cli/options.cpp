#include "cli/options.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <utility>

#include "cli/version.h"

namespace velmora::cli {
namespace {

constexpr int kMostJobs = 64;

constexpr std::string_view kExamples = R"(Examples:
  velmora-convert outlook.ost /home/me/mail
      converts outlook.ost; the new store is
      /home/me/mail/outlook Converted0/outlook Converted.pst
  velmora-convert --smart --report report.json damaged.pst out
      also recovers messages that nothing in the store refers to, and says what was found
  velmora-convert --complete --verify --report report.html outlook.ost out
      copies everything whole, compares the new store with outlook.ost, and writes a page about it
  velmora-convert --dry-run --report - backup.ost out
      writes no store: only says what a conversion would find
)";

constexpr std::string_view kUsage = R"(
Usage: velmora-convert [options] SOURCE DESTINATION_FOLDER

Reads SOURCE, a store of Outlook (.ost or .pst), sound or damaged, and writes what it finds to a new .pst
in a new folder under DESTINATION_FOLDER. SOURCE is only read. Nothing that exists is overwritten.

Options:
  --complete         copy folders and items whole, with everything in them, in place of field by field
  --hidden           with --complete: hidden items too (rules, views, settings)
  --deleted          with --complete: messages too that were deleted and are still in the file
  --verify           with --complete: read the new store back and compare it with SOURCE
  --at OFFSET        with --complete: the store that begins at this byte of SOURCE, which holds several
  --smart            Smart Scan: read every block, and recover messages without a node as well
  --jobs N           work on so many things at a time (1 to 64, default: as many as there are processors); the new
                     store does not depend on it
  --codepage NAME    code page of 8-bit text in SOURCE (default windows-1252)
  --report FILE      write a JSON report of the run ("-" for standard output); with --complete and a name
                     that ends in .html a page for a browser
  --trace FILE       write every operation on the new store as a JSON line
  --dry-run          run everything but write no store
  --log              write LogInformation.log beside the new store
  --quiet            say nothing but errors
  --no-progress      show no progress
  --help             show this text
  --version          show the version

Exit codes:
)";

}  // namespace

std::string HelpText() {
  std::string text = std::string(kExamples) + std::string(kUsage);
  for (const ExitCodeRow& row : kExitCodes) {
    text += fmt::format("  {:<4} {}\n", static_cast<int>(row.code), row.meaning);
  }
  return text;
}

std::variant<Options, Answer> ParseCommandLine(std::vector<std::string> words) {
  Options options;
  std::string codePage;
  bool help = false;
  bool version = false;

  CLI::App app;
  app.set_help_flag();
  app.allow_windows_style_options(false);  // "/x" is a path wherever the program runs
  app.add_flag("--help", help);
  app.add_flag("--version", version);
  app.add_flag("--complete", options.complete);
  app.add_flag("--hidden", options.hidden);
  app.add_flag("--deleted", options.deleted);
  app.add_flag("--verify", options.verify);
  app.add_option("--at", options.at)->check(CLI::NonNegativeNumber);
  app.add_flag("--smart", options.smart);
  app.add_option("--jobs", options.jobs)->check(CLI::Range(1, kMostJobs));
  app.add_option("--codepage", codePage);
  app.add_option("--report", options.report);
  app.add_option("--trace", options.trace);
  app.add_flag("--dry-run", options.dryRun);
  app.add_flag("--log", options.log);
  app.add_flag("--quiet", options.quiet);
  app.add_flag("--no-progress", options.noProgress);
  app.add_option("SOURCE", options.source);
  app.add_option("DESTINATION_FOLDER", options.destination);

  const auto mistake = [](std::string_view what) {
    return Answer{ExitCode::kUsage, fmt::format("velmora-convert: {}\nTry 'velmora-convert --help'.\n", what)};
  };
  try {
    std::reverse(words.begin(), words.end());  // as the parser takes them
    app.parse(std::move(words));
  } catch (const CLI::ParseError& error) {
    return mistake(error.what());
  }
  if (help) return Answer{ExitCode::kDone, HelpText()};
  if (version) return Answer{ExitCode::kDone, fmt::format("velmora-convert {}\n", kVersion)};
  if (options.source.empty()) return mistake("SOURCE is required");
  if (options.destination.empty()) return mistake("DESTINATION_FOLDER is required");
  if (options.complete && options.smart) return mistake("--smart cannot go with --complete");
  if (options.complete && !options.trace.empty()) return mistake("--trace cannot go with --complete");
  if (!options.complete && options.hidden) return mistake("--hidden needs --complete");
  if (!options.complete && options.deleted) return mistake("--deleted needs --complete");
  if (!options.complete && options.verify) return mistake("--verify needs --complete");
  if (!options.complete && options.at) return mistake("--at needs --complete");
  if (options.dryRun && options.verify) return mistake("--verify cannot go with --dry-run, which writes no store");
  if (!codePage.empty()) {
    const auto found = text::CodePage::Find(codePage);
    if (!found) return mistake(fmt::format("--codepage: no code page is called '{}'", codePage));
    options.codePage = *found;
  }
  return options;
}

}  // namespace velmora::cli
