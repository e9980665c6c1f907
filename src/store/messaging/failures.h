// Failures of the layers below, as the operations raise them.
#pragma once

#include "store/format/failures.h"
#include "store/operations.h"

namespace velmora::messaging {

/// Raises STG_E_READFAULT with the cause in plain words.
[[noreturn]] void RaiseReadFailure(const Failure& failure);

/// Raises STG_E_MEDIUMFULL where no space is left, MAPI_E_COLLISION where a file is in the way, E_FAIL for
/// what the format cannot hold, else STG_E_WRITEFAULT.
[[noreturn]] void RaiseWriteFailure(const Failure& failure);

/// Runs a step that writes. A failure of the layers below becomes one of the operations here and in AsReading, and
/// nowhere else.
template <class Step>
decltype(auto) AsOperation(Step step) {
  try {
    return step();
  } catch (const FailureError& failure) {
    RaiseWriteFailure(failure.Cause());
  }
}

/// The same of a step that reads.
template <class Step>
decltype(auto) AsReading(Step step) {
  try {
    return step();
  } catch (const FailureError& failure) {
    RaiseReadFailure(failure.Cause());
  }
}

}  // namespace velmora::messaging
