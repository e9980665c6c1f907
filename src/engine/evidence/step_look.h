// What ends in one step of a pass over a source, told from that step and what lies ahead of it alone, so that several
// threads may look at a step each.
#pragma once

#include <cstdint>
#include <vector>

#include "engine/evidence/sights.h"
#include "engine/evidence/stretch.h"

namespace velmora::engine {

/// A trailer without a signature that fits, of what may be a moved block.
struct MaybeMoved {
  SeenTrailer seen;
  std::uint64_t end = 0;
  std::uint64_t usedUpToIt = 0;  ///< slots of the step that do not end in zeros
};

/// Bytes that may still be summed.
class SumAllowance {
 public:
  explicit SumAllowance(std::uint64_t bytes) : left_(bytes * kTimesSummed) {}

  /// The data of a block, if they may still be summed; none otherwise.
  std::span<const std::byte> Stored(const Stretch& stretch, const SeenTrailer& seen, std::uint64_t end);

 private:
  std::uint64_t left_;
};

struct StepSights {
  Sights sights;
  std::vector<MaybeMoved> maybeMoved;
};

/// Pages and blocks of the layout that end behind `begin` and up to the sector that holds `end`.
StepSights LookAtStep(const Stretch& stretch, std::uint64_t begin, std::uint64_t end, const Generation& layout);

}  // namespace velmora::engine
