// What the tests of a conversion share: a folder, an output library that can fail on request, an observer
// that writes down what the run says.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "conversion/worker.h"
#include "engine/bad_disk.h"
#include "forge/mailbox.h"
#include "output/trace/trace_library.h"
#include "platform/user_folders.h"

namespace velmora::conversion {

class TraceLines : public output::TraceSink {
 public:
  void WriteLine(std::string_view line) override { lines.emplace_back(line); }
  std::vector<std::string> lines;
};

/// The trace's library with parts that are missing or fail.
class RiggedLibrary : public output::OutputLibrary {
 public:
  explicit RiggedLibrary(output::TraceSink& sink) : trace_(sink) {}

  bool noProfiles = false;
  bool noSession = false;
  bool noUtils = false;
  std::optional<output::ResultCode> storeFailure;  ///< of AddPSTStore
  std::function<void()> onItem;                    ///< called before each item is created; may raise

  output::Ref<output::ProfileList> CreateProfileList() override {
    return noProfiles ? nullptr : trace_.CreateProfileList();
  }
  output::Ref<output::RDOSession> CreateRDOSession() override;
  output::Ref<output::MAPIUtils> CreateMAPIUtils() override { return noUtils ? nullptr : trace_.CreateMAPIUtils(); }

 private:
  output::TraceLibrary trace_;
};

inline bool IsStage(const engine::Event& event, std::uint32_t stage) {
  const auto* begun = std::get_if<engine::StageBegun>(&event);
  return begun != nullptr && begun->stage == stage;
}

/// Everything that a run said: "stage 4", "progress 37", "list cleared", "done"; notices as "Error: text".
class Recorder : public engine::RunObserver {
 public:
  void OnEvent(const engine::Event& event) override;

  /// Without percentages and without what a run says of single folders and mails.
  std::vector<std::string> Steps() const;

  std::vector<std::string> said;
  std::vector<std::string> causes;  ///< of the notices
  std::function<void(const engine::Event&)> onEvent;
};

class RunTest : public testing::Test {
 protected:
  RunTest();

  /// A store of two folders with a mail in each, saved under that name in the source folder.
  void MakeSource(const std::string& name = "outlook.ost", forge::Encoding encoding = forge::Encoding::kPermute);
  void UseSource(const std::filesystem::path& path);
  std::filesystem::path WriteFile(const std::string& name, std::string_view bytes);

  RunEnd Run();

  /// Makes everything that a run leaves behind new, and the destination a folder of that name.
  void StartOver(const std::string& destination);

  /// Names of everything below the destination, sorted.
  std::vector<std::string> Output() const;

  platform::TemporaryFolder folder_;
  std::filesystem::path destination_;
  TraceLines trace_;
  std::shared_ptr<RiggedLibrary> library_ = std::make_shared<RiggedLibrary>(trace_);
  platform::Result<void> sealResult_;
  int seals_ = 0;
  std::vector<output::FullTable> fullTables_;
  Recorder recorder_;
  std::vector<engine::BadPlace> badPlaces_;  ///< of the disk that the source lies on
  RunState state_;
  COutLook outLook_;
};

std::string ReadAll(const std::filesystem::path& path);

/// The characters of a UTF-16LE file.
std::u16string ReadUtf16(const std::filesystem::path& path);

}  // namespace velmora::conversion
