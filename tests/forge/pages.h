// Pages of the two trees: nodes (node id to blocks) and blocks (block id to file place).
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "forge/bytes.h"
#include "forge/format.h"

namespace velmora::forge {

enum class PageType : std::uint8_t { kBlocks = 0x80, kNodes = 0x81 };

struct NodeEntry {
  std::uint64_t nid = 0;
  std::uint64_t bidData = 0;
  std::uint64_t bidSub = 0;
  std::uint64_t nidParent = 0;
};

struct BlockEntry {
  std::uint64_t bid = 0;
  std::uint64_t offset = 0;
  std::uint16_t size = 0;  ///< bytes as stored, without padding and trailer
  std::uint16_t refs = 2;
  std::uint16_t inflatedSize = 0;  ///< 4K format alone; 0 stands for `size`
};

/// An entry of an upper page: the first key of the child page, and where that page stands.
struct BranchEntry {
  std::uint64_t key = 0;
  std::uint64_t childId = 0;
  std::uint64_t childOffset = 0;
};

Bytes FormEntry(Format format, const NodeEntry& entry);
Bytes FormEntry(Format format, const BlockEntry& entry);
Bytes FormEntry(Format format, const BranchEntry& entry);

/// How many entries of `entrySize` bytes a page holds.
std::size_t PageCapacity(Format format, std::size_t entrySize);

/// One page of a tree. Every figure that is not set is what a sound page has there.
struct PageSpec {
  PageType type = PageType::kNodes;
  Bytes entries = {};  ///< formed entries, back to back; bytes beyond the page are cut off
  std::uint8_t level = 0;
  std::optional<std::uint16_t> entrySize = {};
  std::optional<std::uint16_t> count = {};
  std::optional<std::uint16_t> maxCount = {};
  std::optional<std::uint16_t> signature = {};
  std::optional<std::uint16_t> typeWord = {};  ///< both type bytes, where they are not `type` twice
  std::optional<std::uint64_t> pageId = {};    ///< otherwise the store's next page id
  std::optional<std::uint64_t> offset = {};    ///< otherwise the next free place
};

/// Leaf pages of a few entries.
PageSpec NodePage(Format format, const std::vector<NodeEntry>& nodes);
PageSpec BlockPage(Format format, const std::vector<BlockEntry>& blocks);

/// The bytes of the page, sealed for that offset and id.
Bytes FormPage(Format format, const PageSpec& given, std::uint64_t offset, std::uint64_t pageId);

/// Writes type, signature, checksum and id behind the content of a page of any kind. A signature that is
/// not given is computed.
void SealPage(Format format, Bytes& page, std::uint16_t typeWord, std::uint64_t offset, std::uint64_t pageId,
              std::optional<std::uint16_t> signature = {});

}  // namespace velmora::forge
