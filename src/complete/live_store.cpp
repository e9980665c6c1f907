#include "complete/live_store.h"

#include <algorithm>
#include <utility>

namespace velmora::complete {

std::vector<Bid> LiveStore::TakeHurt() const {
  std::vector<Bid> hurt = std::exchange(hurt_, {});
  std::ranges::sort(hurt);
  const auto repeated = std::ranges::unique(hurt);
  hurt.erase(repeated.begin(), repeated.end());
  return hurt;
}

}  // namespace velmora::complete
