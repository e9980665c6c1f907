#include "complete/file_map.h"

#include <algorithm>

#include "store/format/block.h"
#include "store/format/header.h"

namespace velmora::complete {
namespace {

constexpr std::uint64_t kSmallestCell = 512;

class MapPainter {
 public:
  explicit MapPainter(std::uint64_t fileSize) {
    const std::uint64_t share = fileSize / FileMap::kMostCells + 1;
    map_.cellBytes = (share + kSmallestCell - 1) / kSmallestCell * kSmallestCell;
    map_.cells.resize((fileSize + map_.cellBytes - 1) / map_.cellBytes);
  }

  void Paint(std::uint64_t from, std::uint64_t size, FileUse use) {
    if (size == 0 || from / map_.cellBytes >= map_.cells.size()) return;
    const std::uint64_t last = std::min<std::uint64_t>((from + size - 1) / map_.cellBytes, map_.cells.size() - 1);
    for (std::uint64_t cell = from / map_.cellBytes; cell <= last; ++cell) {
      map_.cells[cell] = std::max(map_.cells[cell], use);
    }
  }

  FileMap Finish() { return std::move(map_); }

 private:
  FileMap map_;
};

bool IsHurt(engine::Grade grade) { return grade == engine::Grade::kHurt || grade == engine::Grade::kNamed; }

}  // namespace

FileMap MapOf(const engine::ProvenStore& store) {
  const Generation& layout = store.Format();
  MapPainter painter(store.Bytes().Size());
  if (store.Place()) painter.Paint(0, store.Place()->Missing(), FileUse::kUnreadable);
  if (store.Header()) painter.Paint(0, Header::kSize, FileUse::kTree);
  for (const engine::FoundPage& page : store.Found().pages) {
    painter.Paint(page.offset, layout.pageSize, IsHurt(page.grade) ? FileUse::kFailed : FileUse::kTree);
  }
  for (std::size_t i = 0; i < store.Found().blocks.size(); ++i) {
    const engine::FoundBlock block = store.Found().blocks[i];
    const bool isFreed = store.Judged().statuses[i] == engine::BlockStatus::kFreed;
    const FileUse use = IsHurt(block.grade) ? FileUse::kFailed : isFreed ? FileUse::kFreed : FileUse::kLive;
    painter.Paint(block.offset, BlockSizeOnDisk(block.cb, layout), use);
  }
  const engine::BadRanges unread = store.Bytes().Unread();
  for (const auto& [from, to] : unread.Ranges()) painter.Paint(from, to - from, FileUse::kUnreadable);
  return painter.Finish();
}

Evidence EvidenceOf(const engine::ProvenStore& store) {
  Evidence evidence;
  evidence.headerUsed = store.Header().has_value() && store.Header()->layout == store.Found().layout;
  evidence.nodesAreExact = store.Judged().nodesAreExact;
  evidence.blocksAreExact = store.Judged().blocksAreExact;
  evidence.liveNodes = store.Nodes().size();
  for (const engine::FoundPage& page : store.Found().pages) {
    ++(page.type == PageType::kNbt ? evidence.nodePages : evidence.blockPages);
  }
  for (std::size_t i = 0; i < store.Found().blocks.size(); ++i) {
    const bool isFreed = store.Judged().statuses[i] == engine::BlockStatus::kFreed;
    ++(isFreed ? evidence.freedBlocks : evidence.liveBlocks);
    evidence.hurtBlocks += IsHurt(store.Found().blocks[i].grade) ? 1 : 0;
  }
  evidence.failedBlocks = store.Found().failedBlocks;
  return evidence;
}

}  // namespace velmora::complete
