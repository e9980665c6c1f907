// Settings in INI form: sections in square brackets, "key=value" lines, comments after ";".
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/failure.h"

namespace velmora::platform {

/// The sections and keys of an INI file, in UTF-8, in the file's order. Names of sections and keys compare
/// without regard to the case of ASCII letters; the first of two equal keys counts.
class IniFile {
 public:
  /// Parses a text. Blanks around keys and values and one pair of quotes around a value are dropped; lines
  /// of any other form are passed over.
  static IniFile Parse(std::string_view text);

  /// Reads a file of at most 1 MiB; a longer one gives kNotSupported.
  static Result<IniFile> Load(const std::filesystem::path& path);

  bool HasSection(std::string_view section) const;
  std::optional<std::string> Value(std::string_view section, std::string_view key) const;

  /// Sets a key, making it and its section where they are missing.
  void Set(std::string_view section, std::string_view key, std::string_view value);

  std::string ToText() const;

  /// Writes the file beside its old version and puts it in its place; makes the folder where it is missing.
  Result<void> Save(const std::filesystem::path& path) const;

 private:
  struct Section {
    std::string name;
    std::vector<std::pair<std::string, std::string>> values;
  };

  /// Index of a section, or the number of sections.
  std::size_t Find(std::string_view section) const;

  std::vector<Section> sections_;
};

}  // namespace velmora::platform
