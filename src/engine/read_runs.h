// Pieces of a source that one read takes together.
#pragma once

#include <algorithm>
#include <cstdint>

namespace velmora::engine {

/// Most bytes that are read at once, and the widest gap between two pieces that is always read along with them: that
/// takes less time than another read, on a disk that has to seek far less.
inline constexpr std::uint64_t kMostAtOnce = 1 << 20;
inline constexpr std::uint64_t kWidestGap = 16 << 10;

/// Of pieces in the order of their places, from `first` on, those that one read takes; one at least. `beginOf` and
/// `endOf` give the offsets of a piece. Returns the first that is not among them, and in `end` the end of all that are.
template <class Iterator, class BeginOf, class EndOf>
Iterator EndOfRun(Iterator first, Iterator last, BeginOf beginOf, EndOf endOf, std::uint64_t& end,
                  std::uint64_t widestGap = kWidestGap) {
  const std::uint64_t begin = beginOf(*first);
  end = endOf(*first);
  for (++first; first != last; ++first) {
    const std::uint64_t reach = std::max(end, endOf(*first));
    if (beginOf(*first) > end + widestGap || reach - begin > kMostAtOnce) break;
    end = reach;
  }
  return first;
}

}  // namespace velmora::engine
