#include "complete/source_names.h"

#include "complete/name_evidence.h"
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

SourceNames::SourceNames(const LiveStore& source) {
  if (source.Found().IsNameMapWhole()) {
    *this = SourceNames(static_cast<const ndb::BlockSource&>(source));
    return;
  }
  NameEvidence evidence(source);
  if (const auto node = source.FindNode(nid::kNameToIdMap)) evidence.Add(node->trees);
  for (const ndb::NodeTrees& map : source.Found().NameMaps()) evidence.Add(map);
  for (auto& [id, name] : evidence.Settle()) names_.emplace(id, name);
}

const messaging::AnyPropertyName* SourceNames::Of(std::uint16_t id) const {
  const auto found = names_.find(id);
  return found != names_.end() ? &found->second : nullptr;
}

}  // namespace velmora::complete
