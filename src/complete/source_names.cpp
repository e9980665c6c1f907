#include "complete/source_names.h"

#include "store/format/store_nodes.h"

namespace velmora::complete {

SourceNames::SourceNames(const ndb::BlockSource& source) {
  const auto node = source.FindNode(nid::kNameToIdMap);
  if (!node) return;
  ndb::Faults faults(nid::kNameToIdMap);
  auto map = IfReadable([&] { return ltp::PropertyContext::Open(source, node->trees, &faults); });
  if (!map) return;
  for (auto& [id, name] : messaging::ReadNames(*map)) names_.emplace(id, std::move(name));
}

const messaging::AnyPropertyName* SourceNames::Of(std::uint16_t id) const {
  const auto found = names_.find(id);
  return found != names_.end() ? &found->second : nullptr;
}

}  // namespace velmora::complete
