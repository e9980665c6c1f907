// Failures of stores, on their way from where they happen to whoever decides what comes of them.
#pragma once

#include <exception>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

#include "platform/failure.h"

namespace velmora {

using platform::Failure;
using platform::FailureKind;
using platform::ObjectKind;
using platform::Result;

/// What readers and writers of stores raise.
class FailureError : public std::exception {
 public:
  explicit FailureError(Failure cause) : cause_(std::move(cause)) {}
  const char* what() const noexcept override { return cause_.message.c_str(); }
  const Failure& Cause() const { return cause_; }

 private:
  Failure cause_;
};

inline Failure Corrupt(platform::FailedObject object, std::uint64_t value, std::string_view why) {
  return {FailureKind::kCorrupt, std::move(object), value, std::string(why)};
}

[[noreturn]] inline void Raise(FailureKind kind, platform::FailedObject object, std::uint64_t value,
                               std::string_view why) {
  throw FailureError({kind, std::move(object), value, std::string(why)});
}

[[noreturn]] inline void RaiseCorrupt(platform::FailedObject object, std::uint64_t value, std::string_view why) {
  throw FailureError(Corrupt(std::move(object), value, why));
}

/// What a result holds; raises its failure.
template <class T>
T ValueOrRaise(Result<T> result) {
  if (!result) throw FailureError(std::move(result.error()));
  if constexpr (!std::is_void_v<T>) return std::move(*result);
}

/// What a step gives; nothing where it raises a failure.
template <class Step>
auto IfReadable(Step step) -> std::optional<decltype(step())> {
  try {
    return step();
  } catch (const FailureError&) {
    return std::nullopt;
  }
}

}  // namespace velmora
