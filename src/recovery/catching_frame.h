// The frame that gives up one field, one walk or one item and lets the run go on.
#pragma once

#include <exception>
#include <utility>

#include "store/operations.h"

namespace velmora::recovery {

/// Runs `body`; false when it raised. A failure of the store itself passes, since what cannot be written now
/// cannot be written later either and the run has to end with one message; so does a stop of the run, which
/// is no failure.
template <class Body>
bool WithinFrame(Body&& body) {
  try {
    std::forward<Body>(body)();
    return true;
  } catch (const output::OutputFailure& failure) {
    if (output::IsStoreFailure(failure)) throw;
  } catch (const std::exception&) {
  }
  return false;
}

}  // namespace velmora::recovery
