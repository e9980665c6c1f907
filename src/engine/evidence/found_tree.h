// The pages of one tree that were found, of whatever age, as a tree: what names what, and what is gone.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <vector>

#include "engine/evidence/evidence.h"
#include "engine/near_bytes.h"

namespace velmora::engine {

/// A page with at least one entry.
struct TreePage {
  FoundPage found;
  std::uint64_t first = 0;  ///< its lowest key
  std::uint64_t last = 0;   ///< its highest key
  std::size_t begin = 0;    ///< of its entries among those that are held, unless it is a leaf
  std::uint16_t count = 0;
  std::uint8_t pitch = 0;
};

/// The entries of a page, one after another.
struct PageEntries {
  std::span<const std::byte> bytes;
  std::size_t pitch = 1;

  std::size_t Count() const { return bytes.size() / pitch; }
  std::span<const std::byte> operator[](std::size_t i) const { return bytes.subspan(i * pitch, pitch); }
};

/// Holds the entries of the pages above the leaves. Those of the leaves, which are nearly all of a tree, are read again
/// by whoever asks for them: they would take more memory than all that is known of the blocks they name.
class FoundTree {
 public:
  /// `evidence` must outlive it, and the source stay open.
  FoundTree(const Source& source, const Evidence& evidence, PageType type, RunContext& run);

  PageType Type() const { return type_; }

  /// By descending id: the newest first.
  std::span<const TreePage> Pages() const { return pages_; }

  /// Those of a leaf are read into `buffer`, which the result views; none where it cannot be read any more.
  PageEntries EntriesOf(const TreePage& page, std::vector<std::byte>& buffer) const;

  std::uint64_t KeyOf(std::span<const std::byte> entry) const;

  /// The key of an entry of `page`, which is no leaf.
  std::uint64_t Key(const TreePage& page, std::size_t i) const { return KeyOf(Held(page)[i]); }

  /// The newest of the highest pages, if others on its level look like earlier roots: each shares keys with it. If they
  /// stand beside it, they are parts of one tree whose root is gone.
  std::optional<std::size_t> Root() const;

  /// The page of that id that stands at the place, or was moved from it; nothing if it is gone.
  std::optional<std::size_t> PageAt(const Bref& ref) const;

  /// The page that an entry of `page`, which is no leaf, names; nothing if it is gone.
  std::optional<std::size_t> Child(const TreePage& page, std::size_t i) const;

  /// The id that it has, gone or not.
  std::uint64_t ChildId(const TreePage& page, std::size_t i) const;

 private:
  PageEntries Read(const FoundPage& found, std::vector<std::byte>& buffer) const;
  PageEntries Held(const TreePage& page) const {
    return {std::span(content_).subspan(page.begin, std::size_t{page.count} * page.pitch), page.pitch};
  }

  NearBytes bytes_;  ///< pages of one age mostly stand near one another
  const Generation& layout_;
  PageType type_;
  std::vector<TreePage> pages_;
  std::vector<std::byte> content_;  ///< entries of the pages above the leaves
};

/// Which pages form the tree that the store has now, if that is certain; empty if not.
///
/// With a header it is the tree whose root that names, or none: what is newer was never committed. Without one it is
/// the tree of the newest of the highest pages, if all of it is there, no leaf outside of it is newer than one of its
/// leaves that it shares keys with, and no key above its last one is in use (`newestKey`, 0 where that tells nothing).
std::vector<bool> MembersOfNewest(const FoundTree& tree, const std::optional<Bref>& told, std::uint64_t newestKey);

/// By what right an entry of a leaf is taken.
enum class Shade : std::uint8_t {
  kLive,
  kDoubtful,  ///< a leaf that is gone may have had a newer one, or none
  kOlder,
};

/// Calls `visit` for each entry of each leaf, newest page first. With the pages of the newest tree known, theirs are
/// the live entries and all others older. Otherwise each leaf rules over the range of keys that it was given by the
/// newest page above it, until a newer one takes it; and so does a leaf that is gone and still named, whose range is in
/// doubt.
using VisitEntry = std::function<void(const TreePage& page, std::span<const std::byte> entry, Shade shade)>;
void Paint(const FoundTree& tree, const std::vector<bool>& members, const VisitEntry& visit);

}  // namespace velmora::engine
