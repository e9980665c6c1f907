#include "conversion/run_fixture.h"

namespace velmora::conversion {
namespace {

using testing::ElementsAre;

class CloseConversionTest : public RunTest {
 protected:
  std::filesystem::path IndexFile() const { return destination_ / "outlook Converted0" / "FirstTableItem.dat"; }

  /// Calls `action` when the run announces its last stage.
  void BeforeClosing(std::function<void()> action) {
    recorder_.onEvent = [action = std::move(action)](const engine::Event& event) {
      if (IsStage(event, 9)) action();
    };
  }
};

TEST_F(CloseConversionTest, RunsWithNothingOpen) {
  outLook_.CloseConversion();
  outLook_.CloseConversion();
  EXPECT_THAT(recorder_.said, ElementsAre("stage 9", "stage 9"));
}

TEST_F(CloseConversionTest, DeletesTheIndexFileAndLeavesWhatWasMade) {
  MakeSource();
  bool wasThere = false;
  BeforeClosing([&] { wasThere = std::filesystem::exists(IndexFile()); });
  Run();
  EXPECT_TRUE(wasThere);
  EXPECT_THAT(Output(), ElementsAre("outlook Converted0"));
  EXPECT_TRUE(library_->CreateProfileList()->Item(u"VelmoraRepairOutlook0"));
}

TEST_F(CloseConversionTest, AnIndexFileThatCannotBeDeletedStays) {
  MakeSource();
  BeforeClosing([&] {
    std::filesystem::remove(IndexFile());
    std::filesystem::create_directory(IndexFile());
  });
  Run();
  EXPECT_TRUE(std::filesystem::exists(IndexFile()));
  EXPECT_EQ(recorder_.said.back(), "done") << "nobody is told";
}

TEST_F(CloseConversionTest, AnIndexFileThatIsGoneIsNoFailure) {
  MakeSource();
  BeforeClosing([&] { std::filesystem::remove(IndexFile()); });
  Run();
  EXPECT_EQ(recorder_.said.back(), "done");
}

TEST_F(CloseConversionTest, ARefusalInTheProbeTouchesNoFileInTheCurrentFolder) {
  const std::filesystem::path before = std::filesystem::current_path();
  std::filesystem::current_path(folder_.Path());
  const auto mine = WriteFile("FirstTableItem.dat", "somebody's own");
  UseSource(WriteFile("odd.ost", "no store"));
  Run();
  std::filesystem::current_path(before);
  EXPECT_EQ(ReadAll(mine), "somebody's own");
}

TEST_F(CloseConversionTest, ARefusalInTheProbeReleasesNothingNew) {
  MakeSource();
  Run();
  UseSource(WriteFile("odd.ost", "no store"));
  StartOver("out");
  EXPECT_EQ(Run(), RunEnd::kEndedEarly);
  EXPECT_EQ(state_.profileName, u"VelmoraRepairOutlook0") << "the name of the run before is still there";
  EXPECT_FALSE(outLook_.Session());
  EXPECT_EQ(seals_, 1);
}

TEST_F(CloseConversionTest, FreesTheFoldersAndReleasesTheSession) {
  MakeSource();
  std::size_t folders = 0;
  bool hadSession = false;
  BeforeClosing([&] {
    folders = outLook_.Recovery().folders.Records().size();
    hadSession = static_cast<bool>(outLook_.Session());
  });
  Run();
  EXPECT_GT(folders, 0u);
  EXPECT_TRUE(hadSession);
  EXPECT_TRUE(outLook_.Recovery().folders.Records().empty());
  EXPECT_FALSE(outLook_.Session());
}

TEST_F(CloseConversionTest, ClosesTheLogWithTheSource) {
  MakeSource();
  outLook_.logEnabled = true;
  Run();
  EXPECT_EQ(state_.run.log, nullptr);
}

}  // namespace
}  // namespace velmora::conversion
