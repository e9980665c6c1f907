// The low level: a store of blocks and nodes. Blocks go to the sink as they are added, so a store of any
// size can be forged; Finish writes the trees, the maps and the header.
#pragma once

#include <array>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <span>
#include <unordered_map>
#include <vector>

#include "forge/bytes.h"
#include "forge/format.h"
#include "forge/image.h"
#include "forge/pages.h"
#include "forge/sink.h"
#include "forge/space.h"

namespace velmora::forge {

using Bid = std::uint64_t;
using Nid = std::uint32_t;

struct StoreOptions {
  Format format = Format::kUnicode;
  Encoding encoding = Encoding::kPermute;
  Client client = Client::kPersonal;
  bool compressed = false;         ///< 4K format: data blocks that shrink are stored as zlib streams
  bool fullLength = false;         ///< the file ends where its last allocation map does, not behind the last page
  std::size_t entriesPerPage = 0;  ///< of both trees; 0 fills each page
  std::uint64_t startOffset = 0;   ///< of the first block; 0 is the first place of the format
  std::size_t pieces = 0;  ///< of the file over which blocks and pages are strewn, as use and years do it; 0: none
  Bytes (*pack)(std::span<const std::byte> data) = nullptr;  ///< makes a zlib stream, in place of zlib itself
};

/// Of messages in attachments, far behind those in folders.
inline constexpr Nid kFirstEmbedded = 0x20000004;

/// An element of a list of sub-nodes.
struct Subnode {
  Nid nid = 0;
  Bid bidData = 0;
  Bid bidSub = 0;
};

/// How one block departs from what a sound store would have.
struct BlockOptions {
  std::optional<Bid> bid = {};               ///< otherwise the next free one
  std::optional<std::uint64_t> offset = {};  ///< otherwise the next free place
  std::optional<std::uint32_t> key = {};     ///< of the encoding; otherwise the low half of the id
  std::optional<bool> compressed = {};       ///< otherwise as the store does it
  bool encoded = true;
  bool listed = true;                             ///< in the block tree
  std::optional<std::uint16_t> trailerSize = {};  ///< what the trailer claims
  std::optional<std::uint16_t> trailerSignature = {};
  std::optional<Bid> trailerId = {};
};

class Store {
 public:
  /// A store in memory.
  explicit Store(StoreOptions options = {});
  /// A store that goes to a file while it grows. Throws std::runtime_error when the file cannot be made.
  Store(StoreOptions options, const std::filesystem::path& path);

  const StoreOptions& options() const { return options_; }
  const FormatTraits& traits() const { return traits_; }

  /// Adds a data block, encoded as the store is. `data` may be of any length up to 65535 less padding; a
  /// sound one has 1 to `traits().maxBlockData` bytes. Returns its id.
  Bid AddBlock(std::span<const std::byte> data, const BlockOptions& options = {});

  /// Adds a block of the kind that is never encoded or compressed: lists of blocks and of sub-nodes.
  Bid AddInternalBlock(std::span<const std::byte> data, const BlockOptions& options = {});

  /// Adds a value of any length: 0 for an empty one, else a data block, or a chain of pieces of `pieceSize`
  /// bytes (0: full blocks), of two levels if need be.
  Bid AddData(std::span<const std::byte> data, std::size_t pieceSize = 0);

  /// Adds a value as a chain of two levels, with at most two full blocks under each list of the lower one.
  Bid AddTree(std::span<const std::byte> data);

  /// Adds blocks and, for more than one, the chain over them.
  Bid AddDataBlocks(const std::vector<Bytes>& blocks);

  /// Adds a list of blocks (signature 0x0101) that are there already; `total` is their length in all.
  Bid AddChain(const std::vector<Bid>& pieces, std::uint64_t total, const BlockOptions& options = {});

  /// Adds a list of sub-nodes in the order given, with an upper level if one block does not hold them; 0 for
  /// no sub-nodes.
  Bid AddSubnodes(const std::vector<Subnode>& subnodes, const BlockOptions& options = {});

  /// Adds a node to the node tree. Entries of one id may be added twice; they stand side by side then.
  void AddNode(Nid nid, Bid bidData, Bid bidSub, Nid nidParent);

  /// Writes a page that belongs to no tree: a stale copy, or one with something wrong.
  PlacedPage AddPage(const PageSpec& given);

  /// Writes a page that belonged to a tree once: its place is free.
  void AddOldPage(const PageSpec& given);

  /// Makes blocks of what was there once of all blocks from that id on: their bytes stay, their places are free, the
  /// block tree has them no more. Returns the entries that it had.
  std::vector<BlockEntry> FreeFrom(Bid first);

  /// Adds one more entry to the block tree, true or not.
  void ListBlock(const BlockEntry& entry);

  /// Keeps `nid` in mind for the header's counters of ids; AddNode and AddSubnodes do so themselves.
  void NoteNid(Nid nid);

  /// The next of the numbers that tell the versions of table rows apart.
  std::uint32_t NextRowVersion() { return rowVersion_++; }

  /// An id for a message in an attachment. No other message of the store has it: some readers would take the one for
  /// the other.
  Nid NextEmbeddedNid() { return kFirstEmbedded + 0x20 * embeddedCount_++; }

  /// The id that the next data block gets; the one of an internal block has bit 1 set besides.
  Bid NextBid() const { return nextBid_; }

  /// File offset at which the next block of `dataSize` bytes will stand.
  std::uint64_t End() const { return space_.End(); }

  /// Bytes of all blocks and pages so far, with what is free by now.
  std::uint64_t Written() const { return space_.HandedOut(); }

  /// Writes what is missing and gives the store away. The Store is of no use afterwards.
  Image Finish();

 private:
  struct TreeRoot {
    std::uint64_t pageId = 0;
    std::uint64_t offset = 0;
  };

  Bid Place(Bytes data, std::uint16_t inflatedSize, bool internal, const BlockOptions& options);
  void CountReference(Bid bid);
  Bid AddChainOfChains(const std::vector<Bid>& pieces, std::uint64_t total, std::size_t piecesPerList,
                       const BlockOptions& options);
  Bytes ListOf(std::span<const Bid> bids);
  Bid AddList(std::uint8_t type, std::uint8_t level, std::uint64_t count, std::uint64_t total, const Bytes& entries,
              const BlockOptions& options);
  TreeRoot WriteTree(PageType type, std::vector<std::uint64_t> keys, Bytes entries);
  TreeRoot WriteNodeTree();
  TreeRoot WriteBlockTree();
  PlacedPage WritePage(const PageSpec& given);
  void WriteMaps();
  void WriteHeader(const TreeRoot& nodes, const TreeRoot& blocks, std::uint64_t fileSize);

  StoreOptions options_;
  const FormatTraits& traits_;
  std::unique_ptr<Sink> sink_;
  Space space_;
  std::vector<PlacedBlock> blocks_;
  std::unordered_map<Bid, std::size_t> blockIndex_;
  std::vector<BlockEntry> extraEntries_;
  std::vector<NodeEntry> nodes_;
  std::vector<PlacedPage> pages_;
  std::array<std::uint32_t, 32> lastIndex_;
  Bid nextBid_ = 4;
  std::uint64_t nextPageId_ = 1;
  std::uint32_t rowVersion_ = 1;
  std::uint32_t embeddedCount_ = 0;
};

}  // namespace velmora::forge
