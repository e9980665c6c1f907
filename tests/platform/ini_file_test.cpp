#include "platform/ini_file.h"

#include <gtest/gtest.h>

#include <fstream>

#include "platform/user_folders.h"

namespace velmora::platform {
namespace {

TEST(IniFileTest, ReadsSectionsAndKeysWhateverTheirCase) {
  const IniFile file = IniFile::Parse("; note\r\n[A b]\r\n Key = 3 \r\nother=x=y\r\nKey=4\n[C]\nKey=\"  q \"\n");
  EXPECT_EQ(file.Value("a B", "KEY"), "3") << "the first of two keys counts";
  EXPECT_EQ(file.Value("A b", "other"), "x=y");
  EXPECT_EQ(file.Value("C", "Key"), "  q ");
  EXPECT_EQ(file.Value("C", "other"), std::nullopt);
  EXPECT_FALSE(file.HasSection("D"));
}

TEST(IniFileTest, PassesOverWhatIsNoSetting) {
  const IniFile file = IniFile::Parse("\xEF\xBB\xBFstray=1\n[S\nno key\n[S]\n=5\nk=v");
  EXPECT_EQ(file.Value("S", "k"), "v");
  EXPECT_EQ(file.Value("S", "stray"), std::nullopt);
  EXPECT_TRUE(IniFile::Parse("").ToText().empty());
}

TEST(IniFileTest, KeepsWhatIsSetInItsFile) {
  const auto folder = TemporaryFolder::Create();
  const std::filesystem::path path = folder->Path() / "new folder" / "settings.ini";
  IniFile file;
  file.Set("S", "a", "1");
  file.Set("s", "A", "2");
  file.Set("T", "b", "3");
  ASSERT_TRUE(file.Save(path));
  EXPECT_EQ(IniFile::Load(path)->ToText(), "[S]\na=2\n[T]\nb=3\n");
}

TEST(IniFileTest, TellsAMissingFileFromOneThatIsTooLong) {
  const auto folder = TemporaryFolder::Create();
  EXPECT_EQ(IniFile::Load(folder->Path() / "none").error().kind, FailureKind::kNotFound);
  std::ofstream(folder->Path() / "long") << std::string((1 << 20) + 1, 'x');
  EXPECT_EQ(IniFile::Load(folder->Path() / "long").error().kind, FailureKind::kNotSupported);
}

}  // namespace
}  // namespace velmora::platform
