#include "complete/live_store.h"

#include <algorithm>
#include <utility>

namespace velmora::complete {

std::uint64_t LiveStore::BytesInUse() const {
  const engine::BlockList& blocks = found_.Found().blocks;
  const std::vector<engine::BlockStatus>& statuses = found_.Judged().statuses;
  std::uint64_t bytes = 0;
  for (std::size_t i = 0; i < blocks.size(); ++i) {
    if (statuses[i] != engine::BlockStatus::kFreed) bytes += blocks[i].cb;
  }
  return bytes;
}

std::vector<Bid> LiveStore::TakeHurt() const {
  std::vector<Bid> hurt = std::exchange(hurt_, {});
  std::ranges::sort(hurt);
  const auto repeated = std::ranges::unique(hurt);
  hurt.erase(repeated.begin(), repeated.end());
  return hurt;
}

}  // namespace velmora::complete
