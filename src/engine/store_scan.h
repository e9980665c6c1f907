// What the scanning steps hand from one to the next on the way to a ScannedStore.
#pragma once

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <vector>

#include "engine/scanned_store.h"

namespace velmora::engine {

/// The block ids that node entries refer to, for the Smart Scan.
class ReferencedIds {
 public:
  /// Takes `bidData` and `bidSub` of every record that has a `bidSub`; records without one contribute
  /// nothing. Fewer than two ids build no table at all, and only id 0 counts as referenced then.
  void Build(const NodeList& nodes) {
    ids_.clear();
    for (const NodeRecord& node : nodes.Records()) {
      if (LowBid(node.bidSub) == 0) continue;
      ids_.push_back(LowBid(node.bidData));
      ids_.push_back(LowBid(node.bidSub));
    }
    std::ranges::sort(ids_);
    ids_.erase(std::ranges::unique(ids_).begin(), ids_.end());
  }

  /// True for id 0 and for every id of the table.
  bool IsReferencedId(std::uint32_t id) const { return id == 0 || std::ranges::binary_search(ids_, id); }

  /// Gives the memory back, which `{}` would not.
  void Clear() { ids_ = std::vector<std::uint32_t>(); }

 private:
  std::vector<std::uint32_t> ids_;  ///< sorted
};

/// Of each step of a walk over the source, in order, whether it is worth a visit; all steps behind the last mark are.
using StepMarks = std::vector<bool>;

/// What some of the source shows to the scan for nodes.
struct NodeSights {
  std::vector<NodeRecord> nodes;  ///< of its node pages, in their order
  StepMarks blockSteps;           ///< Normal Scan only

  /// Of what lies right behind.
  void Add(const NodeSights& behind) {
    nodes.insert(nodes.end(), behind.nodes.begin(), behind.nodes.end());
    blockSteps.insert(blockSteps.end(), behind.blockSteps.begin(), behind.blockSteps.end());
  }
};

/// What the search for the format has seen of nodes on its way to the page that tells, so that nobody has to go that
/// way again: of a store whose trees stand at its end, that is all of it.
struct SeenByProbe {
  std::uint16_t formatId = 0;  ///< of the layout in which it looked; 0 for none
  std::uint64_t pieces = 0;    ///< of those into which the scan cuts the source
  NodeSights sights;           ///< of them all
};

struct StoreScan {
  std::unique_ptr<ScannedStore> found = std::make_unique<ScannedStore>();  ///< so far; null behind FinishScan

  std::uint64_t percentBase = 0;  ///< a hundredth of the source; 0 for a tiny one
  SeenByProbe seenByProbe;        ///< from the search for the format to the node scan
  StepMarks blockSteps;           ///< of the block scan that may show a block; from the node scan on, Normal Scan only
  ReferencedIds referencedIds;    ///< Smart Scan only, from the node scan to the end of the block scan
  bool encodingUnknown = true;
  std::filesystem::path outputFolder;  ///< holds the new store and the index file; empty before the set-up

  /// How far a scan has come at this offset of the source, in percent; above 100 behind the end. A source
  /// of less than 100 bytes has no hundredth to count in: everything of it is done.
  std::uint32_t PercentOfSource(std::uint64_t offset) const {
    return percentBase == 0 ? 100 : static_cast<std::uint32_t>(offset / percentBase);
  }
};

}  // namespace velmora::engine
