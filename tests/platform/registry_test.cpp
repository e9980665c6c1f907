#include "platform/registry.h"

#include <gtest/gtest.h>

#include <fstream>

#include "platform/user_folders.h"

namespace velmora::platform {
namespace {

class RegistryTest : public testing::Test {
 protected:
  void Fill(const std::string& text) { std::ofstream(file_) << text; }

  Result<TemporaryFolder> folder_ = TemporaryFolder::Create();
  std::filesystem::path file_ = folder_->Path() / "registry.ini";
  IniRegistry registry_{file_};
};

TEST_F(RegistryTest, AsShippedOutlookIsInstalled) {
  EXPECT_TRUE(registry_.Opens(R"(Software\Microsoft\Windows\CurrentVersion\App Paths\OUTLOOK.EXE)"));
  EXPECT_FALSE(registry_.Opens(R"(SOFTWARE\Microsoft\Office\9.0\Outlook\Setup)"));
  EXPECT_FALSE(std::filesystem::exists(file_)) << "a question leaves no file behind";
}

TEST_F(RegistryTest, AnEmptyFileIsAMachineWithoutOutlook) {
  Fill("");
  EXPECT_FALSE(registry_.Opens(R"(Software\Microsoft\Windows\CurrentVersion\App Paths\OUTLOOK.EXE)"));
}

TEST_F(RegistryTest, AKeyForReadingAloneDoesNotOpen) {
  Fill("[A\\B]\nAccess=Read\n[A\\C]\n");
  EXPECT_FALSE(registry_.Opens("A\\B"));
  EXPECT_TRUE(registry_.Opens("a\\c"));
}

TEST_F(RegistryTest, KeepsANumber) {
  Fill("[A]\nMailSupport=0\nName=text\n");
  EXPECT_EQ(registry_.Query("A", "MailSupport"), 0u);
  EXPECT_EQ(registry_.Query("A", "Name"), std::nullopt);
  EXPECT_EQ(registry_.Query("A", "Missing"), std::nullopt);
  EXPECT_TRUE(registry_.Set("A", "MailSupport", 1));
  EXPECT_EQ(IniRegistry(file_).Query("A", "MailSupport"), 1u);
}

}  // namespace
}  // namespace velmora::platform
