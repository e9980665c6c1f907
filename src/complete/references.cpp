#include "complete/references.h"

#include <algorithm>
#include <string_view>

#include "store/format/little_endian.h"

namespace velmora::complete {
namespace {

// Flags (4 zero bytes), the store's record key, the node id.
constexpr std::size_t kFlags = 4;
constexpr std::size_t kKey = sizeof(messaging::Uid);
constexpr std::size_t kEntryId = kFlags + kKey + sizeof(std::uint32_t);

/// The library looks for bytes faster in a text than by std::ranges::search.
std::string_view AsText(std::span<const std::byte> bytes) {
  return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

}  // namespace

bool References::IsEntryId(std::span<const std::byte> value) const {
  return sourceKey_ && value.size() == kEntryId && messaging::NodeOfEntryId(value, *sourceKey_).has_value();
}

std::size_t References::Rewrite(std::span<std::byte> value) const {
  if (!sourceKey_) return 0;
  std::size_t stayed = 0;
  const std::string_view text = AsText(value);
  for (std::size_t at = kFlags; (at = text.find(AsText(*sourceKey_), at)) != text.npos; at += kKey + kFlags) {
    if (text.size() - at < kEntryId - kFlags) break;
    const auto entryId = value.subspan(at - kFlags, kEntryId);
    if (const auto node = messaging::NodeOfEntryId(entryId, *sourceKey_)) {
      if (const auto target = targetOf_(*node)) {
        std::ranges::copy(messaging::NodeEntryId(targetKey_, *target), entryId.begin());
      } else {
        ++stayed;
      }
    }
  }
  return stayed;
}

}  // namespace velmora::complete
