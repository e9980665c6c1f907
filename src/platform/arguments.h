// The words that a program was called with.
#pragma once

#include <string>
#include <vector>

namespace velmora::platform {

/// The words behind the program's name, each in the form of BytesOfPath, whatever the call's code page is. Takes what
/// `main` gets.
std::vector<std::string> ProgramArguments(int count, char** words);

}  // namespace velmora::platform
