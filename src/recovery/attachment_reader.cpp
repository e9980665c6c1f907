#include "recovery/attachment_reader.h"

#include <utility>

#include "recovery/heap_text.h"
#include "recovery/value_stream.h"
#include "store/format/block.h"
#include "store/format/property_tags.h"
#include "text/plausibility.h"

namespace velmora::recovery {

using text::Text;

namespace {

constexpr std::size_t kLongestName = 255;
constexpr text::TextView kNoContent = u"it has no content";

/// One identifier is looked for further on when it has no block: its block is that of the last id tried
/// (docs/fidelity.md#wandering-block).
constexpr std::uint32_t kWanderingBid = 0x21DA;
constexpr std::uint32_t kLastTriedBid = kWanderingBid + 100;

/// Characters that may not stand in a file name become blanks.
void ReplaceForbidden(Text& name) {
  for (char16_t& unit : name) {
    if (text::TextView(u"\\/:*?<>|\"").find(unit) != text::TextView::npos) unit = u' ';
  }
}

/// Could a file of this name be made?
bool CanBeFileName(const Text& name) { return !name.empty() && name.size() <= kLongestName; }

/// An object stands in its block as the id of its sub-node and its size, and that is what is written.
Text MissingInLine(ByteView block, const PropertyRecord& data, HeapRange range, std::uint64_t written) {
  if (data.wPropType == PropType::kObject) {
    return u"its content is an object of " + DecimalOf(block.U32(range.start + 4u)) + u" bytes, which is not read; " +
           DecimalOf(written) + u" bytes that point to it stand in its place";
  }
  const std::uint64_t size = range.end - range.start;
  if (written == size) return {};
  return DecimalOf(size - written) + u" of " + DecimalOf(size) + u" bytes are missing";
}

std::optional<PropertyRecord> DataRecordOf(const PropertyContext& context) {
  for (std::uint32_t index = 0; index < context.Count(); ++index) {
    if (context.Record(index).wPropId == IdOf(tag::kAttachDataBinary)) return context.Record(index);
  }
  return std::nullopt;
}

/// The first entry of the list is what is read; does the data lie in another one, or not in the list at all?
bool IsOtherSubNode(ByteView list, const Generation& layout, std::uint32_t nidOfData) {
  return list.U16(0) == kSlBlock && list.U32(layout.subnodeHeadSize) != nidOfData;
}

}  // namespace

Text AttachmentReader::ReadText(ByteView block, HeapRange range) const {
  return CopyHeapText(range.In(block), source_.store.layout.wideFormat, source_.codePage);
}

Attachment AttachmentReader::ReadAttachment(const SubNodeEntry& entry, const engine::BlockRecord& record) {
  using Fault = PropertyContext::Fault;
  Attachment attachment;
  const auto bytes = ReadHeapBlock(source_.store, record, entry.bidData, kAttachmentRules, source_.allowance);
  if (!bytes) {
    attachment.missing = ReasonOf(bytes.error());
    return attachment;
  }
  const ByteView block(*bytes);
  const PropertyContext context(block, source_.store, kAttachmentRules);
  if (context.GetFault() == Fault::kNone) {
    attachment.isRecord = true;
    const auto names = ReadNames(block, context);
    if (!names) {
      attachment.missing = u"its name does not stand in its block";
      return attachment;
    }
    ReadContent(entry, block, context, *names, attachment);
  } else {
    attachment.missing = ReasonOf(context.FailureOf(source_.store, record, kAttachmentRules));
    attachment.isRecord = context.GetFault() == Fault::kRecordRange;
    if (context.GetFault() == Fault::kRootRange || attachment.isRecord) return attachment;
    left_.file.reset();
  }
  if (left_.isEmbedded) attachment.embeddedName = left_.embeddedName;
  return attachment;
}

std::optional<AttachmentReader::Names> AttachmentReader::ReadNames(ByteView block, const PropertyContext& context) {
  const std::uint16_t ibHnpm = context.Header().ibHnpm;
  const bool packed = source_.store.layout.formatId == FORMAT_UNICODE_4K;
  Names names;
  std::uint16_t wantedId = IdOf(tag::kAttachFilename);
  for (std::uint32_t index = 0; index < context.Count(); ++index) {
    const PropertyRecord record = context.Record(index);
    names.lastId = record.wPropId;
    const bool wanted = record.wPropId == wantedId;
    if (!wanted && record.wPropId != IdOf(tag::kDisplayName)) continue;

    const auto range = RangeOf(block, ibHnpm, record.dwValueHnid, kAttachmentRules.emptyEnd);
    if (!wanted) {
      left_.isEmbedded = true;
      if (!range) return std::nullopt;
      if (range->start != 0 && record.dwValueHnid != 0) left_.embeddedName = ReadText(block, *range);
      continue;
    }

    left_.fileName.clear();
    names.fileName.clear();
    left_.isEmbedded = false;
    if (!range) return std::nullopt;
    TakeFileName(names, block, record.dwValueHnid == 0 ? HeapRange{} : *range);
    if (!packed && wantedId == IdOf(tag::kAttachLongFilename)) break;
    wantedId = IdOf(tag::kAttachLongFilename);
  }
  return names;
}

void AttachmentReader::TakeFileName(Names& names, ByteView block, HeapRange range) {
  if (range.start != 0) {
    names.fileName = ReadText(block, range);
    const bool plausible = !source_.store.layout.wideFormat || text::LooksLikeText(names.fileName);
    if (!plausible) names.fileName.clear();
  }

  // Is there a name that can be made? Where none is tried, that counts as made. What was open is closed either way.
  left_.file.reset();
  const bool isOst = source_.store.storeKind == engine::StoreKind::kOst;
  const bool tried = !names.fileName.empty() || (!left_.embeddedName.empty() && isOst);
  if (tried) {
    ReplaceForbidden(left_.embeddedName);
    ReplaceForbidden(names.fileName);
  }
  if (!tried || CanBeFileName(left_.embeddedName.empty() ? names.fileName : left_.embeddedName)) {
    names.lastName = !left_.embeddedName.empty() && isOst ? left_.embeddedName : names.fileName;
  }

  if (names.fileName == u"Untitled Attachment") {
    names.fileName.clear();
    left_.isEmbedded = true;
  }
}

void AttachmentReader::ReadContent(const SubNodeEntry& entry, ByteView block, const PropertyContext& context,
                                   const Names& names, Attachment& attachment) {
  if (!left_.file) {
    left_.fileName = names.lastName;
    if (CanBeFileName(left_.fileName)) left_.file.emplace();
  }
  if (!left_.isEmbedded) attachment.loggedName = names.lastName;

  const bool nameWasLast = names.lastId == IdOf(tag::kAttachMimeSequence) ||
                           names.lastId == IdOf(tag::kAttachLongFilename) || names.lastId == IdOf(tag::kAttachFilename);
  if (left_.file && nameWasLast && WriteAttachmentData(block, context, attachment)) return;
  const auto data = DataRecordOf(context);
  if (entry.bidSub != 0) {
    ReadAttachmentSubNode(entry, data, attachment);
  } else if (!data) {
    attachment.missing = kNoContent;
  } else if (!left_.file) {
    attachment.missing = kNoFileName;
  } else if (!nameWasLast) {
    attachment.missing = u"its content is not read, since other properties follow its name";
  } else {
    attachment.missing = u"its content does not stand in its block";
  }
  left_.file.reset();
}

/// The open file is the content.
void AttachmentReader::HandOn(Attachment& attachment) {
  attachment.content = std::exchange(left_.file, {});
  attachment.name = left_.fileName;
}

/// False when the content is to be looked for in a sub-node.
bool AttachmentReader::WriteAttachmentData(ByteView block, const PropertyContext& context, Attachment& attachment) {
  const auto data = DataRecordOf(context);
  if (!data) {  // the file stays open
    attachment.missing = kNoContent;
    return true;
  }
  // The value of a content in a sub-node leads far behind the block: the sub-node is tried then.
  const auto range = ReadHeapRange(block, HeapPosition(context.Header().ibHnpm, data->dwValueHnid));
  if (!range || range->end < range->start || range->end == 0) return false;
  ByteView bytes = range->In(block);
  if (data->wPropType == PropType::kString) bytes = bytes.Slice(0, WideText(bytes).size());
  if (!source_.allowance.TakeBytes(bytes.Size())) {
    left_.file.reset();
    attachment.missing = kClaimsTooMuch;
    return true;
  }
  left_.file->Append(bytes.Bytes());
  attachment.missing = MissingInLine(block, *data, *range, bytes.Size());
  HandOn(attachment);
  return true;
}

void AttachmentReader::ReadAttachmentSubNode(const SubNodeEntry& entry, const std::optional<PropertyRecord>& data,
                                             Attachment& attachment) {
  const engine::BlockReader blocks(source_.store);
  auto record = blocks.FindBlockOrLower(entry.bidSub);
  if (!record && entry.bidSub == kWanderingBid) record = blocks.FindBlock(kLastTriedBid);
  if (!record) {
    attachment.missing = ReasonOf(BlockNotFound(entry.bidSub));
    return;
  }
  const auto bytes = blocks.ReadChunk(record->offset, record->size);
  if (!bytes) {
    attachment.missing = ReasonOf(BlockNotRead(*record));
    return;
  }

  attachment.outOfLine = true;
  const ByteView block(*bytes);
  if (block.U16(0) != kXBlock && left_.isEmbedded) {
    attachment.message = ReadEmbeddedSlots(block);
  } else if (left_.file) {
    attachment.missing = ReadDataBlocks(*record);
    if (data && IsOtherSubNode(block, source_.store.layout, data->dwValueHnid)) {
      attachment.missing = u"its content is not read; that of another sub-node, " + DecimalOf(left_.file->Size()) +
                           u" bytes, stands in its place";
    }
    HandOn(attachment);
  } else {
    attachment.missing = kNoFileName;
  }
}

/// Fills the open file; what is missing in it.
Text AttachmentReader::ReadDataBlocks(const engine::BlockRecord& record) {
  const std::uint64_t before = left_.file->Size();
  const auto append = [this](const Bytes& piece) { left_.file->Append(piece); };
  BlockChain chain;
  if (BuildBlockChainAt(source_.store, record, source_.allowance, chain)) {
    WriteStreamToFile(source_.store, chain, source_.allowance, append);
  } else if (const auto block = ReadDataBlock(source_.store, record, record.bid, source_.allowance)) {
    append(block->bytes);
  }
  return MissingOf(chain, left_.file->Size() - before);
}

/// The way from slot to slot is none from entry to entry: only the first is a true one
/// (docs/fidelity.md#embedded-slots).
std::vector<EmbeddedSlot> AttachmentReader::ReadEmbeddedSlots(ByteView block) const {
  const std::uint32_t width = source_.store.layout.idWidth;
  const std::uint32_t entryCount = block.U16(2);
  std::vector<EmbeddedSlot> slots;
  std::uint32_t counter = 0;
  for (std::uint64_t at = 2ull * width; counter <= entryCount && at < block.Size(); at = at * 2 + width) {
    slots.push_back({block.U32(at), block.U32(at + width)});
    if (slots.back().bidData != 0) ++counter;
    if (slots.back().bidSub != 0) ++counter;
  }
  return slots;
}

}  // namespace velmora::recovery
