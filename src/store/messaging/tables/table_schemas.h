// The tables of a store: which columns they have and where their cells stand in a row.
#pragma once

#include "store/ltp/table_schema.h"

namespace velmora::messaging::schema {

// Row id and row version have their places by the rule of all tables; the others stand where current
// Outlook puts them. A folder's tables have the columns of the template that the store keeps of each kind.
namespace columns {

// clang-format off
inline constexpr ltp::Column kHierarchyColumns[] = {
    {0x0E300102, 20, 4, 6},        // ReplItemid
    {0x0E330014, 24, 8, 7},        // ReplChangenum
    {0x0E340102, 32, 4, 8},        // ReplVersionHistory
    {0x0E380003, 36, 4, 9},        // ReplFlags
    {0x3001001F, 8, 4, 2},         // DisplayName
    {0x36020003, 12, 4, 3},        // ContentCount
    {0x36030003, 16, 4, 4},        // ContentUnreadCount
    {0x360A000B, 52, 1, 5},        // Subfolders
    {0x3613001F, 40, 4, 10},       // ContainerClass
    {0x66350003, 44, 4, 11},       // PstHiddenCount
    {0x66360003, 48, 4, 12},       // PstHiddenUnread
    {0x67F20003, 0, 4, 0},         // LtpRowId
    {0x67F30003, 4, 4, 1},         // LtpRowVer
};

inline constexpr ltp::Column kContentsColumns[] = {
    {0x00170003, 20, 4, 5},        // Importance
    {0x001A001F, 12, 4, 3},        // MessageClass
    {0x00360003, 60, 4, 15},       // Sensitivity
    {0x0037001F, 28, 4, 7},        // Subject
    {0x00390040, 40, 8, 9},        // ClientSubmitTime
    {0x0042001F, 24, 4, 6},        // SentRepresentingName
    {0x0057000B, 120, 1, 13},      // MessageToMe
    {0x0058000B, 121, 1, 14},      // MessageCcMe
    {0x0070001F, 68, 4, 17},       // ConversationTopic
    {0x00710102, 72, 4, 18},       // ConversationIndex
    {0x0E03001F, 56, 4, 12},       // DisplayCc
    {0x0E04001F, 52, 4, 11},       // DisplayTo
    {0x0E060040, 32, 8, 8},        // MessageDeliveryTime
    {0x0E070003, 16, 4, 4},        // MessageFlags
    {0x0E080003, 48, 4, 10},       // MessageSize
    {0x0E170003, 8, 4, 2},         // MessageStatus
    {0x0E300102, 92, 4, 22},       // ReplItemid
    {0x0E330014, 96, 8, 23},       // ReplChangenum
    {0x0E340102, 104, 4, 24},      // ReplVersionHistory
    {0x0E380003, 116, 4, 27},      // ReplFlags
    {0x0E3C0102, 112, 4, 26},      // ReplCopiedfromVersionhistory
    {0x0E3D0102, 108, 4, 25},      // ReplCopiedfromItemid
    {0x10970003, 64, 4, 16},       // ItemTemporaryFlags
    {0x30080040, 84, 8, 21},       // LastModificationTime
    {0x30130102, 76, 4, 19},       // ConversationId
    {0x65C60003, 80, 4, 20},       // SecureSubmitFlags
    {0x67F20003, 0, 4, 0},         // LtpRowId
    {0x67F30003, 4, 4, 1},         // LtpRowVer
};

inline constexpr ltp::Column kAssocContentsColumns[] = {
    {0x001A001F, 12, 4, 3},        // MessageClass
    {0x0E070003, 16, 4, 4},        // MessageFlags
    {0x0E170003, 8, 4, 2},         // MessageStatus
    {0x3001001F, 20, 4, 5},        // DisplayName
    {0x67F20003, 0, 4, 0},         // LtpRowId
    {0x67F30003, 4, 4, 1},         // LtpRowVer
    {0x6800001F, 44, 4, 11},       // OfflineAddressBookName
    {0x6803000B, 56, 1, 12},       // SendOutlookRecallReport
    {0x68051003, 48, 4, 13},       // address book column, MV
    {0x682F001F, 52, 4, 14},       // MapiFormComposeCommand
    {0x70030003, 24, 4, 6},        // ViewDescriptorFlags
    {0x70040102, 28, 4, 7},        // ViewDescriptorLinkTo
    {0x70050102, 32, 4, 8},        // ViewDescriptorViewFolder
    {0x7006001F, 36, 4, 9},        // ViewDescriptorName
    {0x70070003, 40, 4, 10},       // ViewDescriptorVersion
};

inline constexpr ltp::Column kSearchContentsColumns[] = {
    {0x00170003, 28, 4, 7},        // Importance
    {0x001A001F, 20, 4, 5},        // MessageClass
    {0x00360003, 60, 4, 16},       // Sensitivity
    {0x0037001F, 36, 4, 9},        // Subject
    {0x0042001F, 32, 4, 8},        // SentRepresentingName
    {0x0057000B, 72, 1, 14},       // MessageToMe
    {0x0058000B, 73, 1, 15},       // MessageCcMe
    {0x0E03001F, 56, 4, 13},       // DisplayCc
    {0x0E04001F, 52, 4, 12},       // DisplayTo
    {0x0E05001F, 12, 4, 3},        // ParentDisplay
    {0x0E060040, 40, 8, 10},       // MessageDeliveryTime
    {0x0E070003, 24, 4, 6},        // MessageFlags
    {0x0E080003, 48, 4, 11},       // MessageSize
    {0x0E170003, 16, 4, 4},        // MessageStatus
    {0x0E2A000B, 74, 1, 17},       // ExchangeRemoteHeader
    {0x30080040, 64, 8, 18},       // LastModificationTime
    {0x67F10003, 8, 4, 2},         // LtpParentNid
    {0x67F20003, 0, 4, 0},         // LtpRowId
    {0x67F30003, 4, 4, 1},         // LtpRowVer
};

inline constexpr ltp::Column kAttachmentsColumns[] = {
    {0x0E200003, 12, 4, 3},        // AttachSize
    {0x3704001F, 20, 4, 5},        // AttachFilename (short
    {0x37050003, 16, 4, 4},        // AttachMethod
    {0x370B0003, 8, 4, 2},         // RenderingPosition
    {0x67F20003, 0, 4, 0},         // LtpRowId
    {0x67F30003, 4, 4, 1},         // LtpRowVer
};

inline constexpr ltp::Column kRecipientsColumns[] = {
    {0x0C150003, 24, 4, 7},        // RecipientType
    {0x0E0F000B, 48, 1, 2},        // Responsibility
    {0x0FF90102, 32, 4, 9},        // RecordKey
    {0x0FFE0003, 36, 4, 10},       // ObjectType
    {0x0FFF0102, 16, 4, 5},        // EntryId
    {0x3001001F, 20, 4, 6},        // DisplayName
    {0x3002001F, 8, 4, 3},         // AddressType
    {0x3003001F, 12, 4, 4},        // EmailAddress
    {0x300B0102, 28, 4, 8},        // SearchKey
    {0x39000003, 40, 4, 11},       // DisplayType
    {0x39FF001F, 44, 4, 13},       // 7BitDisplayName
    {0x3A40000B, 49, 1, 12},       // SendRichInfo
    {0x67F20003, 0, 4, 0},         // LtpRowId
    {0x67F30003, 4, 4, 1},         // LtpRowVer
};

inline constexpr ltp::Column kReceiveFoldersColumns[] = {
    {0x001A001F, 12, 4, 3},
    {0x66050003, 8, 4, 2},
    {0x67F20003, 0, 4, 0},
    {0x67F30003, 4, 4, 1},
};

inline constexpr ltp::Column kOutgoingQueueColumns[] = {
    {0x00390040, 16, 8, 4},
    {0x0E100003, 12, 4, 3},
    {0x0E140003, 8, 4, 2},
    {0x67F20003, 0, 4, 0},
    {0x67F30003, 4, 4, 1},
};

inline constexpr ltp::Column kBookkeeping6B6Columns[] = {
    {0x0E330014, 8, 8, 2},
    {0x0E370102, 16, 4, 3},
    {0x0E380003, 20, 4, 4},
    {0x67F20003, 0, 4, 0},
    {0x67F30003, 4, 4, 1},
};

inline constexpr ltp::Column kBookkeeping6D7Columns[] = {
    {0x001A001F, 36, 4, 8},
    {0x0E300102, 16, 4, 4},
    {0x0E310102, 12, 4, 3},
    {0x0E330014, 28, 8, 7},
    {0x0E340102, 24, 4, 6},
    {0x0E380003, 20, 4, 5},
    {0x0E3E0102, 8, 4, 2},
    {0x67F20003, 0, 4, 0},
    {0x67F30003, 4, 4, 1},
};

inline constexpr ltp::Column kBookkeeping6F8Columns[] = {
    {0x0E330014, 16, 8, 3},
    {0x30070040, 8, 8, 2},
    {0x67F20003, 0, 4, 0},
    {0x67F30003, 4, 4, 1},
};
// clang-format on

}  // namespace columns

inline constexpr ltp::TableSchema kHierarchy{columns::kHierarchyColumns, {52, 52, 53, 55}};
inline constexpr ltp::TableSchema kContents{columns::kContentsColumns, {120, 120, 122, 126}};
inline constexpr ltp::TableSchema kAssocContents{columns::kAssocContentsColumns, {56, 56, 57, 59}};
inline constexpr ltp::TableSchema kSearchContents{columns::kSearchContentsColumns, {72, 72, 75, 78}};
inline constexpr ltp::TableSchema kAttachments{columns::kAttachmentsColumns, {24, 24, 24, 25}};
inline constexpr ltp::TableSchema kRecipients{columns::kRecipientsColumns, {48, 48, 50, 52}};
inline constexpr ltp::TableSchema kReceiveFolders{columns::kReceiveFoldersColumns, {16, 16, 16, 17}};
inline constexpr ltp::TableSchema kOutgoingQueue{columns::kOutgoingQueueColumns, {24, 24, 24, 25}};
inline constexpr ltp::TableSchema kBookkeeping6B6{columns::kBookkeeping6B6Columns, {24, 24, 24, 25}};
inline constexpr ltp::TableSchema kBookkeeping6D7{columns::kBookkeeping6D7Columns, {40, 40, 40, 42}};
inline constexpr ltp::TableSchema kBookkeeping6F8{columns::kBookkeeping6F8Columns, {24, 24, 24, 25}};

static_assert(ltp::IsSound(kHierarchy));
static_assert(ltp::IsSound(kContents));
static_assert(ltp::IsSound(kAssocContents));
static_assert(ltp::IsSound(kSearchContents));
static_assert(ltp::IsSound(kAttachments));
static_assert(ltp::IsSound(kRecipients));
static_assert(ltp::IsSound(kReceiveFolders));
static_assert(ltp::IsSound(kOutgoingQueue));
static_assert(ltp::IsSound(kBookkeeping6B6));
static_assert(ltp::IsSound(kBookkeeping6D7));
static_assert(ltp::IsSound(kBookkeeping6F8));

}  // namespace velmora::messaging::schema
