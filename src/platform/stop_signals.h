// Ctrl-C and its like.
#pragma once

namespace velmora::platform {

/// While one lives, the first request to end the program (interrupt from the terminal, termination, lost
/// terminal) calls `handler` with `argument` instead; it must do no more than set a flag. The second one
/// of the same kind ends the program at once. At most one at a time.
class StopSignals {
 public:
  StopSignals(void (*handler)(void*), void* argument);
  ~StopSignals();
  StopSignals(const StopSignals&) = delete;
  StopSignals& operator=(const StopSignals&) = delete;
};

/// A write to a closed pipe, or beyond the file size that the user may have, fails like any other write
/// instead of ending the program.
void LetWritesFail();

}  // namespace velmora::platform
