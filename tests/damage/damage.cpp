#include "damage/damage.h"

#include <algorithm>
#include <array>
#include <random>
#include <vector>

namespace velmora::damage {
namespace {

using forge::Bytes;
using forge::Image;
using forge::PageType;
using forge::PlacedPage;

constexpr std::uint64_t kSector = 512;

/// A copy of a store that takes damage.
class Spoiled {
 public:
  explicit Spoiled(const Image& whole) : whole_(whole), bytes_(whole.bytes) {}

  Bytes Take() { return std::move(bytes_); }
  std::uint64_t FirstData() const { return Traits().firstData; }

  void Zero(std::uint64_t offset, std::uint64_t size) {
    const std::uint64_t end = std::min<std::uint64_t>(offset + size, bytes_.size());
    for (; offset < end; ++offset) bytes_[offset] = {};
  }
  void ZeroHeader() { Zero(0, Traits().idWidth == 8 && Traits().pageSize > kSector ? 0x1000 : 0x400); }
  void ZeroFront() { Zero(0, FirstData()); }

  void ZeroPages(const std::vector<PlacedPage>& pages) {
    for (const PlacedPage& page : pages) Zero(page.offset, Traits().pageSize);
  }
  void ZeroRoot(PageType type) {
    const std::vector<PlacedPage> tree = Tree(type);
    ZeroPages({*std::ranges::max_element(tree, {}, &PlacedPage::level)});
  }
  void ZeroTree(PageType type) { ZeroPages(Tree(type)); }

  /// So many of a hundred leaves, at least one.
  void ZeroLeaves(PageType type, std::size_t percent) {
    std::vector<PlacedPage> leaves = Tree(type);
    std::erase_if(leaves, [](const PlacedPage& page) { return page.level > 0; });
    ZeroPages(Some(leaves, leaves.size() * percent / 100));
  }

  /// So many of a thousand sectors with something in them, at least one.
  void ZeroSectors(std::size_t permille) {
    std::vector<std::uint64_t> used;
    for (std::uint64_t at = FirstData(); at + kSector <= bytes_.size(); at += kSector) {
      const auto sector = bytes_.begin() + static_cast<std::ptrdiff_t>(at);
      if (std::any_of(sector, sector + kSector, [](std::byte b) { return b != std::byte{}; })) used.push_back(at);
    }
    for (const std::uint64_t at : Some(used, used.size() * permille / 1000)) Zero(at, kSector);
  }

  /// One bit in each stretch of that length.
  void FlipBits(std::uint64_t stretch) {
    for (std::uint64_t begin = FirstData(); begin < bytes_.size(); begin += stretch) {
      const std::uint64_t at = std::min<std::uint64_t>(begin + random_() % stretch, bytes_.size() - 1);
      bytes_[at] ^= std::byte{1} << (random_() % 8);
    }
  }

  void CutAt(std::uint64_t percent) { bytes_.resize(PlaceAt(percent)); }
  void ZeroMiddle() { Zero(PlaceAt(50), PlaceAt(60) - PlaceAt(50)); }

  void BreakPageSignatures() {
    for (const PageType type : {PageType::kNodes, PageType::kBlocks}) {
      for (const PlacedPage& page : Tree(type)) bytes_[page.offset + Traits().offPageTrailer + 2] ^= std::byte{0x5A};
    }
  }

  /// Every CR LF becomes LF, as by a copy that took the store for a text.
  void CopyAsText() {
    Bytes copied;
    for (std::size_t i = 0; i < bytes_.size(); ++i) {
      const bool isEnd = bytes_[i] == std::byte{'\r'} && i + 1 < bytes_.size() && bytes_[i + 1] == std::byte{'\n'};
      if (!isEnd) copied.push_back(bytes_[i]);
    }
    bytes_ = std::move(copied);
  }

 private:
  const forge::FormatTraits& Traits() const { return forge::TraitsOf(whole_.format); }
  std::vector<PlacedPage> Tree(PageType type) const { return whole_.TreePages(type); }

  std::uint64_t PlaceAt(std::uint64_t percent) const {
    return (FirstData() + (whole_.bytes.size() - FirstData()) * percent / 100) / kSector * kSector;
  }

  template <class Any>
  std::vector<Any> Some(std::vector<Any> all, std::size_t count) {
    count = std::max<std::size_t>(count, 1);
    for (std::size_t i = 0; i < count; ++i) std::swap(all[i], all[i + random_() % (all.size() - i)]);
    all.resize(count);
    return all;
  }

  const Image& whole_;
  Bytes bytes_;
  std::minstd_rand random_{7};  // its numbers are the same everywhere
};

template <auto... kSteps>
Bytes Spoil(const Image& whole) {
  Spoiled spoiled(whole);
  (kSteps(spoiled), ...);
  return spoiled.Take();
}

constexpr std::array kCases = {
    Case{"whole", Spoil<>},
    Case{"magic", Spoil<[](Spoiled& s) { s.Zero(0, 4); }>},
    Case{"header", Spoil<[](Spoiled& s) { s.ZeroHeader(); }>},
    Case{"header_and_maps", Spoil<[](Spoiled& s) { s.ZeroFront(); }>},
    Case{"node_root", Spoil<[](Spoiled& s) { s.ZeroRoot(PageType::kNodes); }>},
    Case{"block_root", Spoil<[](Spoiled& s) { s.ZeroRoot(PageType::kBlocks); }>},
    Case{"both_roots_and_header",
         Spoil<[](Spoiled& s) { s.ZeroHeader(); }, [](Spoiled& s) { s.ZeroRoot(PageType::kNodes); },
               [](Spoiled& s) { s.ZeroRoot(PageType::kBlocks); }>},
    Case{"node_leaves_5", Spoil<[](Spoiled& s) { s.ZeroLeaves(PageType::kNodes, 5); }>},
    Case{"node_leaves_30", Spoil<[](Spoiled& s) { s.ZeroLeaves(PageType::kNodes, 30); }>},
    Case{"block_leaves_5", Spoil<[](Spoiled& s) { s.ZeroLeaves(PageType::kBlocks, 5); }>},
    Case{"block_tree", Spoil<[](Spoiled& s) { s.ZeroTree(PageType::kBlocks); }>},
    Case{"node_tree", Spoil<[](Spoiled& s) { s.ZeroTree(PageType::kNodes); }>},
    Case{"all_trees",
         Spoil<[](Spoiled& s) { s.ZeroTree(PageType::kNodes); }, [](Spoiled& s) { s.ZeroTree(PageType::kBlocks); }>},
    Case{"sectors_0.1", Spoil<[](Spoiled& s) { s.ZeroSectors(1); }>},
    Case{"sectors_1", Spoil<[](Spoiled& s) { s.ZeroSectors(10); }>},
    Case{"sectors_5", Spoil<[](Spoiled& s) { s.ZeroSectors(50); }>},
    Case{"flips_64k", Spoil<[](Spoiled& s) { s.FlipBits(64 << 10); }>},
    Case{"flips_8k", Spoil<[](Spoiled& s) { s.FlipBits(8 << 10); }>},
    Case{"cut_50", Spoil<[](Spoiled& s) { s.CutAt(50); }>},
    Case{"cut_90", Spoil<[](Spoiled& s) { s.CutAt(90); }>},
    Case{"hole_10", Spoil<[](Spoiled& s) { s.ZeroMiddle(); }>},
    Case{"page_signatures", Spoil<[](Spoiled& s) { s.BreakPageSignatures(); }>},
    Case{"text_mode", Spoil<[](Spoiled& s) { s.CopyAsText(); }>},
};

}  // namespace

std::span<const Case> Cases() { return kCases; }

}  // namespace velmora::damage
