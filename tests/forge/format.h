// The three formats of a store on disk, as figures.
#pragma once

#include <cstdint>

namespace velmora::forge {

enum class Format { kAnsi, kUnicode, kUnicode4k };
enum class Encoding : std::uint8_t { kNone = 0, kPermute = 1, kCyclic = 2 };

/// What the header says the file is: a personal store, an offline store, an address book.
enum class Client : std::uint16_t { kPersonal = 0x4D53, kOffline = 0x4F53, kAddressBook = 0x4241 };

/// Sizes and offsets in bytes.
struct FormatTraits {
  std::uint16_t version;         ///< wVer of the header
  std::uint32_t idWidth;         ///< width of a node id, block id and file offset in tables and lists
  std::uint32_t pageSize;        ///< and the alignment of a page
  std::uint32_t entryAreaSize;   ///< of a tree page; the counters stand behind it
  std::uint32_t offPageTrailer;  ///< of the page type, where the trailer begins
  std::uint32_t nodeEntrySize;
  std::uint32_t blockEntrySize;
  std::uint32_t branchEntrySize;  ///< entry of an upper tree page
  std::uint32_t slotSize;         ///< unit and alignment of a block
  std::uint32_t maxBlockData;     ///< data bytes of a full block
  std::uint32_t blockTrailerSize;
  std::uint64_t listPage;   ///< offset of the list of allocation maps
  std::uint64_t firstMap;   ///< offset of the first allocation map
  std::uint64_t mapSpan;    ///< bytes that one allocation map covers, itself included
  std::uint64_t firstData;  ///< where the first block or page may stand
  unsigned heapBlockShift;  ///< of the block index in a heap id
  bool wide;                ///< texts are UTF-16, page and block ids 64 bits
};

const FormatTraits& TraitsOf(Format format);

}  // namespace velmora::forge
