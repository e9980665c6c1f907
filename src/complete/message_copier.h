// A message with its recipients, its attachments and the messages in them.
#pragma once

#include <optional>
#include <vector>

#include "complete/message_parts.h"
#include "complete/property_copier.h"
#include "store/ltp/table_context.h"
#include "store/messaging/objects/message_writer.h"
#include "store/ndb/subnode_tree_reader.h"

namespace velmora::complete {

/// What was read of a message, with what was not.
struct CopiedMessage {
  messaging::Message message;
  Missing missing;
};

class MessageCopier {
 public:
  explicit MessageCopier(CopyTools& tools) : tools_(tools), properties_(tools) {}

  /// Reads the message of these trees; what is long of it is in the new store already. Raises FailureError when not
  /// even its property context can be opened.
  CopiedMessage Copy(const ndb::NodeTrees& trees) { return Copy(trees, 0); }

 private:
  /// The object of a message under work, opened.
  struct Opened {
    const ndb::NodeTrees& trees;
    ndb::Faults faults;
    const text::CodePage* page = nullptr;
    int depth = 0;  ///< of the embedding
  };

  CopiedMessage Copy(const ndb::NodeTrees& trees, int depth);
  void CopyRecipients(Opened& from, const MessageParts& parts, CopiedMessage& out);
  void CopyAttachments(Opened& from, const MessageParts& parts, CopiedMessage& out);
  messaging::PropertyBag CopyAttachment(Opened& from, ltp::PropertyContext& context, const ndb::Faults& faults,
                                        Missing& missing);
  void CopyObject(ltp::PropertyContext& from, int depth, messaging::PropertyBag& out, Missing& missing);
  ndb::WrittenNode CopyNode(const ndb::NodeTrees& trees, ndb::Faults* faults, int depth);
  messaging::PropertyBag CopyRow(ltp::TableContext& table, std::size_t row, const text::CodePage& page, Owner owner,
                                 Missing& missing);
  messaging::PropertyBag DefaultsOf(ltp::PropertyContext& message);

  CopyTools& tools_;
  PropertyCopier properties_;
  std::vector<std::byte> cell_;  ///< of the row at hand
};

}  // namespace velmora::complete
