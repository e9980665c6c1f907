#include "conversion/run_log.h"

#include <regex>

#include "conversion/run_fixture.h"
#include "platform/path_text.h"

namespace velmora::conversion {
namespace {

class RunLogTest : public testing::Test {
 protected:
  platform::TemporaryFolder folder_ = platform::TemporaryFolder::Create().value();
  std::filesystem::path path_ = folder_.Path() / "LogInformation.log";
  RunLogFile log_;
};

TEST_F(RunLogTest, BeginsWithTheMarkThenWhatWaitedThenTheRest) {
  log_.Write(u"before ");
  log_.Open(path_);
  log_.Write(u"after\r\n");
  EXPECT_EQ(ReadUtf16(path_), u"\uFEFFbefore after\r\n");
}

TEST_F(RunLogTest, IsUtf16LittleEndianWithoutTerminators) {
  log_.Open(path_);
  log_.Write(u"a\u524A");
  log_.Write(u"b");
  EXPECT_EQ(ReadAll(path_), std::string("\xFF\xFE"
                                        "a\0\x4A\x52"
                                        "b\0",
                                        8));
}

TEST_F(RunLogTest, NothingIsWrittenOnceItIsClosed) {
  log_.Open(path_);
  log_.Close();
  log_.Write(u"late");
  EXPECT_EQ(ReadUtf16(path_), u"\uFEFF");
}

TEST_F(RunLogTest, AFileThatCannotBeMadeIsDoneWithout) {
  log_.Write(u"a");
  log_.Open(folder_.Path() / "none" / "LogInformation.log");
  log_.Write(u"b");
  EXPECT_FALSE(std::filesystem::exists(path_));
}

TEST(LogTime, IsWrittenInEnglish) {
  EXPECT_TRUE(std::regex_match(text::ToUtf8(LogTime()),
                               std::regex("(Mon|Tues|Wednes|Thurs|Fri|Satur|Sun)day, [A-Z][a-z]+ [0-3][0-9], [0-9]{4},"
                                          "[0-2][0-9]:[0-5][0-9]:[0-6][0-9]")))
      << text::ToUtf8(LogTime());
}

class LogOfARunTest : public RunTest {
 protected:
  std::u16string Log() const { return ReadUtf16(platform::PathOf(state_.logPath)); }
};

TEST_F(LogOfARunTest, WithTheSwitchOffThereIsNone) {
  MakeSource();
  Run();
  EXPECT_THAT(Output(), testing::Not(testing::Contains(testing::HasSubstr("LogInformation.log"))));
}

TEST_F(LogOfARunTest, TheHeaderFollowsTheRun) {
  MakeSource();
  outLook_.logEnabled = true;
  Run();
  const std::u16string start =
      u"\uFEFF\r\n\r\nValidating the Pst FileValidation Successful in Normal Scan\n\n"
      u"\r\n\r\nSource File Path:" +
      state_.sourcePath + u"\r\n\r\nDestination File Path:" + state_.destinationPath +
      u"\r\n\r\nStart date and time : ";
  const std::u16string log = Log();
  EXPECT_EQ(log.substr(0, start.size()), start);
  std::size_t place = start.size();
  for (const text::TextView piece :
       {u"\r\n\r\n-------------Scanning source file----------------\r\nCollecting NBT Entries",
        u"\r\nCollecting BBT Entries", u"\r\n\r\n---------Recovering name of folders and mail items---------",
        u"\r\nInbox", u"\r\n\r\nMail Subject: First", u"\r\nStatus: Recovered\r\n"}) {
    const std::size_t found = log.find(piece, place);
    ASSERT_NE(found, std::u16string::npos) << text::ToUtf8(piece);
    place = found + piece.size();
  }
}

TEST_F(LogOfARunTest, ASmartScanSaysSo) {
  MakeSource();
  outLook_.logEnabled = true;
  state_.run.smartScan = true;
  Run();
  EXPECT_NE(Log().find(u"Validation Successful in SmartScan Scan\n\n"), std::u16string::npos);
}

TEST_F(LogOfARunTest, LoggingChangesNothingInTheTrace) {
  MakeSource();
  Run();
  const auto without = trace_.lines;
  StartOver("logged");
  outLook_.logEnabled = true;
  Run();
  EXPECT_GT(Log().size(), 200u);
  EXPECT_EQ(trace_.lines, without);
}

}  // namespace
}  // namespace velmora::conversion
