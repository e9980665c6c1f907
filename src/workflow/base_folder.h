// The program's own files. They lie below the base folder: the program file's path less its last two
// components.
#pragma once

#include <QString>
#include <filesystem>

namespace velmora::workflow {

class BaseFolder {
 public:
  /// Reads the choice of the language; what the settings say later does not count for this object.
  explicit BaseFolder(const std::filesystem::path& programFile);

  const std::filesystem::path& Path() const { return path_; }

  std::filesystem::path Settings() const { return path_ / "settings.ini"; }
  std::filesystem::path UpdateHelper() const { return path_ / "vmupdate.EXE"; }

  /// The help file; the page for browsers where the other form is not there. It may be missing as well.
  std::filesystem::path Help() const;

  /// The language file by the choice in the settings. A missing choice is English.
  const std::filesystem::path& LanguageFile() const { return languageFile_; }

 private:
  std::filesystem::path path_, languageFile_;
};

/// The texts of the about window in the chosen language.
class Language {
 public:
  explicit Language(std::filesystem::path file) : file_(std::move(file)) {}

  /// The text of a key, at most 2,000 characters; empty where file or key is missing.
  QString Text(const char* key) const;

 private:
  std::filesystem::path file_;
};

}  // namespace velmora::workflow
