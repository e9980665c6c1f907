// A store on disk, opened for reading.
#pragma once

#include <memory>
#include <vector>

#include "output/pst/ndb/block_source.h"
#include "platform/file.h"

namespace velmora::ndb {

/// Reads the header and both trees at opening, and blocks on demand. Bytes of the file are never trusted: a
/// page that does not prove itself is left out with all below it and listed in Damage(), a block that does
/// not prove itself cannot be read. May be used by several threads at once.
class StoreReader : public BlockSource {
 public:
  /// kCorrupt or kNotSupported when the header is no Unicode store's or cannot be used; `file` must outlive
  /// the reader.
  static Result<std::unique_ptr<StoreReader>> Open(const platform::ByteSource& file);

  Result<void> ReadBlock(Bid bid, std::vector<std::byte>& out) const override;
  std::optional<NodeEntry> FindNode(Nid nid) const override;

  /// All nodes by ascending id.
  const std::vector<NodeEntry>& Nodes() const { return nodes_; }
  std::size_t BlockCount() const { return blockCount_; }

  /// What was left out at opening, at most kMaxDamage findings.
  const std::vector<Failure>& Damage() const { return damage_; }
  static constexpr std::size_t kMaxDamage = 100;

 private:
  std::vector<NodeEntry> nodes_;
  std::vector<Failure> damage_;
  std::size_t blockCount_ = 0;
};

}  // namespace velmora::ndb
