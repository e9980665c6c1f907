// The one value that tells why reading, writing or decoding did not work.
#pragma once

#include <cstdint>
#include <string>
#include <utility>

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

/// What was asked for, or the failure. A class of its own for the sake of the warning when one is dropped: that of a
/// function does not reach its virtual calls.
template <class T>
class [[nodiscard]] Result : public tl::expected<T, Failure> {
 public:
  using tl::expected<T, Failure>::expected;
  Result() = default;
  Result(tl::expected<T, Failure> made) : tl::expected<T, Failure>(std::move(made)) {}  // as map() gives it
};

}  // namespace velmora::platform
