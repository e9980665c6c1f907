#include "engine/evidence/slot_map.h"

#include <algorithm>

namespace velmora::engine {

void SlotMap::Take(std::uint64_t offset, std::uint64_t size) {
  const std::uint64_t end = std::min((offset + size) / slot_, slots_);
  for (std::uint64_t slot = (offset + slot_ - 1) / slot_; slot < end; ++slot) {
    std::vector<bool>& part = parts_[static_cast<std::size_t>(slot / kSlotsOfPart)];
    if (part.empty()) part.resize(kSlotsOfPart);
    auto bit = part[slot % kSlotsOfPart];
    count_ += bit ? 0 : 1;
    bit = true;
  }
}

bool SlotMap::IsFree(std::uint64_t offset, std::uint64_t size) const {
  const std::uint64_t end = std::min((offset + size + slot_ - 1) / slot_, slots_);
  for (std::uint64_t slot = offset / slot_; slot < end; ++slot) {
    const std::vector<bool>& part = parts_[static_cast<std::size_t>(slot / kSlotsOfPart)];
    if (!part.empty() && part[slot % kSlotsOfPart]) return false;
  }
  return true;
}

}  // namespace velmora::engine
