#include "engine/evidence/page_evidence.h"

#include <bit>

#include "store/format/checksum.h"
#include "store/format/little_endian.h"

namespace velmora::engine {
namespace {

/// Whether the keys ascend, one of them left out.
bool AscendWithout(std::size_t left, PageView page, PageType type, const BtPageHead& head, const Generation& layout) {
  std::uint64_t before = 0;
  for (std::size_t i = 0; i < head.cEnt; ++i) {
    if (i == left) continue;
    const std::uint64_t key = KeyOf(page.subspan(i * head.cbEnt, head.cbEnt), type, layout);
    if (key <= before) return false;
    before = key;
  }
  return true;
}

}  // namespace

std::optional<BtPageHead> SoundHead(PageView page, PageType type, const Generation& layout) {
  const BtPageHead head = DecodeBtPageHead(page, layout);
  const bool isNodeLeaf = head.cLevel == 0 && type == PageType::kNbt;
  const std::size_t least = isNodeLeaf ? layout.nodeEntrySize : layout.blockEntrySize;
  if (head.cEnt > head.cEntMax || head.cbEnt < least || head.cLevel > kMostLevels) return std::nullopt;
  if (std::size_t{head.cEnt} * head.cbEnt > layout.offEntryCount) return std::nullopt;
  return head;
}

std::optional<std::vector<std::size_t>> OddEntries(PageView page, PageType type, const BtPageHead& head,
                                                   const Generation& layout) {
  std::vector<std::size_t> odd;
  if (AscendWithout(head.cEnt, page, type, head, layout)) return odd;
  for (std::size_t i = 0; i < head.cEnt; ++i) {
    if (AscendWithout(i, page, type, head, layout)) odd.push_back(i);
  }
  if (odd.empty() || odd.size() == head.cEnt) return std::nullopt;
  return odd;
}

std::uint64_t KeyOf(std::span<const std::byte> entry, PageType type, const Generation& layout) {
  // The high half of a node's id is rubbish in stores of other makers; bit 0 of a block's does not count.
  return type == PageType::kNbt ? Value(LoadNid(entry, 0)) : layout.LoadWord(entry, 0) & ~std::uint64_t{1};
}

bool MendPage(std::span<std::byte> page, const Generation& layout) {
  const std::span<std::byte> covered = page.first(layout.offPageType);
  const std::uint32_t difference = Load<std::uint32_t>(page, layout.offPageCrc) ^ WeakCrc(covered);
  if (difference == 0 || std::has_single_bit(difference)) return true;  // or a bit of the sum itself is wrong
  const auto bit = SingleWrongBit(difference, covered.size());
  if (bit) covered[*bit / 8] ^= std::byte{1} << *bit % 8;
  return bit.has_value();
}

std::optional<FoundPage> GradePage(PageView page, std::uint64_t offset, const Generation& layout) {
  if (!EndsLikeTreePage(page, layout)) return std::nullopt;
  const auto type = static_cast<PageType>(Load<std::uint8_t>(page, layout.offPageType));
  const std::uint64_t id = layout.LoadWord(page, layout.offPageId);
  const bool isSigned = Load<std::uint16_t>(page, layout.offPageSig) == ComputeSig(offset, id);
  const bool isWhole = Load<std::uint32_t>(page, layout.offPageCrc) == WeakCrc(page.first(layout.offPageType));
  std::vector<std::byte> mended;
  if (!isWhole && isSigned) {
    mended.assign(page.begin(), page.end());
    if (!MendPage(mended, layout)) mended.clear();
  }
  const bool isMended = !mended.empty();
  if (isMended) page = mended;
  const std::optional<BtPageHead> head = SoundHead(page, type, layout);
  if (!head) return std::nullopt;
  const bool isUsable = isWhole || isMended;
  if (!isUsable && !(isSigned && head->cEnt != 0 && OddEntries(page, type, *head, layout))) return std::nullopt;
  const Grade grade = !isUsable ? Grade::kHurt : isSigned ? Grade::kProven : Grade::kMoved;
  return FoundPage{offset, id, type, head->cLevel, grade, isMended};
}

}  // namespace velmora::engine
