#include "recovery/attachment_reader.h"

#include <algorithm>

#include "recovery/heap_text.h"
#include "recovery/lost_items.h"
#include "recovery/property_ids.h"
#include "text/plausibility.h"

namespace velmora::recovery {

using text::Text;

namespace {

constexpr std::size_t kLongestName = 255;

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
  if (data.type == kTypeObject) {
    return u"its content is an object of " + DecimalOf(block.U32(range.start + 4u)) + u" bytes, which is not read; " +
           DecimalOf(written) + u" bytes that point to it stand in its place";
  }
  const std::uint64_t size = range.end - range.start;
  if (written == size) return {};
  return DecimalOf(size - written) + u" of " + DecimalOf(size) + u" bytes are missing";
}

std::optional<PropertyRecord> DataRecordOf(const PropertyContext& context) {
  for (std::uint32_t index = 0; index < context.Count(); ++index) {
    if (context.Record(index).id == kAttachmentDataId) return context.Record(index);
  }
  return std::nullopt;
}

}  // namespace

Text AttachmentReader::ReadText(ByteView block, HeapRange range) const {
  return CopyHeapText(range.In(block), items_.engine.layout.wideFormat, *items_.state.codePage);
}

AttachmentReader::Result AttachmentReader::ReadAttachment(const SubNodeEntry& entry,
                                                          const engine::BlockRecord& record) {
  missing_.clear();
  const auto bytes = ReadHeapBlock(items_.engine, record, entry.bidData, kAttachmentRules, items_.state.allowance);
  if (!bytes) {
    missing_ = TextOf(bytes.error());
    return Result::kNoAttachment;
  }
  const ByteView block(*bytes);
  const PropertyContext context(block, items_.engine, kAttachmentRules);
  if (context.GetFault() != PropertyContext::Fault::kNone) {
    missing_ = TextOf(context.BlockFaultOf(items_.engine, record, kAttachmentRules));
  }

  Result result = Result::kNoAttachment;
  bool lineWritten = false;
  switch (context.GetFault()) {
    case PropertyContext::Fault::kRootRange:
      return Result::kNoAttachment;
    case PropertyContext::Fault::kRecordRange:
      return Result::kLost;
    case PropertyContext::Fault::kSignature:
    case PropertyContext::Fault::kTreeHeader:
      file_.reset();
      break;
    case PropertyContext::Fault::kNone: {
      const auto names = ReadNames(block, context);
      if (!names) return Lost(u"its name does not stand in its block");
      result = ReadContent(entry, block, context, *names, &lineWritten);
      break;
    }
  }
  NameLastRecord(lineWritten);
  return result;
}

std::optional<AttachmentReader::Names> AttachmentReader::ReadNames(ByteView block, const PropertyContext& context) {
  const std::uint16_t ibHnpm = context.Header().ibHnpm;
  const bool packed = items_.engine.layout.formatId == FORMAT_UNICODE_4K;
  Names names;
  std::uint16_t wantedId = kShortFileNameId;
  for (std::uint32_t index = 0; index < context.Count(); ++index) {
    const PropertyRecord property = context.Record(index);
    names.lastId = property.id;
    const bool wanted = property.id == wantedId;
    if (!wanted && property.id != kDisplayNameId) continue;

    const auto range = RangeOf(block, ibHnpm, property.value, kAttachmentRules.emptyEnd);
    if (!wanted) {
      attachmentIsEmbedded_ = true;
      if (!range) return std::nullopt;
      if (range->start != 0 && property.value != 0) embeddedName_ = ReadText(block, *range);
      continue;
    }

    fileName_.clear();
    names.fileName.clear();
    attachmentIsEmbedded_ = false;
    if (!range) return std::nullopt;
    TakeFileName(names, block, property.value == 0 ? HeapRange{} : *range);
    if (!packed && wantedId == kLongFileNameId) break;
    wantedId = kLongFileNameId;
  }
  return names;
}

void AttachmentReader::TakeFileName(Names& names, ByteView block, HeapRange range) {
  if (range.start != 0) {
    names.fileName = ReadText(block, range);
    const bool plausible = !items_.engine.layout.wideFormat || text::LooksLikeText(names.fileName);
    if (!plausible) names.fileName.clear();
  }

  // Is there a name that can be made? Where none is tried, that counts as made. What was open is closed either way.
  file_.reset();
  const bool isOst = items_.engine.storeKind == engine::StoreKind::kOst;
  const bool tried = !names.fileName.empty() || (!embeddedName_.empty() && isOst);
  if (tried) {
    ReplaceForbidden(embeddedName_);
    ReplaceForbidden(names.fileName);
  }
  if (!tried || CanBeFileName(embeddedName_.empty() ? names.fileName : embeddedName_)) {
    names.lastName = !embeddedName_.empty() && isOst ? embeddedName_ : names.fileName;
  }

  if (names.fileName == u"Untitled Attachment") {
    names.fileName.clear();
    attachmentIsEmbedded_ = true;
  }
}

AttachmentReader::Result AttachmentReader::ReadContent(const SubNodeEntry& entry, ByteView block,
                                                       const PropertyContext& context, const Names& names,
                                                       bool* lineWritten) {
  if (!file_) {
    fileName_ = names.lastName;
    if (CanBeFileName(fileName_)) file_.emplace();
  }

  if (!attachmentIsEmbedded_ && items_.run.log != nullptr) {
    items_.run.Log(u"\r\n");
    items_.run.Log(u"Attachment File Name: ");
    items_.run.Log(names.lastName);
    *lineWritten = true;
  }

  const bool nameWasLast =
      names.lastId == kMimeSequenceId || names.lastId == kLongFileNameId || names.lastId == kShortFileNameId;
  if (file_ && nameWasLast) {
    if (const auto result = WriteAttachmentData(block, context)) return *result;
  }
  const auto data = DataRecordOf(context);
  Result result = Result::kLost;
  if (entry.bidSub != 0) {
    result = ReadAttachmentSubNode(entry, data);
  } else if (!data) {
    Lost(u"it has no content");
  } else if (!file_) {
    Lost(u"it has no name that a file can have");
  } else if (!nameWasLast) {
    Lost(u"its content is not read, since other properties follow its name");
  } else {
    Lost(u"its content does not stand in its block");
  }
  file_.reset();
  return result;
}

AttachmentReader::Result AttachmentReader::Lost(text::Text missing) {
  missing_ = std::move(missing);
  return Result::kLost;
}

void AttachmentReader::NameLastRecord(bool lineWritten) {
  if (!attachmentIsEmbedded_ || embeddedName_.empty()) return;
  if (items_.state.allowance.TakeHeld(2 * embeddedName_.size())) items_.queue.back().attachmentName = embeddedName_;
  if (lineWritten || items_.run.log == nullptr) return;
  items_.run.Log(u"\r\n");
  items_.run.Log(u"Attached Embedded Message: ");
  items_.run.Log(embeddedName_);
}

std::optional<AttachmentReader::Result> AttachmentReader::WriteAttachmentData(ByteView block,
                                                                              const PropertyContext& context) {
  const auto data = DataRecordOf(context);
  if (!data) return Lost(u"it has no content");  // the file stays open

  // The value of a content in a sub-node leads far behind the block: the sub-node is tried then.
  const auto range = ReadHeapRange(block, HeapPosition(context.Header().ibHnpm, data->value));
  if (!range || range->end < range->start || range->end == 0) return std::nullopt;
  ByteView bytes = range->In(block);
  // Of a text as many bytes are written as it has characters.
  if (data->type == kTypeUnicode) bytes = bytes.Slice(0, WideText(bytes).size());
  const bool allowed = items_.state.allowance.TakeBytes(bytes.Size());
  if (allowed) file_->Append(bytes.Bytes());
  const Result result = allowed ? AttachFile() : Lost(Text(kClaimsTooMuch));
  file_.reset();
  if (result == Result::kTaken) missing_ = MissingInLine(block, *data, *range, bytes.Size());
  return result;
}

AttachmentReader::Result AttachmentReader::AttachFile() {
  if (!file_ || fileName_.empty()) return Lost(u"it has no name that a file can have");
  if (file_->Failed()) return Lost(u"its content could not be kept");
  items_.message.Item(ItemKind::kMail)->Attachments()->Add(*file_, fileName_);
  ++items_.state.report.attachments;
  return Result::kTaken;
}

}  // namespace velmora::recovery
