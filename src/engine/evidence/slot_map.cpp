#include "engine/evidence/slot_map.h"

#include <algorithm>

namespace velmora::engine {

void SlotMap::Take(std::uint64_t offset, std::uint64_t size) {
  const std::uint64_t end = std::min<std::uint64_t>((offset + size) / slot_, taken_.size());
  for (std::uint64_t slot = (offset + slot_ - 1) / slot_; slot < end; ++slot) {
    count_ += taken_[slot] ? 0 : 1;
    taken_[slot] = true;
  }
}

bool SlotMap::IsFree(std::uint64_t offset, std::uint64_t size) const {
  const std::uint64_t end = std::min<std::uint64_t>((offset + size + slot_ - 1) / slot_, taken_.size());
  for (std::uint64_t slot = offset / slot_; slot < end; ++slot) {
    if (taken_[slot]) return false;
  }
  return true;
}

}  // namespace velmora::engine
