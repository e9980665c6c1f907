// Stores, expected results and tools that lie beside the sources where the project is developed. They are not part of
// it: a fresh machine has none of them, and the tests over them are skipped there with that reason.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>

#include "aids/system.h"

namespace velmora::test {

/// The folder of that name, or the one that the variable names; empty where there is none. A variable that names no
/// folder raises: it is a mistake and must not look like a machine without aids.
inline std::filesystem::path AidFolder(const char* variable, const char* name) {
  const char* given = std::getenv(variable);
  if (given == nullptr) {
    const auto beside = std::filesystem::path(VELMORA_SOURCE_DIR) / ".." / "shared" / name;
    return std::filesystem::is_directory(beside) ? beside : std::filesystem::path();
  }
  if (!std::filesystem::is_directory(given)) throw std::runtime_error(std::string(variable) + " names no folder");
  return given;
}

inline std::filesystem::path StoresFolder() { return AidFolder("VELMORA_STORES", "stores"); }
inline std::filesystem::path ExpectedFolder() { return AidFolder("VELMORA_EXPECTED", "expected"); }

/// The tools are programs of the machine that this one was built on.
inline std::filesystem::path ToolsFolder() { return kIsWindows ? "" : AidFolder("VELMORA_TOOLS", "tools"); }

}  // namespace velmora::test
