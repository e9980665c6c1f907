// The attachments of an item, from the moment they are added.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "store/ltp/property_context.h"
#include "store/ltp/property_context_writer.h"
#include "store/messaging/byte_writer.h"
#include "store/messaging/file_time.h"
#include "store/messaging/property_bag.h"
#include "store/ndb/ndb_writer.h"
#include "store/operations.h"

namespace velmora::messaging {

/// A tree of the store that is kept, though nothing in the store refers to it, as long as this lives. It
/// must go before the store does.
class TreeHold {
 public:
  TreeHold(ndb::NdbWriter& ndb, const ndb::NodeTrees& trees) : ndb_(ndb), trees_(trees) { ndb_.Hold(trees_); }
  ~TreeHold() { ndb_.LetGo(trees_); }
  TreeHold(const TreeHold&) = delete;
  TreeHold& operator=(const TreeHold&) = delete;

 private:
  ndb::NdbWriter& ndb_;
  ndb::NodeTrees trees_;
};

/// One attachment. Its content lies in memory when it is short, else in the store already, where several
/// messages can share it.
struct Attachment {
  text::Text name;  ///< file name and display name
  bool isContactPhoto = false;
  Bytes shortContent;
  ndb::DataTree content;     ///< of a long content
  ndb::WrittenNode message;  ///< of an embedded message
  Nid messageNid{};          ///< its id, which no other message has: some readers look among all of the store
  std::shared_ptr<TreeHold> hold;

  bool IsMessage() const { return message.trees.bidData != kNoBid; }
};

/// Streams a content into an attachment. Raises what the content raises, and failures of writing.
Attachment WriteContent(ndb::NdbWriter& ndb, const output::ContentSource& content, text::TextView name);

/// An attachment that is a message, which nothing else needs to refer to.
Attachment AttachMessage(ndb::NdbWriter& ndb, const ndb::WrittenNode& message, text::TextView name);

/// The attachments of a saved message, their contents shared with it. Raises STG_E_READFAULT.
std::vector<Attachment> ReadAttachments(ndb::NdbWriter& ndb, ltp::PropertyContext& message);

/// Counts the attachments of a saved message and of those within it. What cannot be read is not counted.
output::AttachmentTotals CountAttachments(const ndb::BlockSource& source, const ltp::PropertyContext& message);

/// Name of 8 characters, dot and 3, as old readers want it ("LONGNA~1.TXT"); empty for an empty name.
text::Text ShortFileName(text::TextView name);

/// Writes the attachment's object. `row` receives the properties that the attachment table copies.
Result<ndb::WrittenNode> WriteAttachment(const Attachment& attachment, FileTime now, ltp::PropertyContextWriter& node,
                                         PropertyBag& row);

}  // namespace velmora::messaging
