#include "platform/arguments.h"

#include "platform/windows/wide_text.h"
#include "platform/windows/win32.h"

namespace velmora::platform {

// What `main` gets has gone through the code page of the system, which has few characters.
std::vector<std::string> ProgramArguments(int, char**) {
  std::vector<std::string> arguments;
  int count = 0;
  wchar_t** words = ::CommandLineToArgvW(::GetCommandLineW(), &count);
  for (int i = 1; i < count; ++i) arguments.push_back(NarrowOf(words[i]));
  ::LocalFree(words);
  return arguments;
}

}  // namespace velmora::platform
