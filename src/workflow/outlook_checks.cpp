#include "workflow/outlook_checks.h"

#include <algorithm>

#include "platform/path_text.h"

namespace velmora::workflow {
namespace {

constexpr std::string_view kOutlookProgram = "OUTLOOK.EXE";
constexpr std::size_t kMostProcesses = 1024;
constexpr std::string_view kMailSupport = "MailSupport";
constexpr std::uint32_t kInternetOnly = 0;
constexpr std::uint32_t kWorkgroup = 1;

}  // namespace

bool IsOutlookInstalled(const platform::Registry& registry) {
  return registry.Opens(R"(Software\Microsoft\Windows\CurrentVersion\App Paths\OUTLOOK.EXE)") ||
         registry.Opens(R"(Software\Wow6432Node\Microsoft\Windows\CurrentVersion\App Paths\OUTLOOK.EXE)");
}

bool IsOutlookRunning(const Services& services) {
  const std::vector<std::string> programs = services.runningPrograms();
  const auto end = programs.begin() + std::ptrdiff_t(std::min(programs.size(), kMostProcesses));
  return std::find(programs.begin(), end, kOutlookProgram) != end;
}

bool IsOutlook2000InInternetMode(const platform::Registry& registry) {
  return registry.Opens(kOutlook2000Key) && registry.Query(kOutlook2000Key, kMailSupport) == kInternetOnly &&
         registry.Query(kOutlook2000Key, "RegisterForms").has_value();
}

void ChangeOutlook2000Mode(const Services& services) {
  if (!IsOutlookRunning(services)) {
    services.openWithShell(
        platform::BytesOfPath(services.programFilesFolder() / "Microsoft Office" / "Office" / "OUTLOOK.EXE"), {});
  }
  if (!services.registry->Opens(kOutlook2000Key)) return;
  const auto mode = services.registry->Query(kOutlook2000Key, kMailSupport);
  if (!mode) return;
  if (*mode == kInternetOnly) services.registry->Set(kOutlook2000Key, kMailSupport, kWorkgroup);
  services.sleep(std::chrono::milliseconds(400));
}

}  // namespace velmora::workflow
