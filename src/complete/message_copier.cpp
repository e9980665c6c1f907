#include "complete/message_copier.h"

#include <algorithm>

#include "complete/limits.h"
#include "store/format/classes.h"
#include "store/format/property_tags.h"
#include "store/format/store_nodes.h"
#include "store/ltp/multi_value.h"
#include "store/messaging/failures.h"
#include "store/ndb/data_tree_reader.h"
#include "store/ndb/subnode_tree_writer.h"

namespace velmora::complete {
namespace {

using messaging::PropertyBag;

constexpr std::int32_t kNotInText = -1;  ///< rendering position of an attachment beside the text

text::Text NameOf(const PropertyBag& attachment) {
  for (const PropTag tag : {tag::kAttachLongFilename, tag::kAttachFilename, tag::kDisplayName}) {
    if (!attachment.Value(tag).empty()) return ltp::DecodeText(attachment.Value(tag));
  }
  return {};
}

Failure TooMuch(platform::FailedObject object) {
  return {FailureKind::kNotSupported, std::move(object), 0, "the store claims more than it can hold"};
}

}  // namespace

/// What every message has, for one that lacks it.
PropertyBag MessageCopier::DefaultsOf(ltp::PropertyContext& message) {
  const auto time = [&](PropTag tag) { return message.Integer64(tag); };
  std::optional<std::int64_t> created = time(tag::kCreationTime);
  for (const PropTag tag : {tag::kMessageDeliveryTime, tag::kClientSubmitTime, tag::kLastModificationTime}) {
    if (!created) created = time(tag);
  }
  PropertyBag defaults;
  const auto html = MakeTag(IdOf(tag::kHtml), PropType::kString8);
  if (message.Find(IdOf(tag::kHtml)) != nullptr && message.Find(IdOf(tag::kHtml))->Tag() == html) {
    defaults.PutInteger32(tag::kInternetCodepage,
                          tools_.pages.Of(message).WindowsNumber());  // it was in that of the store
  }
  const auto when = created ? static_cast<text::FileTime>(*created) : tools_.target.Now();
  defaults.PutText(tag::kMessageClass, kMailMessageClass);
  defaults.PutTime(tag::kCreationTime, when);
  defaults.PutTime(tag::kLastModificationTime, when);
  if (message.Find(IdOf(tag::kSearchKey)) == nullptr) defaults.PutBytes(tag::kSearchKey, tools_.target.NewUid());
  return defaults;
}

CopiedMessage MessageCopier::Copy(const ndb::NodeTrees& trees, int depth) {
  Opened from{trees, ndb::Faults(), nullptr, depth};
  auto context = ltp::PropertyContext::Open(tools_.source, trees, &from.faults);
  CopiedMessage out;
  from.page = &tools_.pages.Of(context);
  for (const Failure& fault : from.faults.List()) {
    out.missing.push_back({.kind = MissingPart::Kind::kProperty, .cause = fault});
  }
  AddHurt(tools_.source, {.kind = MissingPart::Kind::kBytes}, out.missing);
  out.message.properties =
      properties_.Copy(context, kMessage, *from.page, from.faults, DefaultsOf(context), out.missing);
  std::vector<ndb::SubnodeEntry> subnodes;
  try {
    subnodes = context.Subnodes();
  } catch (const std::exception&) {
    out.missing.push_back({.kind = MissingPart::Kind::kRecipients, .cause = CauseOfLoss()});
    return out;
  }
  AddHurt(tools_.source, {.kind = MissingPart::Kind::kAttachment}, out.missing);
  const MessageParts parts(subnodes);
  CopyRecipients(from, parts, out);
  CopyAttachments(from, parts, out);
  return out;
}

PropertyBag MessageCopier::CopyRow(ltp::TableContext& table, std::size_t row, const text::CodePage& page, Owner owner,
                                   Missing& missing) {
  PropertyBag out;
  for (const ltp::Column& column : table.Columns()) {
    if (column.tag == tag::kLtpRowId || column.tag == tag::kLtpRowVer || IsLeftOut(IdOf(column.tag), owner)) continue;
    try {
      if (!table.Cell(row, column, cell_)) continue;
      tools_.account.bytes += cell_.size();
      if (!tools_.allowance.TakeText(cell_.size())) throw FailureError(TooMuch({ObjectKind::kProperty, column.tag}));
      const PropTag targetTag = properties_.TargetTag(column.tag);
      PropertyCopier::CheckIsFirst(column.tag, targetTag, out);
      properties_.Put(column.tag, targetTag, cell_, page, out);
    } catch (const std::exception&) {
      missing.push_back({.kind = MissingPart::Kind::kProperty, .tag = column.tag, .cause = CauseOfLoss()});
    }
  }
  return out;
}

void MessageCopier::CopyRecipients(Opened& from, const MessageParts& parts, CopiedMessage& out) {
  const ndb::SubnodeEntry* subnode = parts.recipientTable;
  if (subnode == nullptr) return;
  const std::size_t faultsBefore = from.faults.Count();
  std::optional<ltp::TableContext> table;
  try {
    table.emplace(ltp::TableContext::Open(tools_.source, subnode->trees, &from.faults));
  } catch (const FailureError& failure) {
    out.missing.push_back({.kind = MissingPart::Kind::kRecipients, .cause = failure.Cause()});
    static_cast<void>(tools_.source.TakeHurt());
    return;
  }
  Missing missing;
  for (std::size_t row = 0; row < table->RowCount(); ++row) {
    if (!tools_.allowance.TakeHeld(sizeof(PropertyBag))) {
      missing.push_back({.cause = TooMuch({ObjectKind::kSubnode, nid::kRecipientTable})});
      break;
    }
    out.message.recipients.push_back(CopyRow(*table, row, *from.page, kRecipient, missing));
  }
  tools_.account.recipients += out.message.recipients.size();
  if (missing.empty() && from.faults.Count() != faultsBefore) missing.push_back({.cause = from.faults.List().back()});
  if (missing.empty()) AddHurt(tools_.source, {}, missing);
  static_cast<void>(tools_.source.TakeHurt());
  for (MissingPart& part : missing) {
    part.kind = MissingPart::Kind::kRecipients;
    out.missing.push_back(std::move(part));
  }
}

void MessageCopier::CopyAttachments(Opened& from, const MessageParts& parts, CopiedMessage& out) {
  std::optional<ltp::TableContext> rows;
  if (const ndb::SubnodeEntry* subnode = parts.attachmentTable) {
    rows = IfReadable([&] { return ltp::TableContext::Open(tools_.source, subnode->trees, &from.faults); });
  }
  // An attachment whose sub-node is lost is known by its row alone: what that tells of it comes across.
  const auto copyRow = [&](std::size_t row, const Failure& cause) {
    Missing missing;
    PropertyBag attachment = CopyRow(*rows, row, *from.page, kAttachment, missing);
    out.missing.push_back({.kind = MissingPart::Kind::kAttachment,
                           .name = NameOf(attachment),
                           .size = static_cast<std::uint32_t>(rows->Integer32(row, tag::kAttachSize).value_or(0)),
                           .cause = cause});
    attachment.PutInteger32(tag::kAttachMethod, 0);
    if (!attachment.Has(tag::kRenderingPosition)) attachment.PutInteger32(tag::kRenderingPosition, kNotInText);
    out.message.attachments.push_back(std::move(attachment));
  };
  std::size_t row = 0;
  const auto copyRowsBefore = [&](std::uint64_t nid) {
    for (; rows && row < rows->RowCount() && rows->RowId(row) < nid; ++row) {
      copyRow(row, {FailureKind::kCorrupt,
                    {ObjectKind::kSubnode, rows->RowId(row)},
                    0,
                    "the attachment's sub-node is not there"});
    }
  };
  for (const ndb::SubnodeEntry* subnode : parts.attachments) {
    copyRowsBefore(Value(subnode->nid));
    const bool hasRow = rows && row < rows->RowCount() && rows->RowId(row) == Value(subnode->nid);
    const std::size_t ownRow = row;
    if (hasRow) ++row;
    if (!tools_.allowance.TakePart()) {
      out.missing.push_back(
          {.kind = MissingPart::Kind::kAttachment, .cause = TooMuch({ObjectKind::kSubnode, subnode->nid})});
      continue;
    }
    ++tools_.account.attachments;
    ndb::Faults faults(subnode->nid);
    std::optional<ltp::PropertyContext> context;
    try {
      context.emplace(ltp::PropertyContext::Open(tools_.source, subnode->trees, &faults));
    } catch (const FailureError& failure) {
      static_cast<void>(tools_.source.TakeHurt());
      if (hasRow) {
        copyRow(ownRow, failure.Cause());
      } else {
        out.missing.push_back({.kind = MissingPart::Kind::kAttachment, .cause = failure.Cause()});
      }
      continue;
    }
    out.message.attachments.push_back(CopyAttachment(from, *context, faults, out.missing));
  }
  copyRowsBefore(std::uint64_t{UINT32_MAX} + 1);
}

PropertyBag MessageCopier::CopyAttachment(Opened& from, ltp::PropertyContext& context, const ndb::Faults& faults,
                                          Missing& missing) {
  Missing ofThis;
  for (const Failure& fault : faults.List()) ofThis.push_back({.cause = fault});
  AddHurt(tools_.source, {}, ofThis);
  PropertyBag defaults;
  defaults.PutInteger32(tag::kAttachMethod, 0);
  defaults.PutInteger32(tag::kRenderingPosition, kNotInText);
  PropertyBag attachment = properties_.Copy(context, kAttachment, *from.page, faults, defaults, ofThis);
  const std::size_t faultsBefore = faults.Count();
  try {
    CopyObject(context, from.depth, attachment, ofThis);
  } catch (const std::exception&) {
    ofThis.push_back({.cause = CauseOfLoss()});
  }
  AddFault(faults, faultsBefore, {}, ofThis);
  AddHurt(tools_.source, {}, ofThis);
  for (MissingPart& part : ofThis) {
    if (part.kind == MissingPart::Kind::kObject) part.kind = MissingPart::Kind::kAttachment;
    if (part.name.empty()) part.name = NameOf(attachment);
    missing.push_back(std::move(part));
  }
  return attachment;
}

/// The sub-node that an attachment's data are: a message, or whatever else another program has put there.
void MessageCopier::CopyObject(ltp::PropertyContext& from, int depth, PropertyBag& out, Missing& missing) {
  const auto subnode = ObjectOf(from);
  if (!subnode) return;
  if (depth == kMostDepth) RaiseCorrupt({ObjectKind::kSubnode, subnode->nid}, depth, "messages nest too deep");
  if (TypeOf(subnode->nid) != NidType::kNormalMessage) {
    tools_.target.PutObject(out, CopyNode(subnode->trees, from.FaultList(), depth));
    return;
  }
  CopiedMessage embedded = Copy(subnode->trees, depth + 1);
  std::ranges::move(embedded.missing, std::back_inserter(missing));
  tools_.target.PutMessage(out, std::move(embedded.message));
  ++tools_.account.embedded;
}

ndb::WrittenNode MessageCopier::CopyNode(const ndb::NodeTrees& trees, ndb::Faults* faults, int depth) {
  if (depth == kMostDepth) RaiseCorrupt({ObjectKind::kBlock, trees.bidSub}, depth, "sub-nodes nest too deep");
  if (!tools_.allowance.TakePart()) throw FailureError(TooMuch({ObjectKind::kBlock, trees.bidSub}));
  ndb::NdbWriter& ndb = tools_.target.Ndb();
  ndb::WrittenNode node;
  const ndb::DataTree data = properties_.CopyTree(ndb::DataTreeReader::Open(tools_.source, trees.bidData, faults));
  node.trees.bidData = data.bid;
  node.dataSize = data.size;
  ndb::SubnodeTreeWriter below(ndb);
  try {
    for (const ndb::SubnodeEntry& subnode : ndb::ListSubnodes(tools_.source, trees.bidSub, faults)) {
      below.Add(subnode.nid, CopyNode(subnode.trees, faults, depth + 1));
    }
    const ndb::SubnodeTree tree = messaging::AsOperation([&] { return below.Finish(); });
    node.trees.bidSub = tree.bid;
    node.dataSize += tree.dataSize;
    return node;
  } catch (...) {
    ndb.Discard(node.trees);
    throw;
  }
}

}  // namespace velmora::complete
