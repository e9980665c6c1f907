// Which units of file space belong to something that proves itself.
#pragma once

#include <cstdint>
#include <vector>

#include "store/format/generation.h"

namespace velmora::engine {

class SlotMap {
 public:
  SlotMap(std::uint64_t fileSize, const Generation& layout)
      : slot_(layout.slotSize), taken_(static_cast<std::size_t>(fileSize / layout.slotSize + 1)) {}

  /// Units that lie wholly in the range.
  void Take(std::uint64_t offset, std::uint64_t size);
  bool IsFree(std::uint64_t offset, std::uint64_t size) const;

  /// How many belong to something.
  std::uint64_t Taken() const { return count_; }

 private:
  std::uint64_t slot_;
  std::vector<bool> taken_;
  std::uint64_t count_ = 0;
};

}  // namespace velmora::engine
