// A forged store as bytes, with the places of all that stands in it, and the ways to damage it.
#pragma once

#include <cstdint>
#include <filesystem>
#include <span>
#include <vector>

#include "forge/bytes.h"
#include "forge/format.h"
#include "forge/pages.h"

namespace velmora::forge {

struct PlacedBlock {
  std::uint64_t bid = 0;
  std::uint64_t offset = 0;
  std::uint64_t placeSize = 0;     ///< with padding and trailer
  std::uint16_t size = 0;          ///< data bytes as stored
  std::uint16_t inflatedSize = 0;  ///< equal to `size` where the block is not compressed
  std::uint16_t refs = 1;          ///< reference count of the block tree: one more than the places that name it
  bool listed = true;              ///< in the block tree
};

struct PlacedPage {
  PageType type = PageType::kNodes;
  std::uint8_t level = 0;
  std::uint64_t offset = 0;
  std::uint64_t pageId = 0;
  bool stray = false;  ///< put there by the caller, not part of a tree
};

struct Image {
  Format format = Format::kUnicode;
  Bytes bytes;  ///< empty if the store went to a file
  std::vector<PlacedBlock> blocks;
  std::vector<PlacedPage> pages;
  std::vector<NodeEntry> nodes;

  /// Throws std::out_of_range for an id that was not placed; bit 0 of the id does not count.
  const PlacedBlock& Block(std::uint64_t bid) const;

  /// The node entry of that id, the last one added; throws std::out_of_range if there is none.
  const NodeEntry& Node(std::uint64_t nid) const;

  /// The pages of one tree, leaves and upper levels, in file order.
  std::vector<PlacedPage> TreePages(PageType type) const;

  /// Writes the bytes to a file, replacing it. Throws std::runtime_error when that fails.
  void Save(const std::filesystem::path& path) const;
};

/// Writes over the bytes at `offset`; the image grows if need be.
void Patch(Image& image, std::uint64_t offset, std::span<const std::byte> bytes);

/// Fills a range with one value.
void Fill(Image& image, std::uint64_t offset, std::uint64_t size, std::byte value = std::byte{0});

/// Zeros everything ahead of the first data: header, lists and first maps.
void WipeHeader(Image& image);

/// Zeros the pages of one tree.
void WipePages(Image& image, PageType type);

/// Leaves nothing but the blocks with their trailers: no header, no map, no tree page.
void WipeTrees(Image& image);

/// Flips bits of the signature of the page or block trailer, so that it no longer proves itself.
void BreakSignature(Image& image, const PlacedPage& page);
void BreakSignature(Image& image, const PlacedBlock& block);

/// Zeros the whole trailer of the block.
void WipeTrailer(Image& image, const PlacedBlock& block);

/// Flips the bits of one data byte, so that the checksum alone is wrong.
void BreakData(Image& image, const PlacedBlock& block, std::size_t at = 0);

/// Cuts the file off.
void Truncate(Image& image, std::uint64_t size);

}  // namespace velmora::forge
