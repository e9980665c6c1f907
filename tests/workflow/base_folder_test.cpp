#include "workflow/base_folder.h"

#include "platform/ini_file.h"
#include "workflow/harness.h"

namespace velmora::workflow {
namespace {

class BaseFolderTest : public testing::Test {
 protected:
  void Choose(const std::string& choice) {
    machine_.Write("prefix/settings.ini", "[OST to PST Texts]\nIDS_LANGUAGE=" + choice + "\n");
  }

  /// Path of the language file below the base folder.
  std::string LanguageFile() const {
    return BaseFolder(machine_.program).LanguageFile().lexically_relative(machine_.base).string();
  }
  std::string LanguageBy(const std::string& choice) {
    Choose(choice);
    return LanguageFile();
  }

  Machine machine_;
};

TEST_F(BaseFolderTest, IsTheProgramsPathLessTwoComponents) {
  EXPECT_EQ(BaseFolder("/opt/velmora/bin/velmora").Path(), "/opt/velmora");
  EXPECT_EQ(BaseFolder("/usr/bin/velmora").LanguageFile(), "/usr/Lang/English.INI");
}

TEST_F(BaseFolderTest, WithoutSettingsTheLanguageIsEnglish) {
  EXPECT_EQ(LanguageFile(), "Lang/English.INI");
  machine_.Write("prefix/settings.ini", "[Another Section]\nIDS_LANGUAGE=3\n");
  EXPECT_EQ(LanguageFile(), "Lang/English.INI");
  machine_.Write("prefix/settings.ini", "[OST to PST Texts]\nIDS_OK=3\n");
  EXPECT_EQ(LanguageFile(), "Lang/English.INI");
}

TEST_F(BaseFolderTest, ADigitChoosesTheLanguage) {
  const char* const names[] = {"Lang/English.INI", "Lang/French.INI", "Lang/German.INI", "Lang/Italian.INI",
                               "Lang/Spanish.INI"};
  for (int i = 0; i < 5; ++i) EXPECT_EQ(LanguageBy(std::to_string(i)), names[i]);
}

TEST_F(BaseFolderTest, OnlyTheFirstCharacterCounts) {
  EXPECT_EQ(LanguageBy("12"), "Lang/French.INI");
  EXPECT_EQ(LanguageBy("x"), "Lang/English.INI");
  EXPECT_EQ(LanguageBy(""), "Lang/English.INI");
}

TEST_F(BaseFolderTest, ADigitWithoutALanguageGivesEmptyTexts) {
  EXPECT_EQ(LanguageBy("7"), "Lang/.INI");
  EXPECT_EQ(Language(BaseFolder(machine_.program).LanguageFile()).Text("IDS_OK"), "");
}

TEST_F(BaseFolderTest, TheChoiceIsReadOnceWhenTheProgramStarts) {
  Choose("1");
  const BaseFolder started(machine_.program);
  Choose("2");
  EXPECT_EQ(started.LanguageFile().filename(), "French.INI");
  EXPECT_EQ(LanguageFile(), "Lang/German.INI");
}

TEST_F(BaseFolderTest, ATextIsCutAtTwoThousandCharacters) {
  const auto file = machine_.Write("long.INI", "[OST to PST Texts]\nIDS_OK=" + std::string(3000, 'x') + "\n");
  EXPECT_EQ(Language(file).Text("IDS_OK").size(), 2000);
}

TEST_F(BaseFolderTest, EveryLanguageHasEveryTextOfTheAboutWindow) {
  for (const char* name : {"English", "French", "German", "Italian", "Spanish"}) {
    const Language language(std::filesystem::path(VELMORA_SOURCE_DIR) / "src/resources/lang" /
                            (std::string(name) + ".INI"));
    for (const char* key :
         {"IDS_OK", "IDS_UNINSTALL_URL_TXT", "IDS_POLICY_URL_TXT", "IDS_UNINSTALL_URL", "IDS_POLICY_URL",
          "IDS_URL_ABOUT", "IDS_VERSION_TEXT", "IDS_ABOUT", "IDS_ERROR", "IDS_RUNNING3"}) {
      EXPECT_FALSE(language.Text(key).isEmpty()) << name << " " << key;
      EXPECT_FALSE(language.Text(key).contains(QChar::ReplacementCharacter)) << name << " " << key;
    }
  }
}

}  // namespace
}  // namespace velmora::workflow
