#include "cli/complete_report_html.h"

#include <fmt/format.h>

#include "cli/page/evidence.h"
#include "cli/page/file_picture.h"
#include "cli/page/folder_tree.h"
#include "cli/page/html.h"
#include "cli/page/looks.h"
#include "cli/page/loss_list.h"
#include "cli/page/summary.h"
#include "cli/plain_words.h"
#include "platform/path_text.h"

namespace velmora::cli {
namespace {

using complete::Account;
using page::Escaped;
using page::Grouped;
using page::StoreText;

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
  if (messageClass.empty()) return "Not known";
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
  for (const auto& [messageClass, counts] : account.items) {
    sink(fmt::format("<tr><th scope=\"row\">{}<small>{}</small></th>{}{}{}</tr>\n", KindWords(messageClass),
                     StoreText(messageClass), page::NumberCell(counts.whole, "whole"),
                     page::NumberCell(counts.partial, "part"), page::NumberCell(counts.lost, "lost")));
  }
  sink("</tbody></table></section>\n");
}

}  // namespace

void WriteCompleteReportHtml(const ReportFrame& frame, const conversion::CompleteReport& report, const page::Run& run,
                             const ReportSink& sink) {
  const text::TextView source = frame.source;
  const text::Text name = platform::TextOfPath(platform::PathOf(source).filename());
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
  page::WriteSummary(frame, report, run, sink);
  WriteContents(report.account, sink);
  page::WriteFilePicture(report.account.fileMap, sink);
  page::WriteFolderTree(report.account.folderAccounts, sink);
  WriteKinds(report.account, sink);
  page::WriteLossList(report.account, sink);
  page::WriteEvidence(frame, report, sink);
  sink("</main>\n<script>");
  sink(page::kScript);
  sink("</script>\n</body>\n</html>\n");
}

}  // namespace velmora::cli
