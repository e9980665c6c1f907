#include <chrono>
#include <thread>

#include "aids/system.h"
#include "conversion/run_fixture.h"
#include "platform/path_text.h"
#include "platform/process.h"

namespace velmora::conversion {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

class SetUpTest : public RunTest {
 protected:
  text::Text Path(const std::string& name) const {
    return platform::TextOfPath((destination_ / name).make_preferred());
  }
};

TEST_F(SetUpTest, NamesComeFromTheSourceAndTheNumber) {
  MakeSource("outlook.ost");
  Run();
  EXPECT_EQ(state_.convertedName, u"outlook Converted");
  EXPECT_EQ(state_.profileName, u"VelmoraRepairOutlook0");
  EXPECT_EQ(state_.destinationPath, Path("outlook Converted0/outlook Converted.pst"));
  EXPECT_EQ(state_.logPath, Path("outlook Converted0/LogInformation.log"));
  EXPECT_THAT(Output(), ElementsAre("outlook Converted0"));
}

TEST_F(SetUpTest, TheStemEndsAtTheFirstPoint) {
  MakeSource("my.backup.ost");
  Run();
  EXPECT_EQ(state_.convertedName, u"my Converted");
}

TEST_F(SetUpTest, ANameWithoutAPointHasAnEmptyStem) {
  MakeSource("outlook");
  Run();
  EXPECT_EQ(state_.convertedName, u" Converted");
  EXPECT_EQ(state_.destinationPath, Path(" Converted0/ Converted.pst"));
}

TEST_F(SetUpTest, AFileNameThatIsNoUtf8TravelsThrough) {
  if (test::kIsWindows) GTEST_SKIP() << "names are no bytes there";
  MakeSource(
      "b\xFF"
      "d.ost");
  Run();
  EXPECT_THAT(Output(), ElementsAre("b\xFF"
                                    "d Converted0"));
}

TEST_F(SetUpTest, TheNameThatIsTestedIsTheOneBeforeTheNameThatIsUsed) {
  MakeSource();
  library_->CreateProfileList()->Add(u"VelmoraRepairOutlook");
  Run();
  EXPECT_EQ(state_.profileName, u"VelmoraRepairOutlook1");
  EXPECT_THAT(Output(), ElementsAre("outlook Converted1"));
}

TEST_F(SetUpTest, AProfileWithTheNumberZeroIsNotSeenBehindAFreeBareName) {
  MakeSource();
  library_->CreateProfileList()->Add(u"VelmoraRepairOutlook0");
  Run();
  EXPECT_EQ(state_.profileName, u"VelmoraRepairOutlook0");
}

TEST_F(SetUpTest, TheSearchGoesOnPastEveryNameThatIsTaken) {
  MakeSource();
  for (const text::TextView name : {u"VelmoraRepairOutlook", u"VelmoraRepairOutlook0", u"VelmoraRepairOutlook1"}) {
    library_->CreateProfileList()->Add(name);
  }
  Run();
  EXPECT_EQ(state_.profileName, u"VelmoraRepairOutlook3") << "2 was the first free one";
}

TEST_F(SetUpTest, ASecondConversionIntoTheSameDestinationMeetsTheFolderAndIsRefused) {
  MakeSource();
  Run();
  StartOver("out");
  EXPECT_EQ(Run(), RunEnd::kFinished);
  EXPECT_THAT(recorder_.Steps(),
              ElementsAre("stage 1", "stage 2", "stage 3",
                          "Error: Unable to create folder to save recovered .pst file.\nPlease select another "
                          "location to save recovered .pst file.",
                          "stage 9", "list cleared"));
  EXPECT_TRUE(state_.run.runAborted);
  EXPECT_TRUE(state_.run.runEnded);
}

TEST_F(SetUpTest, ADestinationThatIsNotThereCannotTakeTheFolder) {
  MakeSource();
  destination_ = folder_.Path() / "gone";
  Run();
  EXPECT_THAT(recorder_.said, Contains("Error: Unable to create folder to save recovered .pst file.\nPlease select "
                                       "another location to save recovered .pst file."));
  EXPECT_THAT(trace_.lines, IsEmpty());
}

TEST_F(SetUpTest, ADestinationThatEndsInABackslashIsCutAtItsFirstOne) {
  if (test::kIsWindows) GTEST_SKIP() << "no folder can be called as a drive there";
  MakeSource();
  const std::filesystem::path drive = destination_ / "D:";
  std::filesystem::create_directory(drive);
  state_.destinationPath = platform::TextOfPath(drive) + u"\\mail\\old\\";
  RunConversion(outLook_, state_);
  EXPECT_THAT(Output(), ElementsAre("D:", "D:/outlook Converted0"));
}

TEST_F(SetUpTest, ABackslashElsewhereIsPartOfAName) {
  if (test::kIsWindows) GTEST_SKIP() << "it divides names there";
  MakeSource();
  std::filesystem::create_directory(destination_ / "a\\b");
  state_.destinationPath = Path("a\\b");
  RunConversion(outLook_, state_);
  EXPECT_THAT(Output(), ElementsAre("a\\b", "a\\b/outlook Converted0"));
}

TEST_F(SetUpTest, ASeparatorAtTheEndOfADestinationSaysNothing) {
  MakeSource();
  state_.destinationPath = platform::TextOfPath(destination_) + u"//";
  RunConversion(outLook_, state_);
  EXPECT_EQ(state_.destinationPath, Path("outlook Converted0/outlook Converted.pst"));
}

TEST_F(SetUpTest, TheFiveDefaultFoldersAreMadeInOrderWithTheirKinds) {
  MakeSource();
  Run();
  const std::string store = R"(\\\\outlook Converted)";
  std::vector<std::string> expected;
  for (const auto& [name, kind] :
       {std::pair{"Contacts", "10"}, {"Journal", "11"}, {"Tasks", "13"}, {"Notes", "12"}, {"Calendar", "9"}}) {
    expected.push_back(R"({"op":"AddFolder","parent":")" + store + R"(","name":")" + name + R"(","type":null})");
    expected.push_back(R"({"op":"SetAsDefaultFolder","folder":")" + store + R"(\\)" + name + R"(","kind":)" + kind +
                       "}");
  }
  ASSERT_GT(trace_.lines.size(), expected.size());
  EXPECT_EQ(std::vector<std::string>(trace_.lines.begin(), trace_.lines.begin() + 10), expected);
}

constexpr const char* kMissing = "Error: Some component is missing.Please reinstall the application.";
constexpr const char* kFailed = "Error: Some component is missing.Please reinstall the application. ";

TEST_F(SetUpTest, AMissingClassEndsTheWorkerAfterItsMessage) {
  MakeSource();
  for (bool RiggedLibrary::*missing : {&RiggedLibrary::noProfiles, &RiggedLibrary::noSession}) {
    StartOver("out");
    (*library_).*missing = true;
    EXPECT_EQ(Run(), RunEnd::kEndedEarly);
    EXPECT_THAT(recorder_.Steps(), ElementsAre("stage 1", "stage 2", "stage 3", kMissing, "stage 9"));
    EXPECT_FALSE(state_.run.runEnded);
    EXPECT_FALSE(state_.run.runAborted);
  }
}

/// The companion program beside the program; it leaves a mark when it is started.
class CompanionTest : public SetUpTest {
 protected:
  CompanionTest() {
    std::ofstream(companion_) << "#!/bin/sh\n: > '" << mark_.string() << "'\n";
    std::filesystem::permissions(companion_, std::filesystem::perms::owner_all);
  }
  ~CompanionTest() override { std::filesystem::remove(companion_); }

  const std::filesystem::path companion_ = platform::ProgramPath().value().parent_path() / "Reg.exe";
  const std::filesystem::path mark_ = folder_.Path() / "started";
};

TEST_F(CompanionTest, AMissingClassStartsTheCompanionProgramAndClosesTheWindow) {
  if (test::kIsWindows) GTEST_SKIP() << "a script is no program there";
  MakeSource();
  library_->noSession = true;
  bool closed = false;
  state_.closeWindow = [&] { closed = true; };
  EXPECT_EQ(Run(), RunEnd::kEndedEarly);
  EXPECT_THAT(recorder_.Steps(),
              ElementsAre("stage 1", "stage 2", "stage 3",
                          "Information: Application is registering dll files.Please relaunch the application to "
                          "recover your .pst file. ",
                          "stage 9"));
  EXPECT_TRUE(closed);
  EXPECT_TRUE(state_.skipExitPrompt);
  for (int i = 0; i < 500 && !std::filesystem::exists(mark_); ++i) {
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  EXPECT_TRUE(std::filesystem::exists(mark_));
}

TEST_F(CompanionTest, WithoutAWindowNothingIsClosed) {
  MakeSource();
  library_->noSession = true;
  Run();
  EXPECT_FALSE(state_.skipExitPrompt);
}

TEST_F(SetUpTest, AnyFailingCallLeadsToTheMessageWithTheBlankAtItsEnd) {
  MakeSource();
  library_->storeFailure = output::ResultCode::MAPI_E_COLLISION;
  EXPECT_EQ(Run(), RunEnd::kFinished);
  EXPECT_THAT(recorder_.Steps(), ElementsAre("stage 1", "stage 2", "stage 3", kFailed, "stage 9", "list cleared"));
  EXPECT_TRUE(state_.run.runAborted);
  EXPECT_TRUE(library_->CreateProfileList()->Item(u"VelmoraRepairOutlook0")) << "the profile stays";
  EXPECT_THAT(Output(), ElementsAre("outlook Converted0")) << "and so does the folder";
}

TEST_F(SetUpTest, TheReadOfTheProfileInUseServesToFindALibraryThatDoesNotWork) {
  MakeSource();
  library_->noUtils = true;
  Run();
  EXPECT_THAT(recorder_.said, Contains(kFailed));
  EXPECT_THAT(Output(), IsEmpty());
  EXPECT_TRUE(state_.profileName.empty());
}

TEST_F(SetUpTest, AStoreThatCannotBeMadeIsToldAsSuch) {
  MakeSource();
  library_->storeFailure = output::ResultCode::STG_E_MEDIUMFULL;
  Run();
  EXPECT_THAT(recorder_.said, Contains("Error: Unable to create converted .pst file.\nPlease select another location "
                                       "to save recovered .pst file."));
  EXPECT_EQ(recorder_.causes, (std::vector<std::string>{"the store said no"}));
}

TEST_F(SetUpTest, IsPassedOverWhileRunEndedIsRaised) {
  state_.run.runEnded = true;
  outLook_.SetUpConversion(Path(""), u"outlook.ost");
  EXPECT_THAT(recorder_.said, IsEmpty());
  EXPECT_THAT(Output(), IsEmpty());
}

}  // namespace
}  // namespace velmora::conversion
