#include "cli/result_text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "cli/file_output.h"
#include "output/trace/trace_library.h"

namespace velmora::cli {
namespace {

using conversion::CountStore;
using conversion::StoreContents;

TEST(ResultText, SaysWhereTheStoreIsAndWhatItHolds) {
  NoTrace sink;
  output::TraceLibrary library(sink);
  const auto session = library.CreateRDOSession();
  const auto top = session->Stores()->AddPSTStore(u"/x.pst", u"a Converted")->IPMRootFolder();
  const auto inbox = top->Folders()->Add(u"Inbox", {});
  inbox->Folders()->Add(u"Old", {})->Items()->Add(u"IPM.Note")->Save();
  for (int i = 0; i < 2; ++i) inbox->Items()->Add(u"IPM.Note")->Save();
  const StoreContents contents = CountStore(*session, u"a Converted", u"");
  EXPECT_EQ(ResultText(u"/out/a Converted0/a Converted.pst", u"a Converted", contents),
            "OST file conversion completed.\n"
            "Recovered at: /out/a Converted0/a Converted.pst\n\n"
            "         0  Deleted Items\n"
            "         2  Inbox\n"
            "         1  Inbox\\Old\n"
            "         3  items in 3 folders\n");
}

TEST(ResultText, ADryRunSaysSo) {
  EXPECT_EQ(ResultText(u"", u"a Converted", {}),
            "OST file conversion completed.\nDry run: no store was written.\n\n         0  items in 0 folders\n");
}

TEST(LossText, IsEmptyWhenNothingIsLost) {
  EXPECT_EQ(LossText({}, ""), "");
  EXPECT_EQ(LossText({}, "report.json"), "");
}

TEST(LossText, NamesTheLossesByKindAndNumberAndTheOptionThatListsThem) {
  using recovery::LossKind;
  recovery::RecoveryReport report;
  report.lost = {{LossKind::kBody}, {LossKind::kMessage}, {LossKind::kAttachment}, {LossKind::kMessage}};
  EXPECT_EQ(LossText(report, ""),
            "\nLost or not whole: 2 messages, 1 attachment, 1 body.\n"
            "With --report FILE a report lists what is lost.\n");
  EXPECT_EQ(LossText(report, "out/report.json"),
            "\nLost or not whole: 2 messages, 1 attachment, 1 body.\n"
            "The report lists what is lost: out/report.json\n");
  EXPECT_EQ(LossText(report, "-"),
            "\nLost or not whole: 2 messages, 1 attachment, 1 body.\n"
            "The report on standard output lists what is lost.\n");
}

TEST(LossText, CountsWhatIsNotListed) {
  recovery::RecoveryReport report;
  report.lost = {{recovery::LossKind::kMembers}};
  report.lostNotListed = 7;
  EXPECT_THAT(LossText(report, ""), testing::HasSubstr("Lost or not whole: 1 list of members, and 7 more.\n"));
}

TEST(LossText, EveryKindHasANameForOneAndForMany) {
  using recovery::LossKind;
  for (int kind = 0; kind <= static_cast<int>(LossKind::kRun); ++kind) {
    recovery::RecoveryReport report;
    report.lost = {{static_cast<LossKind>(kind)}};
    const std::string one = LossText(report, "");
    EXPECT_THAT(one, testing::StartsWith("\nLost or not whole: 1 ")) << kind;
    report.lost.push_back({static_cast<LossKind>(kind)});
    EXPECT_THAT(LossText(report, ""), testing::StartsWith("\nLost or not whole: 2 ")) << kind;
    EXPECT_NE(LossText(report, "").substr(22), one.substr(22)) << "singular and plural differ";
  }
}

TEST(ResultText, ASessionWithoutAStoreHoldsNothing) {
  NoTrace sink;
  output::TraceLibrary library(sink);
  EXPECT_TRUE(CountStore(*library.CreateRDOSession(), u"a", u"").folders.empty());
}

}  // namespace
}  // namespace velmora::cli
