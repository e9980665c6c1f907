#include "workflow/services.h"

#include <QGuiApplication>
#include <cstdlib>
#include <optional>
#include <thread>

#include "conversion/free_space.h"
#include "platform/instance_lock.h"
#include "platform/path_text.h"
#include "platform/process.h"
#include "platform/shell.h"
#include "platform/user_folders.h"
#include "store/messaging/pst_library.h"

namespace velmora::workflow {
namespace {

std::vector<std::filesystem::path> ProfileFolders() {
  std::vector<std::filesystem::path> folders;
  const std::filesystem::path outlook = std::filesystem::path("Microsoft") / "Outlook";
  if (const auto data = platform::DataFolder()) folders.push_back(*data / outlook);
  if (const auto drive = platform::WindowsDrive()) {
    const std::filesystem::path user = *drive / "users" / platform::PathOf(platform::UserName());
    folders.push_back(user / "AppData" / "Local" / outlook);
    folders.push_back(user / "Local Settings" / "Application Data" / outlook);
  }
  return folders;
}

/// Of the user; somebody without a home folder has one for the session.
std::filesystem::path SettingsFolder() { return platform::ConfigFolder().value_or(platform::RuntimeFolder()); }

/// The store on disk; its profiles stand in a list among the user's settings.
conversion::RunOutput MakeStore() {
  messaging::PstLibraryOptions options;
  options.configFolder = SettingsFolder();
  const auto store = std::make_shared<messaging::PstLibrary>(std::move(options));
  return {store, [store] { return store->Seal(); }};
}

}  // namespace

Services RealServices() {
  Services services;
  services.programFile = platform::ProgramPath().value_or(std::filesystem::path());
  services.registerWindowClass = [] { return QGuiApplication::primaryScreen() != nullptr; };
  services.startControls = [] { return QGuiApplication::instance() != nullptr; };
  services.takeInstanceLock = [lock = std::make_shared<std::optional<platform::InstanceLock>>()] {
    return platform::InstanceLock::Take(platform::RuntimeFolder() / "VelmoraOXP.lock")
        .map([&](platform::InstanceLock taken) { lock->emplace(std::move(taken)); });
  };
  services.settingsFolder = SettingsFolder();
  services.registry = std::make_shared<platform::IniRegistry>(services.settingsFolder / "registry.ini");
  services.runningPrograms = platform::RunningPrograms;
  services.programFilesFolder = [] {
    return platform::WindowsDrive().value_or(std::filesystem::path()) / "Program Files";
  };
  services.openWithShell = platform::OpenWithShell;
  services.openInBrowser = platform::OpenInBrowser;
  services.startProgram = [](const std::filesystem::path& file, const std::vector<std::string>& arguments) {
    return platform::StartProgram(file, arguments).has_value();
  };
  services.volumes = platform::MountedVolumes;
  services.profileFolders = ProfileFolders;
  services.hasEnoughFreeSpace = conversion::HasEnoughFreeSpace;
  services.makeOutput = MakeStore;
  services.runWorker = conversion::RunConversion;
  services.sleep = [](std::chrono::milliseconds time) { std::this_thread::sleep_for(time); };
  services.hardExit = [] { std::_Exit(EXIT_SUCCESS); };
  return services;
}

}  // namespace velmora::workflow
