#include "forge/pages.h"

#include <algorithm>

#include "forge/checksum.h"

namespace velmora::forge {
namespace {

std::size_t EntrySizeOf(const FormatTraits& traits, PageType type, std::uint8_t level) {
  if (level > 0) return traits.branchEntrySize;
  return type == PageType::kNodes ? traits.nodeEntrySize : traits.blockEntrySize;
}

template <typename Entry>
Bytes FormEntries(Format format, const std::vector<Entry>& entries) {
  Bytes bytes;
  for (const Entry& entry : entries) Append(bytes, FormEntry(format, entry));
  return bytes;
}

}  // namespace

Bytes FormEntry(Format format, const NodeEntry& entry) {
  const std::size_t width = TraitsOf(format).idWidth;
  Bytes bytes;
  for (const std::uint64_t field : {entry.nid, entry.bidData, entry.bidSub, entry.nidParent})
    Append(bytes, field, width);
  return bytes;
}

Bytes FormEntry(Format format, const BlockEntry& entry) {
  const std::size_t width = TraitsOf(format).idWidth;
  Bytes bytes;
  Append(bytes, entry.bid, width);
  Append(bytes, entry.offset, width);
  Append(bytes, entry.size, 2);
  if (format == Format::kUnicode4k) Append(bytes, entry.inflatedSize != 0 ? entry.inflatedSize : entry.size, 2);
  Append(bytes, entry.refs, 2);
  bytes.resize(TraitsOf(format).blockEntrySize);
  return bytes;
}

Bytes FormEntry(Format format, const BranchEntry& entry) {
  const std::size_t width = TraitsOf(format).idWidth;
  Bytes bytes;
  for (const std::uint64_t field : {entry.key, entry.childId, entry.childOffset}) Append(bytes, field, width);
  return bytes;
}

std::size_t PageCapacity(Format format, std::size_t entrySize) { return TraitsOf(format).entryAreaSize / entrySize; }

PageSpec NodePage(Format format, const std::vector<NodeEntry>& nodes) {
  return {.type = PageType::kNodes, .entries = FormEntries(format, nodes)};
}

PageSpec BlockPage(Format format, const std::vector<BlockEntry>& blocks) {
  return {.type = PageType::kBlocks, .entries = FormEntries(format, blocks)};
}

Bytes FormPage(Format format, const PageSpec& given, std::uint64_t offset, std::uint64_t pageId) {
  const FormatTraits& traits = TraitsOf(format);
  const std::size_t naturalSize = EntrySizeOf(traits, given.type, given.level);
  Bytes page(traits.pageSize);
  std::copy_n(given.entries.begin(), std::min(given.entries.size(), page.size()), page.begin());

  const std::size_t counterWidth = format == Format::kUnicode4k ? 2 : 1;
  std::size_t at = traits.entryAreaSize;
  const auto putCounter = [&](std::uint64_t value, std::size_t width) {
    Put(page, at, value, width);
    at += width;
  };
  putCounter(given.count.value_or(static_cast<std::uint16_t>(given.entries.size() / naturalSize)), counterWidth);
  putCounter(given.maxCount.value_or(static_cast<std::uint16_t>(PageCapacity(format, naturalSize))), counterWidth);
  putCounter(given.entrySize.value_or(static_cast<std::uint16_t>(naturalSize)), 1);
  putCounter(given.level, 1);

  const auto type = static_cast<std::uint16_t>(given.type);
  SealPage(format, page, given.typeWord.value_or(static_cast<std::uint16_t>(type << 8 | type)), offset, pageId,
           given.signature);
  return page;
}

void SealPage(Format format, Bytes& page, std::uint16_t typeWord, std::uint64_t offset, std::uint64_t pageId,
              std::optional<std::uint16_t> signature) {
  const FormatTraits& traits = TraitsOf(format);
  const std::size_t trailer = traits.offPageTrailer;
  const std::uint32_t checksum = Checksum(std::span(page).first(trailer));
  Put(page, trailer, typeWord, 2);
  Put(page, trailer + 2, signature.value_or(Signature(offset, pageId)), 2);
  if (format == Format::kAnsi) {
    Put(page, trailer + 4, pageId, 4);
    Put(page, trailer + 8, checksum, 4);
    return;
  }
  Put(page, trailer + 4, checksum, 4);
  Put(page, trailer + 8, pageId, 8);
  if (format == Format::kUnicode4k) Put(page, trailer + 16, 1, 8);
}

}  // namespace velmora::forge
