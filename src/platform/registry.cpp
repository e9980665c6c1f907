#include "platform/registry.h"

#include <charconv>

#include "platform/file.h"
#include "platform/file_system.h"

namespace velmora::platform {
namespace {

constexpr std::string_view kAsShipped = R"([Software\Microsoft\Windows\CurrentVersion\App Paths\OUTLOOK.EXE]
)";

}  // namespace

IniFile IniRegistry::Contents() const {
  if (Result<IniFile> file = IniFile::Load(file_)) return *file;
  return Exists(file_) ? IniFile{} : IniFile::Parse(kAsShipped);
}

bool IniRegistry::Opens(std::string_view key) const {
  const IniFile contents = Contents();
  const bool writable = !Exists(file_) || OpenForWriting(file_);
  return writable && contents.HasSection(key) && contents.Value(key, "Access") != "Read";
}

std::optional<std::uint32_t> IniRegistry::Query(std::string_view key, std::string_view name) const {
  const std::optional<std::string> text = Contents().Value(key, name);
  if (!text) return std::nullopt;
  std::uint32_t number = 0;
  const auto [end, error] = std::from_chars(text->data(), text->data() + text->size(), number);
  if (error != std::errc{} || end != text->data() + text->size()) return std::nullopt;
  return number;
}

bool IniRegistry::Set(std::string_view key, std::string_view name, std::uint32_t value) {
  IniFile contents = Contents();
  contents.Set(key, name, std::to_string(value));
  return contents.Save(file_).has_value();
}

}  // namespace velmora::platform
