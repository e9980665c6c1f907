#include <algorithm>
#include <bit>

#include "engine/found_tree.h"

namespace velmora::engine {
namespace {

/// The pages of the tree below a root; empty if one is gone, hurt, or named twice.
std::vector<bool> WholeTree(const FoundTree& tree, std::size_t root) {
  std::vector<bool> members(tree.Pages().size());
  std::vector<std::size_t> pending{root};
  while (!pending.empty()) {
    const std::size_t at = pending.back();
    pending.pop_back();
    const TreePage& page = tree.Pages()[at];
    if (members[at] || page.found.grade == Grade::kHurt) return {};
    members[at] = true;
    for (std::size_t i = 0; page.found.level != 0 && i < page.count; ++i) {
      const auto child = tree.Child(page, i);
      if (!child) return {};
      pending.push_back(*child);
    }
  }
  return members;
}

/// The leaves of a tree by their keys, asked for the oldest among neighbours.
class Leaves {
 public:
  explicit Leaves(std::vector<const TreePage*> leaves) : leaves_(std::move(leaves)), oldest_(2 * leaves_.size()) {
    std::ranges::sort(leaves_, {}, &TreePage::first);
    for (std::size_t i = 0; i < leaves_.size(); ++i) oldest_[leaves_.size() + i] = leaves_[i]->found.id;
    for (std::size_t i = leaves_.size(); i-- > 1;) oldest_[i] = std::min(oldest_[2 * i], oldest_[2 * i + 1]);
  }

  bool AreApart() const {
    return std::ranges::adjacent_find(
               leaves_, [](const TreePage* a, const TreePage* b) { return a->last >= b->first; }) == leaves_.end();
  }

  std::uint64_t FirstKey() const { return leaves_.front()->first; }
  std::uint64_t LastKey() const { return leaves_.back()->last; }

  /// The lowest id of those that share keys with the range; nothing if none does.
  std::optional<std::uint64_t> OldestIn(std::uint64_t first, std::uint64_t last) const {
    std::size_t begin = std::ranges::lower_bound(leaves_, first, {}, &TreePage::last) - leaves_.begin();
    std::size_t end = std::ranges::upper_bound(leaves_, last, {}, &TreePage::first) - leaves_.begin();
    if (begin >= end) return std::nullopt;
    std::uint64_t oldest = UINT64_MAX;
    for (begin += leaves_.size(), end += leaves_.size(); begin < end; begin /= 2, end /= 2) {
      if (begin % 2 != 0) oldest = std::min(oldest, oldest_[begin++]);
      if (end % 2 != 0) oldest = std::min(oldest, oldest_[--end]);
    }
    return oldest;
  }

 private:
  std::vector<const TreePage*> leaves_;  ///< by ascending keys
  std::vector<std::uint64_t> oldest_;    ///< a binary tree of their ids over them
};

bool IsContradicted(const FoundTree& tree, const std::vector<bool>& members, const TreePage& root,
                    const Leaves& leaves) {
  for (std::size_t i = 0; i < members.size(); ++i) {
    const TreePage& page = tree.Pages()[i];
    if (members[i] || page.found.level != 0) continue;
    // Every store has the same first nodes; its first blocks may be freed.
    if (tree.Type() == PageType::kNbt && page.last < leaves.FirstKey()) return true;
    const auto oldest = leaves.OldestIn(page.first, page.last);
    if (oldest ? page.found.id > *oldest : page.found.id > root.found.id || root.found.level == 0) return true;
  }
  return false;
}

}  // namespace

std::vector<bool> MembersOfNewest(const FoundTree& tree, const std::optional<Bref>& told, std::uint64_t newestKey) {
  if (told) {
    const auto root = tree.PageAt(*told);
    return root ? WholeTree(tree, *root) : std::vector<bool>();
  }
  const auto pages = tree.Pages();
  const auto root = tree.Root();
  std::vector<bool> members = root ? WholeTree(tree, *root) : std::vector<bool>();
  if (members.empty()) return {};
  std::vector<const TreePage*> itsLeaves;
  for (std::size_t i = 0; i < pages.size(); ++i) {
    if (members[i] && pages[i].found.level == 0) itsLeaves.push_back(&pages[i]);
  }
  const Leaves leaves(std::move(itsLeaves));
  if (!leaves.AreApart() || leaves.LastKey() < newestKey || IsContradicted(tree, members, pages[*root], leaves))
    return {};
  return members;
}

}  // namespace velmora::engine
