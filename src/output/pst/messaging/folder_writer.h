// Writes folders: the object of each and its tables of folders, of items and of hidden items.
#pragma once

#include "output/pst/messaging/folder_tree.h"
#include "output/pst/messaging/property_bag.h"
#include "output/pst/messaging/row_spool.h"
#include "output/pst/ndb/ndb_writer.h"

namespace velmora::messaging {

/// The cells that a contents table shows of a message with these properties.
PropertyBag ContentsRow(const PropertyBag& message);

/// Writes what changed of a folder, and notes that nothing is changed any more. `extra` are properties that
/// this folder has beside those of all folders.
ndb::Result<void> WriteFolder(ndb::NdbWriter& ndb, RowSpool& rows, const PropertyBag& extra, Folder& folder);

}  // namespace velmora::messaging
