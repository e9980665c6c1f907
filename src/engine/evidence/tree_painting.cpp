#include <algorithm>
#include <functional>
#include <iterator>
#include <map>

#include "engine/evidence/found_tree.h"
#include "engine/evidence/page_evidence.h"

namespace velmora::engine {
namespace {

constexpr std::uint64_t kNoEnd = UINT64_MAX;

/// From the first key to before the last.
struct KeyRange {
  std::uint64_t begin = 0;
  std::uint64_t end = 0;
};

/// Keys that were taken by leaves or are in doubt. What is taken once stays so, whoever asks for it later.
class Canvas {
 public:
  enum class State : std::uint8_t { kFree, kTaken, kDoubtful };

  State At(std::uint64_t key) const {
    const auto next = pieces_.upper_bound(key);
    if (next == pieces_.begin()) return State::kFree;
    const auto& [begin, piece] = *std::prev(next);
    return key < piece.end ? piece.state : State::kFree;
  }

  /// What is still free of the range. Stretches that are not free any more are kept joined besides, so that a range is
  /// not walked over piece by piece as often as a store repeats it.
  void Take(KeyRange range, State state) {
    if (range.begin >= range.end) return;
    auto at = joined_.upper_bound(range.begin);
    if (at != joined_.begin() && std::prev(at)->second >= range.begin) --at;
    KeyRange whole = range;
    std::uint64_t free = range.begin;
    while (at != joined_.end() && at->first <= range.end) {
      if (at->first > free) pieces_[free] = {at->first, state};
      free = std::max(free, at->second);
      whole = {std::min(whole.begin, at->first), std::max(whole.end, at->second)};
      at = joined_.erase(at);
    }
    if (free < range.end) pieces_[free] = {range.end, state};
    joined_[whole.begin] = whole.end;
  }

 private:
  struct Piece {
    std::uint64_t end;
    State state;
  };
  std::map<std::uint64_t, Piece> pieces_;          ///< by their first key; none meets another
  std::map<std::uint64_t, std::uint64_t> joined_;  ///< first key and end of stretches that are not free
};

/// The ranges that pages were given by those above them.
class Ranges {
 public:
  explicit Ranges(const FoundTree& tree) : tree_(tree), namedBy_(tree.Pages().size()) {
    const auto pages = tree.Pages();
    for (std::size_t parent = 0; parent < pages.size(); ++parent) {  // the newest first, so it is the one that counts
      const TreePage& page = pages[parent];
      if (page.found.level == 0 || page.found.grade == Grade::kHurt) continue;
      for (std::size_t i = 0; i < page.count; ++i) {
        const auto child = tree.Child(page, i);
        if (child && !namedBy_[*child]) namedBy_[*child] = Name{parent, i};
        if (!child && page.found.level == 1) gone_.push_back({tree.ChildId(page, i), {parent, i}});
      }
    }
    std::ranges::stable_sort(gone_, std::greater(), &Gone::id);
    gone_.erase(std::ranges::unique(gone_, {}, &Gone::id).begin(), gone_.end());
    if (const auto root = tree.Root()) rootLevel_ = pages[*root].found.level;
  }

  /// Of a leaf: all of its keys, and those up to the next leaf.
  KeyRange Of(std::size_t leaf) const {
    const TreePage& page = tree_.Pages()[leaf];
    KeyRange range{page.first, After(page.last)};
    if (!namedBy_[leaf]) return range;
    const Name& name = *namedBy_[leaf];
    range.begin = std::min(range.begin, KeyIn(name));
    range.end = std::max(range.end, EndIn(name).value_or(range.end));
    return range;
  }

  std::size_t GoneLeaves() const { return gone_.size(); }
  std::uint64_t GoneId(std::size_t i) const { return gone_[i].id; }
  KeyRange OfGone(std::size_t i) const {
    const std::uint64_t key = KeyIn(gone_[i].name);
    return {key, EndIn(gone_[i].name).value_or(After(key))};
  }

 private:
  /// An entry of a page above.
  struct Name {
    std::size_t parent;
    std::size_t entry;
  };
  struct Gone {
    std::uint64_t id;
    Name name;
  };

  static std::uint64_t After(std::uint64_t key) { return key == kNoEnd ? kNoEnd : key + 1; }
  std::uint64_t KeyIn(const Name& name) const { return tree_.Key(tree_.Pages()[name.parent], name.entry); }

  /// Where the range of the named page ends; nothing where no page tells.
  std::optional<std::uint64_t> EndIn(const Name& name) const {
    const TreePage& parent = tree_.Pages()[name.parent];
    if (name.entry + 1 < parent.count) return tree_.Key(parent, name.entry + 1);
    if (parent.found.level == rootLevel_) return kNoEnd;
    return namedBy_[name.parent] ? EndIn(*namedBy_[name.parent]) : std::nullopt;
  }

  const FoundTree& tree_;
  std::vector<std::optional<Name>> namedBy_;  ///< by the newest page that names it
  std::vector<Gone> gone_;                    ///< leaves that are named and not there, by descending id
  std::optional<std::uint8_t> rootLevel_;
};

void VisitAll(const FoundTree& tree, const TreePage& page, std::vector<std::byte>& buffer, const VisitEntry& visit,
              const std::function<Shade(std::uint64_t key)>& shade) {
  const PageEntries entries = tree.EntriesOf(page, buffer);
  for (std::size_t i = 0; i < entries.Count(); ++i) visit(page, entries[i], shade(tree.KeyOf(entries[i])));
}

}  // namespace

void Paint(const FoundTree& tree, const std::vector<bool>& members, const VisitEntry& visit) {
  const auto pages = tree.Pages();
  std::vector<std::byte> buffer;
  if (!members.empty()) {
    for (std::size_t i = 0; i < pages.size(); ++i) {
      const Shade shade = members[i] ? Shade::kLive : Shade::kOlder;
      if (pages[i].found.level == 0) VisitAll(tree, pages[i], buffer, visit, [shade](std::uint64_t) { return shade; });
    }
    return;
  }
  const Ranges ranges(tree);
  Canvas canvas;
  const auto shadeOf = [&canvas](std::uint64_t key) {
    const Canvas::State state = canvas.At(key);
    return state == Canvas::State::kTaken      ? Shade::kOlder
           : state == Canvas::State::kDoubtful ? Shade::kDoubtful
                                               : Shade::kLive;
  };
  std::size_t gone = 0;
  const auto takeGoneDownTo = [&](std::uint64_t id) {
    for (; gone < ranges.GoneLeaves() && ranges.GoneId(gone) > id; ++gone) {
      canvas.Take(ranges.OfGone(gone), Canvas::State::kDoubtful);
    }
  };
  for (std::size_t i = 0; i < pages.size(); ++i) {
    if (pages[i].found.level != 0) continue;
    takeGoneDownTo(pages[i].found.id);
    VisitAll(tree, pages[i], buffer, visit, shadeOf);
    // A hurt leaf may have lost some of its entries.
    const bool isHurt = pages[i].found.grade == Grade::kHurt;
    canvas.Take(ranges.Of(i), isHurt ? Canvas::State::kDoubtful : Canvas::State::kTaken);
  }
}

}  // namespace velmora::engine
