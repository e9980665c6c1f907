// Makes the folders of a plan in the new store.
#pragma once

#include <map>
#include <utility>

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

 private:
  void Copy(SourceFolder& folder);
  messaging::PropertyBag PropertiesOf(const SourceFolder& folder, Missing& missing);
  void GiveFreeName(const messaging::Folder& parent, const messaging::Folder* self, messaging::PropertyBag& properties);
  messaging::Folder& OwnDeletedItems() const;
  bool IsFree(Nid nid) const;

  CopyTools& tools_;
  PropertyCopier properties_;
  FolderPlan& plan_;
  messaging::Folder* lostAndFound_ = nullptr;
  std::map<std::pair<const messaging::Folder*, text::Text>, std::uint32_t> numbers_;  ///< the last of a name
};

/// The path of a folder of the new store, each name behind a slash; of a long one the end.
text::Text PathOf(const messaging::Folder& folder);

}  // namespace velmora::complete
