// What is live in a source: the nodes and blocks of its trees.
#pragma once

#include <memory>
#include <vector>

#include "complete/account.h"
#include "engine/scanned_store.h"
#include "platform/file.h"
#include "store/ndb/block_source.h"
#include "store/ndb/store_reader.h"

namespace velmora::complete {

/// Whether header and trees of a source can be used from end to end, so that no scan has to look for anything.
bool HasSoundTrees(const engine::Source& source);

/// Header and trees are used as far as they prove themselves; a block that they do not lead to is looked up among those
/// that the scan found. May be used by several threads at once.
class LiveStore : public ndb::BlockSource {
 public:
  /// `found` must outlive the store. Fills the evidence.
  LiveStore(const engine::ScannedStore& found, Evidence& evidence);

  const Generation& Format() const override { return trees_ ? trees_->Format() : found_.Format(); }
  [[nodiscard]] bool FindBlock(Bid bid, std::vector<std::byte>& out) const override;
  std::optional<ndb::NodeEntry> FindNode(Nid nid) const override;

  /// All live nodes by ascending id.
  const std::vector<ndb::NodeEntry>& Nodes() const { return trees_ ? trees_->Nodes() : scannedNodes_; }

  const engine::ScannedStore& Found() const { return found_; }

 private:
  const engine::ScannedStore& found_;
  engine::SourceBytes bytes_;
  std::unique_ptr<ndb::StoreReader> trees_;   ///< null where the header leads to none
  std::vector<ndb::NodeEntry> scannedNodes_;  ///< in place of the tree's
};

}  // namespace velmora::complete
