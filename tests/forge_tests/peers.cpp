#include "forge_tests/peers.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdlib>
#include <fstream>
#include <iterator>

#include "aids/aids.h"

namespace velmora::forge {
namespace fs = std::filesystem;

ScratchFolder::ScratchFolder() {
  static std::atomic<int> serial = 0;
  const auto stamp = std::chrono::steady_clock::now().time_since_epoch().count();
  path_ = fs::temp_directory_path() / ("velmora-forge-" + std::to_string(stamp) + "-" + std::to_string(++serial));
  fs::create_directories(path_);
}

ScratchFolder::~ScratchFolder() {
  std::error_code ignored;
  fs::remove_all(path_, ignored);
}

bool IsInstalled(const std::string& program) {
  return std::system(("command -v " + program + " > /dev/null 2>&1").c_str()) == 0;
}

bool RunIn(const ScratchFolder& folder, const std::string& command) {
  return std::system(("cd '" + folder.path().string() + "' && " + command + " > output 2>&1").c_str()) == 0;
}

int CountFiles(const fs::path& folder, const std::string& name) {
  if (!fs::exists(folder)) return 0;
  const auto matches = [&](const fs::directory_entry& entry) {
    return entry.is_regular_file() && (name.empty() || entry.path().filename() == name);
  };
  return static_cast<int>(std::count_if(fs::recursive_directory_iterator(folder), {}, matches));
}

std::string TextOf(const fs::path& file) {
  std::ifstream in(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

int CountOf(const std::string& text, const std::string& part) {
  int count = 0;
  for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + part.size())) ++count;
  return count;
}

fs::path ToolsFolder() { return test::ToolsFolder(); }

}  // namespace velmora::forge
