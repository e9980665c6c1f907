// The one value that tells why reading, writing or decoding did not work: from the place where it happens to the
// report, the log and the exit code.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <tl/expected.hpp>
#include <utility>

namespace velmora::platform {

enum class FailureKind {
  kNotFound,      ///< no such file or folder, no such block
  kExists,        ///< a file or folder is already there
  kDenied,        ///< permission missing, or a folder where a file is wanted
  kFull,          ///< no space left
  kInputOutput,   ///< any other failure of the system
  kCorrupt,       ///< bytes that break the format
  kNotSupported,  ///< a sound file of a form that is not handled
};

enum class ObjectKind {
  kFile,  ///< or another thing of the system that has a name
  kStore,
  kHeader,
  kPageOrBlock,  ///< what a tree refers to
  kBlock,
  kDataTree,
  kNode,
  kSubnode,
  kSubnodeTree,
  kHeap,
  kHeapItem,
  kTable,
  kRow,
  kProperty,
};

/// What failed: a file by its path, or a thing in a store by its kind and, where it has one, its id.
struct FailedObject {
  FailedObject() = default;
  FailedObject(std::string file) : path(std::move(file)) {}  // NOLINT: a path names a file
  FailedObject(const char* file) : path(file) {}             // NOLINT
  FailedObject(ObjectKind what) : kind(what) {}              // NOLINT: a store has one header
  template <class Id>
  FailedObject(ObjectKind what, Id which) : kind(what), id(static_cast<std::uint64_t>(which)) {}

  ObjectKind kind = ObjectKind::kFile;
  std::optional<std::uint64_t> id;  ///< of a property, its tag
  std::string path;                 ///< empty where nobody knows what it was, and for what is in a store

  friend bool operator==(const FailedObject&, const FailedObject&) = default;
};

/// "block 0x1a4", "node 0x21", "header", "/mnt/out".
std::string TextOf(const FailedObject& object);

struct Failure {
  FailureKind kind = FailureKind::kInputOutput;
  FailedObject object;
  std::optional<std::uint64_t> offset;  ///< file offset in bytes, or the bad value, where one is known
  std::string message;                  ///< the cause in plain words

  friend bool operator==(const Failure&, const Failure&) = default;
};

/// Object and cause: "/mnt/out: Permission denied". Empty when nothing is known.
std::string TextOf(const Failure& failure);

/// What was asked for, or the failure: for callers that decide at once. A class of its own for the sake of the warning
/// when one is dropped: that of a function does not reach its virtual calls.
template <class T>
class [[nodiscard]] Result : public tl::expected<T, Failure> {
 public:
  using tl::expected<T, Failure>::expected;
  Result() = default;
  Result(tl::expected<T, Failure> made) : tl::expected<T, Failure>(std::move(made)) {}  // as map() gives it
};

}  // namespace velmora::platform
