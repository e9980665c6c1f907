#include "engine/node_versions.h"

#include <algorithm>
#include <tuple>

#include "engine/source_window.h"
#include "store/format/page.h"

namespace velmora::engine {
namespace {

/// Entries that are taken in before those that repeat others are dropped.
constexpr std::size_t kLeastUnsettled = 65536;

void Settle(std::vector<ndb::NodeEntry>& entries) {
  const auto key = [](const ndb::NodeEntry& entry) {
    return std::tuple(entry.nid, entry.trees.bidData, entry.trees.bidSub, entry.nidParent);
  };
  std::ranges::sort(entries, {}, key);
  const auto repeated = std::ranges::unique(entries);
  entries.erase(repeated.begin(), repeated.end());
}

}  // namespace

NodeVersions FindNodeVersions(const Source& source, const Generation& layout, RunContext& run) {
  NodeVersions found;
  SourceWindow window(source);
  std::size_t unsettledFrom = 0;
  const std::uint64_t pages = source.Size() / layout.pageSize;
  for (std::uint64_t i = 0; i < pages && !run.runEnded; ++i) {
    const std::uint64_t offset = i * layout.pageSize;
    if (offset % SourceWindow::kWindowBytes == 0) {
      run.control.PausePoint();
      run.SayProgress(i * 100 / pages, Phase::kNodeScan);
    }
    const PageView page = window.Read(offset, layout.pageSize).Bytes();
    const ByteView fields(page);
    if (page.size() != layout.pageSize || fields.U16(layout.offPageType) != TypeWord(PageType::kNbt)) continue;
    const Bref ref{Bid{fields.Word(layout.offPageId, layout.idWidth)}, offset};
    if (!ProvesItself(page, PageType::kNbt, ref, layout)) continue;
    ++found.pages;
    const BtPageHead head = DecodeBtPageHead(page, layout);
    if (head.cLevel != 0 || head.cbEnt != layout.nodeEntrySize) continue;
    const std::size_t count = std::min<std::size_t>(head.cEnt, MaxEntries(head.cbEnt, layout));
    for (std::size_t entry = 0; entry < count; ++entry) {
      const NbtEntry node = DecodeNbtEntry(page.subspan(entry * head.cbEnt, head.cbEnt), layout);
      if (node.nid != kNoNid) found.entries.push_back({node.nid, {node.bidData, node.bidSub}, node.nidParent});
    }
    if (found.entries.size() - unsettledFrom >= std::max(unsettledFrom, kLeastUnsettled)) {
      Settle(found.entries);
      unsettledFrom = found.entries.size();
    }
  }
  Settle(found.entries);
  return found;
}

}  // namespace velmora::engine
