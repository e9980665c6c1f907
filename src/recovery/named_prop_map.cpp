#include "recovery/named_prop_map.h"

namespace velmora::recovery {
namespace {

constexpr std::uint8_t kPairsGroup = 0;

}  // namespace

void NamedPropMap::AddNamedProp(std::uint32_t longId, std::uint32_t localId) {
  if (groups_.none()) groups_.set(kPairsGroup);
  if (!groups_.test(kPairsGroup)) return;
  if (longByLocal_.contains(localId) || localByLong_.contains(longId)) return;
  longByLocal_.emplace(localId, longId);
  localByLong_.emplace(longId, localId);
}

std::uint32_t NamedPropMap::TranslateNamedId(std::uint32_t localId) const {
  const auto pair = longByLocal_.find(localId);
  return pair == longByLocal_.end() ? localId : pair->second;
}

}  // namespace velmora::recovery
