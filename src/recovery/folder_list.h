// The recovered folders of a run.
#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <unordered_map>
#include <vector>

#include "engine/event.h"
#include "text/text.h"

namespace velmora::recovery {

using engine::FolderRecord;

/// Rewrites "IPF.Imap", letter case ignored, as "IPF.Note".
void NormaliseClass(FolderRecord& folder);

/// Collects folders in the order of their identifiers while the nodes are walked.
class FolderCollector {
 public:
  bool Contains(std::uint32_t nid) const { return folders_.contains(nid); }

  /// Inserts a folder whose identifier is not there yet. The walk to its place normalises the class of every
  /// folder that it passes and of the one at which it stops, but never that of the list's first; so a folder
  /// that nothing walks over keeps "IPF.Imap" here. O(log n), each normalisation counted once.
  void AddFolderRecord(FolderRecord folder);

  /// By ascending identifier.
  std::vector<FolderRecord> Take();

 private:
  std::map<std::uint32_t, FolderRecord> folders_;
  std::set<std::uint32_t> notNormalised_;  ///< those whose class a walk may still change
};

/// The folders in their final order, with look-up by identifier. An identifier stands for one folder.
class FolderList {
 public:
  FolderList() = default;
  explicit FolderList(std::vector<FolderRecord> records);

  const std::vector<FolderRecord>& Records() const { return records_; }

  /// Null when no folder has the identifier.
  FolderRecord* Find(std::uint32_t nid);
  const FolderRecord* Find(std::uint32_t nid) const { return const_cast<FolderList*>(this)->Find(nid); }

  /// The record of the folder's parent, without a search; null when there is none. `folder` is one of Records().
  FolderRecord* ParentOf(const FolderRecord& folder);

  /// A walk over folders: Visit is true of each of Records() once.
  void BeginWalk() { ++walk_; }
  bool Visit(const FolderRecord& folder);

 private:
  std::size_t PlaceOf(const FolderRecord& folder) const { return static_cast<std::size_t>(&folder - records_.data()); }

  static constexpr std::size_t kNone = static_cast<std::size_t>(-1);

  std::vector<FolderRecord> records_;
  std::vector<std::size_t> parents_;       ///< of each record, as a place in records_
  std::vector<std::uint64_t> lastVisits_;  ///< of each record, the walk
  std::uint64_t walk_ = 0;
  std::unordered_map<std::uint32_t, std::size_t> byNid_;
};

/// Brings the descendants of each folder to follow it, level by level into the depth, siblings in list order. Only
/// what stands behind a folder is brought there: a child that stands ahead of its parent stays ahead. O(n log n).
std::vector<FolderRecord> OrderFolders(std::vector<FolderRecord> folders);

}  // namespace velmora::recovery
