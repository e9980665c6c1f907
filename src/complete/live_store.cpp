#include "complete/live_store.h"

#include <algorithm>

namespace velmora::complete {

bool HasSoundTrees(const engine::Source& source) {
  const engine::SourceBytes bytes(source);
  const auto trees = IfReadable([&] { return ndb::StoreReader::Open(bytes); });
  return trees && (*trees)->Damage().Count() == 0 && !(*trees)->Nodes().empty();
}

LiveStore::LiveStore(const engine::ScannedStore& found, Evidence& evidence) : found_(found), bytes_(found.source) {
  try {
    trees_ = ndb::StoreReader::Open(bytes_);
    evidence.headerUsed = true;
    evidence.treesUsed = trees_->Damage().Count() == 0;
    evidence.treeFaults = trees_->Damage().List();
    evidence.treeNodes = trees_->Nodes().size();
    evidence.treeBlocks = trees_->BlockCount();
    if (!trees_->Nodes().empty()) return;
    trees_.reset();
  } catch (const FailureError& failure) {
    evidence.treeFaults.push_back(failure.Cause());
  }
  for (const engine::NodeRecord& record : found_.nodes.Records()) {
    const ndb::NodeEntry* same = scannedNodes_.empty() ? nullptr : &scannedNodes_.back();
    if (record.upperPage || (same != nullptr && same->nid == Nid{record.nid})) continue;
    scannedNodes_.push_back({Nid{record.nid}, {record.bidData, record.bidSub}, Nid{record.nidParent}});
  }
  std::ranges::stable_sort(scannedNodes_, {}, &ndb::NodeEntry::nid);
  const auto repeated = std::ranges::unique(scannedNodes_, {}, &ndb::NodeEntry::nid);
  scannedNodes_.erase(repeated.begin(), repeated.end());
}

bool LiveStore::FindBlock(Bid bid, std::vector<std::byte>& out) const {
  if (!trees_) return found_.FindBlock(bid, out);
  try {
    if (trees_->FindBlock(bid, out)) return true;
  } catch (const FailureError&) {
    // What the tree says of it tells more than that the scan has no better one.
    if (IfReadable([&] { return found_.FindBlock(bid, out); }).value_or(false)) return true;
    throw;
  }
  return found_.FindBlock(bid, out);
}

std::optional<ndb::NodeEntry> LiveStore::FindNode(Nid nid) const {
  const auto node = std::ranges::lower_bound(Nodes(), nid, {}, &ndb::NodeEntry::nid);
  if (node == Nodes().end() || node->nid != nid) return std::nullopt;
  return *node;
}

}  // namespace velmora::complete
