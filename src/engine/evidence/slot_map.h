// Which units of file space belong to something that proves itself.
#pragma once

#include <cstdint>
#include <vector>

#include "store/format/generation.h"

namespace velmora::engine {

/// Takes memory for the parts of a file alone in which something is.
class SlotMap {
 public:
  SlotMap(std::uint64_t fileSize, const Generation& layout)
      : slot_(layout.slotSize),
        slots_(fileSize / layout.slotSize + 1),
        parts_(static_cast<std::size_t>(slots_ / kSlotsOfPart + 1)) {}

  /// Units that lie wholly in the range.
  void Take(std::uint64_t offset, std::uint64_t size);
  bool IsFree(std::uint64_t offset, std::uint64_t size) const;

  /// How many belong to something.
  std::uint64_t Taken() const { return count_; }

 private:
  using Word = std::uint64_t;  ///< a bit a unit
  static constexpr std::uint64_t kSlotsOfWord = 64;
  static constexpr std::uint64_t kWordsOfPart = 512;
  static constexpr std::uint64_t kSlotsOfPart = kSlotsOfWord * kWordsOfPart;

  /// The words of the units from `first` up to `end`, and which bits of each are theirs, until `visit` says false.
  template <class Visit>
  static bool EachWord(std::uint64_t first, std::uint64_t end, Visit visit);

  std::uint64_t slot_;
  std::uint64_t slots_;
  std::vector<std::vector<Word>> parts_;  ///< empty where nothing is
  std::uint64_t count_ = 0;
};

}  // namespace velmora::engine
