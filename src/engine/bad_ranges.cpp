#include "engine/bad_ranges.h"

#include <iterator>

namespace velmora::engine {

void BadRanges::Add(std::uint64_t offset, std::uint64_t length) {
  if (length == 0) return;
  std::uint64_t end = offset + length;
  auto next = ranges_.lower_bound(offset);
  const bool hasBefore = next != ranges_.begin();
  if (next != ranges_.end() && next->first < end) return;
  if (hasBefore && std::prev(next)->second > offset) return;

  if (next != ranges_.end() && next->first == end) {
    end = next->second;
    next = ranges_.erase(next);
  }
  if (hasBefore && std::prev(next)->second == offset) {
    std::prev(next)->second = end;
  } else {
    ranges_.emplace_hint(next, offset, end);
  }
}

}  // namespace velmora::engine
