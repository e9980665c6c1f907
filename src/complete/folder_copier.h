// Makes the folders of a plan in the new store.
#pragma once

#include <map>
#include <utility>
#include <vector>

#include "complete/folder_plan.h"
#include "complete/property_copier.h"

namespace velmora::complete {

class FolderCopier {
 public:
  FolderCopier(CopyTools& tools, FolderPlan& plan) : tools_(tools), properties_(tools), plan_(plan) {}

  /// Makes all of them, parents first and siblings by ascending id, and marks the default folders. One that cannot be
  /// made as it was, or not at all, is a loss of the account.
  void CopyAll();

  /// The folder for messages whose own is not there; made when it is first asked for.
  messaging::Folder& LostAndFound();

  /// The folder for deleted messages of a folder: below "Recovered Deleted Items", on the path that the folder has
  /// below the top. Null is a folder that is not there any more.
  messaging::Folder& RecoveredFrom(const SourceFolder* folder);

 private:
  std::vector<SourceFolder*> ParentsFirst();
  void GiveIds(const std::vector<SourceFolder*>& folders);
  messaging::Folder& AddOwn(text::TextView name);
  void Copy(SourceFolder& folder);
  messaging::PropertyBag PropertiesOf(const SourceFolder& folder, Missing& missing);
  void GiveFreeName(const messaging::Folder& parent, const messaging::Folder* self, messaging::PropertyBag& properties);
  messaging::Folder& OwnDeletedItems() const;
  bool IsFree(Nid nid) const;

  CopyTools& tools_;
  PropertyCopier properties_;
  FolderPlan& plan_;
  messaging::Folder* lostAndFound_ = nullptr;
  messaging::Folder* recovered_ = nullptr;
  std::map<std::pair<const messaging::Folder*, text::Text>, std::uint32_t> numbers_;  ///< the last of a name
};

/// The path of a folder of the new store, each name behind a slash; of a long one the end.
text::Text PathOf(const messaging::Folder& folder);

}  // namespace velmora::complete
