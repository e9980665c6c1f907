// Where a run writes to.
#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "platform/failure.h"
#include "store/operations.h"

namespace velmora::conversion {

/// The output library of one run.
struct RunOutput {
  std::shared_ptr<output::OutputLibrary> library;  ///< never null

  /// Completes on disk what the library's stores hold. Asked once, just before the session is released; its
  /// objects can only be read from then on. Empty where there is nothing to seal.
  std::function<platform::Result<void>()> seal;

  /// The tables of what was sealed that have no room for all of their values. Empty where there is nothing to seal.
  std::function<std::vector<output::FullTable>()> fullTables = {};
};

/// Gives the output library of the next run; the set-up of each run asks once.
using OutputFactory = std::function<RunOutput()>;

}  // namespace velmora::conversion
