#include "engine/proven_store.h"

#include <algorithm>
#include <array>

#include "engine/evidence/complete_nodes.h"
#include "engine/evidence/name_maps.h"
#include "engine/placed_bytes.h"
#include "store/format/byte_view.h"
#include "store/format/header.h"
#include "store/format/store_nodes.h"

namespace velmora::engine {
namespace {

bool IsTaken(const NodeClaim& claim) {
  return claim.standing != Standing::kOlder && claim.standing != Standing::kDeleted;
}

}  // namespace

std::unique_ptr<const ProvenStore> ProvenStore::Prove(std::unique_ptr<const platform::ByteSource> bytes, bool deleted,
                                                      RunContext& run, std::optional<std::uint64_t> at) {
  std::unique_ptr<ProvenStore> store(new ProvenStore());
  store->Look(std::move(bytes), at, run);
  if (!store->IsStore()) return store;
  store->judgement_ = JudgeNodes(store->source_, store->evidence_, store->told_, run);
  if (deleted || !store->judgement_.nodesAreExact) {
    store->lost_ = FindLostNodes(store->blocks_, store->evidence_, store->judgement_, deleted, run);
  }
  store->GatherNodes();
  store->FindKind();
  store->FindNames(run);
  return store;
}

/// Where the store lies is asked only if the file does not look like a store from its first byte to its last.
void ProvenStore::Look(std::shared_ptr<const platform::ByteSource> file, std::optional<std::uint64_t> at,
                       RunContext& run) {
  LookAt(file, 0, file->Size(), run);
  file = source_.Bytes();
  const std::uint64_t size = file->Size();
  if (!at && !evidence_.hasStrays) return;
  others_ = FindStores(source_, run);
  auto chosen = others_.begin();
  if (at) {
    chosen = std::ranges::find(others_, *at, &StorePlace::from);
    if (chosen == others_.end()) evidence_ = {};
  } else if (!others_.empty()) {
    chosen += static_cast<std::ptrdiff_t>(MainStore(others_));
  }
  if (chosen == others_.end()) return;
  const StorePlace place = *chosen;
  others_.erase(chosen);
  if (place.origin == 0 && place.to == size && !place.doubtfulFrom) return;
  place_ = place;
  if (place.origin != 0 || place.to != size) LookAt(file, place.origin, place.to, run);
}

void ProvenStore::LookAt(const std::shared_ptr<const platform::ByteSource>& file, Origin origin, std::uint64_t to,
                         RunContext& run) {
  const std::uint64_t missing = origin < 0 ? static_cast<std::uint64_t>(-origin) : 0;
  source_.Open(std::make_unique<PlacedBytes>(file, origin, to), missing);
  told_ = ReadHeader(source_);
  evidence_ = FindEvidence(source_, told_, run);
}

void ProvenStore::GatherNodes() {
  for (NodeClaim& claim : judgement_.nodes) {
    const bool isGone = IsInUse(claim.standing) && std::ranges::binary_search(lost_.gone, claim.node.nid);
    if (isGone) claim.standing = Standing::kDeleted;
  }
  const auto take = [this](const NodeClaim& claim) {
    if (IsTaken(claim)) nodes_.push_back(claim.node);
  };
  std::ranges::for_each(lost_.nodes, take);  // these replace what a claim of the same id says
  std::ranges::for_each(judgement_.nodes, take);
  std::ranges::stable_sort(nodes_, {}, &ndb::NodeEntry::nid);
  const auto repeated = std::ranges::unique(nodes_, {}, &ndb::NodeEntry::nid);
  nodes_.erase(repeated.begin(), repeated.end());
  nodes_.shrink_to_fit();
  // What is live stands in the list now; claims of what is not are few.
  for (std::vector<NodeClaim>* claims : {&judgement_.nodes, &lost_.nodes}) {
    std::erase_if(*claims, IsTaken);
    claims->shrink_to_fit();
  }
}

void ProvenStore::FindNames(RunContext& run) {
  const auto node = FindNode(nid::kNameToIdMap);
  isNameMapWhole_ = node && CompleteNodes(blocks_).IsComplete(node->trees);
  if (!isNameMapWhole_) nameMaps_ = FindNameMaps(blocks_, evidence_, judgement_, run);
}

void ProvenStore::FindKind() {
  std::array<std::byte, Header::kSize> head{};
  static_cast<void>(source_.Read(0, head));
  switch (ByteView(head).U16(kWMagicClient)) {
    case kMagicClientPst:
      kind_ = StoreKind::kPst;
      break;
    case kMagicClientOst:
      kind_ = StoreKind::kOst;
      break;
    case kMagicClientPab:
      kind_ = StoreKind::kPab;
      break;
    default:
      kind_ = FindNode(nid::kOfflineTop) ? StoreKind::kOst : StoreKind::kPst;
  }
}

std::optional<ndb::NodeEntry> ProvenStore::FindNode(Nid nid) const {
  const auto node = std::ranges::lower_bound(nodes_, nid, {}, &ndb::NodeEntry::nid);
  if (node == nodes_.end() || node->nid != nid) return std::nullopt;
  return *node;
}

}  // namespace velmora::engine
