// Numbers under keys that belong to the whole machine: what the start-up asks about Outlook.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string_view>

#include "platform/ini_file.h"

namespace velmora::platform {

/// A key is written with backslashes and without its root, as "SOFTWARE\Microsoft\Office".
class Registry {
 public:
  virtual ~Registry() = default;

  /// Whether the key is there and this user may both query and set it. A key that is there for reading alone
  /// does not open.
  virtual bool Opens(std::string_view key) const = 0;

  /// A number of a key that opens; nothing where there is none.
  virtual std::optional<std::uint32_t> Query(std::string_view key, std::string_view name) const = 0;

  /// Sets a number of a key that opens. Returns whether it is kept.
  virtual bool Set(std::string_view key, std::string_view name, std::uint32_t value) = 0;
};

/// The registry in an INI file, one section a key. A key whose value "Access" is "Read" may be queried but
/// not set. A file that is missing stands for a machine on which Outlook is installed, since what Outlook is
/// needed for is built in.
class IniRegistry : public Registry {
 public:
  explicit IniRegistry(std::filesystem::path file) : file_(std::move(file)) {}

  bool Opens(std::string_view key) const override;
  std::optional<std::uint32_t> Query(std::string_view key, std::string_view name) const override;
  bool Set(std::string_view key, std::string_view name, std::uint32_t value) override;

 private:
  IniFile Contents() const;

  std::filesystem::path file_;
};

}  // namespace velmora::platform
