// forge_page KIND FILE: writes the page of a report that no store gave. Kinds: "empty"; "sound"; "damaged", a store
// that lost much; "hostile", whose texts would be markup; "huge", with all losses and squares that an account can have.
#include <fmt/format.h>

#include <fstream>
#include <iostream>

#include "cli/complete_report_html.h"

namespace {

using namespace velmora;  // NOLINT: a program of one file
using complete::FileUse;
using complete::MissingPart;
using Kind = MissingPart::Kind;
using conversion::CompleteReport;

const Failure kBadBlock{FailureKind::kCorrupt, {platform::ObjectKind::kBlock, 0x1A4u}, 5632, "the checksum is wrong"};
const Failure kNoBlock{
    FailureKind::kNotFound, {platform::ObjectKind::kBlock, 0x2E0u}, {}, "the store has no such block"};

/// Each stretch of the file is as far as a share of it says.
void Draw(complete::FileMap& map, std::size_t cells, std::uint64_t cellBytes) {
  map = {cellBytes, {}};
  std::uint32_t dice = 7;
  const auto roll = [&dice] { return (dice = dice * 1664525 + 1013904223) >> 20; };
  for (std::size_t i = 0; i < cells; ++i) {
    const std::size_t part = i * 100 / cells;
    FileUse use = roll() % 9 == 0 ? FileUse::kFreed : FileUse::kLive;
    if (i % 61 < 2) use = FileUse::kTree;
    if (part > 33 && part < 41) use = FileUse::kFailed;
    if (roll() % 97 == 0) use = FileUse::kFailed;
    if (part > 60 && part < 63) use = FileUse::kUnreadable;
    if (part > 88) use = FileUse::kNeverUsed;
    map.cells.push_back(use);
  }
}

void AddTree(std::vector<complete::FolderAccount>& folders) {
  folders = {{u"/", 0, 0, 0, 0},
             {u"/Inbox", 812, 3, 41, 12},
             {u"/Inbox/Projects", 204, 1, 6, 0},
             {u"/Inbox/Projects/Bridge", 77, 0, 0, 0},
             {u"/Inbox/Projects/Bridge/Drawings", 31, 0, 2, 0},
             {u"/Inbox/Projects/Bridge/Drawings/Old", 12, 0, 0, 4},
             {u"/Inbox/Projects/Bridge/Drawings/Old/2014 and before: scans of the paper archive", 1204, 0, 0, 0},
             {u"/Inbox/Offers/Invoices", 58, 0, 0, 0},
             {u"/Sent Items", 634, 2, 17, 0},
             {u"/Calendar", 311, 0, 1, 0},
             {u"/Contacts", 149, 0, 0, 0},
             {u"/Tasks", 22, 0, 0, 0},
             {u"/\u0627\u0644\u0628\u0631\u064A\u062F", 9, 0, 1, 0},
             {u"/Recovered Deleted Items", 0, 0, 0, 0},
             {u"/Recovered Deleted Items/Inbox", 0, 0, 0, 38}};
}

complete::Loss LossOf(int number) {
  static constexpr const char16_t* kSubjects[] = {
      u"Re: Plan of the bridge, second draft", u"Minutes", u"Your invoice",
      u"Fwd: Photographs from Saturday",       u"",        u"Gr\u00FC\u00DFe aus K\u00F6ln"};
  static constexpr const char16_t* kSenders[] = {u"Anna Berg", u"Jan Novak", u"billing@example.com", u"M. Okafor"};
  static constexpr const char16_t* kFolders[] = {u"/Inbox", u"/Inbox/Projects/Bridge/Drawings", u"/Sent Items"};
  complete::Loss loss{.source = Nid{0x200004u + 32u * static_cast<std::uint32_t>(number)},
                      .folder = kFolders[number % 3],
                      .messageClass = u"IPM.Note",
                      .subject = kSubjects[number % 6],
                      .sender = kSenders[number % 4],
                      .date = text::FileTimeOfUnixSeconds(1620050571 - 86'400ll * number)};
  if (number % 4 != 0) {
    loss.missing = {{.kind = Kind::kObject, .cause = number % 2 == 0 ? kBadBlock : kNoBlock}};
    return loss;
  }
  loss.target = loss.source;
  loss.missing = {{.kind = Kind::kAttachment, .name = u"plan.pdf", .size = 1'234'567, .cause = kBadBlock},
                  {.kind = Kind::kBytes, .tag = 0x1000001F, .size = 8176, .cause = kBadBlock}};
  return loss;
}

CompleteReport Sound() {
  CompleteReport report;
  report.store = "/home/me/mail/outlook Converted0/outlook Converted.pst";
  complete::Account& account = report.account;
  account.items = {
      {u"IPM.Note", {2875, 2875, 0, 0}}, {u"IPM.Contact", {149, 149, 0, 0}}, {u"IPM.Own.Form", {3, 3, 0, 0}}};
  account.nodes[0] = 3070;
  account.folders = 16;
  account.attachments = 412;
  account.bytes = 1'412'345'678;
  account.evidence = {true, true, true, 9120, 412, 390, 31877, 1204, 0, 0};
  account.isVerified = true;
  account.objectsCompared = 3043;
  account.folderAccounts = {{u"/Inbox", 2875, 0, 0, 0}, {u"/Contacts", 152, 0, 0, 0}};
  account.fileMap.cellBytes = 1 << 20;
  account.fileMap.cells.assign(200, FileUse::kLive);
  account.fileMap.cells[0] = FileUse::kTree;
  return report;
}

CompleteReport Damaged(int losses, std::size_t cells) {
  CompleteReport report = Sound();
  complete::Account& account = report.account;
  account.isVerified = false;
  account.items = {{u"IPM.Note", {2948, 2875, 6, 67}},
                   {u"IPM.Appointment", {312, 311, 0, 1}},
                   {u"IPM.Contact", {149, 149, 0, 0}},
                   {u"IPM.Own.Form", {3, 3, 0, 0}}};
  account.evidence = {false, false, false, 8733, 388, 12, 30112, 955, 21, 40};
  account.nodes = {3070, 6, 214, 66, 54, 31, 4, 120, 68};
  report.unread = {{891'289'600, 933'232'640}};
  account.folderAccounts.clear();
  AddTree(account.folderAccounts);
  Draw(account.fileMap, cells, 360 * 1024);
  for (int i = 0; i < losses; ++i) account.losses.push_back(LossOf(i));
  account.losses.push_back({.source = Nid{0x8082},
                            .target = Nid{0x8082},
                            .folder = u"/Old",
                            .missing = {{.kind = Kind::kProperty, .cause = kBadBlock}}});
  account.losses.push_back({.source = Nid{0x2100A4}, .missing = {{.kind = Kind::kObject, .cause = kNoBlock}}});
  return report;
}

CompleteReport Huge() {
  CompleteReport report = Damaged(9'998, complete::FileMap::kMostCells);
  report.account.lossesNotListed = 12'345;
  for (int i = 0; i < 3'000; ++i) {
    report.account.folderAccounts.push_back(
        {text::FromUtf8(fmt::format("/Archive/{}", i)), 1, 0, i % 10 == 0 ? 1u : 0u, 0});
  }
  return report;
}

CompleteReport Hostile() {
  const text::Text evil =
      u"</bdi></th></script><script>document.title='taken'</script><img src=x onerror=\"document.title="
      u"'taken'\"/>'\"&amp;<!-- ]]> \u202Eevil\u2066 \x01\x1F\x7F end" +
      text::Text{0xD83D, u'x', 0xDC00, 0xFFFE, 0xFFFF};
  CompleteReport report;
  report.store = "/out/a.pst";
  complete::Account& account = report.account;
  account.items = {{evil, {1, 0, 0, 1}}};
  account.isVerified = true;
  account.differences = {{Nid{0x24}, Nid{0x44}, text::ToUtf8(evil)}};
  account.losses = {
      {.source = Nid{0x24},
       .target = Nid{0x44},
       .folder = u"/" + evil,
       .messageClass = evil,
       .subject = evil,
       .sender = evil,
       .date = ~text::FileTime{0},
       .missing = {{.kind = Kind::kAttachment, .name = evil, .size = 1, .cause = kBadBlock}}},
      {.source = Nid{0x64},
       .folder = u"/" + evil,
       .missing = {{.kind = Kind::kObject, .cause = {FailureKind::kCorrupt, {}, {}, text::ToUtf8(evil)}}}}};
  account.folderAccounts = {{u"/" + evil, 0, 1, 0, 0}, {u"/" + evil + u"/" + evil, 0, 0, 0, 0}};
  account.fileMap = {512, {FileUse::kFailed}};
  return report;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    std::cerr << "usage: velmora-forge-page empty|sound|damaged|hostile|huge FILE\n";
    return 2;
  }
  const std::string kind = argv[1];
  cli::ReportFrame frame{
      u"/mnt/old disk/outlook.ost", u"/home/me/mail/outlook Converted0/outlook Converted.pst", {}, 12.3, 81'234};
  CompleteReport report;
  if (kind == "sound") report = Sound();
  if (kind == "damaged") report = Damaged(72, 4096);
  if (kind == "huge") report = Huge();
  if (kind == "hostile") {
    report = Hostile();
    frame.source = u"/mnt/<script>document.title='taken'</script>\u202E.ost";
    frame.destination = u"/mnt/\"><script>document.title='taken'</script>";
  }
  std::ofstream file(argv[2], std::ios::binary);
  cli::WriteCompleteReportHtml(frame, report, {}, [&file](std::string_view piece) { file << piece; });
  return file.flush() ? 0 : 1;
}
