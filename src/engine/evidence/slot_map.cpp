#include "engine/evidence/slot_map.h"

#include <algorithm>
#include <bit>

namespace velmora::engine {

template <class Visit>
bool SlotMap::EachWord(std::uint64_t first, std::uint64_t end, Visit visit) {
  while (first < end) {
    const std::uint64_t number = first / kSlotsOfWord;
    const std::uint64_t bit = first % kSlotsOfWord;
    const std::uint64_t count = std::min(kSlotsOfWord - bit, end - first);
    if (!visit(number / kWordsOfPart, number % kWordsOfPart, ~Word{0} >> (kSlotsOfWord - count) << bit)) return false;
    first += count;
  }
  return true;
}

void SlotMap::Take(std::uint64_t offset, std::uint64_t size) {
  const std::uint64_t end = std::min((offset + size) / slot_, slots_);
  EachWord((offset + slot_ - 1) / slot_, end, [this](std::size_t partNumber, std::size_t number, Word bits) {
    std::vector<Word>& part = parts_[partNumber];
    if (part.empty()) part.resize(kWordsOfPart);
    count_ += static_cast<unsigned>(std::popcount(bits & ~part[number]));
    part[number] |= bits;
    return true;
  });
}

bool SlotMap::IsFree(std::uint64_t offset, std::uint64_t size) const {
  const std::uint64_t end = std::min((offset + size + slot_ - 1) / slot_, slots_);
  return EachWord(offset / slot_, end, [this](std::size_t partNumber, std::size_t number, Word bits) {
    const std::vector<Word>& part = parts_[partNumber];
    return part.empty() || (part[number] & bits) == 0;
  });
}

}  // namespace velmora::engine
