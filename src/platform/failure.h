// The one value that tells why reading, writing or decoding did not work.
#pragma once

#include <cstdint>
#include <string>

#include <tl/expected.hpp>

namespace velmora::platform {

enum class FailureKind {
  kNotFound,      ///< no such file or folder
  kExists,        ///< a file or folder is already there
  kDenied,        ///< permission missing, or a folder where a file is wanted
  kFull,          ///< no space left
  kInputOutput,   ///< any other failure of the system
  kCorrupt,       ///< bytes that break the format
  kNotSupported,  ///< a sound file of a form that is not handled
};

struct Failure {
  FailureKind kind = FailureKind::kInputOutput;
  std::string object;        ///< what failed: a path, a block, a heap item
  std::uint64_t offset = 0;  ///< file offset in bytes, or the bad value, where one is known
  std::string message;       ///< the cause in plain words
};

template <class T>
using Result = tl::expected<T, Failure>;

}  // namespace velmora::platform
