// What the report says of folders that are not in the new store, or not where they were.
#pragma once

#include <cstdint>
#include <map>
#include <unordered_map>
#include <unordered_set>

#include "engine/node_list.h"
#include "recovery/block_failure.h"
#include "recovery/folder_list.h"
#include "recovery/recovery_state.h"

namespace velmora::recovery {

/// Nodes that are folders by their identifier and gave none. A second node of the same identifier may still.
class UnreadFolders {
 public:
  void Note(const engine::NodeRecord& node, Failure failure);

  /// Lists those that no node gave; to be called behind the last node. A folder right below the root, where the rules
  /// make none, is no loss, and neither is the root.
  void Report(RecoveryState& state, const FolderCollector& folders) const;

 private:
  struct Unread {
    std::uint32_t bidData = 0;
    Failure failure;
  };
  std::map<std::uint32_t, Unread> unread_;  ///< the first node of each identifier
};

/// The folders that were read, on their way into the new store.
class FolderLosses {
 public:
  /// `leftOut`: folders below the root, whose sub-folders stand at the top by rule.
  FolderLosses(RecoveryState& state, std::unordered_set<std::uint32_t> leftOut)
      : state_(state), leftOut_(std::move(leftOut)) {
    ofPath_.reserve(state.folders.Records().size());
  }

  /// Lists the folders whose parent is not known: they stand at the top.
  void ReportMoved();

  /// To be called for each folder that is there now, made or found.
  void NoteThere(const FolderRecord& folder, std::size_t pathKey);

  void ReportNotMade(const FolderRecord& folder);

 private:
  struct First {
    std::uint32_t nid = 0;
    std::uint32_t parentNid = 0;
  };
  void Report(const FolderRecord& folder, text::TextView reason);

  RecoveryState& state_;
  std::unordered_set<std::uint32_t> leftOut_;
  std::unordered_map<std::size_t, First> ofPath_;  ///< the first folder of each path
};

}  // namespace velmora::recovery
