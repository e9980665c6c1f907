// Programs by others that read the format, run on forged stores.
#pragma once

#include <filesystem>
#include <string>

#include "aids/system.h"

namespace velmora::forge {

/// A folder of its own for one test, gone with this object.
class ScratchFolder {
 public:
  ScratchFolder();
  ~ScratchFolder();
  ScratchFolder(const ScratchFolder&) = delete;
  ScratchFolder& operator=(const ScratchFolder&) = delete;

  const std::filesystem::path& path() const { return path_; }

 private:
  std::filesystem::path path_;
};

/// True if a program of that name can be started.
bool IsInstalled(const std::string& program);

/// Runs a command with the folder as its current one, its output in the file "output" there; true if it
/// ended with 0.
bool RunIn(const ScratchFolder& folder, const std::string& command);

/// Regular files of that name under a folder, or of any name if it is empty.
int CountFiles(const std::filesystem::path& folder, const std::string& name = {});

/// The text of a file.
std::string TextOf(const std::filesystem::path& file);

/// How often `part` stands in `text`.
int CountOf(const std::string& text, const std::string& part);

/// The folder with the checking tools; empty if it is not there.
std::filesystem::path ToolsFolder();

}  // namespace velmora::forge

/// Ends a test where no other reader can be started.
#define VELMORA_NEEDS_PEERS() \
  if (velmora::test::kIsWindows) GTEST_SKIP() << "the other readers do not run there"
