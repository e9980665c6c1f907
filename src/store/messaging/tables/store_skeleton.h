// What a store has before its first folder: templates, queues, the search folder, the map of names.
#pragma once

#include "store/messaging/folders/default_folders.h"
#include "store/messaging/tables/named_properties.h"
#include "store/messaging/values/identity.h"
#include "store/ndb/ndb_writer.h"
#include "text/text.h"

namespace velmora::messaging {

/// Sets a node from what was written for it.
void SetWritten(ndb::NdbWriter& ndb, Nid nid, const ndb::WrittenNode& node, Nid parent = Nid{});

/// Writes the nodes that every store has and that belong to no folder, and the search folder of the root.
void WriteSkeleton(ndb::NdbWriter& ndb, const NewNameMap& names);

inline constexpr text::TextView kSpamSearchFolderName = u"SPAM Search Folder 2";

struct StoreIdentity {
  Uid recordKey{};
  Uid replicaId{};
  text::Text displayName;
};

/// Writes the node that tells which properties the names are.
void WriteNameMap(ndb::NdbWriter& ndb, const NewNameMap& names);

/// Writes the message store object, which names the folders of the store.
void WriteMessageStore(ndb::NdbWriter& ndb, const StoreIdentity& identity, Nid top, Nid searchRoot,
                       const DefaultFolders& defaults);

}  // namespace velmora::messaging
