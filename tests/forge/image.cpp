#include "forge/image.h"

#include <algorithm>
#include <fstream>
#include <stdexcept>

namespace velmora::forge {
namespace {

// Within the block trailer the signature stands behind the size in every format.
std::uint64_t TrailerOf(const Image& image, const PlacedBlock& block) {
  return block.offset + block.placeSize - TraitsOf(image.format).blockTrailerSize;
}

void Flip(Image& image, std::uint64_t offset, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) image.bytes.at(offset + i) ^= std::byte{0x55};
}

}  // namespace

const PlacedBlock& Image::Block(std::uint64_t bid) const {
  const auto found =
      std::find_if(blocks.begin(), blocks.end(), [bid](const PlacedBlock& b) { return (b.bid | 1) == (bid | 1); });
  if (found == blocks.end()) throw std::out_of_range("forge: no such block");
  return *found;
}

const NodeEntry& Image::Node(std::uint64_t nid) const {
  const auto found = std::find_if(nodes.rbegin(), nodes.rend(), [nid](const NodeEntry& n) { return n.nid == nid; });
  if (found == nodes.rend()) throw std::out_of_range("forge: no such node");
  return *found;
}

std::vector<PlacedPage> Image::TreePages(PageType type) const {
  std::vector<PlacedPage> found;
  std::copy_if(pages.begin(), pages.end(), std::back_inserter(found),
               [type](const PlacedPage& page) { return page.type == type && !page.stray; });
  std::sort(found.begin(), found.end(), [](const PlacedPage& a, const PlacedPage& b) { return a.offset < b.offset; });
  return found;
}

void Image::Save(const std::filesystem::path& path) const {
  std::ofstream file(path, std::ios::binary | std::ios::trunc);
  file.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
  file.close();
  if (!file) throw std::runtime_error("forge: cannot write " + path.string());
}

void Patch(Image& image, std::uint64_t offset, std::span<const std::byte> bytes) {
  image.bytes.resize(std::max<std::size_t>(image.bytes.size(), offset + bytes.size()));
  std::copy(bytes.begin(), bytes.end(), image.bytes.begin() + static_cast<std::ptrdiff_t>(offset));
}

void Fill(Image& image, std::uint64_t offset, std::uint64_t size, std::byte value) {
  Patch(image, offset, Bytes(size, value));
}

void WipeHeader(Image& image) { Fill(image, 0, TraitsOf(image.format).firstData); }

void WipePages(Image& image, PageType type) {
  for (const PlacedPage& page : image.pages) {
    if (page.type == type) Fill(image, page.offset, TraitsOf(image.format).pageSize);
  }
}

void WipeTrees(Image& image) {
  WipeHeader(image);
  WipePages(image, PageType::kNodes);
  WipePages(image, PageType::kBlocks);
}

void BreakSignature(Image& image, const PlacedPage& page) {
  Flip(image, page.offset + TraitsOf(image.format).offPageTrailer + 2, 2);
}

void BreakSignature(Image& image, const PlacedBlock& block) { Flip(image, TrailerOf(image, block) + 2, 2); }

void WipeTrailer(Image& image, const PlacedBlock& block) {
  Fill(image, TrailerOf(image, block), TraitsOf(image.format).blockTrailerSize);
}

void BreakData(Image& image, const PlacedBlock& block, std::size_t at) { Flip(image, block.offset + at, 1); }

void Truncate(Image& image, std::uint64_t size) { image.bytes.resize(std::min<std::size_t>(image.bytes.size(), size)); }

}  // namespace velmora::forge
