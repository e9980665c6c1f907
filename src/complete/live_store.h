// What is live in a source, as those read it who copy it.
#pragma once

#include <vector>

#include "engine/blocks_ahead.h"
#include "engine/proven_store.h"
#include "store/ndb/block_source.h"

namespace velmora::complete {

/// The source of one copy. Notes which blocks were handed out though their content is not proven; for one thread.
class LiveStore : public ndb::BlockSource {
 public:
  /// `found` must outlive the store.
  explicit LiveStore(const engine::ProvenStore& found) : found_(found) {}

  const Generation& Format() const override { return found_.Format(); }
  [[nodiscard]] bool FindBlock(Bid bid, std::vector<std::byte>& out) const override {
    const bool isAhead = ahead_ != nullptr && ahead_->Find(bid, out);
    if (!isAhead && !found_.FindBlock(bid, out)) return false;
    CountBytes(bid, out.size());
    if (!isAhead && found_.HasHurtBlocks() && !found_.IsTrusted(bid)) hurt_.push_back(Canonical(bid));
    return true;
  }

  /// Data of a block that is proven as they are stored, in `buffer` or where they were read ahead; valid until either
  /// changes. Nothing where there is no such block. Raises kCorrupt where it is whole no more.
  [[nodiscard]] std::optional<StoredData> FindStored(Bid bid, std::vector<std::byte>& buffer) const {
    std::optional<StoredData> data;
    if (ahead_ != nullptr) data = ahead_->FindStored(bid);
    if (!data) data = found_.FindStored(bid, buffer);
    if (data) CountBytes(bid, data->bytes.size());
    return data;
  }

  std::optional<std::size_t> SizeOf(Bid bid) const override { return found_.SizeOf(bid); }

  /// Blocks that were read already; null for none. They must outlive their use.
  void Use(const engine::BlocksAhead* ahead) const { ahead_ = ahead; }

  std::optional<ndb::NodeEntry> FindNode(Nid nid) const override { return found_.FindNode(nid); }

  /// All live nodes by ascending id.
  const std::vector<ndb::NodeEntry>& Nodes() const { return found_.Nodes(); }

  const engine::ProvenStore& Found() const { return found_; }

  /// Of blocks as they are stored: of those that were read so far, and of all that are not known to be free.
  std::uint64_t BytesRead() const { return bytesRead_; }
  std::uint64_t BytesInUse() const;

  /// The blocks whose content is not proven that were read since the last call, each once.
  std::vector<Bid> TakeHurt() const;

 private:
  void CountBytes(Bid bid, std::size_t bytesOfContent) const {
    const bool mayBePacked = Format().offInflatedSize != 0;
    const auto block = mayBePacked ? found_.Found().Find(bid) : std::nullopt;
    bytesRead_ += block ? block->cb : bytesOfContent;
  }

  const engine::ProvenStore& found_;
  mutable const engine::BlocksAhead* ahead_ = nullptr;
  mutable std::vector<Bid> hurt_;
  mutable std::uint64_t bytesRead_ = 0;
};

}  // namespace velmora::complete
