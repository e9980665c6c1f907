// The nodes that every store has.
#pragma once

#include "store/ndb/ids.h"

namespace velmora::messaging::nid {

inline constexpr ndb::Nid kMessageStore = 0x21;
inline constexpr ndb::Nid kNameToIdMap = 0x61;
inline constexpr ndb::Nid kRootFolder = 0x122;
inline constexpr ndb::Nid kSearchManagementQueue = 0x1E1;
inline constexpr ndb::Nid kSearchActivityList = 0x201;
inline constexpr ndb::Nid kSearchDomainObject = 0x261;
inline constexpr ndb::Nid kHierarchyTemplate = 0x60D;
inline constexpr ndb::Nid kContentsTemplate = 0x60E;
inline constexpr ndb::Nid kAssocContentsTemplate = 0x60F;
inline constexpr ndb::Nid kSearchContentsTemplate = 0x610;
inline constexpr ndb::Nid kReceiveFolderTable = 0x62B;
inline constexpr ndb::Nid kOutgoingQueueTable = 0x64C;
inline constexpr ndb::Nid kAttachmentTable = 0x671;  ///< the template; and the table in each message
inline constexpr ndb::Nid kRecipientTable = 0x692;   ///< the template; and the table in each message
inline constexpr ndb::Nid kBookkeeping6B6 = 0x6B6;
inline constexpr ndb::Nid kBookkeeping6D7 = 0x6D7;
inline constexpr ndb::Nid kBookkeeping6F8 = 0x6F8;
inline constexpr ndb::Nid kSpamSearchFolder = 0x2223;

}  // namespace velmora::messaging::nid
