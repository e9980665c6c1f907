#include "complete/live_store.h"

#include <algorithm>

namespace velmora::complete {

bool HasSoundTrees(const engine::Source& source) {
  const engine::SourceBytes bytes(source);
  const auto trees = ndb::StoreReader::Open(bytes);
  return trees && (*trees)->Damage().Count() == 0 && !(*trees)->Nodes().empty();
}

LiveStore::LiveStore(const engine::ScannedStore& found, Evidence& evidence) : found_(found), bytes_(found.source) {
  auto trees = ndb::StoreReader::Open(bytes_);
  if (!trees) {
    evidence.treeFaults.push_back(trees.error());
  } else {
    evidence.headerUsed = true;
    evidence.treesUsed = (*trees)->Damage().Count() == 0;
    for (const ndb::Fault& fault : (*trees)->Damage().List()) evidence.treeFaults.push_back(fault.cause);
    evidence.treeNodes = (*trees)->Nodes().size();
    evidence.treeBlocks = (*trees)->BlockCount();
    if (!(*trees)->Nodes().empty()) trees_ = std::move(*trees);
  }
  if (trees_) return;
  for (const engine::NodeRecord& record : found_.nodes.Records()) {
    const ndb::NodeEntry* same = scannedNodes_.empty() ? nullptr : &scannedNodes_.back();
    if (record.upperPage || (same != nullptr && same->nid == Nid{record.nid})) continue;
    scannedNodes_.push_back({Nid{record.nid}, {record.bidData, record.bidSub}, Nid{record.nidParent}});
  }
  std::ranges::stable_sort(scannedNodes_, {}, &ndb::NodeEntry::nid);
  const auto repeated = std::ranges::unique(scannedNodes_, {}, &ndb::NodeEntry::nid);
  scannedNodes_.erase(repeated.begin(), repeated.end());
}

Result<void> LiveStore::ReadBlock(Bid bid, std::vector<std::byte>& out) const {
  if (!trees_) return found_.ReadBlock(bid, out);
  auto read = trees_->ReadBlock(bid, out);
  if (read || found_.ReadBlock(bid, out)) return {};
  return read;  // what the tree says of it tells more
}

std::optional<ndb::NodeEntry> LiveStore::FindNode(Nid nid) const {
  const auto node = std::ranges::lower_bound(Nodes(), nid, {}, &ndb::NodeEntry::nid);
  if (node == Nodes().end() || node->nid != nid) return std::nullopt;
  return *node;
}

}  // namespace velmora::complete
