// A store of the session, being written or opened for reading.
#pragma once

#include <cstdint>
#include <memory>

#include "store/messaging/folders/default_folders.h"
#include "store/messaging/folders/folder_tree.h"
#include "store/messaging/tables/named_properties.h"
#include "store/ndb/block_source.h"
#include "store/operations.h"

namespace velmora::messaging {

class StoreWriter;

class Store {
 public:
  virtual ~Store() = default;

  /// Where nodes and blocks are read.
  virtual const ndb::BlockSource& Source() const = 0;

  /// The store's writing side; raises E_FAIL for a store that is open for reading alone.
  virtual StoreWriter& Writer() = 0;

  /// The items of a folder.
  virtual const ItemRows& ItemsOf(Folder& folder) = 0;

  const NamedPropertyMap& Names() const { return names_; }
  const text::Text& DisplayName() const { return displayName_; }
  const DefaultFolders& Defaults() const { return defaults_; }
  Folder& Top() const { return *top_; }
  Folder* OfNid(Nid nid) const { return folders_.OfNid(nid); }

 protected:
  FolderTree folders_;
  Folder* top_ = nullptr;  ///< never null once the store is open
  DefaultFolders defaults_;
  NamedPropertyMap names_;
  text::Text displayName_;
};

}  // namespace velmora::messaging
