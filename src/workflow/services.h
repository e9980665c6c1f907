// What the wizard asks of the machine, in one place, so that tests can put their own answers there.
#pragma once

#include <chrono>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "conversion/run_output.h"
#include "conversion/run_state.h"
#include "conversion/worker.h"
#include "platform/registry.h"
#include "platform/volumes.h"

namespace velmora::workflow {

struct Services {
  std::filesystem::path programFile;  ///< full path of the running program

  // Start-up.
  std::function<bool()> registerWindowClass;                 ///< false: no window can be made
  std::function<bool()> startControls;                       ///< false: windows could not show what they hold
  std::function<platform::Result<void>()> takeInstanceLock;  ///< kExists: another copy runs; kept until the end
  std::shared_ptr<platform::Registry> registry;
  std::function<std::vector<std::string>()> runningPrograms;  ///< base names
  std::filesystem::path settingsFolder;                       ///< all that the program keeps for this user
  std::function<std::filesystem::path()> programFilesFolder;  ///< where Windows programs lie

  // Other programs.
  /// A code as platform::OpenWithShell gives it. The second is called in some thread if the desktop refuses later.
  std::function<int(const std::string&, std::function<void()> onRefusal)> openWithShell;
  std::function<bool(const std::string&)> openInBrowser;
  std::function<bool(const std::filesystem::path&, const std::vector<std::string>&)> startProgram;

  // Files.
  std::function<std::vector<platform::Volume>()> volumes;
  std::function<std::vector<std::filesystem::path>()> profileFolders;  ///< where Outlook keeps its data files
  std::function<bool(text::TextView destination, text::TextView source)> hasEnoughFreeSpace;

  // The run.
  conversion::OutputFactory makeOutput;
  std::function<conversion::RunEnd(conversion::COutLook&, conversion::RunState&)> runWorker;

  // The end.
  std::function<void(std::chrono::milliseconds)> sleep;
  std::function<void()> hardExit;  ///< ends the process; returns in tests alone
};

/// The machine itself.
Services RealServices();

}  // namespace velmora::workflow
