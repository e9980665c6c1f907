#include "resources/string_table.h"

#include <gtest/gtest.h>

#include "resources/texts.h"

namespace velmora::resources {
namespace {

TEST(StringTableTest, ANumberThatIsNotDefinedGivesTheEmptyText) {
  for (std::uint32_t id : {0u, 100u, 136u, 143u, 159u, 191u, 57665u, 0xFFFFFFFFu}) EXPECT_EQ(LoadString(id), u"") << id;
}

TEST(StringTableTest, TheSlipsOfTheTextsStay) {
  EXPECT_EQ(LoadString(kRemovableDrive), u"This is removable drive.Please select any non removable drive.");
  EXPECT_EQ(LoadString(kInternetModeRefused),
            u"Currently selected outlook mode (IMO) is not supported.Please change it to C/W mode.");
  EXPECT_EQ(LoadString(32778), u"Displays procedure for importing a recovered .pst file ") << "with its last blank";
  EXPECT_EQ(kDrivesFailed, u"Drive Info retrieval failed ") << "with its last blank";
}

TEST(StringTableTest, TheTitleOfThePagesIsTheProductsTitle) {
  EXPECT_EQ(LoadString(kPageTitle), u"Velmora Convert OST to PST");
  EXPECT_EQ(LoadString(kPageTitle), LoadString(kProductTitle));
}

TEST(StringTableTest, TheNoticeOfTheInternetModeIsToTheLetter) {
  EXPECT_TRUE(
      LoadString(187) ==
      u"Software can automatically change the mode of currently\r\ninstalled outlook 2000 to C/W mode, you need "
      u"to provide \r\nOffice 2000 CD or the path from where you previously installed \r\nOffice 2000.");
  EXPECT_TRUE(LoadString(188) ==
              u"To proceed press \"Confirm\", else press \"Ignore\" to cancel this \r\noperation.\r\n\r\nYou also can "
              u"perform this operation manually following the \r\nprocedure as mentioned below:\r\n\r\nManual Process");
  EXPECT_TRUE(
      LoadString(189) ==
      u"1. Select \"Ignore\" to close this program.\r\n2. Start Outlook 2000.\r\n3. From the Tools menu choose "
      u"Options and open the Mail Delivery tab.\r\n4. Select Reconfigure Mail Support.\r\n5. Choose the Corporate "
      u"or Workgroup mail support option and select Next.\r\n6. Confirm the warning and let Outlook close.\r\n7. "
      u"Start Outlook again, so that the Windows Installer completes the change with the Office 2000 CD or the "
      u"path from which Office 2000 was installed.");
}

TEST(StageCaptionTest, TheFourthStageHasNoCaption) {
  EXPECT_EQ(StageCaption(3), u"Creating new profile...");
  EXPECT_EQ(StageCaption(4), u"");
  EXPECT_EQ(StageCaption(5), u"Validating Folder Structure...");
}

TEST(StageCaptionTest, AnyOtherStageIsProcessing) {
  EXPECT_EQ(StageCaption(1), u"Opening OST file...");
  EXPECT_EQ(StageCaption(9), u"Closing file...");
  for (std::uint32_t stage : {0u, 10u, 4000000000u}) EXPECT_EQ(StageCaption(stage), u"Processing Wait...");
}

TEST(LinkFailureTextTest, ACodeThatTheBrowserAnswersHasNoText) {
  for (int code : {0, 2, 31, 1, 7}) EXPECT_EQ(LinkFailureText(code), u"") << code;
  for (int code : {3, 5, 8, 11, 26, 27, 28, 29, 30, 32}) EXPECT_NE(LinkFailureText(code), u"") << code;
}

}  // namespace
}  // namespace velmora::resources
