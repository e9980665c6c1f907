#include "workflow/services.h"

#include <cstdlib>

#include "workflow/harness.h"
#include "workflow/outlook_checks.h"

namespace velmora::workflow {
namespace {

/// A variable of the environment that is gone as long as this lives.
class WithoutVariable {
 public:
  explicit WithoutVariable(const char* name) : name_(name), value_(qgetenv(name)) { qunsetenv(name); }
  ~WithoutVariable() {
    if (!value_.isNull()) qputenv(name_, value_);
  }
  WithoutVariable(const WithoutVariable&) = delete;
  WithoutVariable& operator=(const WithoutVariable&) = delete;

 private:
  const char* name_;
  QByteArray value_;
};

TEST(RealServices, WithoutAHomeTheRegistryIsNotAFileThatLiesAbout) {
  Machine machine;
  machine.Write("registry.ini", "[Software]\n");
  const WithoutVariable home("HOME"), config("XDG_CONFIG_HOME");
  const std::filesystem::path before = std::filesystem::current_path();
  std::filesystem::current_path(machine.folder.Path());
  EXPECT_TRUE(IsOutlookInstalled(*RealServices().registry));
  std::filesystem::current_path(before);
}

}  // namespace
}  // namespace velmora::workflow
