#include "cli/page/evidence.h"

#include <fmt/format.h>

#include <algorithm>

#include "cli/complete_result_text.h"
#include "cli/node_fates.h"
#include "cli/page/html.h"
#include "cli/plain_words.h"
#include "conversion/run_report.h"

namespace velmora::cli::page {
namespace {

using complete::Account;

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

}  // namespace

void WriteEvidence(const ReportFrame& frame, const conversion::CompleteReport& report, const ReportSink& sink) {
  const Account& account = report.account;
  const complete::Evidence& evidence = account.evidence;
  sink("<section id=\"evidence\"><h2>How it was read</h2>\n<dl>\n");
  sink(Fact("Header of the file", evidence.headerUsed ? "right, and used" : "could not be used"));
  const auto list = [](bool isExact) { return isExact ? "whole" : "not whole: told from all that was found"; };
  sink(Fact("List of objects", list(evidence.nodesAreExact)));
  sink(Fact("List of blocks", list(evidence.blocksAreExact)));
  sink(Fact("Pages of these lists found, old ones too", Grouped(evidence.nodePages + evidence.blockPages)));
  sink(Fact("Objects in use", Grouped(evidence.liveNodes)));
  sink(Fact("Blocks in use", Grouped(evidence.liveBlocks)));
  sink(Fact("Blocks no longer in use", Grouped(evidence.freedBlocks)));
  sink(Fact("Blocks with a wrong checksum", Grouped(evidence.hurtBlocks)));
  sink(Fact("Memory at most", SizeText(frame.peakRssKiB * 1024)));
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
  sink(
      "<details><summary>Every object that the file names</summary>\n<table><thead><tr>"
      "<th scope=\"col\">What became of it</th><th scope=\"col\" class=\"number\">Objects</th></tr></thead><tbody>\n");
  for (const FateRow& row : kFates) {
    sink(fmt::format("<tr><th scope=\"row\">{} <small>{}</small></th><td class=\"number\">{}</td></tr>\n", row.name,
                     row.meaning, Grouped(account.nodes[static_cast<std::size_t>(row.fate)])));
  }
  sink(
      fmt::format("<tr><th scope=\"row\">all</th><td class=\"number\">{}</td></tr>\n</tbody></table></details>\n"
                  "</section>\n",
                  Grouped(account.NodesFound())));
}

}  // namespace velmora::cli::page
