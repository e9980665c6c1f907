#include "cli/complete_result_text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace velmora::cli {
namespace {

using complete::Account;
using complete::Loss;
using complete::MissingPart;
using testing::EndsWith;
using testing::HasSubstr;
using Kind = MissingPart::Kind;

const Failure kBadBlock{FailureKind::kCorrupt, "block 0x1A4", 5632, "the checksum is wrong"};

/// The lines that name the losses of an account with this one.
std::string LineOf(Loss loss) {
  Account account;
  account.losses.push_back(std::move(loss));
  const std::string text = LossesText(account, "");
  const std::string head = "\nLost or not whole:\n  ";
  EXPECT_EQ(text.substr(0, head.size()), head);
  return text.substr(head.size(), text.find('\n', head.size()) - head.size());
}

Loss LossOf(MissingPart part) {
  return {.source = Nid{0x200024},
          .folder = u"/Inbox/Projects",
          .messageClass = u"IPM.Note",
          .subject = u"Re: Plan",
          .sender = u"Anna Berg",
          .date = text::FileTimeOfUnixSeconds(1620050571),
          .missing = {std::move(part)}};
}

TEST(CompleteResultText, CountsItemsOfAllClassesAndFolders) {
  Account account;
  account.items = {{u"IPM.Note", {10, 7, 2, 1}}, {u"IPM.Contact", {5, 5, 0, 0}}};
  account.folders = 4;
  EXPECT_EQ(CountsText(account),
            "        12  items whole\n"
            "         2  items in part\n"
            "         1  items lost\n"
            "         4  folders\n");
}

TEST(CompleteResultText, TextInAnotherCodePageIsToldWithTheOptionForIt) {
  Account account;
  account.undefinedBytes = 12;
  EXPECT_THAT(
      CountsText(account),
      EndsWith("  folders\n\n12 bytes of 8-bit text stand for no letter of its code page; --codepage may name the "
               "right one.\n"));
}

TEST(CompleteResultText, SaysNothingOfLossesWhereNothingIsLost) { EXPECT_EQ(LossesText({}, "report.json"), ""); }

TEST(CompleteResultText, NamesALossByFolderSubjectSenderAndDate) {
  EXPECT_EQ(LineOf(LossOf({.kind = Kind::kRecipients, .cause = kBadBlock})),
            "/Inbox/Projects, \"Re: Plan\" from Anna Berg, 2021-05-03 14:02: recipients (block 0x1A4: the "
            "checksum is wrong)");
}

TEST(CompleteResultText, SaysWhatIsMissing) {
  EXPECT_THAT(LineOf(LossOf({.kind = Kind::kObject})), EndsWith(": all of it"));
  EXPECT_THAT(LineOf(LossOf({.kind = Kind::kAttachment, .name = u"plan.pdf", .size = 1'234'567})),
              EndsWith(": attachment \"plan.pdf\" (1.2 MB)"));
  EXPECT_THAT(LineOf(LossOf({.kind = Kind::kProperty, .tag = 0x10130102})), EndsWith(": the HTML text"));
  EXPECT_THAT(LineOf(LossOf({.kind = Kind::kProperty, .tag = 0x80050003})), EndsWith(": property 0x80050003"));
  EXPECT_THAT(LineOf(LossOf({.kind = Kind::kProperty})), EndsWith(": some of its properties"));
  EXPECT_THAT(LineOf(LossOf({.kind = Kind::kBytes, .size = 8176})), EndsWith(": 8.2 KB"));
  EXPECT_THAT(LineOf(LossOf({.kind = Kind::kBytes, .tag = 0x1000001F, .size = 8176})),
              EndsWith(": 8.2 KB of the plain text"));
  EXPECT_THAT(LineOf(LossOf({.kind = Kind::kBytes, .tag = 0x0037001F})), EndsWith(": a part of the subject"));
}

TEST(CompleteResultText, OfManyMissingPartsTheFirstThreeAreNamed) {
  Loss loss = LossOf({.kind = Kind::kRecipients});
  loss.missing.resize(5, loss.missing[0]);
  EXPECT_THAT(LineOf(loss), EndsWith(": recipients; recipients; recipients; 2 more"));
}

TEST(CompleteResultText, AMessageWithoutASubjectAndAFolderAreTold) {
  Loss loss = LossOf({.kind = Kind::kObject});
  loss.subject = u"";
  loss.sender = u"";
  loss.date.reset();
  EXPECT_EQ(LineOf(loss), "/Inbox/Projects, no subject: all of it");
  loss.messageClass = u"";
  EXPECT_EQ(LineOf(loss), "/Inbox/Projects: all of it");
  loss.folder = u"";
  EXPECT_EQ(LineOf(loss), "node 0x200024: all of it") << "nothing else is known of it";
}

TEST(CompleteResultText, ASubjectCannotMoveTheCursor) {
  Loss loss = LossOf({.kind = Kind::kObject});
  loss.subject = u"a\033[2Jb";
  EXPECT_THAT(LineOf(loss), HasSubstr("\"a [2Jb\""));
}

TEST(CompleteResultText, TheFirstTenLossesAreNamedAndTheRestCounted) {
  Account account;
  account.losses.resize(12, LossOf({.kind = Kind::kObject}));
  account.lossesNotListed = 5;
  const std::string text = LossesText(account, "report.json");
  EXPECT_EQ(std::ranges::count(text, '\n'), 1 + 1 + 10 + 2) << text;
  EXPECT_THAT(text, EndsWith("\n  and 7 more\nThe report lists what is lost: report.json\n"));
  account.losses.clear();
  EXPECT_EQ(LossesText(account, ""),
            "\nLost or not whole:\n  and 5 more\nWith --report FILE a report lists what is lost.\n");
}

TEST(CompleteResultText, EachDifferenceIsALine) {
  Account account;
  EXPECT_TRUE(DifferenceLines(account).empty());
  account.differences = {{Nid{0x200024}, Nid{0x200044}, "property 0x1000001F\nis another one"}};
  account.differencesNotListed = 3;
  EXPECT_EQ(DifferenceLines(account),
            (std::vector<std::string>{"--verify: node 0x200024 of the source, node 0x200044 of the new store: property "
                                      "0x1000001F is another one",
                                      "--verify: 3 more differences"}));
}

}  // namespace
}  // namespace velmora::cli
