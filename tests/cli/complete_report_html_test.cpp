#include "cli/complete_report_html.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "cli/page/folder_tree.h"
#include "cli/page/html.h"

namespace velmora::cli {
namespace {

using complete::FileUse;
using complete::MissingPart;
using conversion::CompleteReport;
using testing::HasSubstr;
using testing::Not;

std::string Page(const CompleteReport& report, const ReportFrame& frame = {}, const page::Run& run = {}) {
  std::string page;
  WriteCompleteReportHtml(frame, report, run, [&page](std::string_view piece) { page += piece; });
  return page;
}

/// What stands between the first `begin` and the next `end`; empty where it is not there.
std::string Between(const std::string& page, const std::string& begin, const std::string& end) {
  const std::size_t from = page.find(begin);
  if (from == std::string::npos) return {};
  return page.substr(from + begin.size(), page.find(end, from + begin.size()) - from - begin.size());
}

std::string VerdictOn(const CompleteReport& report, const ReportFrame& frame = {}, const page::Run& run = {}) {
  return Between(Page(report, frame, run), "<div class=\"verdict ", "</div>");
}

CompleteReport ReportOf(complete::ItemCounts counts) {
  CompleteReport report;
  report.account.items = {{u"IPM.Note", counts}};
  if (counts.partial + counts.lost != 0) report.account.lossesNotListed = counts.partial + counts.lost;
  return report;
}

TEST(CompleteReportHtml, BeginsWithHowItWentInOneSentence) {
  EXPECT_EQ(VerdictOn({}), "good\"><p>Everything came across.</p><p>There were no items.</p>");
  EXPECT_EQ(VerdictOn(ReportOf({1381, 1381, 0, 0})), "good\"><p>Everything came across.</p><p>1,381 items, whole.</p>");
  EXPECT_EQ(
      VerdictOn(ReportOf({3, 2, 1, 0})),
      "fair\"><p>Some items are not whole.</p><p>2 of 3 items came across whole; 1 only in part, and 0 not at all. "
      "What is missing is named below.</p>");
  EXPECT_EQ(VerdictOn(ReportOf({1, 0, 0, 1})),
            "bad\"><p>Some items could not be saved.</p><p>0 of 1 item came across whole; 0 only in part, and 1 not at "
            "all. What is missing is named below.</p>");
}

TEST(CompleteReportHtml, SaysWhereTheStoreLiesInAFileThatHoldsMore) {
  CompleteReport report = ReportOf({1, 1, 0, 0});
  EXPECT_THAT(Page(report), Not(HasSubstr("than this store")));
  report.place.emplace();
  report.place->origin = 4096;
  EXPECT_THAT(Page(report), HasSubstr("<li>the store begins at byte 4096 of the file;"));
}

TEST(CompleteReportHtml, SaysOfFoldersThatAreNotWholeThatTheItemsAre) {
  CompleteReport report = ReportOf({1, 1, 0, 0});
  report.account.losses = {{.source = Nid{0x8022}, .target = Nid{0x8022}, .folder = u"/A"}};
  EXPECT_THAT(VerdictOn(report), HasSubstr("fair\"><p>All items came across whole, but not all that belongs to"));
}

TEST(CompleteReportHtml, SaysWhatEndedTheRunBeforeAnythingElse) {
  EXPECT_THAT(VerdictOn(ReportOf({1, 0, 0, 1}), ReportFrame{{}, {}, u"Disk <full>."}),
              HasSubstr("bad\"><p>The conversion did not come to its end: <bdi>Disk &lt;full&gt;.</bdi></p><p>0 of 1"));
  EXPECT_THAT(VerdictOn({}, ReportFrame{{}, {}, u"Why."}), HasSubstr("Why.</bdi></p><p>No items came across.</p>"));
  EXPECT_THAT(VerdictOn(ReportOf({1, 1, 0, 0}), {}, {.isStopped = true}),
              HasSubstr("fair\"><p>The conversion was stopped before its end.</p>"));
  CompleteReport differing = ReportOf({1, 1, 0, 0});
  differing.account.differences = {{Nid{1}, Nid{2}, "recipient 3"}};
  differing.account.differencesNotListed = 1;
  EXPECT_THAT(VerdictOn(differing), HasSubstr("bad\"><p>The new store is not like the old one in 2 places."));
}

TEST(CompleteReportHtml, NamesTheNewStoreWhereThereIsOne) {
  CompleteReport report;
  const ReportFrame frame{u"/in/a & b.ost", u"/out/a.pst", {}};
  EXPECT_THAT(Page(report, frame), HasSubstr("<dt>New store</dt><dd>none was made</dd>"));
  report.store = "/tmp/a.pst";
  EXPECT_THAT(Page(report, frame), HasSubstr("<dt>New store</dt><dd><bdi>/out/a.pst</bdi></dd>"));
  EXPECT_THAT(Page(report, frame, {.isDryRun = true}), HasSubstr("<dt>New store</dt><dd>none: it was a dry run</dd>"));
  EXPECT_THAT(Page(report, frame), HasSubstr("<h1>What came out of <bdi>a &amp; b.ost</bdi></h1>"));
}

TEST(CompleteReportHtml, HasNoSectionThatWouldBeEmpty) {
  const std::string page = Page({});
  for (const char* section : {"file", "folders", "kinds", "losses"}) {
    EXPECT_THAT(page, Not(HasSubstr("<section id=\"" + std::string(section)))) << section;
    EXPECT_THAT(page, Not(HasSubstr("href=\"#" + std::string(section)))) << section;
  }
  EXPECT_THAT(page, HasSubstr("<section id=\"evidence\">"));
}

TEST(CompleteReportHtml, DrawsTheFileSquareBySquareAndCountsThem) {
  CompleteReport report;
  using enum FileUse;
  report.account.fileMap = {1000, {kTree, kLive, kFailed, kFailed, kFreed, kUnreadable, kNeverUsed, kLive}};
  const std::string page = Page(report);
  EXPECT_EQ(Between(page, "data-bytes=\"1000\">\n", "\n</div>"),
            "<i class=\"t\"></i><i class=\"l\"></i><i class=\"x\"></i><i class=\"x\"></i><i class=\"f\"></i>"
            "<i class=\"u\"></i><i class=\"n\"></i><i class=\"l\"></i>");
  EXPECT_THAT(page, HasSubstr("<strong>3 of 8 squares are damaged or unreadable.</strong>"));
  EXPECT_THAT(page, HasSubstr("Each stands for 1.0 KB;"));
  EXPECT_THAT(Between(page, "<i class=\"l\"></i><span>", "</tr>"),
              HasSubstr("<td class=\"number\">2</td><td class=\"number\">25 %</td>"));
  const std::string places = Between(page, "<summary>Where the damage is</summary>", "</details>");
  EXPECT_EQ(Between(places, "<tbody>\n", "</tbody>"),
            "<tr><td>2,000</td><td>4,000</td><td>Damaged</td></tr>\n"
            "<tr><td>5,000</td><td>6,000</td><td>Unreadable</td></tr>\n");
}

TEST(CompleteReportHtml, ListsAHundredBadPlacesAndTheNumberOfTheRest) {
  CompleteReport report;
  for (int i = 0; i < 103; ++i) {
    report.account.fileMap.cells.insert(report.account.fileMap.cells.end(), {FileUse::kFailed, FileUse::kLive});
  }
  report.account.fileMap.cellBytes = 10;
  const std::string places = Between(Page(report), "<summary>Where the damage is</summary>", "</details>");
  EXPECT_THAT(places, HasSubstr("<tr><td>1,980</td><td>1,990</td>"));
  EXPECT_THAT(places, Not(HasSubstr("<tr><td>2,000</td>")));
  EXPECT_THAT(places, HasSubstr("<p>3 more.</p>"));
}

std::string TreeOf(std::vector<complete::FolderAccount> folders) {
  std::string section;
  page::WriteFolderTree(folders, [&section](std::string_view piece) { section += piece; });
  return Between(section, "<tbody>\n", "</tbody>");
}

TEST(CompleteReportHtml, TellsOfEachFolderWhatBecameOfItsItems) {
  EXPECT_EQ(
      TreeOf({{u"/A", 1200, 3, 2, 1}}),
      "<tr class=\"lossy\"><th scope=\"row\" class=\"d0\"><bdi>A</bdi></th><td class=\"number whole\">1,200</td>"
      "<td class=\"number part\">3</td><td class=\"number lost\">2</td><td class=\"number deleted\">1</td></tr>\n");
  EXPECT_THAT(TreeOf({{u"/A", 1, 0, 0, 0}}), HasSubstr("<tr class=\"sound\">"));
}

TEST(CompleteReportHtml, AFolderStandsBelowTheOneThatItIsInWhateverItsNameHolds) {
  const std::string tree =
      TreeOf({{u"/"}, {u"/A"}, {u"/A/B"}, {u"/A/B/C/D"}, {u"/A/B2"}, {u"/AB"}, {u"/AB/"}, {u"/E/F"}});
  std::vector<std::string> rows;
  for (std::size_t at = 0; (at = tree.find("class=\"d", at)) != std::string::npos; ++at) {
    const std::string cell = tree.substr(at + 7, tree.find("</th>", at) - at - 7);
    const std::size_t way = cell.find("</span>");
    rows.push_back(cell.substr(0, 2) + " " + cell.substr(way == std::string::npos ? 4 : way + 7));
  }
  EXPECT_THAT(rows,
              testing::ElementsAre("d0 Top of the store", "d0 <bdi>A</bdi>", "d1 <bdi>B</bdi>", "d2 <bdi>C/D</bdi>",
                                   "d1 <bdi>B2</bdi>", "d0 <bdi>AB</bdi>", "d0 <bdi>AB/</bdi>", "d0 <bdi>E/F</bdi>"));
  EXPECT_THAT(tree, HasSubstr("<span class=\"sr\"><bdi>/A/B/</bdi> </span><bdi>C/D</bdi>"));
}

TEST(CompleteReportHtml, WhatLiesVeryDeepIsMovedNoFurther) {
  std::vector<complete::FolderAccount> folders;
  text::Text path;
  for (int i = 0; i < 300; ++i) folders.push_back({path += u"/x"});
  const std::string tree = TreeOf(folders);
  EXPECT_THAT(tree, HasSubstr("class=\"d12\""));
  EXPECT_THAT(tree, Not(HasSubstr("class=\"d13\"")));
}

TEST(CompleteReportHtml, NamesALossAsAPersonKnowsItAndAllThatIsMissing) {
  using Kind = MissingPart::Kind;
  const Failure cause{FailureKind::kCorrupt, {platform::ObjectKind::kBlock, 0x1A4u}, 5632, "the checksum is wrong"};
  CompleteReport report;
  report.account.losses = {{.source = Nid{0x24},
                            .target = Nid{0x44},
                            .folder = u"/Inbox",
                            .messageClass = u"IPM.Note",
                            .subject = u"Plan",
                            .sender = u"Anna",
                            .date = text::FileTimeOfUnixSeconds(1620050571),
                            .missing = {{.kind = Kind::kAttachment, .name = u"a.pdf", .size = 1234567, .cause = cause},
                                        {.kind = Kind::kProperty, .tag = 0x1000001F}}},
                           {.source = Nid{0x8022}, .folder = u"/Old", .missing = {{.kind = Kind::kObject}}},
                           {.source = Nid{0x2100A4}, .folder = u"/Old", .missing = {{.kind = Kind::kObject}}}};
  const std::string page = Page(report);
  const std::string rows = Between(page, "<table class=\"losses\">", "</table>");
  EXPECT_EQ(
      rows.substr(rows.find("<tr class")),
      "<tr class=\"part\"><th scope=\"row\"><bdi>Plan</bdi><small><span>from <bdi>Anna</bdi></span> "
      "<span>2021-05-03 14:02</span> <span>in <bdi>/Inbox</bdi></span></small></th><td><b>In part</b><ul>"
      "<li>attachment &quot;a.pdf&quot; (1.2 MB) <small><bdi>block 0x1a4: the checksum is wrong</bdi></small></li>"
      "<li>the plain text</li></ul></td></tr>\n"
      "<tr class=\"lost\"><th scope=\"row\">The folder <bdi>/Old</bdi></th><td><b>Lost</b><ul><li>all of it</li></ul>"
      "</td></tr>\n"
      "<tr class=\"lost\"><th scope=\"row\">An unknown item (node 0x2100a4)<small><span>in <bdi>/Old</bdi></span>"
      "</small></th><td><b>Lost</b><ul>"
      "<li>all of it</li></ul></td></tr>\n</tbody>");
}

TEST(CompleteReportHtml, CountsLossesAndPartsThatAreNotListed) {
  CompleteReport report;
  report.account.losses = {{.source = Nid{0x24}, .missing = std::vector<MissingPart>(25)}};
  report.account.lossesNotListed = 1234;
  const std::string page = Page(report);
  EXPECT_THAT(page, HasSubstr("<p>The first 1 are named here; 1,234 more are not.</p>"));
  EXPECT_THAT(page, HasSubstr("Lost or not whole (1,235)"));
  EXPECT_THAT(page, HasSubstr("<li>5 more</li></ul>"));
}

TEST(CompleteReportHtml, NamesKindsOfItemsInPlainWordsWhereThereAreSome) {
  CompleteReport report;
  report.account.items = {{u"IPM.Note.SMIME", {1, 1, 0, 0}}, {u"IPM.Notebook", {2, 1, 1, 0}}, {u"", {1, 0, 0, 1}}};
  const std::string page = Page(report);
  EXPECT_THAT(page, HasSubstr("<th scope=\"row\">Mail <small><bdi>IPM.Note.SMIME</bdi></small></th>"));
  EXPECT_THAT(page, HasSubstr("<th scope=\"row\">Not known<small><bdi></bdi></small></th>"));
  EXPECT_THAT(page, HasSubstr("<th scope=\"row\"><small><bdi>IPM.Notebook</bdi></small></th>"
                              "<td class=\"number whole\">1</td><td class=\"number part\">1</td>"
                              "<td class=\"number none\">0</td>"));
}

TEST(CompleteReportHtml, ComesInPieces) {
  CompleteReport report;
  report.account.losses = std::vector<complete::Loss>(10'000, {.source = Nid{0x24}, .subject = text::Text(300, u'<')});
  std::size_t longest = 0;
  std::size_t all = 0;
  WriteCompleteReportHtml({}, report, {}, [&](std::string_view piece) {
    longest = std::max(longest, piece.size());
    all += piece.size();
  });
  EXPECT_GT(all, 8'000'000u);
  EXPECT_LT(longest, 20'000u);
}

TEST(PageText, NothingOfATextIsMarkup) {
  EXPECT_EQ(page::Escaped("<a href=\"x\" id='y'>&amp;"), "&lt;a href=&quot;x&quot; id=&#39;y&#39;&gt;&amp;amp;");
}

TEST(PageText, ATextOfAStoreIsOneLineThatTurnsNothing) {
  EXPECT_EQ(page::StoreText(u"a\u202Eb\u200Fc\x01"
                            u"d\nz"),
            "<bdi>a b c d z</bdi>");
  EXPECT_EQ(page::StoreText(text::Text{u'a', 0xD800, u'b', 0xDC00, 0xFFFF}), "<bdi>a\uFFFDb\uFFFD </bdi>");
  EXPECT_EQ(page::StoreText(text::Text(201, u'<')).size(), 5 + 200 * 4 + 3 + 6u);
}

TEST(PageText, NumbersAreGrouped) {
  EXPECT_EQ(page::Grouped(0), "0");
  EXPECT_EQ(page::Grouped(999), "999");
  EXPECT_EQ(page::Grouped(1000), "1,000");
  EXPECT_EQ(page::Grouped(~std::uint64_t{0}), "18,446,744,073,709,551,615");
  EXPECT_EQ(page::Counted(1, "item", "items"), "1 item");
  EXPECT_EQ(page::Counted(0, "item", "items"), "0 items");
}

}  // namespace
}  // namespace velmora::cli
