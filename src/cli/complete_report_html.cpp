#include "cli/complete_report_html.h"

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <numeric>

#include "cli/complete_result_text.h"
#include "cli/node_fates.h"
#include "cli/page/file_picture.h"
#include "cli/page/folder_tree.h"
#include "cli/page/html.h"
#include "cli/page/looks.h"
#include "cli/page/loss_list.h"
#include "cli/plain_words.h"
#include "conversion/run_report.h"

namespace velmora::cli {
namespace {

using complete::Account;
using complete::ItemCounts;
using page::Counted;
using page::Escaped;
using page::Grouped;
using page::StoreText;

struct Verdict {
  const char* look;
  std::string words;
  std::string more = {};
};

std::string CameAcross(const ItemCounts& totals) {
  const std::uint64_t all = totals.whole + totals.partial + totals.lost;
  if (all == 0) return "There were no items.";
  return fmt::format("{} of {} came across whole; {} only in part, and {} not at all.", Grouped(totals.whole),
                     Counted(all, "item", "items"), Grouped(totals.partial), Grouped(totals.lost));
}

Verdict VerdictOf(const ReportFrame& frame, const Account& account, const PageRun& run) {
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

void WriteFact(const char* name, const std::string& value, const ReportSink& sink) {
  sink(fmt::format("<dt>{}</dt><dd>{}</dd>\n", name, value));
}

void WriteSummary(const ReportFrame& frame, const conversion::CompleteReport& report, const PageRun& run,
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

  sink("<dl>\n");
  WriteFact("Read from", StoreText(frame.source), sink);
  const bool isMade = !run.isDryRun && !report.store.empty();
  WriteFact("New store",
            isMade         ? StoreText(frame.destination)
            : run.isDryRun ? "none: it was a dry run"
                           : "none was made",
            sink);
  if (account.isVerified) {
    WriteFact("Compared",
              Counted(account.objectsCompared, "object", "objects") +
                  (account.differences.empty() ? ", no difference" : ", see below"),
              sink);
  }
  WriteFact("Copied", SizeText(account.bytes), sink);
  WriteFact("Time taken", fmt::format("{:.1f} seconds", frame.seconds), sink);
  sink("</dl>\n");
  if (account.undefinedBytes != 0) {
    sink(
        fmt::format("<p>{} of 8-bit text stand for no letter of its code page; <code>--codepage</code> may name the "
                    "right one.</p>\n",
                    SizeText(account.undefinedBytes)));
  }
}

/// Links to the parts that the page has.
void WriteContents(const Account& account, const ReportSink& sink) {
  sink("<nav aria-label=\"Contents\"><ul>");
  if (!account.fileMap.cells.empty() && account.fileMap.cellBytes != 0) {
    sink("<li><a href=\"#file\">The file at a glance</a></li>");
  }
  if (!account.folderAccounts.empty()) sink("<li><a href=\"#folders\">Folder by folder</a></li>");
  if (!account.items.empty()) sink("<li><a href=\"#kinds\">By kind</a></li>");
  if (!account.IsWhole()) {
    sink(fmt::format("<li><a href=\"#losses\">Lost or not whole ({})</a></li>",
                     Grouped(account.losses.size() + account.lossesNotListed)));
  }
  sink("<li><a href=\"#evidence\">How it was read</a></li></ul></nav>\n");
}

struct KindRow {
  std::u16string_view beginning;  ///< of the message class
  const char* words;
};

constexpr KindRow kKinds[] = {
    {u"IPM.Note", "Mail"},
    {u"IPM.Contact", "Contacts"},
    {u"IPM.DistList", "Contact groups"},
    {u"IPM.Appointment", "Calendar"},
    {u"IPM.Schedule", "Invitations"},
    {u"IPM.Task", "Tasks"},
    {u"IPM.StickyNote", "Notes"},
    {u"IPM.Activity", "Journal"},
    {u"IPM.Post", "Posts"},
    {u"REPORT", "Delivery reports"},
};

/// Nothing for a class that few people have heard of.
std::string KindWords(text::TextView messageClass) {
  for (const KindRow& row : kKinds) {
    const std::size_t length = row.beginning.size();
    if (!text::EqualIgnoringCase(messageClass.substr(0, length), row.beginning)) continue;
    if (messageClass.size() == length || messageClass[length] == u'.') return std::string(row.words) + " ";
  }
  return {};
}

void WriteKinds(const Account& account, const ReportSink& sink) {
  if (account.items.empty()) return;
  sink(
      "<section id=\"kinds\"><h2>By kind</h2>\n<table><thead><tr><th scope=\"col\">Kind</th>"
      "<th scope=\"col\" class=\"number\">Whole</th><th scope=\"col\" class=\"number\">In part</th>"
      "<th scope=\"col\" class=\"number\">Lost</th></tr></thead><tbody>\n");
  const auto cell = [](std::uint64_t number, const char* look) {
    return fmt::format("<td class=\"number {}\">{}</td>", number == 0 ? "none" : look, Grouped(number));
  };
  for (const auto& [messageClass, counts] : account.items) {
    sink(fmt::format("<tr><th scope=\"row\">{}<small>{}</small></th>{}{}{}</tr>\n", KindWords(messageClass),
                     StoreText(messageClass), cell(counts.whole, "whole"), cell(counts.partial, "part"),
                     cell(counts.lost, "lost")));
  }
  sink("</tbody></table></section>\n");
}

constexpr std::size_t kMostFaults = 100;
constexpr std::size_t kMostDifferences = 1000;

/// The first of a list, and how many more there are.
template <class Elements, class Form>
void WriteFirst(const char* heading, const Elements& elements, std::size_t most, std::uint64_t beyond, Form form,
                const ReportSink& sink) {
  if (elements.empty() && beyond == 0) return;
  sink(fmt::format("<h3>{}</h3>\n<ul>\n", heading));
  const std::size_t listed = std::min(elements.size(), most);
  for (std::size_t i = 0; i < listed; ++i) sink("<li>" + form(elements[i]) + "</li>\n");
  beyond += elements.size() - listed;
  if (beyond != 0) sink(fmt::format("<li>{} more</li>\n", Grouped(beyond)));
  sink("</ul>\n");
}

void WriteEvidence(const ReportFrame& frame, const conversion::CompleteReport& report, const ReportSink& sink) {
  const Account& account = report.account;
  const complete::Evidence& evidence = account.evidence;
  sink("<section id=\"evidence\"><h2>How it was read</h2>\n<dl>\n");
  WriteFact("Header of the file", evidence.headerUsed ? "right, and used" : "could not be used", sink);
  WriteFact("Lists of the store", evidence.treesUsed ? "right, and used" : "could not be read to their end", sink);
  WriteFact("In these lists",
            Counted(evidence.treeNodes, "object", "objects") + ", " + Counted(evidence.treeBlocks, "block", "blocks"),
            sink);
  WriteFact("Pages of such lists found", Grouped(evidence.nodePages), sink);
  WriteFact("Memory at most", SizeText(frame.peakRssKiB * 1024), sink);
  sink("</dl>\n");
  WriteFirst(
      "What --verify found to differ", account.differences, kMostDifferences, account.differencesNotListed,
      [](const complete::Difference& difference) { return Escaped(DifferenceWords(difference)); }, sink);
  WriteFirst(
      "Stretches of the file that could not be read", report.unread, conversion::kMostUnreadRanges, 0,
      [](const auto& range) {
        return fmt::format("{} from byte {}", SizeText(range.second - range.first), Grouped(range.first));
      },
      sink);
  WriteFirst(
      "Pages of the lists that could not be used", evidence.treeFaults, kMostFaults, 0,
      [](const Failure& fault) { return StoreText(text::FromUtf8(TextOf(fault))); }, sink);
  sink(
      "<details><summary>Every object that the file names</summary>\n<table><thead><tr><th scope=\"col\">What became "
      "of "
      "it</th><th scope=\"col\" class=\"number\">Objects</th></tr></thead><tbody>\n");
  for (const FateRow& row : kFates) {
    sink(fmt::format("<tr><th scope=\"row\">{} <small>{}</small></th><td class=\"number\">{}</td></tr>\n", row.name,
                     row.meaning, Grouped(account.nodes[static_cast<std::size_t>(row.fate)])));
  }
  sink(
      fmt::format("<tr><th scope=\"row\">all</th><td class=\"number\">{}</td></tr>\n</tbody></table></details>\n"
                  "</section>\n",
                  Grouped(account.NodesFound())));
}

}  // namespace

void WriteCompleteReportHtml(const ReportFrame& frame, const conversion::CompleteReport& report, const PageRun& run,
                             const ReportSink& sink) {
  const text::TextView source = frame.source;
  const text::TextView name = source.substr(source.find_last_of(u'/') + 1);
  sink("<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\"/>\n");
  sink(
      fmt::format("<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; style-src '{}'; "
                  "script-src '{}'; base-uri 'none'; form-action 'none'\"/>\n",
                  page::kStyleHash, page::kScriptHash));
  sink(
      "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\"/>\n"
      "<meta name=\"color-scheme\" content=\"light dark\"/>\n<title>Report: " +
      Escaped(OneLine(name)) + "</title>\n<style>");
  sink(page::kStyle);
  sink("</style>\n</head>\n<body>\n<main class=\"page\">\n<h1>What came out of " + StoreText(name) + "</h1>\n");
  WriteSummary(frame, report, run, sink);
  WriteContents(report.account, sink);
  page::WriteFilePicture(report.account.fileMap, sink);
  page::WriteFolderTree(report.account.folderAccounts, sink);
  WriteKinds(report.account, sink);
  page::WriteLossList(report.account, sink);
  WriteEvidence(frame, report, sink);
  sink("</main>\n<script>");
  sink(page::kScript);
  sink("</script>\n</body>\n</html>\n");
}

}  // namespace velmora::cli
