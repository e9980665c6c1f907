// Failures that name the object of the store and the value that is wrong with it.
#pragma once

#include <exception>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

#include "platform/failure.h"
#include "store/format/ids.h"

namespace velmora {

using platform::Failure;
using platform::FailureKind;
using platform::Result;

/// "block 0x1A4", "node 0x21".
std::string Named(std::string_view kind, std::uint64_t id);
inline std::string Named(std::string_view kind, Nid nid) { return Named(kind, Value(nid)); }
inline std::string Named(std::string_view kind, Bid bid) { return Named(kind, Value(bid)); }

inline tl::unexpected<Failure> Fail(FailureKind kind, std::string object, std::uint64_t value, std::string_view why) {
  return tl::unexpected(Failure{kind, std::move(object), value, std::string(why)});
}

inline tl::unexpected<Failure> Corrupt(std::string object, std::uint64_t value, std::string_view why) {
  return Fail(FailureKind::kCorrupt, std::move(object), value, why);
}

/// A failure on its way from where it happens to whoever decides what comes of it. Writers raise it; readers, whose
/// failures are decided on object by object, return it in a Result.
class FailureError : public std::exception {
 public:
  explicit FailureError(Failure cause) : cause_(std::move(cause)) {}
  const char* what() const noexcept override { return cause_.message.c_str(); }
  const Failure& Cause() const { return cause_; }

 private:
  Failure cause_;
};

[[noreturn]] inline void Raise(FailureKind kind, std::string object, std::uint64_t value, std::string_view why) {
  throw FailureError({kind, std::move(object), value, std::string(why)});
}

[[noreturn]] inline void RaiseCorrupt(std::string object, std::uint64_t value, std::string_view why) {
  Raise(FailureKind::kCorrupt, std::move(object), value, why);
}

/// What a result holds; raises its failure.
template <class T>
T ValueOrRaise(Result<T> result) {
  if (!result) throw FailureError(std::move(result.error()));
  if constexpr (!std::is_void_v<T>) return std::move(*result);
}

}  // namespace velmora
