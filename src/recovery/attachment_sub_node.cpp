// What stands behind an attachment's own sub-node block: its content, or a message.
#include "recovery/attachment_reader.h"
#include "recovery/lost_items.h"
#include "recovery/property_ids.h"
#include "recovery/value_stream.h"

namespace velmora::recovery {

namespace {

/// One identifier is looked for further on when it has no block: its block is that of the last id tried.
constexpr std::uint32_t kWanderingBid = 0x21DA;
constexpr std::uint32_t kLastTriedBid = kWanderingBid + 100;

constexpr std::uint16_t kExtendedBlock = 0x0101;
constexpr std::uint16_t kSubNodeBlock = 0x0002;

/// The first entry of the list is what is read; does the data lie in another one, or not in the list at all?
bool IsOtherSubNode(ByteView list, std::uint32_t width, std::uint32_t nidOfData) {
  return list.U16(0) == kSubNodeBlock && list.U32(width) != nidOfData;
}

/// Messages within messages: several times what people forward to one another.
constexpr int kDeepestEmbedding = 100;

/// A message that would be embedded in itself has no end, and one behind very many others no sense.
bool HasEnd(const ItemRun& items, const ItemWorkRecord& record) {
  int depth = 0;
  for (std::optional<std::size_t> at = record.parent; at; at = items.queue[*at].parent) {
    const ItemWorkRecord& ancestor = items.queue[*at];
    if (ancestor.bidData == record.bidData && ancestor.bidSub == record.bidSub) return false;
    if (++depth > kDeepestEmbedding) return false;
  }
  return true;
}

}  // namespace

AttachmentReader::Result AttachmentReader::ReadAttachmentSubNode(const SubNodeEntry& entry,
                                                                 const std::optional<PropertyRecord>& data) {
  auto record = items_.blocks.FindBlockOrLower(entry.bidSub);
  if (!record && entry.bidSub == kWanderingBid) record = items_.blocks.FindBlock(kLastTriedBid);
  if (!record) return Lost(TextOf(BlockFault::NotFound(entry.bidSub)));
  const auto bytes = items_.blocks.ReadChunk(record->offset, record->size);
  if (!bytes) return Lost(TextOf(BlockFault::Of(BlockFault::Cause::kNotRead, *record)));

  const ByteView block(*bytes);
  const bool isMessage = block.U16(0) != kExtendedBlock && attachmentIsEmbedded_;
  Result result = Result::kLost;
  if (isMessage) {
    // Its content is a message of its own: nothing is attached here.
    result = QueueEmbedded(entry, block) ? Result::kTaken : Lost(u"messages within messages have no end here");
    file_.reset();
  } else if (file_) {
    ReadDataBlocks(*record, *file_);
    if (data && IsOtherSubNode(block, items_.engine.layout.Pitch(), data->value)) {
      missing_ = u"its content is not read; that of another sub-node, " + DecimalOf(file_->Size()) +
                 u" bytes, stands in its place";
    }
  }
  attachmentAdded_ = true;

  if (!items_.message.IsKind(ItemKind::kContact)) return isMessage ? result : AttachFile();
  const auto& contact = items_.message.Item(ItemKind::kContact);
  if (file_ && !file_->Failed()) {
    contact->AddPicture(*file_);
    ++items_.state.report.attachments;
    result = Result::kTaken;
  }
  contact->Save();
  if (result == Result::kLost && missing_.empty()) Lost(u"it has no name that a file can have");
  return result;
}

void AttachmentReader::ReadDataBlocks(const engine::BlockRecord& record, AttachmentContent& content) {
  const std::uint64_t before = content.Size();
  const auto append = [&content](const Bytes& piece) { content.Append(piece); };
  BlockChain chain;
  if (BuildBlockChainAt(items_.engine, record, items_.state.allowance, chain)) {
    WriteStreamToFile(items_.engine, chain, items_.state.allowance, append);
  } else if (const auto block = ReadDataBlock(items_.engine, record, record.bid, items_.state.allowance)) {
    append(block->bytes);
  }
  missing_ = MissingOf(chain, content.Size() - before);
}

bool AttachmentReader::QueueEmbedded(const SubNodeEntry& entry, ByteView block) {
  ItemWorkRecord& record = items_.queue.emplace_back();
  record.nid = entry.nid;
  record.parent = items_.cursor;

  // The way from slot to slot is none from entry to entry: only the first is a true one, and what a further one
  // holds overwrites it.
  const bool wide = items_.engine.layout.wideFormat;
  const std::uint32_t width = wide ? 8 : 4;
  const std::uint32_t entryCount = block.U16(2);
  const auto& mail = items_.message.Item(ItemKind::kMail);
  std::uint32_t counter = 0;
  for (std::uint64_t slot = 2ull * width; counter <= entryCount && slot < block.Size(); slot = slot * 2 + width) {
    record.bidData = block.U32(slot);
    record.bidSub = block.U32(slot + width);
    if (record.bidData != 0) ++counter;
    if (record.bidSub != 0) ++counter;
    mail->Put(output::Field::Sent, true);
    record.parentItem = mail;
  }

  if (HasEnd(items_, record)) return true;
  items_.queue.pop_back();
  return false;
}

}  // namespace velmora::recovery
