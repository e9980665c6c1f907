#include "complete/references.h"

#include <algorithm>

#include "store/format/little_endian.h"

namespace velmora::complete {
namespace {

// Flags (4 zero bytes), the store's record key, the node id.
constexpr std::size_t kFlags = 4;
constexpr std::size_t kKey = sizeof(messaging::Uid);
constexpr std::size_t kEntryId = kFlags + kKey + sizeof(std::uint32_t);

}  // namespace

bool References::IsEntryId(std::span<const std::byte> value) const {
  return sourceKey_ && value.size() == kEntryId && messaging::NodeOfEntryId(value, *sourceKey_).has_value();
}

std::size_t References::Rewrite(std::span<std::byte> value) const {
  if (!sourceKey_) return 0;
  std::size_t stayed = 0;
  auto rest = value;
  while (rest.size() >= kEntryId) {
    const auto key = std::ranges::search(rest.subspan(kFlags), *sourceKey_);
    const auto at = static_cast<std::size_t>(key.begin() - rest.begin());
    if (key.empty() || at + kKey + sizeof(std::uint32_t) > rest.size()) break;
    const auto entryId = rest.subspan(at - kFlags, kEntryId);
    if (const auto node = messaging::NodeOfEntryId(entryId, *sourceKey_)) {
      if (const auto target = targetOf_(*node)) {
        std::ranges::copy(messaging::NodeEntryId(targetKey_, *target), entryId.begin());
      } else {
        ++stayed;
      }
    }
    rest = rest.subspan(at + kKey);
  }
  return stayed;
}

}  // namespace velmora::complete
