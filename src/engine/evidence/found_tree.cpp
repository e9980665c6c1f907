#include "engine/evidence/found_tree.h"

#include <algorithm>
#include <tuple>

#include "engine/evidence/page_evidence.h"
#include "store/format/little_endian.h"

namespace velmora::engine {

FoundTree::FoundTree(const Source& source, const Evidence& evidence, PageType type, RunContext& run)
    : bytes_(source.Bytes()), layout_(*evidence.layout), type_(type) {
  std::vector<std::byte> buffer;
  // A large store has hundreds of thousands of pages: to grow by doubling would take twice their memory.
  pages_.reserve(static_cast<std::size_t>(std::ranges::count(evidence.pages, type, &FoundPage::type)));
  for (const FoundPage& found : evidence.pages) {
    if (found.type != type) continue;
    run.control.PausePoint();
    const PageEntries entries = Read(found, buffer);
    if (entries.Count() == 0) continue;
    TreePage page{found,
                  UINT64_MAX,
                  0,
                  content_.size(),
                  static_cast<std::uint16_t>(entries.Count()),
                  static_cast<std::uint8_t>(entries.pitch)};
    for (std::size_t i = 0; i < entries.Count(); ++i) {
      page.first = std::min(page.first, KeyOf(entries[i]));
      page.last = std::max(page.last, KeyOf(entries[i]));
    }
    if (found.level != 0) content_.insert(content_.end(), entries.bytes.begin(), entries.bytes.end());
    pages_.push_back(page);
  }
  std::ranges::sort(pages_, std::greater(),
                    [](const TreePage& page) { return std::tuple(page.found.id, page.found.offset); });
}

/// None of a page without entries, and of one that was written over meanwhile.
PageEntries FoundTree::Read(const FoundPage& found, std::vector<std::byte>& buffer) const {
  buffer.resize(layout_.pageSize);
  if (bytes_.ReadAt(found.offset, buffer).value_or(0) != buffer.size()) return {};
  if (found.isMended && !MendPage(buffer, layout_)) return {};
  const std::optional<BtPageHead> head = SoundHead(buffer, type_, layout_);
  if (!head || head->cLevel != found.level) return {};
  std::size_t count = head->cEnt;
  if (found.grade == Grade::kHurt) {
    // A key out of order has wrong bits, so its entry is another node's or block's.
    const auto odd = OddEntries(buffer, type_, *head, layout_);
    for (std::size_t i = odd ? odd->size() : 0; i-- > 0; --count) {
      const auto entry = buffer.begin() + static_cast<std::ptrdiff_t>((*odd)[i] * head->cbEnt);
      std::move(entry + head->cbEnt, buffer.begin() + static_cast<std::ptrdiff_t>(count * head->cbEnt), entry);
    }
  }
  return {std::span(buffer).first(count * head->cbEnt), head->cbEnt};
}

PageEntries FoundTree::EntriesOf(const TreePage& page, std::vector<std::byte>& buffer) const {
  return page.found.level == 0 ? Read(page.found, buffer) : Held(page);
}

std::uint64_t FoundTree::KeyOf(std::span<const std::byte> entry) const { return engine::KeyOf(entry, type_, layout_); }

std::optional<std::size_t> FoundTree::Root() const {
  if (pages_.empty()) return std::nullopt;
  const auto newest = std::ranges::max_element(pages_, {}, [](const TreePage& page) { return page.found.level; });
  std::vector<std::byte> buffer;
  const PageEntries entries = EntriesOf(*newest, buffer);
  const std::uint64_t second = entries.Count() > 1 ? KeyOf(entries[1]) : UINT64_MAX;
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
  const std::optional<std::size_t> child = PageAt(DecodeBtEntry(Held(page)[i], layout_).ref);
  if (!child || pages_[*child].found.level + 1 != page.found.level) return std::nullopt;
  return child;
}

std::uint64_t FoundTree::ChildId(const TreePage& page, std::size_t i) const {
  return Value(DecodeBtEntry(Held(page)[i], layout_).ref.bid);
}

}  // namespace velmora::engine
