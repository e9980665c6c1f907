// The property ids that recovery itself asks for, and the property types that anybody looks at. The ids that the
// converters ask for stand in their own tables.
#pragma once

#include <cstdint>

namespace velmora::recovery {

inline constexpr std::uint16_t kMessageClassId = 0x001A;  ///< of a folder's block: its presence means no folder
inline constexpr std::uint16_t kDisplayNameId = 0x3001;
inline constexpr std::uint16_t kContainerClassId = 0x3613;

inline constexpr std::uint16_t kImportanceId = 0x0017;
inline constexpr std::uint16_t kSensitivityId = 0x0036;
inline constexpr std::uint16_t kFlagIconId = 0x1095;

inline constexpr std::uint16_t kSubjectId = 0x0037;
inline constexpr std::uint16_t kConversationTopicId = 0x0070;
inline constexpr std::uint16_t kMessageSizeId = 0x0E08;

inline constexpr std::uint16_t kMessageFlagsId = 0x0E07;
inline constexpr std::uint32_t kHasAttachments = 0x10;  ///< a message flag
inline constexpr std::uint32_t kMembersId = 0x8055;     ///< long id: the members of a distribution list

inline constexpr std::uint16_t kPlainBodyId = 0x1000;
inline constexpr std::uint16_t kRtfBodyId = 0x1009;
inline constexpr std::uint16_t kHtmlBodyId = 0x1013;

inline constexpr std::uint16_t kAttachmentDataId = 0x3701;
inline constexpr std::uint16_t kShortFileNameId = 0x3704;
inline constexpr std::uint16_t kLongFileNameId = 0x3707;
inline constexpr std::uint16_t kMimeSequenceId = 0x3710;

inline constexpr std::uint16_t kTypeShort = 0x0002;
inline constexpr std::uint16_t kTypeLong = 0x0003;
inline constexpr std::uint16_t kTypeBoolean = 0x000B;
inline constexpr std::uint16_t kTypeObject = 0x000D;
inline constexpr std::uint16_t kTypeString8 = 0x001E;
inline constexpr std::uint16_t kTypeUnicode = 0x001F;
inline constexpr std::uint16_t kTypeTime = 0x0040;
inline constexpr std::uint16_t kTypeBinary = 0x0102;
inline constexpr std::uint16_t kTypeString8List = 0x101E;
inline constexpr std::uint16_t kTypeUnicodeList = 0x101F;

inline constexpr std::uint32_t kNameToIdMapNid = 0x61;
inline constexpr std::uint32_t kRootFolderNid = 0x122;
inline constexpr std::uint32_t kAttachmentTableNid = 0x671;
inline constexpr std::uint32_t kOrphanedMailsMarker = 0x1122;  ///< stands for a folder that has no node

/// Low 5 bits of a node identifier. They only serve the report: what a node is, its block tells.
inline constexpr std::uint32_t kNidTypeMask = 0x1F;
inline constexpr std::uint32_t kNidTypeFolder = 0x02;
inline constexpr std::uint32_t kNidTypeMessage = 0x04;
inline constexpr std::uint32_t kNidTypeAttachment = 0x05;

}  // namespace velmora::recovery
