#include "engine/subnode_lists.h"

#include <ranges>

#include "store/format/store_nodes.h"
#include "store/ndb/subnode_tree_reader.h"

namespace velmora::engine {
namespace {

/// Versions of a long list share most of its blocks. This many are read in full; more are a store made to make much of
/// little.
constexpr std::uint64_t kMostVersionsOfList = 16;

std::uint64_t EntriesIn(const EvidenceView& view) {
  std::uint64_t bytes = 0;
  for (const FoundBlock& block : view.Found().blocks) {
    if (block.kind == BlockKind::kSubnodes) bytes += block.cb;
  }
  return bytes / view.Format().SubnodeEntrySize();
}

}  // namespace

SubnodeLists::SubnodeLists(const EvidenceView& view, std::span<const Bid> bids, RunContext& run) {
  lists_.resize(bids.size());
  const std::uint64_t most = EntriesIn(view) * kMostVersionsOfList;
  std::uint64_t read = 0;
  for (std::size_t i = bids.size(); i-- > 0 && read <= most;) {  // the newest first
    run.control.PausePoint();
    SubnodeList& list = lists_[i];
    ndb::Faults faults;
    const auto entries = IfReadable([&] { return ndb::ListSubnodes(view.Blocks(), bids[i], &faults); });
    if (!entries) continue;
    read += entries->size();
    for (const ndb::SubnodeEntry& entry : *entries) {
      list.hasRecipients = list.hasRecipients || entry.nid == nid::kRecipientTable;
      list.hasAttachments = list.hasAttachments || entry.nid == nid::kAttachmentTable;
      if (TypeOf(entry.nid) != NidType::kLtp) continue;
      list.hasValues = true;
      entries_.push_back({entry.nid, static_cast<std::uint32_t>(i)});
    }
  }
  for (std::size_t i = 0; i < bids.size(); ++i) lists_[i].bid = bids[i];
  std::ranges::sort(entries_);
}

std::span<const SubnodeLists::Entry> SubnodeLists::Holding(Nid nid) const {
  const auto held = std::ranges::equal_range(entries_, nid, {}, &Entry::nid);
  return {held.begin(), held.end()};
}

bool SubnodeLists::Holds(std::uint32_t list, Nid nid) const {
  return std::ranges::binary_search(entries_, Entry{nid, list});
}

}  // namespace velmora::engine
