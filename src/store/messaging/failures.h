// Failures of the layers below, as the operations raise them.
#pragma once

#include "platform/failure.h"
#include "store/operations.h"

namespace velmora::messaging {

/// Raises STG_E_READFAULT with the cause in plain words.
[[noreturn]] void RaiseReadFailure(const platform::Failure& failure);

/// Raises STG_E_MEDIUMFULL where no space is left, MAPI_E_COLLISION where a file is in the way, E_FAIL for
/// what the format cannot hold, else STG_E_WRITEFAULT.
[[noreturn]] void RaiseWriteFailure(const platform::Failure& failure);

/// The value of a result of reading, or of writing; raises otherwise.
template <class T>
T ReadOrRaise(platform::Result<T> result) {
  if (!result) RaiseReadFailure(result.error());
  return std::move(*result);
}
inline void ReadOrRaise(const platform::Result<void>& result) {
  if (!result) RaiseReadFailure(result.error());
}
template <class T>
T WrittenOrRaise(platform::Result<T> result) {
  if (!result) RaiseWriteFailure(result.error());
  return std::move(*result);
}
inline void WrittenOrRaise(const platform::Result<void>& result) {
  if (!result) RaiseWriteFailure(result.error());
}

}  // namespace velmora::messaging
