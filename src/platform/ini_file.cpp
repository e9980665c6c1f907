#include "platform/ini_file.h"

#include <algorithm>
#include <span>

#include "platform/file.h"
#include "platform/file_system.h"
#include "platform/path_text.h"

namespace velmora::platform {
namespace {

constexpr std::uint64_t kLargestFile = 1 << 20;

char Lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

bool SameName(std::string_view a, std::string_view b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](char x, char y) { return Lower(x) == Lower(y); });
}

std::string_view Trimmed(std::string_view text) {
  constexpr std::string_view kBlanks = " \t\r";
  const std::size_t first = text.find_first_not_of(kBlanks);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

std::string_view Unquoted(std::string_view value) {
  const bool quoted =
      value.size() >= 2 && value.front() == value.back() && (value.front() == '"' || value.front() == '\'');
  return quoted ? value.substr(1, value.size() - 2) : value;
}

}  // namespace

IniFile IniFile::Parse(std::string_view text) {
  if (text.starts_with("\xEF\xBB\xBF")) text.remove_prefix(3);
  IniFile file;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    const std::string_view line = Trimmed(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
    if (line.starts_with('[') && line.ends_with(']')) {
      file.sections_.push_back({std::string(Trimmed(line.substr(1, line.size() - 2))), {}});
      continue;
    }
    const std::size_t equals = line.find('=');
    if (file.sections_.empty() || line.starts_with(';') || equals == std::string_view::npos) continue;
    file.sections_.back().values.emplace_back(Trimmed(line.substr(0, equals)),
                                              Unquoted(Trimmed(line.substr(equals + 1))));
  }
  return file;
}

Result<IniFile> IniFile::Load(const std::filesystem::path& path) {
  const auto file = OpenForReading(path);
  if (!file) return tl::unexpected(file.error());
  const std::uint64_t size = (*file)->Size();
  if (size > kLargestFile) {
    return tl::unexpected(Failure{FailureKind::kNotSupported, BytesOfPath(path), size, "too long for a settings file"});
  }
  std::string text(size, '\0');
  const auto read = (*file)->ReadAt(0, std::as_writable_bytes(std::span(text)));
  if (!read) return tl::unexpected(read.error());
  text.resize(*read);
  return Parse(text);
}

std::size_t IniFile::Find(std::string_view section) const {
  const auto found = std::find_if(sections_.begin(), sections_.end(),
                                  [&](const Section& each) { return SameName(each.name, section); });
  return static_cast<std::size_t>(found - sections_.begin());
}

bool IniFile::HasSection(std::string_view section) const { return Find(section) < sections_.size(); }

std::optional<std::string> IniFile::Value(std::string_view section, std::string_view key) const {
  const std::size_t index = Find(section);
  if (index == sections_.size()) return std::nullopt;
  for (const auto& [name, value] : sections_[index].values) {
    if (SameName(name, key)) return value;
  }
  return std::nullopt;
}

void IniFile::Set(std::string_view section, std::string_view key, std::string_view value) {
  const std::size_t index = Find(section);
  if (index == sections_.size()) sections_.push_back({std::string(section), {}});
  auto& values = sections_[index].values;
  const auto found =
      std::find_if(values.begin(), values.end(), [&](const auto& each) { return SameName(each.first, key); });
  if (found != values.end()) {
    found->second = value;
  } else {
    values.emplace_back(key, value);
  }
}

std::string IniFile::ToText() const {
  std::string text;
  for (const Section& section : sections_) {
    text += '[' + section.name + "]\n";
    for (const auto& [key, value] : section.values) text += key + '=' + value + '\n';
  }
  return text;
}

Result<void> IniFile::Save(const std::filesystem::path& path) const {
  static_cast<void>(CreateFolders(path.parent_path()));  // what is wrong with it shows in the file
  std::filesystem::path fresh = path;
  fresh += ".new";
  {
    const auto file = CreateFile(fresh, Existing::kReplace);
    if (!file) return tl::unexpected(file.error());
    const std::string text = ToText();
    if (const auto written = (*file)->WriteAt(0, std::as_bytes(std::span(text))); !written) return written;
  }
  return Replace(fresh, path);
}

}  // namespace velmora::platform
