// The three generations of the format as figures: what differs between them is here and nowhere else. A writer
// forms Unicode stores, so its constants are those of `generations::kUnicode`.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "store/format/little_endian.h"

namespace velmora {

enum FormatId : std::uint16_t { FORMAT_ANSI = 1, FORMAT_UNICODE = 2, FORMAT_UNICODE_4K = 3 };

/// Offsets and sizes in bytes. Those of a page count from its start, those of a block's trailer from the trailer's.
struct Generation {
  FormatId formatId = FORMAT_ANSI;
  bool wideFormat = false;    ///< ids and offsets have 64 bits, texts are UTF-16
  std::uint16_t idWidth = 0;  ///< of an id or an offset in a page, in a list block and in the header: 4 or 8

  // Pages of the two trees; the level stands behind the size of an entry.
  std::uint32_t pageSize = 0;       ///< and the multiple at which pages stand
  std::uint16_t offEntryCount = 0;  ///< where the entries end
  std::uint16_t offEntryMax = 0;
  std::uint16_t offEntrySize = 0;
  std::uint8_t nodeEntrySize = 0;
  std::uint8_t blockEntrySize = 0;  ///< and that of the upper levels of both trees

  // Trailer of a page: the type twice, which reads as one word (0x8080 block tree, 0x8181 node tree), the signature,
  // and id and checksum in an order of their own. The checksum is of all bytes ahead of the trailer.
  std::uint16_t offPageType = 0;
  std::uint16_t offPageSig = 0;
  std::uint32_t offPageId = 0;
  std::uint16_t offPageCrc = 0;

  // Blocks. The trailer ends the last unit of the block, and begins with size and signature.
  std::uint32_t slotSize = 0;          ///< unit of file space
  std::uint32_t maxBlockData = 0;      ///< most bytes of data, packed or not
  std::uint32_t blockTrailerSize = 0;  ///< the rest of a block of the largest size
  std::uint8_t offBlockId = 0;
  std::uint8_t offBlockCrc = 0;
  std::uint8_t offInflatedSize = 0;  ///< of the size that a packed block inflates to; 0 where none is packed
  std::uint8_t subnodeHeadSize = 0;  ///< of the blocks that list sub-nodes; those that list blocks have 8

  std::uint8_t hidItemBits = 0;    ///< of the id of a heap item, above its 5 bits of type; the rest is the block
  std::uint8_t rowNumberSize = 0;  ///< of a row's number in the row index of a table

  /// Of a block that lists sub-nodes: id, data and sub-nodes.
  constexpr std::uint32_t SubnodeEntrySize() const { return 3u * idWidth; }

  /// An id or offset at that place.
  std::uint64_t LoadWord(std::span<const std::byte> bytes, std::size_t at) const {
    return idWidth == 4 ? Load<std::uint32_t>(bytes, at) : Load<std::uint64_t>(bytes, at);
  }

  friend bool operator==(const Generation&, const Generation&) = default;
};

namespace generations {

inline constexpr Generation kAnsi = {.formatId = FORMAT_ANSI,
                                     .wideFormat = false,
                                     .idWidth = 4,
                                     .pageSize = 512,
                                     .offEntryCount = 496,
                                     .offEntryMax = 497,
                                     .offEntrySize = 498,
                                     .nodeEntrySize = 16,
                                     .blockEntrySize = 12,
                                     .offPageType = 500,
                                     .offPageSig = 502,
                                     .offPageId = 504,
                                     .offPageCrc = 508,
                                     .slotSize = 64,
                                     .maxBlockData = 8180,
                                     .blockTrailerSize = 12,
                                     .offBlockId = 4,
                                     .offBlockCrc = 8,
                                     .offInflatedSize = 0,
                                     .subnodeHeadSize = 4,
                                     .hidItemBits = 11,
                                     .rowNumberSize = 2};

inline constexpr Generation kUnicode = {.formatId = FORMAT_UNICODE,
                                        .wideFormat = true,
                                        .idWidth = 8,
                                        .pageSize = 512,
                                        .offEntryCount = 488,
                                        .offEntryMax = 489,
                                        .offEntrySize = 490,
                                        .nodeEntrySize = 32,
                                        .blockEntrySize = 24,
                                        .offPageType = 496,
                                        .offPageSig = 498,
                                        .offPageId = 504,
                                        .offPageCrc = 500,
                                        .slotSize = 64,
                                        .maxBlockData = 8176,
                                        .blockTrailerSize = 16,
                                        .offBlockId = 8,
                                        .offBlockCrc = 4,
                                        .offInflatedSize = 0,
                                        .subnodeHeadSize = 8,
                                        .hidItemBits = 11,
                                        .rowNumberSize = 4};

inline constexpr Generation kUnicode4k = {.formatId = FORMAT_UNICODE_4K,
                                          .wideFormat = true,
                                          .idWidth = 8,
                                          .pageSize = 4096,
                                          .offEntryCount = 4056,
                                          .offEntryMax = 4058,
                                          .offEntrySize = 4060,
                                          .nodeEntrySize = 32,
                                          .blockEntrySize = 24,
                                          .offPageType = 4072,
                                          .offPageSig = 4074,
                                          .offPageId = 4080,
                                          .offPageCrc = 4076,
                                          .slotSize = 512,
                                          .maxBlockData = 65512,
                                          .blockTrailerSize = 24,
                                          .offBlockId = 8,
                                          .offBlockCrc = 4,
                                          .offInflatedSize = 18,
                                          .subnodeHeadSize = 8,
                                          .hidItemBits = 14,
                                          .rowNumberSize = 4};

static_assert(kAnsi.maxBlockData + kAnsi.blockTrailerSize == kUnicode.maxBlockData + kUnicode.blockTrailerSize);
static_assert((kUnicode4k.maxBlockData + kUnicode4k.blockTrailerSize) % kUnicode4k.slotSize == 0);

}  // namespace generations

/// The generation of that id; anything but 2 or 3 gives ANSI.
constexpr const Generation& LayoutOf(std::uint16_t formatId) {
  if (formatId == FORMAT_UNICODE) return generations::kUnicode;
  return formatId == FORMAT_UNICODE_4K ? generations::kUnicode4k : generations::kAnsi;
}

/// The generation that the header's version stands for, or null.
constexpr const Generation* GenerationOfVersion(std::uint16_t wVer) {
  switch (wVer) {
    case 14:
    case 15:
      return &generations::kAnsi;
    case 21:
    case 23:
      return &generations::kUnicode;
    case 36:
    case 37:  // the same with a protection; its blocks tell by their encoding whether they can be read
      return &generations::kUnicode4k;
    default:
      return nullptr;
  }
}

}  // namespace velmora
