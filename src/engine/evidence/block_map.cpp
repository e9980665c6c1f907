#include "engine/evidence/block_map.h"

#include <algorithm>
#include <bit>
#include <tuple>
#include <unordered_map>

#include "engine/evidence/found_tree.h"
#include "store/format/block.h"

namespace velmora::engine {
namespace {

/// The signature of a block covers no more of its id.
constexpr std::uint64_t kMostSigned = UINT32_MAX;

/// A block as an entry of the block tree names it.
struct Named {
  FoundBlock block;
  Shade shade;
};

class BlockMap {
 public:
  BlockMap(const Source& source, Finds& finds, Evidence& evidence)
      : source_(source), finds_(finds), evidence_(evidence) {}

  void Run(const std::optional<ToldByHeader>& told, RunContext& run) {
    TakePages();
    evidence_.blocks = std::move(finds_.whole);
    std::ranges::sort(evidence_.blocks, {}, ByIdAndPlace);
    AskTree(told, run);
    MendIds();
    DropSecondOnes();
    AddNamed();
    AddHurt();
    FindKinds(run);
    MarkNamed();
    evidence_.blocks.shrink_to_fit();
    evidence_.pages.shrink_to_fit();
  }

 private:
  static std::tuple<Bid, bool, std::uint64_t> ByIdAndPlace(const FoundBlock& block) {
    return {block.bid, block.grade != Grade::kProven, block.offset};
  }

  // What is left of a page that was written over lies under what was written there.
  void TakePages() {
    evidence_.pages = std::move(finds_.pages);
    std::erase_if(evidence_.pages, [&](const FoundPage& page) {
      return page.grade == Grade::kHurt && !finds_.taken.IsFree(page.offset, evidence_.layout->pageSize);
    });
    std::ranges::sort(evidence_.pages, {}, &FoundPage::offset);
  }

  void AskTree(const std::optional<ToldByHeader>& told, RunContext& run) {
    const FoundTree tree(source_, evidence_, PageType::kBbt, run);
    for (const FoundBlock& block : evidence_.blocks) {
      const bool isSigned = block.grade == Grade::kProven && Value(block.bid) <= kMostSigned;
      if (!isSigned) unsigned_.emplace(block.offset, block.bid);
    }
    const std::uint64_t newest = evidence_.blocks.empty() ? 0 : Value(evidence_.blocks.back().bid);
    const auto members = MembersOfNewest(tree, told ? std::optional(told->blockRoot) : std::nullopt, newest);
    Paint(tree, members, [&](const TreePage& page, std::span<const std::byte> bytes, Shade shade) {
      BbtEntry entry = DecodeBbtEntry(bytes, *evidence_.layout);
      if (page.found.grade == Grade::kHurt || entry.cb == 0 || entry.cb > evidence_.layout->maxBlockData) return;
      entry.ref.bid = Canonical(entry.ref.bid);
      const auto known = std::ranges::equal_range(evidence_.blocks, entry.ref.bid, {}, &FoundBlock::bid);
      if (known.size() > 1) {
        Prefer(entry, shade);
      } else if (known.empty() && unsigned_.contains(entry.ref.ib)) {
        CompareId(entry);
      } else if (known.empty() && IsFree(entry)) {
        named_.push_back(
            {{.bid = entry.ref.bid, .offset = entry.ref.ib, .cb = entry.cb, .grade = Grade::kNamed}, shade});
      }
    });
  }

  bool IsFree(const BbtEntry& entry) const {
    const std::uint64_t fileSize = source_.Size();
    const std::uint64_t size = BlockSizeOnDisk(entry.cb, *evidence_.layout);
    return entry.ref.ib < fileSize && entry.ref.ib != 0 &&
           finds_.taken.IsFree(entry.ref.ib, std::min(size, fileSize - entry.ref.ib));
  }

  /// What stands where it was written has a wrong bit in its id, if that is all that the tree has otherwise.
  void CompareId(const BbtEntry& entry) {
    const Bid bid = unsigned_.at(entry.ref.ib);
    if (std::has_single_bit(Value(bid) ^ Value(entry.ref.bid))) idOf_.emplace(entry.ref.ib, entry);
  }

  void MendIds() {
    if (idOf_.empty()) return;
    for (FoundBlock& block : evidence_.blocks) {
      const auto mended = idOf_.find(block.offset);
      if (mended != idOf_.end() && mended->second.cb == block.cb) block.bid = mended->second.ref.bid;
    }
    std::ranges::sort(evidence_.blocks, {}, ByIdAndPlace);
  }

  /// Of several blocks of an id, the one that the best entry names.
  void Prefer(const BbtEntry& entry, Shade shade) {
    const auto [at, isNew] = preferred_.try_emplace(entry.ref.bid, entry.ref.ib, shade);
    if (!isNew && shade < at->second.second) at->second = {entry.ref.ib, shade};
  }

  void DropSecondOnes() {
    auto& blocks = evidence_.blocks;
    std::size_t kept = 0;
    for (std::size_t i = 0, end = 0; i < blocks.size(); i = end) {
      for (end = i; end < blocks.size() && blocks[end].bid == blocks[i].bid; ++end) {
      }
      std::size_t best = i;
      if (const auto preferred = preferred_.find(blocks[i].bid); preferred != preferred_.end()) {
        for (std::size_t j = i; j < end; ++j) {
          if (blocks[j].offset == preferred->second.first) best = j;
        }
      }
      blocks[kept++] = blocks[best];
    }
    blocks.resize(kept);
  }

  void AddNamed() {
    std::ranges::stable_sort(named_, {}, [](const Named& named) { return std::tuple(named.block.bid, named.shade); });
    const auto second = std::ranges::unique(named_, {}, [](const Named& named) { return named.block.bid; });
    named_.erase(second.begin(), second.end());
    for (const Named& named : named_) evidence_.blocks.push_back(named.block);
    Merge(evidence_.blocks.size() - named_.size());
    named_ = {};
  }

  void AddHurt() {
    auto& hurt = finds_.hurt;
    std::erase_if(hurt, [&](const FoundBlock& block) {
      return !finds_.taken.IsFree(block.offset, BlockSizeOnDisk(block.cb, *evidence_.layout));
    });
    evidence_.failedBlocks = hurt.size();
    std::ranges::sort(hurt, {}, ByIdAndPlace);
    const std::size_t known = evidence_.blocks.size();
    for (std::size_t i = 0; i < hurt.size(); ++i) {
      const auto first = evidence_.blocks.begin();
      const auto same = std::ranges::lower_bound(first, first + known, hurt[i].bid, {}, &FoundBlock::bid);
      if (same == first + known || same->bid != hurt[i].bid) {
        if (i == 0 || hurt[i].bid != hurt[i - 1].bid) evidence_.blocks.push_back(hurt[i]);
      } else if (same->grade == Grade::kNamed && same->offset == hurt[i].offset && same->cb == hurt[i].cb) {
        *same = hurt[i];
      }
    }
    Merge(known);
    hurt = {};
  }

  /// The blocks from that one on are sorted, and those ahead of it.
  void Merge(std::size_t from) {
    auto& blocks = evidence_.blocks;
    std::ranges::inplace_merge(blocks, blocks.begin() + static_cast<std::ptrdiff_t>(from), {}, &FoundBlock::bid);
  }

  // A block that only the tree names was not looked at yet, one with a wrong id not with the right one.
  void FindKinds(RunContext& run) {
    std::vector<std::byte> stored;
    for (FoundBlock& block : evidence_.blocks) {
      if (block.grade != Grade::kNamed && !idOf_.contains(block.offset)) {
        block.kind = UnpackKind(block.kind, evidence_.encoding);
        continue;
      }
      run.control.PausePoint();
      stored.resize(block.cb);
      stored.resize(source_.ReadAround(block.offset, stored));
      const BlockTrailer trailer{.cb = block.cb, .bid = block.bid, .cbInflated = block.cb};
      block.kind = KindsOf(stored, trailer, *evidence_.layout).at(static_cast<std::size_t>(evidence_.encoding));
    }
  }

  void MarkNamed() {
    auto& named = finds_.named;
    std::ranges::sort(named);
    auto block = evidence_.blocks.begin();
    for (const Bid bid : named) {
      while (block != evidence_.blocks.end() && block->bid < bid) ++block;
      if (block != evidence_.blocks.end() && block->bid == bid) block->isNamed = true;
    }
  }

  const Source& source_;
  Finds& finds_;
  Evidence& evidence_;
  std::unordered_map<Bid, std::pair<std::uint64_t, Shade>> preferred_;  ///< place of ids that several blocks have
  std::unordered_map<std::uint64_t, Bid> unsigned_;                     ///< by place: ids that no signature proves
  std::unordered_map<std::uint64_t, BbtEntry> idOf_;                    ///< by place: of those whose id is wrong
  std::vector<Named> named_;
};

}  // namespace

void MapBlocks(const Source& source, Finds finds, const std::optional<ToldByHeader>& told, Evidence& evidence,
               RunContext& run) {
  BlockMap(source, finds, evidence).Run(told, run);
}

}  // namespace velmora::engine
