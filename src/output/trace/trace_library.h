// An output library that writes every operation down as a JSON line, in call order. It keeps folders, and
// the items that somebody holds with the fields written to them, so it answers reads by itself and a run
// needs no store behind it.
#pragma once

#include <memory>

#include "output/trace/json_line.h"
#include "store/operations.h"

namespace velmora::output {

struct TraceState;

class TraceLibrary : public OutputLibrary {
 public:
  /// `sink` outlives the library and everything that it makes. Item ids count on over all its sessions.
  explicit TraceLibrary(TraceSink& sink);

  /// Profiles live as long as the library.
  Ref<ProfileList> CreateProfileList() override;
  Ref<RDOSession> CreateRDOSession() override;
  Ref<MAPIUtils> CreateMAPIUtils() override;

 private:
  std::shared_ptr<TraceState> state_;
};

}  // namespace velmora::output
