// Writes folders: the object of each and its tables of folders, of items and of hidden items.
#pragma once

#include "store/messaging/folders/folder_tree.h"
#include "store/messaging/folders/row_spool.h"
#include "store/messaging/objects/property_bag.h"
#include "store/ndb/ndb_writer.h"

namespace velmora::messaging {

/// Bytes that the texts and binary values of an item's row take in its table.
std::size_t ValueBytesOf(std::span<const ltp::PropertyView> row);

/// Bytes that the part of a folder behind one of its marks (propertiesChanged, ...) takes in the file at most.
std::uint64_t MostBytesOf(const Folder& folder, bool Folder::*part);

/// The same of properties that only some folders have.
std::uint64_t MostBytesOf(const PropertyBag& others);

/// The same of the row of an item with so many bytes of values, and of that of a child folder with so many of texts.
/// A heap leaves the rest of a block empty that is too short for the next value.
constexpr std::uint64_t ItemBytes(std::uint64_t values) { return 160 + values + values / 8; }
constexpr std::uint64_t ChildBytes(std::uint64_t texts) { return 96 + texts + texts / 8; }

/// Nodes of a folder: its object and its tables.
inline constexpr std::size_t kFolderNodes = 4;

/// Writes what changed of a folder, and notes that nothing is changed any more. `extra` are properties that
/// this folder has beside its own; `maxHeapBlocks` is what a table has for its values.
void WriteFolder(ndb::NdbWriter& ndb, RowSpool& rows, const PropertyBag& extra, std::size_t maxHeapBlocks,
                 Folder& folder);

}  // namespace velmora::messaging
