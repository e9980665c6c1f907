#include "engine/evidence/block_map.h"

#include <algorithm>
#include <bit>
#include <tuple>
#include <unordered_map>

#include "engine/evidence/block_sorter.h"
#include "engine/evidence/found_tree.h"
#include "store/format/block.h"

namespace velmora::engine {
namespace {

/// The signature of a block covers no more of its id.
constexpr std::uint64_t kMostSigned = UINT32_MAX;

/// Ids are even.
constexpr Bid kBehindAll{UINT64_MAX};

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
    finds_.sorted.Take(finds_.whole);
    whole_ = finds_.sorted.Merge();
    AskTree(told, run);
    MendIds();
    TakeNamed();
    TakeHurt();
    Join(run);
    evidence_.pages.shrink_to_fit();
  }

 private:
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
    const std::uint64_t newest = whole_.empty() ? 0 : Value(whole_.KeyOf(whole_.size() - 1));
    if (finds_.hasMovedBlocks || newest > kMostSigned) {
      for (const FoundBlock& block : whole_) {
        const bool isSigned = block.grade == Grade::kProven && Value(block.bid) <= kMostSigned;
        if (!isSigned) unsigned_.emplace(block.offset, block.bid);
      }
    }
    const auto members = MembersOfNewest(tree, told ? std::optional(told->blockRoot) : std::nullopt, newest);
    BlockList::Seeker seeker(whole_);
    Paint(tree, members, [&](const TreePage& page, std::span<const std::byte> bytes, Shade shade) {
      BbtEntry entry = DecodeBbtEntry(bytes, *evidence_.layout);
      if (page.found.grade == Grade::kHurt || entry.cb == 0 || entry.cb > evidence_.layout->maxBlockData) return;
      entry.ref.bid = Canonical(entry.ref.bid);
      if (const auto known = seeker.NumberOf(entry.ref.bid)) {
        const bool isRepeated = *known + 1 < whole_.size() && whole_.KeyOf(*known + 1) == entry.ref.bid;
        if (isRepeated) Prefer(entry, shade);
      } else if (unsigned_.contains(entry.ref.ib)) {
        CompareId(entry);
      } else if (IsFree(entry)) {
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

  /// Of several blocks of an id, the one that the best entry names.
  void Prefer(const BbtEntry& entry, Shade shade) {
    const auto [at, isNew] = preferred_.try_emplace(entry.ref.bid, entry.ref.ib, shade);
    if (!isNew && shade < at->second.second) at->second = {entry.ref.ib, shade};
  }

  void MendIds() {
    if (idOf_.empty()) return;
    BlockSorter sorter;
    std::vector<FoundBlock> piece;
    std::vector<FoundBlock> some;
    while (whole_.TakeFirst(some)) {
      for (FoundBlock& block : some) {
        const auto mended = idOf_.find(block.offset);
        if (mended != idOf_.end() && mended->second.cb == block.cb) block.bid = mended->second.ref.bid;
        piece.push_back(block);
      }
      if (piece.size() >= BlockSorter::kPiece) sorter.Take(piece);
    }
    sorter.Take(piece);
    whole_ = sorter.Merge();
  }

  void TakeHurt() {
    auto& hurt = finds_.hurt;
    std::erase_if(hurt, [&](const FoundBlock& block) {
      return !finds_.taken.IsFree(block.offset, BlockSizeOnDisk(block.cb, *evidence_.layout));
    });
    evidence_.failedBlocks = hurt.size();
    std::ranges::sort(hurt, {}, ByIdAndPlace);
  }

  /// Of each id the place that the best entry names.
  void TakeNamed() {
    std::ranges::stable_sort(named_, {}, [](const Named& named) { return std::tuple(named.block.bid, named.shade); });
    const auto second = std::ranges::unique(named_, {}, [](const Named& named) { return named.block.bid; });
    named_.erase(second.begin(), second.end());
  }

  /// Puts the list together. That of the whole blocks gives its memory back meanwhile.
  void Join(RunContext& run) {
    std::optional<FoundBlock> best;  ///< of those of one id
    const auto add = [&] {
      AddLostBelow(best->bid, run);
      PassOver(best->bid);
      Add(*best, run);
    };
    std::vector<FoundBlock> some;
    while (whole_.TakeFirst(some)) {
      for (const FoundBlock& block : some) {
        const bool isFirst = !best || best->bid != block.bid;
        if (isFirst && best) add();
        if (isFirst || IsPreferred(block)) best = block;
      }
    }
    if (best) add();
    AddLostBelow(kBehindAll, run);
  }

  bool IsPreferred(const FoundBlock& block) const {
    const auto preferred = preferred_.find(block.bid);
    return preferred != preferred_.end() && preferred->second.first == block.offset;
  }

  /// Ids of which no block is whole: what the tree names, or what is left of it there, else the first that is hurt.
  void AddLostBelow(Bid bid, RunContext& run) {
    const auto& hurts = finds_.hurt;
    for (;;) {
      const Bid ofNamed = namedAt_ < named_.size() ? named_[namedAt_].block.bid : kBehindAll;
      const Bid ofHurt = hurtAt_ < hurts.size() ? hurts[hurtAt_].bid : kBehindAll;
      const Bid next = std::min(ofNamed, ofHurt);
      if (next >= bid) return;
      FoundBlock block = ofNamed == next ? named_[namedAt_].block : hurts[hurtAt_];
      for (std::size_t i = hurtAt_; i < hurts.size() && hurts[i].bid == next; ++i) {
        if (hurts[i].offset == block.offset && hurts[i].cb == block.cb) block = hurts[i];
      }
      PassOver(next);
      Add(block, run);
    }
  }

  void PassOver(Bid bid) {
    while (namedAt_ < named_.size() && named_[namedAt_].block.bid <= bid) ++namedAt_;
    while (hurtAt_ < finds_.hurt.size() && finds_.hurt[hurtAt_].bid <= bid) ++hurtAt_;
  }

  // A block that only the tree names was not looked at yet, one with a wrong id not with the right one.
  void Add(FoundBlock block, RunContext& run) {
    if (block.grade == Grade::kNamed || idOf_.contains(block.offset)) {
      run.control.PausePoint();
      stored_.resize(block.cb);
      stored_.resize(source_.ReadAround(block.offset, stored_));
      const BlockTrailer trailer{.cb = block.cb, .bid = block.bid, .cbInflated = block.cb};
      block.kind = KindOf(stored_, trailer, *evidence_.layout, evidence_.encoding);
    } else {
      block.kind = UnpackKind(block.kind, evidence_.encoding);
    }
    block.isNamed = finds_.named.Contains(block.bid);
    evidence_.hasHurtBlocks = evidence_.hasHurtBlocks || !IsWhole(block);
    evidence_.blocks.Add(block);
  }

  const Source& source_;
  Finds& finds_;
  Evidence& evidence_;
  std::unordered_map<Bid, std::pair<std::uint64_t, Shade>> preferred_;  ///< place of ids that several blocks have
  std::unordered_map<std::uint64_t, Bid> unsigned_;                     ///< by place: ids that no signature proves
  std::unordered_map<std::uint64_t, BbtEntry> idOf_;                    ///< by place: of those whose id is wrong
  BlockList whole_;                                                     ///< may hold several of one id
  std::vector<Named> named_;                                            ///< and `hurt` of the finds: by id
  std::size_t namedAt_ = 0;
  std::size_t hurtAt_ = 0;
  std::vector<std::byte> stored_;
};

}  // namespace

void MapBlocks(const Source& source, Finds finds, const std::optional<ToldByHeader>& told, Evidence& evidence,
               RunContext& run) {
  BlockMap(source, finds, evidence).Run(told, run);
}

}  // namespace velmora::engine
