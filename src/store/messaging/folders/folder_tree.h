// The folders of a store, as they are held in memory.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "store/format/ids.h"
#include "store/messaging/objects/property_bag.h"
#include "text/text.h"

namespace velmora::messaging {

/// A saved item of a folder: 16 bytes.
struct ItemRow {
  Nid nid{};
  bool unread = false;
  bool deleted = false;
  std::uint16_t size = 0;   ///< of its row's texts and binary values, as far as 16 bits tell
  std::uint64_t place = 0;  ///< of its row in the spool
};

/// The items of a folder by ascending id; without given ids that is the order of their first save.
class ItemRows {
 public:
  /// Adds an item, or changes the one of that id. Cheap for one whose id is above all others.
  void Put(const ItemRow& row);

  /// The item of that id, or null; valid until the next change.
  const ItemRow* Find(Nid nid) const;

  /// Deletes an item that is there.
  void Delete(Nid nid);

  /// The first item whose id is above `nid`, or null.
  const ItemRow* After(Nid nid) const;

  std::size_t Count() const { return rows_.size() - deleted_; }
  std::size_t UnreadCount() const { return unread_; }

  /// Sizes of the rows of all items.
  std::uint64_t RowBytes() const { return rowBytes_; }

  /// Calls `visit(row)` for each item in order.
  template <class Visit>
  void ForEach(Visit visit) const {
    for (const ItemRow& row : rows_) {
      if (!row.deleted) visit(row);
    }
  }

 private:
  std::vector<ItemRow> rows_;  ///< deleted ones stay until they are half of all
  std::size_t deleted_ = 0;
  std::size_t unread_ = 0;
  std::uint64_t rowBytes_ = 0;
};

struct Folder {
  Nid nid{};
  Folder* parent = nullptr;
  text::Text name;
  text::Text containerClass;
  PropertyBag others;             ///< properties beside those that every folder has
  std::vector<Folder*> children;  ///< in order of creation
  std::unordered_map<text::Text, Folder*> childOfName;
  ItemRows items;
  ItemRows hiddenItems;              ///< associated messages
  std::uint64_t childTextBytes = 0;  ///< of the names and classes of all children

  // Values that the tables have no room for, as last written.
  std::size_t itemCellsLeftOut = 0;
  std::size_t hiddenCellsLeftOut = 0;
  std::size_t childCellsLeftOut = 0;

  // What differs from the store on disk.
  bool isListed = false;  ///< stands in the list of changed folders
  bool propertiesChanged = false;
  bool childrenChanged = false;
  bool itemsChanged = false;
  bool hiddenItemsChanged = false;
};

/// Owns the folders; they keep their addresses.
class FolderTree {
 public:
  /// Adds a folder below `parent` (null for the root).
  Folder& Add(Folder* parent, Nid nid, text::TextView name, text::TextView containerClass);

  /// Gives a folder that has a parent another name and class.
  void Rename(Folder& folder, text::TextView name, text::TextView containerClass);

  Folder* OfNid(Nid nid) const;

  /// Calls `visit(folder)` for each folder in order of creation.
  template <class Visit>
  void ForEach(Visit visit) const {
    for (const auto& folder : folders_) visit(*folder);
  }

 private:
  std::vector<std::unique_ptr<Folder>> folders_;
  std::unordered_map<Nid, Folder*> folderOfNid_;
};

/// The child folder of that name, letter case ignored; null when there is none.
Folder* ChildOf(const Folder& parent, text::TextView name);

/// The folder at the end of a path of names (see NameOf), each behind a backslash, from `top` on; `top` itself for an
/// empty path. Null where a name, an empty one included, is not there.
Folder* FolderAt(Folder& top, text::TextView path);

}  // namespace velmora::messaging
