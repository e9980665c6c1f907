// The properties of mail stores that this layer names, as tags: identifier in the high half, type in the low.
#pragma once

#include "store/format/prop_tag.h"

namespace velmora {

namespace tag {

// Messages.
inline constexpr PropTag kImportance = 0x00170003;
inline constexpr PropTag kMessageClass = 0x001A001F;
inline constexpr PropTag kReplyTime = 0x00300040;
inline constexpr PropTag kSensitivity = 0x00360003;
inline constexpr PropTag kSubject = 0x0037001F;
inline constexpr PropTag kClientSubmitTime = 0x00390040;
inline constexpr PropTag kSentRepresentingSearchKey = 0x003B0102;
inline constexpr PropTag kSentRepresentingEntryId = 0x00410102;
inline constexpr PropTag kSentRepresentingName = 0x0042001F;
inline constexpr PropTag kStartDate = 0x00600040;
inline constexpr PropTag kEndDate = 0x00610040;
inline constexpr PropTag kSentRepresentingAddressType = 0x0064001F;
inline constexpr PropTag kSentRepresentingEmailAddress = 0x0065001F;
inline constexpr PropTag kConversationTopic = 0x0070001F;
inline constexpr PropTag kSenderEntryId = 0x0C190102;
inline constexpr PropTag kSenderName = 0x0C1A001F;
inline constexpr PropTag kSenderSearchKey = 0x0C1D0102;
inline constexpr PropTag kSenderAddressType = 0x0C1E001F;
inline constexpr PropTag kSenderEmailAddress = 0x0C1F001F;
inline constexpr PropTag kDisplayBcc = 0x0E02001F;
inline constexpr PropTag kDisplayCc = 0x0E03001F;
inline constexpr PropTag kDisplayTo = 0x0E04001F;
inline constexpr PropTag kMessageDeliveryTime = 0x0E060040;
inline constexpr PropTag kMessageFlags = 0x0E070003;
inline constexpr PropTag kMessageSize = 0x0E080003;
inline constexpr PropTag kMessageStatus = 0x0E170003;
inline constexpr PropTag kRtfInSync = 0x0E1F000B;
inline constexpr PropTag kToDoItemFlags = 0x0E2B0003;
inline constexpr PropTag kBody = 0x1000001F;
inline constexpr PropTag kRtfCompressed = 0x10090102;
inline constexpr PropTag kHtml = 0x10130102;
inline constexpr PropTag kNativeBody = 0x10160003;
inline constexpr PropTag kIconIndex = 0x10800003;
inline constexpr PropTag kLastVerbExecuted = 0x10810003;
inline constexpr PropTag kFlagStatus = 0x10900003;
inline constexpr PropTag kFollowupIcon = 0x10950003;
inline constexpr PropTag kConversationId = 0x30130102;
inline constexpr PropTag kInternetCodepage = 0x3FDE0003;
inline constexpr PropTag kSenderSmtpAddress = 0x5D01001F;
inline constexpr PropTag kSentRepresentingSmtpAddress = 0x5D02001F;

// Several kinds of object.
inline constexpr PropTag kObjectType = 0x0FFE0003;
inline constexpr PropTag kRecordKey = 0x0FF90102;
inline constexpr PropTag kEntryId = 0x0FFF0102;
inline constexpr PropTag kDisplayName = 0x3001001F;
inline constexpr PropTag kAddressType = 0x3002001F;
inline constexpr PropTag kEmailAddress = 0x3003001F;
inline constexpr PropTag kCreationTime = 0x30070040;
inline constexpr PropTag kLastModificationTime = 0x30080040;
inline constexpr PropTag kSearchKey = 0x300B0102;

// Recipients.
inline constexpr PropTag kRecipientType = 0x0C150003;
inline constexpr PropTag kResponsibility = 0x0E0F000B;
inline constexpr PropTag kDisplayType = 0x39000003;
inline constexpr PropTag k7BitDisplayName = 0x39FF001F;
inline constexpr PropTag kSendRichInfo = 0x3A40000B;

// Attachments.
inline constexpr PropTag kAttachSize = 0x0E200003;
inline constexpr PropTag kAttachDataBinary = 0x37010102;
inline constexpr PropTag kAttachDataObject = 0x3701000D;
inline constexpr PropTag kAttachExtension = 0x3703001F;
inline constexpr PropTag kAttachFilename = 0x3704001F;
inline constexpr PropTag kAttachMethod = 0x37050003;
inline constexpr PropTag kAttachLongFilename = 0x3707001F;
inline constexpr PropTag kAttachMimeSequence = 0x37100003;
inline constexpr PropTag kRenderingPosition = 0x370B0003;
inline constexpr PropTag kAttachmentContactPhoto = 0x7FFF000B;

// Folders.
inline constexpr PropTag kContentCount = 0x36020003;
inline constexpr PropTag kContentUnreadCount = 0x36030003;
inline constexpr PropTag kSubfolders = 0x360A000B;
inline constexpr PropTag kContainerClass = 0x3613001F;
inline constexpr PropTag kPstHiddenCount = 0x66350003;
inline constexpr PropTag kPstHiddenUnread = 0x66360003;
inline constexpr PropTag kAdditionalRenEntryIds = 0x36D81102;

// The message store.
inline constexpr PropTag kReplVersionHistory = 0x0E340102;
inline constexpr PropTag kReplFlags = 0x0E380003;
inline constexpr PropTag kValidFolderMask = 0x35DF0003;
inline constexpr PropTag kIpmSubTreeEntryId = 0x35E00102;
inline constexpr PropTag kIpmOutboxEntryId = 0x35E20102;
inline constexpr PropTag kIpmWastebasketEntryId = 0x35E30102;
inline constexpr PropTag kIpmSentMailEntryId = 0x35E40102;
inline constexpr PropTag kFinderEntryId = 0x35E70102;
inline constexpr PropTag kPstLrNoRestrictions = 0x6633000B;
inline constexpr PropTag kLatestPstEnsure = 0x66FA0003;
inline constexpr PropTag kPstPassword = 0x67FF0003;
inline constexpr PropTag kSearchFlags = 0x660B0003;
inline constexpr PropTag kReceiveFolderNid = 0x66050003;

// Rows of tables.
inline constexpr PropTag kLtpRowId = 0x67F20003;
inline constexpr PropTag kLtpRowVer = 0x67F30003;

}  // namespace tag
}  // namespace velmora
