#include <gtest/gtest.h>

#include <cstdlib>
#include <optional>
#include <string>

#include "platform/user_folders.h"

namespace velmora::platform {
namespace {

class ConfigFolderTest : public testing::Test {
 protected:
  void TearDown() override {
    Set("XDG_CONFIG_HOME", config_);
    Set("HOME", home_);
  }
  static std::optional<std::string> Get(const char* name) {
    const char* value = std::getenv(name);
    return value == nullptr ? std::nullopt : std::optional<std::string>(value);
  }
  static void Set(const char* name, const std::optional<std::string>& value) {
    if (value) {
      setenv(name, value->c_str(), 1);
    } else {
      unsetenv(name);
    }
  }
  std::optional<std::string> config_ = Get("XDG_CONFIG_HOME"), home_ = Get("HOME");
};

TEST_F(ConfigFolderTest, LiesWhereTheUserKeepsConfiguration) {
  Set("XDG_CONFIG_HOME", "/c");
  Set("HOME", "/h");
  EXPECT_EQ(ConfigFolder(), "/c/velmora");
  Set("XDG_CONFIG_HOME", std::nullopt);
  EXPECT_EQ(ConfigFolder(), "/h/.config/velmora");
  Set("XDG_CONFIG_HOME", "relative");
  EXPECT_EQ(ConfigFolder(), "/h/.config/velmora") << "a relative folder is to be ignored";
}

TEST_F(ConfigFolderTest, AUserWithoutAHomeHasNone) {
  Set("XDG_CONFIG_HOME", std::nullopt);
  Set("HOME", std::nullopt);
  EXPECT_FALSE(ConfigFolder());
}

}  // namespace
}  // namespace velmora::platform
