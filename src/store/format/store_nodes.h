// The nodes that every store has.
#pragma once

#include "store/format/ids.h"

namespace velmora::nid {

inline constexpr Nid kMessageStore{0x21};
inline constexpr Nid kNameToIdMap{0x61};
inline constexpr Nid kRootFolder{0x122};
inline constexpr Nid kSearchManagementQueue{0x1E1};
inline constexpr Nid kSearchActivityList{0x201};
inline constexpr Nid kSearchDomainObject{0x261};
inline constexpr Nid kHierarchyTemplate{0x60D};
inline constexpr Nid kContentsTemplate{0x60E};
inline constexpr Nid kAssocContentsTemplate{0x60F};
inline constexpr Nid kSearchContentsTemplate{0x610};
inline constexpr Nid kReceiveFolderTable{0x62B};
inline constexpr Nid kOutgoingQueueTable{0x64C};
inline constexpr Nid kAttachmentTable{0x671};  ///< the template; and the table in each message
inline constexpr Nid kRecipientTable{0x692};   ///< the template; and the table in each message
inline constexpr Nid kBookkeeping6B6{0x6B6};
inline constexpr Nid kBookkeeping6D7{0x6D7};
inline constexpr Nid kBookkeeping6F8{0x6F8};
inline constexpr Nid kSpamSearchFolder{0x2223};

// Folders that every offline store has, where the properties of other stores name them.
inline constexpr Nid kOfflineMailbox{0x20A2};
inline constexpr Nid kOfflineFinder{0x20E2};
inline constexpr Nid kOfflineTop{0x2142};
inline constexpr Nid kOfflineDeletedItems{0x2162};
inline constexpr Nid kOfflineOutbox{0x21A2};
inline constexpr Nid kOfflineSentMail{0x21C2};

}  // namespace velmora::nid
