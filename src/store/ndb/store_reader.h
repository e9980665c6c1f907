// A store on disk, opened for reading.
#pragma once

#include <memory>
#include <string_view>
#include <vector>

#include "platform/file.h"
#include "store/format/encoding.h"
#include "store/format/page.h"
#include "store/ndb/block_source.h"
#include "store/ndb/faults.h"

namespace velmora::ndb {

/// A store of any generation. Reads the header and both trees at opening, and blocks on demand. Bytes of the file are
/// never trusted: a page that does not prove itself is left out with all below it and listed in Damage(), a block that
/// does not prove itself cannot be read. May be used by several threads at once.
class StoreReader : public BlockSource {
 public:
  /// Raises kCorrupt or kNotSupported when the header is no store's or cannot be used; `file` must outlive the reader.
  [[nodiscard]] static std::unique_ptr<StoreReader> Open(const platform::ByteSource& file);

  const Generation& Format() const override { return *format_; }
  [[nodiscard]] bool FindBlock(Bid bid, std::vector<std::byte>& out) const override;
  std::optional<NodeEntry> FindNode(Nid nid) const override;

  /// All nodes by ascending id.
  const std::vector<NodeEntry>& Nodes() const { return nodes_; }
  std::size_t BlockCount() const { return blocks_.size(); }

  /// What was left out at opening.
  const Faults& Damage() const { return damage_; }

 private:
  struct Block {
    Bid bid;
    std::uint64_t ibAndCb;  ///< offset in the low 48 bits, bytes of data above
  };
  static_assert(sizeof(Block) == 16);
  static constexpr int kIbBits = 48;

  explicit StoreReader(const platform::ByteSource& file) : file_(file) {}
  void ReadTree(PageType type, const Bref& root);
  void ReadLeaf(PageType type, PageView page, const BtPageHead& head);
  void Note(const Bref& ref, std::string_view why);

  const platform::ByteSource& file_;
  const Generation* format_ = &generations::kUnicode;
  CryptMethod cryptMethod_ = CryptMethod::kNone;
  std::vector<Block> blocks_;     ///< by ascending id
  std::vector<NodeEntry> nodes_;  ///< by ascending id
  Faults damage_;
};

}  // namespace velmora::ndb
