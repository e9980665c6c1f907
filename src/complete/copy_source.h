// The source of a copy, as those see it who make the copy and those who hold it beside its source.
#pragma once

#include <unordered_set>

#include "complete/folder_plan.h"
#include "complete/live_store.h"
#include "complete/source_names.h"
#include "complete/text_pages.h"
#include "engine/proven_store.h"
#include "text/code_page.h"

namespace velmora::complete {

/// Whether an object may have the same id in the new store: not one of those that every store has for itself, nor so
/// high that too few are left for the nodes that the new store makes.
constexpr bool KeepsId(Nid nid) {
  return IndexOf(nid) >= kFirstFreeNidIndex && IndexOf(nid) <= kMaxNidIndex - (1u << 20);
}

struct CopySource {
  /// `found` and `last`, the code page where nothing in the store tells, must outlive it. `hidden`: hidden messages
  /// come across too, not the list of categories alone.
  CopySource(const engine::ProvenStore& found, const text::CodePage& last, bool hidden);

  /// Whether a live folder or message comes across.
  bool Takes(const ndb::NodeEntry& node);

  /// The same by its id, also of a folder of which only its row is left.
  bool Takes(Nid nid);

  LiveStore live;
  SourceNames names;
  TextPages pages;
  FolderPlan plan;

 private:
  bool IsInCopied(const ndb::NodeEntry& message);
  bool IsCategoryList(const ndb::NodeEntry& message);

  bool hidden_;
  std::unordered_set<Nid> categoryLists_;  ///< the hidden messages that come across where hidden ones do not
};

}  // namespace velmora::complete
