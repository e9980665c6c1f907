// What a step raises.
#pragma once

#include <optional>

#include "store/format/failures.h"

namespace velmora::test {

/// The kind of the failure that a step raises; nothing when it goes through.
template <class Step>
std::optional<FailureKind> FailureOf(Step step) {
  try {
    step();
    return std::nullopt;
  } catch (const FailureError& failure) {
    return failure.Cause().kind;
  }
}

}  // namespace velmora::test
