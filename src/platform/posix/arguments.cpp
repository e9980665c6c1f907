#include "platform/arguments.h"

namespace velmora::platform {

std::vector<std::string> ProgramArguments(int count, char** words) {
  return count > 1 ? std::vector<std::string>(words + 1, words + count) : std::vector<std::string>();
}

}  // namespace velmora::platform
