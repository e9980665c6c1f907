#include "workflow/base_folder.h"

#include <iterator>
#include <string>

#include "platform/file_system.h"
#include "platform/ini_file.h"

namespace velmora::workflow {
namespace {

constexpr const char* kSection = "OST to PST Texts";
constexpr const char* kLanguages[] = {"English", "French", "German", "Italian", "Spanish"};
constexpr int kLongestText = 2000;

/// Name of the language that the settings choose. The first character alone counts. A digit without a language
/// has the empty name, so it leads to a file that is not there.
std::string ChosenLanguage(const std::filesystem::path& settingsFile) {
  const auto settings = platform::IniFile::Load(settingsFile);
  const std::string choice = settings ? settings->Value(kSection, "IDS_LANGUAGE").value_or("") : "";
  const bool isDigit = !choice.empty() && choice[0] >= '0' && choice[0] <= '9';
  const std::size_t index = isDigit ? std::size_t(choice[0] - '0') : 0;
  return index < std::size(kLanguages) ? kLanguages[index] : "";
}

}  // namespace

BaseFolder::BaseFolder(const std::filesystem::path& programFile)
    : path_(programFile.parent_path().parent_path()),
      languageFile_(path_ / "Lang" / (ChosenLanguage(Settings()) + ".INI")) {}

std::filesystem::path BaseFolder::Help() const {
  const std::filesystem::path help = path_ / "vm-oxp.chm";
  return platform::Exists(help) ? help : path_ / "vm-oxp.html";
}

QString Language::Text(const char* key) const {
  const auto file = platform::IniFile::Load(file_);
  const std::string text = file ? file->Value(kSection, key).value_or("") : "";
  return QString::fromStdString(text).left(kLongestText);
}

}  // namespace velmora::workflow
