// Folders of a store, as the operations hand them out.
#pragma once

#include <memory>

#include "store/messaging/store.h"
#include "store/operations.h"

namespace velmora::messaging {

/// One reference to a folder. Each request makes an object of its own, which keeps the store open.
class FolderObject : public output::RDOFolder, public std::enable_shared_from_this<FolderObject> {
 public:
  FolderObject(std::shared_ptr<Store> store, Folder& folder) : store_(std::move(store)), folder_(folder) {}

  output::Ref<output::RDOItems> Items() override;
  output::Ref<output::RDOFolders> Folders() override;
  output::Ref<output::RDOFolder2> QueryFolder2() override;
  text::Text Name() const override { return folder_.name; }
  text::Text ContainerClass() const override { return folder_.containerClass; }

 private:
  std::shared_ptr<Store> store_;
  Folder& folder_;
};

/// A reference to a folder, null for none.
output::Ref<output::RDOFolder> RefOf(const std::shared_ptr<Store>& store, Folder* folder);

}  // namespace velmora::messaging
