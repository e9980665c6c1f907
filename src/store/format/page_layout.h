// Where things stand in a page, by page format (published structures of the personal store format:
// page trailer, B-tree page, node and block entries).
#pragma once

#include <cstdint>

namespace velmora {

enum FormatId : std::uint16_t { FORMAT_ANSI = 1, FORMAT_UNICODE = 2, FORMAT_UNICODE_4K = 3 };

/// Offsets are bytes from the start of a page, sizes are bytes.
struct PageLayout {
  std::uint16_t offEntryCount = 0;
  std::uint16_t entryAreaEnd = 0;  ///< end of the area that node entries may occupy
  std::uint16_t offEntryMax = 0;
  std::uint16_t offEntrySize = 0;
  std::uint16_t offPageType = 0;  ///< twice the same byte, read as one word: 0x8080 block tree, 0x8181 node tree
  std::uint16_t offPageSig = 0;
  std::uint32_t offPageId = 0;
  std::uint8_t idPitchCode = 0;  ///< half the node field pitch; a quarter of it in the 4K format
  std::uint8_t blockEntrySize = 0;
  std::uint8_t nodeEntrySize = 0;
  std::uint16_t idWidth = 0;  ///< width of id and offset in an entry
  std::uint32_t pageSize = 0;
  bool wideFormat = false;  ///< text is UTF-16, and the wide layout of block trailers applies
  FormatId formatId = FORMAT_ANSI;

  /// Width of a field of a node entry, of a sub-node entry and of a block id: 4 or 8.
  std::uint32_t Pitch() const { return formatId == FORMAT_UNICODE_4K ? idPitchCode / 4u : idPitchCode / 2u; }

  friend bool operator==(const PageLayout&, const PageLayout&) = default;
};

/// The layout of a format; anything but 2 or 3 gives the ANSI values.
const PageLayout& LayoutOf(std::uint16_t formatId);

}  // namespace velmora
