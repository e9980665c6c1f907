// Feeds several output libraries at once: the store on disk and the trace of what is written to it.
#pragma once

#include <memory>
#include <vector>

#include "store/operations.h"

namespace velmora::output {

/// Every operation goes to the first library; when it succeeds there, the others follow in order. Answers
/// and failures are those of the first alone: what fails in another one is left out of that one.
/// Items that are read back (GetFirst, GetNext), answers to items and stores opened for reading belong to
/// the first library alone.
class Tee : public OutputLibrary {
 public:
  /// At least one library; none is null.
  explicit Tee(std::vector<std::shared_ptr<OutputLibrary>> libraries) : libraries_(std::move(libraries)) {}

  Ref<ProfileList> CreateProfileList() override;
  Ref<RDOSession> CreateRDOSession() override;
  Ref<MAPIUtils> CreateMAPIUtils() override;

 private:
  std::vector<std::shared_ptr<OutputLibrary>> libraries_;
};

}  // namespace velmora::output
