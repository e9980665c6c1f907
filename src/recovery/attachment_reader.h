// Tries the sub-nodes of one message as attachments.
#pragma once

#include <cstdint>
#include <optional>

#include "recovery/attachment_content.h"
#include "recovery/item_run.h"
#include "recovery/property_context.h"

namespace velmora::recovery {

/// One a message: what it learns of a name passes from one attachment to the next.
class AttachmentReader {
 public:
  explicit AttachmentReader(ItemRun& items) : items_(items) {}

  enum class Result {
    kNoAttachment,  ///< no attachment record, or the message has no mail
    kTaken,         ///< its content was attached, or it was queued as a message
    kLost,          ///< an attachment record, but nothing could be brought across
  };

  /// One candidate, with the record of the block `entry.bidData`. Raises what attaching raises.
  Result ReadAttachment(const SubNodeEntry& entry, const engine::BlockRecord& record);

  /// What could not be brought across of the last candidate, in plain words; empty when nothing is missing.
  const text::Text& Missing() const { return missing_; }

  /// A content that does not stand in the attachment's own block has been attached to the message.
  bool AttachmentAdded() const { return attachmentAdded_; }

 private:
  /// What the record array of one attachment tells of its names.
  struct Names {
    text::Text fileName;
    text::Text lastName;  ///< the name under which the content would be made; empty if that fails
    std::uint16_t lastId = 0;
  };

  std::optional<Names> ReadNames(ByteView block, const PropertyContext& context);
  void TakeFileName(Names& names, ByteView block, HeapRange range);
  Result ReadContent(const SubNodeEntry& entry, ByteView block, const PropertyContext& context, const Names& names,
                     bool* lineWritten);
  void NameLastRecord(bool lineWritten);

  std::optional<Result> WriteAttachmentData(ByteView block, const PropertyContext& context);
  Result ReadAttachmentSubNode(const SubNodeEntry& entry, const std::optional<PropertyRecord>& data);
  Result AttachFile();
  void ReadDataBlocks(const engine::BlockRecord& record, AttachmentContent& content);
  Result Lost(text::Text missing);
  bool QueueEmbedded(const SubNodeEntry& entry, ByteView block);

  text::Text ReadText(ByteView block, HeapRange range) const;

  ItemRun& items_;
  bool attachmentIsEmbedded_ = false;

  /// The file under work, and the name it was made under. An attachment that has names and no data leaves it open,
  /// and the next one that brings no name of its own fills it.
  std::optional<AttachmentContent> file_;
  text::Text fileName_;

  text::Text embeddedName_;
  bool attachmentAdded_ = false;
  text::Text missing_;
};

}  // namespace velmora::recovery
