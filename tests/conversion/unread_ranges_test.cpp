#include <fmt/format.h>

#include "conversion/run_fixture.h"
#include "conversion/run_report.h"

namespace velmora::conversion {
namespace {

using testing::ElementsAre;

std::vector<std::string> ReasonsOf(const recovery::RecoveryReport& report) {
  std::vector<std::string> reasons;
  for (const recovery::LostObject& lost : report.lost) {
    if (lost.kind == recovery::LossKind::kSourceRange) reasons.push_back(text::ToUtf8(lost.reason));
  }
  return reasons;
}

std::vector<std::string> Told(const engine::BadRanges& bad) {
  recovery::RecoveryReport report;
  ReportUnreadRanges(bad, report);
  return ReasonsOf(report);
}

engine::BadRanges Ranges(std::size_t count) {
  engine::BadRanges bad;
  for (std::size_t i = 0; i < count; ++i) bad.Add(i * 8192, 4096);
  return bad;
}

TEST(UnreadRangesTest, EveryStretchIsALossWithItsOffsetAndLength) {
  engine::BadRanges bad;
  bad.Add(40960, 4096);
  bad.Add(8192, 4096);
  bad.Add(12288, 4096);
  EXPECT_THAT(Told(bad), ElementsAre("8192 bytes at offset 8192 of the source could not be read",
                                     "4096 bytes at offset 40960 of the source could not be read"));
  EXPECT_THAT(Told({}), ElementsAre());
}

TEST(UnreadRangesTest, OfStretchesBeyondTheBoundTheNumberAndTheBytesAreTold) {
  EXPECT_EQ(Told(Ranges(kMostUnreadRanges)).size(), kMostUnreadRanges);
  const auto reasons = Told(Ranges(kMostUnreadRanges + 7));
  ASSERT_EQ(reasons.size(), kMostUnreadRanges + 1);
  EXPECT_EQ(reasons.back(), "7 more stretches of the source, 28672 bytes in all, could not be read");
}

class BadDiskRunTest : public RunTest {
 protected:
  /// Two mails, the second with a file; returns the offset of a block in the middle of the file.
  std::uint64_t MakeSourceWithFile() {
    forge::Mailbox box({.client = forge::Client::kOffline});
    const forge::Nid inbox = box.AddFolder({.name = u"Inbox", .containerClass = u"IPF.Note"});
    box.AddMessage(inbox, {.subject = u"First", .plain = u"one"});
    const std::uint64_t content = box.store().End();
    box.AddMessage(
        inbox,
        {.subject = u"Second", .plain = u"two", .attachments = {{.name = u"a.bin", .data = forge::Noise(80'000, 1)}}});
    const std::filesystem::path path = folder_.Path() / "outlook.ost";
    box.Finish().Save(path);
    UseSource(path);
    return content + 40'000;
  }

  std::vector<std::string> Lost() const { return ReasonsOf(outLook_.Report().recovery); }
};

/// The scans give up 4096 bytes at a time, counted from where they begin.
std::string PieceAt(std::uint64_t offset) {
  return fmt::format("4096 bytes at offset {} of the source could not be read", 18432 + (offset - 18432) / 4096 * 4096);
}

TEST_F(BadDiskRunTest, ARunGoesOnPastBadPlacesAndNamesEachOfThem) {
  const std::uint64_t file = MakeSourceWithFile();
  badPlaces_ = {{file, file + 1}, {file + 20'000, file + 20'100}};
  EXPECT_EQ(Run(), RunEnd::kFinished);
  EXPECT_EQ(recorder_.said.back(), "done") << "done";
  EXPECT_THAT(Lost(), ElementsAre(PieceAt(file), PieceAt(file + 20'000)));
  EXPECT_EQ(outLook_.Report().recovery.items.at(u"IPM.Note"), 2u);
  ASSERT_TRUE(outLook_.Report().readFailure);
  EXPECT_EQ(outLook_.Report().readFailure->message, "bad sector");
}

TEST_F(BadDiskRunTest, TheNextRunFromAGoodDiskTellsOfNoBadPlace) {
  const std::uint64_t file = MakeSourceWithFile();
  badPlaces_ = {{file, file + 1}};
  Run();
  badPlaces_.clear();
  StartOver("again");
  Run();
  EXPECT_THAT(Lost(), ElementsAre());
  EXPECT_FALSE(outLook_.Report().readFailure);
}

TEST_F(BadDiskRunTest, AStoppedRunNamesTheBadPlacesThatItMet) {
  const std::uint64_t file = MakeSourceWithFile();
  badPlaces_ = {{file, file + 1}};
  recorder_.onEvent = [&](const engine::Event& event) {
    if (IsStage(event, 6)) state_.run.control.RequestStop();
  };
  EXPECT_EQ(Run(), RunEnd::kStopped);
  EXPECT_THAT(Lost(), ElementsAre(PieceAt(file)));
}

}  // namespace
}  // namespace velmora::conversion
