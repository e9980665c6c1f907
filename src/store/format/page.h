// Pages stand at multiples of their size and end in a trailer: the type twice, the signature, and checksum (of all
// bytes ahead of the trailer) and id. A page of the block or node tree (BTPAGE) holds entries from 0, then their
// count, the most there may be, the size of one and the level of the page. The places are in generation.h.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

#include "store/format/checksum.h"
#include "store/format/generation.h"
#include "store/format/ids.h"

namespace velmora {

/// Of the stores that are written.
inline constexpr std::size_t kPageSize = generations::kUnicode.pageSize;
inline constexpr std::size_t kPageContent = generations::kUnicode.offPageType;

using Page = std::array<std::byte, kPageSize>;
using PageView = std::span<const std::byte>;  ///< of as many bytes as a page of its generation has

enum class PageType : std::uint8_t {
  kBbt = 0x80,
  kNbt = 0x81,
  kFMap = 0x82,
  kPMap = 0x83,
  kAMap = 0x84,
  kFPMap = 0x85,
  kDList = 0x86,
};

/// The type as it stands in a trailer: twice, which reads as one word.
constexpr std::uint16_t TypeWord(PageType type) { return static_cast<std::uint16_t>(0x0101 * static_cast<int>(type)); }

/// Whether a page is one of the maps that stand at fixed places: their wSig is 0 and their bid their offset.
constexpr bool IsMap(PageType type) { return type >= PageType::kFMap && type <= PageType::kFPMap; }

/// Where a page or block stands, and its id.
struct Bref {
  Bid bid{};
  std::uint64_t ib = 0;
};

/// Writes the trailer of a page that will stand at `ref`.
void SealPage(Page& page, PageType type, const Bref& ref);

/// Whether the trailer proves that this page is of that type and stands at `ref`.
bool ProvesItself(PageView page, PageType type, const Bref& ref, const Generation& generation = generations::kUnicode);

// ---- pages of the two trees

struct BtPageHead {
  std::uint16_t cEnt = 0;
  std::uint16_t cEntMax = 0;
  std::uint8_t cbEnt = 0;
  std::uint8_t cLevel = 0;  ///< 0 for a leaf
};

void Encode(const BtPageHead& head, Page& page);
BtPageHead DecodeBtPageHead(PageView page, const Generation& generation = generations::kUnicode);

/// An entry above the leaves: the first key of a child page and where it stands.
struct BtEntry {
  static constexpr std::size_t kSize = generations::kUnicode.blockEntrySize;
  std::uint64_t btkey = 0;
  Bref ref;
};

/// A leaf entry of the block tree.
struct BbtEntry {
  static constexpr std::size_t kSize = generations::kUnicode.blockEntrySize;
  Bref ref;
  std::uint16_t cb = 0;    ///< bytes of data as stored
  std::uint16_t cRef = 0;  ///< 1 + number of references to the block
};

/// A leaf entry of the node tree.
struct NbtEntry {
  static constexpr std::size_t kSize = generations::kUnicode.nodeEntrySize;
  Nid nid{};  ///< the high half of the field is rubbish in stores of other makers
  Bid bidData{};
  Bid bidSub{};
  Nid nidParent{};
};

void Encode(const BtEntry& entry, std::span<std::byte> out);
void Encode(const BbtEntry& entry, std::span<std::byte> out);
void Encode(const NbtEntry& entry, std::span<std::byte> out);
BtEntry DecodeBtEntry(std::span<const std::byte> in, const Generation& generation = generations::kUnicode);
BbtEntry DecodeBbtEntry(std::span<const std::byte> in, const Generation& generation = generations::kUnicode);
NbtEntry DecodeNbtEntry(std::span<const std::byte> in, const Generation& generation = generations::kUnicode);

/// Most entries of that size in a page.
constexpr std::uint16_t MaxEntries(std::size_t cbEnt, const Generation& generation = generations::kUnicode) {
  return static_cast<std::uint16_t>(generation.offEntryCount / cbEnt);
}

/// Bytes that the pages of a tree of so many entries take at most.
constexpr std::uint64_t TreeBytes(std::uint64_t entries, std::size_t cbEnt) {
  std::uint64_t pages = 0;
  for (std::uint64_t level = entries / MaxEntries(cbEnt) + 1;; level = level / MaxEntries(BtEntry::kSize) + 1) {
    pages += level;
    if (level == 1) return pages * kPageSize;
  }
}

static_assert(MaxEntries(BtEntry::kSize) == 20 && MaxEntries(BbtEntry::kSize) == 20);
static_assert(MaxEntries(NbtEntry::kSize) == 15);

}  // namespace velmora
