// Tries a sub-node of a message as an attachment. Rules, in the order in which they are applied:
//
//  1. A block that is no property context, or whose tree is none, is no attachment: so the tables drop out.
//  2. ReadNames: the first 3704 gives the file name, a 3707 behind it replaces it. A 3001 ahead of them is the display
//     name of an embedded message, and so is what goes by the name "Untitled Attachment". A name that does not stand
//     in the block ends the attempt.
//  3. A name is tried as that of a file, characters that a file name may not have being blanks in it. What had no name
//     of its own takes the file that the attachment before left open (docs/fidelity.md#left-attachment).
//  4. WriteAttachmentData: where a name was the last record (docs/fidelity.md#name-last) and the content stands in the
//     block, that is the content. A text gives as many bytes as it has characters.
//  5. ReadAttachmentSubNode: otherwise the block behind the attachment's own `bidSub` counts. In one of an embedded
//     message stand the blocks of that message; any other leads to the content (docs/fidelity.md#list-in-content).
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "platform/spool_file.h"
#include "recovery/property_context.h"
#include "recovery/recovery_state.h"
#include "recovery/sub_node_list.h"

namespace velmora::recovery {

/// A reason for the report.
inline constexpr text::TextView kNoFileName = u"it has no name that a file can have";

/// The content of an attachment on its way to the new item. Small ones stay in memory, longer ones go to a temporary
/// file without a name, so that memory does not grow with the attachment and nothing is created under a name that the
/// source chose.
class AttachmentContent : public output::ContentSource {
 public:
  /// Bytes that cannot be kept make the whole content unusable: see Failed.
  void Append(std::span<const std::byte> bytes) {
    if (!failed_) failed_ = !spool_.Append(bytes);
  }
  bool Failed() const { return failed_; }

  std::uint64_t Size() const override { return spool_.Size(); }
  std::size_t ReadAt(std::uint64_t offset, std::span<std::byte> out) const override {
    const auto delivered = spool_.ReadAt(offset, out);
    if (!delivered) throw output::OutputFailure(output::ResultCode::STG_E_READFAULT, delivered.error().message);
    return *delivered;
  }

 private:
  platform::SpoolFile spool_;
  bool failed_ = false;
};

/// The blocks of an embedded message, as one slot of its list names them.
struct EmbeddedSlot {
  std::uint32_t bidData = 0;
  std::uint32_t bidSub = 0;
};

/// What a sub-node was found to be.
struct Attachment {
  bool isRecord = false;                     ///< false: no attachment by its block
  std::optional<AttachmentContent> content;  ///< to be attached as `name`
  text::Text name;
  std::optional<std::vector<EmbeddedSlot>> message;  ///< an embedded message; the last slot counts
  bool outOfLine = false;                            ///< the content, or message, stands behind a sub-node
  text::Text embeddedName;               ///< display name for the last message queued; empty: it keeps its own
  std::optional<text::Text> loggedName;  ///< the file name, but of an embedded message
  text::Text missing;  ///< what could not be brought across, in plain words; empty when nothing is missing
};

/// One a message.
class AttachmentReader {
 public:
  explicit AttachmentReader(const ValueSource& source) : source_(source) {}

  /// The candidate `entry`, with the record of the block `entry.bidData`.
  Attachment ReadAttachment(const SubNodeEntry& entry, const engine::BlockRecord& record);

 private:
  /// What one attachment of a message leaves to the next (docs/fidelity.md#left-attachment).
  struct LeftByTheAttachmentBefore {
    bool isEmbedded = false;
    text::Text embeddedName;
    std::optional<AttachmentContent> file;  ///< open, since the attachment had names and no content
    text::Text fileName;                    ///< under which it was opened
  };

  /// What the record array of one attachment says of its names.
  struct Names {
    text::Text fileName;
    text::Text lastName;  ///< the name under which the content would be made; empty if that fails
    std::uint16_t lastId = 0;
  };

  std::optional<Names> ReadNames(ByteView block, const PropertyContext& context);
  void TakeFileName(Names& names, ByteView block, HeapRange range);
  void ReadContent(const SubNodeEntry& entry, ByteView block, const PropertyContext& context, const Names& names,
                   Attachment& attachment);
  bool WriteAttachmentData(ByteView block, const PropertyContext& context, Attachment& attachment);
  void ReadAttachmentSubNode(const SubNodeEntry& entry, const std::optional<PropertyRecord>& data,
                             Attachment& attachment);
  text::Text ReadDataBlocks(const engine::BlockRecord& record);
  std::vector<EmbeddedSlot> ReadEmbeddedSlots(ByteView block) const;
  void HandOn(Attachment& attachment);
  text::Text ReadText(ByteView block, HeapRange range) const;

  ValueSource source_;
  LeftByTheAttachmentBefore left_;
};

}  // namespace velmora::recovery
