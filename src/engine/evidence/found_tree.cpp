#include "engine/evidence/found_tree.h"

#include <algorithm>
#include <tuple>

#include "engine/evidence/page_evidence.h"
#include "store/format/little_endian.h"

namespace velmora::engine {

FoundTree::FoundTree(const Source& source, const Evidence& evidence, PageType type, RunContext& run)
    : layout_(*evidence.layout), type_(type) {
  std::vector<std::byte> bytes(layout_.pageSize);
  // A large store has hundreds of thousands of pages: to grow by doubling would take twice their memory.
  const auto count = static_cast<std::size_t>(std::ranges::count(evidence.pages, type, &FoundPage::type));
  pages_.reserve(count);
  content_.reserve(count * layout_.pageSize);
  for (const FoundPage& found : evidence.pages) {
    if (found.type != type) continue;
    run.control.PausePoint();
    if (source.Read(found.offset, bytes).value_or(0) != bytes.size()) continue;
    if (found.isMended && !MendPage(bytes, layout_)) continue;
    const std::optional<BtPageHead> head = SoundHead(bytes, type, layout_);
    if (!head || head->cEnt == 0 || head->cLevel != found.level) continue;  // it was written over meanwhile
    TreePage page{found, UINT64_MAX, 0, content_.size(), head->cEnt, head->cbEnt};
    content_.insert(content_.end(), bytes.begin(), bytes.begin() + std::size_t{page.count} * page.pitch);
    if (found.grade == Grade::kHurt) DropOddEntries(page, bytes, *head);
    for (std::size_t i = 0; i < page.count; ++i) {
      page.first = std::min(page.first, Key(page, i));
      page.last = std::max(page.last, Key(page, i));
    }
    pages_.push_back(page);
  }
  std::ranges::sort(pages_, std::greater(),
                    [](const TreePage& page) { return std::tuple(page.found.id, page.found.offset); });
}

// A key out of order has wrong bits, so its entry is another node's or block's.
void FoundTree::DropOddEntries(TreePage& page, PageView bytes, const BtPageHead& head) {
  const auto odd = OddEntries(bytes, type_, head, layout_);
  if (!odd) return;
  for (auto at = odd->rbegin(); at != odd->rend(); ++at, --page.count) {
    const auto entry = content_.begin() + static_cast<std::ptrdiff_t>(page.begin + *at * page.pitch);
    content_.erase(entry, entry + page.pitch);
  }
}

std::uint64_t FoundTree::Key(const TreePage& page, std::size_t i) const {
  return KeyOf(Entry(page, i), type_, layout_);
}

std::optional<std::size_t> FoundTree::Root() const {
  if (pages_.empty()) return std::nullopt;
  const auto newest = std::ranges::max_element(pages_, {}, [](const TreePage& page) { return page.found.level; });
  const std::uint64_t second = newest->count > 1 ? Key(*newest, 1) : UINT64_MAX;
  const bool isRoot = std::ranges::all_of(pages_, [&](const TreePage& page) {
    return page.found.level != newest->found.level || (page.first < second && page.last >= newest->first);
  });
  return isRoot ? std::optional<std::size_t>(newest - pages_.begin()) : std::nullopt;
}

std::optional<std::size_t> FoundTree::PageAt(const Bref& ref) const {
  const auto key = [](const TreePage& page) { return std::tuple(page.found.id, page.found.offset); };
  const auto at = std::ranges::lower_bound(pages_, std::tuple(Value(ref.bid), ref.ib), std::greater(), key);
  if (at != pages_.end() && key(*at) == std::tuple(Value(ref.bid), ref.ib)) return at - pages_.begin();
  // A page that was moved stands elsewhere; ids of pages are given once.
  const auto any = std::ranges::lower_bound(pages_, Value(ref.bid), std::greater(),
                                            [](const TreePage& page) { return page.found.id; });
  if (any == pages_.end() || any->found.id != Value(ref.bid) || any->found.grade != Grade::kMoved) return std::nullopt;
  return any - pages_.begin();
}

std::optional<std::size_t> FoundTree::Child(const TreePage& page, std::size_t i) const {
  const std::optional<std::size_t> child = PageAt(DecodeBtEntry(Entry(page, i), layout_).ref);
  if (!child || pages_[*child].found.level + 1 != page.found.level) return std::nullopt;
  return child;
}

std::uint64_t FoundTree::ChildId(const TreePage& page, std::size_t i) const {
  return Value(DecodeBtEntry(Entry(page, i), layout_).ref.bid);
}

}  // namespace velmora::engine
