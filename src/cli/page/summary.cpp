#include "cli/page/summary.h"

#include <fmt/format.h>

#include <algorithm>
#include <functional>
#include <numeric>

#include "cli/page/html.h"
#include "cli/place_words.h"
#include "cli/plain_words.h"

namespace velmora::cli::page {
namespace {

using complete::Account;
using complete::ItemCounts;

struct Verdict {
  const char* look;
  std::string words;
  std::string more = {};
};

std::string CameAcross(const ItemCounts& totals) {
  const std::uint64_t all = totals.whole + totals.partial + totals.lost;
  if (all == 0) return "No items came across.";
  return fmt::format("{} of {} came across whole; {} only in part, and {} not at all.", Grouped(totals.whole),
                     Counted(all, "item", "items"), Grouped(totals.partial), Grouped(totals.lost));
}

Verdict VerdictOf(const ReportFrame& frame, const Account& account, const Run& run) {
  const ItemCounts totals = account.Totals();
  if (!frame.refusal.empty()) {
    return {"bad", "The conversion did not come to its end: " + StoreText(frame.refusal), CameAcross(totals)};
  }
  const std::uint64_t differences = account.differences.size() + account.differencesNotListed;
  if (differences != 0) {
    return {"bad",
            fmt::format("The new store is not like the old one in {}. That is a fault of this program.",
                        Counted(differences, "place", "places")),
            CameAcross(totals)};
  }
  if (run.isStopped) {
    return {"fair", "The conversion was stopped before its end.",
            "This is what it did until then. " + CameAcross(totals)};
  }
  if (!account.IsWhole()) {
    const char* way = " What is missing is named below.";
    if (totals.lost != 0) return {"bad", "Some items could not be saved.", CameAcross(totals) + way};
    if (totals.partial != 0) return {"fair", "Some items are not whole.", CameAcross(totals) + way};
    return {"fair", "All items came across whole, but not all that belongs to their folders.",
            CameAcross(totals) + way};
  }
  if (totals.whole == 0) return {"good", "Everything came across.", "There were no items."};
  return {"good", "Everything came across.", fmt::format("{}, whole.", Counted(totals.whole, "item", "items"))};
}

std::uint64_t DeletedOnes(const Account& account) {
  return std::transform_reduce(account.folderAccounts.begin(), account.folderAccounts.end(), std::uint64_t{0},
                               std::plus(), [](const auto& folder) { return folder.deleted; });
}

void WriteFigure(const char* look, std::uint64_t number, const char* words, const ReportSink& sink) {
  sink(fmt::format("<li class=\"{}\"><b>{}</b> {}</li>\n", look, Grouped(number), words));
}

/// Whole, in part and lost as one bar; what there is can be seen however little it is.
void WriteBar(const ItemCounts& totals, const ReportSink& sink) {
  constexpr double kLeast = 1.0;  // percent
  const std::uint64_t all = totals.whole + totals.partial + totals.lost;
  if (all == 0) return;
  const auto share = [=](std::uint64_t number) {
    return number == 0 ? 0.0 : std::max(kLeast, 100.0 * static_cast<double>(number) / static_cast<double>(all));
  };
  const double sum = share(totals.whole) + share(totals.partial) + share(totals.lost);
  sink("<svg class=\"bar\" role=\"img\" aria-label=\"" + CameAcross(totals) +
       "\"><defs>"
       "<pattern id=\"stripes\" width=\"8\" height=\"8\" patternUnits=\"userSpaceOnUse\">"
       "<rect width=\"8\" height=\"8\"/><path d=\"M-2 10 10 -2M2 14 14 2\"/></pattern>"
       "<pattern id=\"hatch\" width=\"8\" height=\"8\" patternUnits=\"userSpaceOnUse\">"
       "<rect width=\"8\" height=\"8\"/><path d=\"M0 0 8 8M8 0 0 8\"/></pattern></defs>\n");
  double at = 0;
  const auto stretch = [&](const char* look, std::uint64_t number) {
    const double width = 100.0 * share(number) / sum;
    if (number != 0) {
      sink(fmt::format("<rect class=\"{}\" x=\"{:.2f}%\" width=\"{:.2f}%\" height=\"100%\"/>\n", look, at, width));
    }
    at += width;
  };
  stretch("whole", totals.whole);
  stretch("part", totals.partial);
  stretch("lost", totals.lost);
  sink("</svg>\n");
}

/// Where the store lies in the file, if it is not all of it.
void WritePlace(const conversion::CompleteReport& report, const ReportSink& sink) {
  const std::vector<std::string> lines = PlaceLines(report);
  if (lines.empty()) return;
  sink("<p>The file is more, or less, than this store:</p>\n<ul>\n");
  for (const std::string& line : lines) sink("<li>" + Escaped(line) + "</li>\n");
  sink("</ul>\n");
}

}  // namespace

void WriteSummary(const ReportFrame& frame, const conversion::CompleteReport& report, const Run& run,
                  const ReportSink& sink) {
  const Account& account = report.account;
  const Verdict verdict = VerdictOf(frame, account, run);
  sink(fmt::format("<div class=\"verdict {}\"><p>{}</p><p>{}</p></div>\n", verdict.look, verdict.words, verdict.more));
  const ItemCounts totals = account.Totals();
  sink("<ul class=\"figures\">\n");
  WriteFigure("whole", totals.whole, "items whole", sink);
  WriteFigure("part", totals.partial, "items in part", sink);
  WriteFigure("lost", totals.lost, "items lost", sink);
  if (const std::uint64_t deleted = DeletedOnes(account); deleted != 0) {
    WriteFigure("deleted", deleted, "deleted items that came back", sink);
  }
  WriteFigure("folders", account.folders, "folders", sink);
  WriteFigure("attachments", account.attachments, "attachments", sink);
  sink("</ul>\n");
  WriteBar(totals, sink);
  WritePlace(report, sink);

  sink("<dl>\n");
  sink(Fact("Read from", StoreText(frame.source)));
  const bool isMade = !run.isDryRun && !report.store.empty();
  sink(Fact("New store", isMade         ? StoreText(frame.destination)
                         : run.isDryRun ? "none: it was a dry run"
                                        : "none was made"));
  if (account.isVerified) {
    sink(Fact("Compared", Counted(account.objectsCompared, "object", "objects") +
                              (account.differences.empty() ? ", no difference" : ", see below")));
  }
  sink(Fact("Copied", SizeText(account.bytes)));
  sink(Fact("Time taken", fmt::format("{:.1f} seconds", frame.seconds)));
  sink("</dl>\n");
  if (account.undefinedBytes != 0) {
    sink(
        fmt::format("<p>{} of 8-bit text stand for no letter of its code page; <code>--codepage</code> may name the "
                    "right one.</p>\n",
                    SizeText(account.undefinedBytes)));
  }
}

}  // namespace velmora::cli::page
