// What the tests of the engine share: a run that writes down what it says, and a folder for the index file.
#pragma once

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "engine/engine_state.h"
#include "engine/run.h"
#include "platform/memory_file.h"

namespace velmora::engine {

/// Everything that a run said, in order.
class Recorder : public RunObserver {
 public:
  void OnMessage(const RunMessage& message) override {
    said_.push_back(std::to_string(message.code));
    messages_.push_back(message);
  }
  void OnBox(BoxKind, text::TextView title, text::TextView message) override {
    said_.push_back(text::ToUtf8(title) + ": " + text::ToUtf8(message));
  }

  /// Codes of messages, and boxes as "title: text".
  const std::vector<std::string>& Said() const { return said_; }
  const std::vector<RunMessage>& Messages() const { return messages_; }

  /// The percentages of one phase.
  std::vector<std::uint32_t> Percentages(std::uint32_t phase) const {
    std::vector<std::uint32_t> numbers;
    for (const RunMessage& message : messages_) {
      if (message.code == MSG_PROGRESS && message.detail == phase) numbers.push_back(message.number);
    }
    return numbers;
  }

 private:
  std::vector<std::string> said_;
  std::vector<RunMessage> messages_;
};

class RunTest : public testing::Test {
 protected:
  RunTest() {
    run_.observer = &recorder_;
    std::string name = (std::filesystem::temp_directory_path() / "velmora-engine-test-XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("no temporary folder");
    folder_ = name;
    state_.outputFolder = folder_;
  }
  ~RunTest() override { std::filesystem::remove_all(folder_); }

  /// The bytes are the source from now on.
  void Attach(std::vector<std::byte> bytes) {
    state_.percentBase = bytes.size() / 100;
    state_.source = std::make_unique<platform::MemoryFile>(std::move(bytes));
  }

  std::filesystem::path folder_;
  Recorder recorder_;
  RunContext run_;
  EngineState state_;
};

}  // namespace velmora::engine
