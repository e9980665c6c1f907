#include "engine/evidence/name_maps.h"

#include <algorithm>

#include "engine/evidence/context_facts.h"
#include "engine/evidence/top_blocks.h"
#include "store/format/name_map.h"
#include "store/ndb/subnode_tree_reader.h"

namespace velmora::engine {
namespace {

/// A store of normal use has a handful.
constexpr std::size_t kMostMaps = 16;
constexpr std::size_t kMostLists = 4;  ///< of one map

struct FoundMap {
  Bid bid{};
  std::vector<Nid> keys = {};   ///< the sub-nodes that it asks for
  std::vector<Bid> lists = {};  ///< that hold them
};

bool Holds(std::span<const ndb::SubnodeEntry> list, std::span<const Nid> keys) {
  return std::ranges::all_of(
      keys, [&](Nid key) { return std::ranges::find(list, key, &ndb::SubnodeEntry::nid) != list.end(); });
}

}  // namespace

bool IsNameMap(const ltp::PropertyContext& context) {
  const PropertyRecord* first = context.Records().empty() ? nullptr : &context.Records().front();
  return first != nullptr && first->Tag() == name_map::kBucketCount && context.Find(IdOf(name_map::kEntryStream));
}

std::vector<ndb::NodeTrees> FindNameMaps(const EvidenceBlocks& blocks, const Evidence& evidence,
                                         const Judgement& judgement, RunContext& run) {
  const TopBlocks tops = FindTopBlocks(EvidenceView(blocks, evidence, judgement), run);
  std::vector<FoundMap> maps;
  for (auto bid = tops.contexts.rbegin(); bid != tops.contexts.rend() && maps.size() < kMostMaps; ++bid) {
    run.control.PausePoint();
    if (!blocks.IsTrusted(*bid)) continue;
    const auto context = IfReadable([&] { return ltp::PropertyContext::Open(blocks, {*bid, kNoBid}); });
    if (!context || !IsNameMap(*context)) continue;
    maps.push_back({*bid});
    AppendKeys(*context, maps.back().keys);
  }
  const bool areListsAsked = std::ranges::any_of(maps, [](const FoundMap& map) { return !map.keys.empty(); });
  for (auto bid = tops.lists.rbegin(); areListsAsked && bid != tops.lists.rend(); ++bid) {
    run.control.PausePoint();
    const auto list = IfReadable([&] { return ndb::ListSubnodes(blocks, *bid); });
    if (!list) continue;
    for (FoundMap& map : maps) {
      if (!map.keys.empty() && map.lists.size() < kMostLists && Holds(*list, map.keys)) map.lists.push_back(*bid);
    }
  }
  std::vector<ndb::NodeTrees> found;
  for (const FoundMap& map : maps) {
    for (const Bid list : map.lists) found.push_back({map.bid, list});
    if (map.lists.empty()) found.push_back({map.bid, kNoBid});
  }
  return found;
}

}  // namespace velmora::engine
