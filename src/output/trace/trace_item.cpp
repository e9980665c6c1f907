#include "output/trace/trace_item.h"

#include <sha2.h>

#include <algorithm>
#include <limits>
#include <vector>

#include "output/trace/json_line.h"

namespace velmora::output {
namespace {

std::string Sha256(const ContentSource& content) {
  SHA2_CTX context;
  SHA256Init(&context);
  std::vector<std::byte> piece(64 * 1024);
  std::uint64_t offset = 0;
  while (const std::size_t length = content.ReadAt(offset, piece)) {
    SHA256Update(&context, reinterpret_cast<const std::uint8_t*>(piece.data()), length);
    offset += length;
  }
  char digest[SHA256_DIGEST_STRING_LENGTH];
  SHA256End(&context, digest);
  return digest;
}

/// The value that a field reads as while it was never written.
FieldValue EmptyValue(FieldType type) {
  switch (type) {
    case FieldType::Text:
      return text::Text();
    case FieldType::Date:
      return OleDate{};
    case FieldType::Flag:
      return false;
    case FieldType::Number:
    case FieldType::Number16:
      break;
  }
  return std::int32_t{0};
}

class TraceAttachments : public RDOAttachments {
 public:
  explicit TraceAttachments(std::shared_ptr<TraceItem> item) : item_(std::move(item)) {}
  void Add(const ContentSource& content, text::TextView displayName) override {
    item_->AddAttachment(content, displayName);
  }
  void Add(const Ref<RDOMail>& item, text::TextView displayName) override { item_->AddAttachment(item, displayName); }
  std::int32_t Count() const override { return item_->AttachmentCount(); }

 private:
  std::shared_ptr<TraceItem> item_;
};

}  // namespace

void SavedItems::Keep(TraceItem* item) {
  ++count_;
  held_[++lastPlace_] = item;
  placeOf_[item] = lastPlace_;
}

void SavedItems::Drop(TraceItem* item) {
  --count_;
  Forget(item);
}

void SavedItems::Forget(TraceItem* item) {
  const auto found = placeOf_.find(item);
  if (found == placeOf_.end()) return;
  held_.erase(found->second);
  placeOf_.erase(found);
}

std::shared_ptr<TraceItem> SavedItems::Next(std::uint64_t& place) const {
  const auto next = held_.upper_bound(place);
  if (next == held_.end()) return nullptr;
  place = next->first;
  return next->second->shared_from_this();
}

TraceItem::TraceItem(std::shared_ptr<TraceState> state, std::shared_ptr<SavedItems> siblings, std::int64_t id,
                     text::TextView messageClass)
    : state_(std::move(state)),
      siblings_(std::move(siblings)),
      id_(id),
      messageClass_(messageClass),
      interface_(TypedInterfaceOf(messageClass)) {}

void TraceItem::Trace(std::string line) const {
  if (id_ != 0) state_->sink->WriteLine(line);
}

void TraceItem::Save() {
  if (!saved_ && !deleted_) siblings_->Keep(this);
  saved_ = true;
  Trace(JsonLine("Save").Number("id", id_).End());
}

void TraceItem::Put(Field field, const FieldValue& value) {
  const FieldInfo& info = InfoOf(field);
  if (!Answers(info.interface)) throw OutputFailure(ResultCode::E_NOINTERFACE);
  if (value.index() != EmptyValue(info.type).index()) throw OutputFailure(ResultCode::E_INVALIDARG);
  FieldValue kept = value;
  if (info.type == FieldType::Number16) kept = std::int32_t{static_cast<std::int16_t>(std::get<std::int32_t>(value))};
  Trace(JsonLine("Put").Number("id", id_).Plain("field", info.name).Value("value", kept).End());
  fields_[field] = std::move(kept);
}

FieldRead TraceItem::Get(Field field) const {
  const FieldInfo& info = InfoOf(field);
  if (!Answers(info.interface)) throw OutputFailure(ResultCode::E_NOINTERFACE);
  const auto found = fields_.find(field);
  if (found == fields_.end()) return {EmptyValue(info.type), false};
  return {found->second, true};
}

bool TraceItem::Answers(ItemInterface interface) const {
  return interface == ItemInterface::RDOMail || interface == interface_;
}

Ref<RDOAttachments> TraceItem::Attachments() { return std::make_shared<TraceAttachments>(shared_from_this()); }

void TraceItem::AddAttachment(const ContentSource& content, text::TextView displayName) {
  Trace(JsonLine("AddAttachment")
            .Number("id", id_)
            .Text("name", displayName)
            .Number("size", static_cast<std::int64_t>(content.Size()))
            .Plain("sha256", Sha256(content))
            .End());
  attachedBytes_ += content.Size();
  ++attachmentCount_;
}

void TraceItem::AddAttachment(const Ref<RDOMail>& item, text::TextView displayName) {
  const auto* embedded = dynamic_cast<const TraceItem*>(&*item);
  if (embedded == nullptr) throw OutputFailure(ResultCode::E_INVALIDARG);
  Trace(JsonLine("AddAttachment").Number("id", id_).Text("name", displayName).Number("item", embedded->id_).End());
  attachedBytes_ += static_cast<std::uint64_t>(embedded->Size());
  ++attachmentCount_;
}

void TraceItem::AddPicture(const ContentSource& content) {
  if (!Answers(ItemInterface::RDOContactItem)) throw OutputFailure(ResultCode::E_NOINTERFACE);
  Trace(JsonLine("AddPicture")
            .Number("id", id_)
            .Number("size", static_cast<std::int64_t>(content.Size()))
            .Plain("sha256", Sha256(content))
            .End());
  attachedBytes_ += content.Size();
  ++attachmentCount_;
}

void TraceItem::Delete() {
  Trace(JsonLine("Delete").Number("id", id_).End());
  if (saved_ && !deleted_) siblings_->Drop(this);
  deleted_ = true;
}

Ref<RDOMail> TraceItem::Answer(std::string_view operation) {
  Trace(JsonLine(operation).Number("id", id_).End());
  return std::make_shared<TraceItem>(state_, siblings_, 0, messageClass_);
}

std::int32_t TraceItem::Size() const {
  std::uint64_t size = attachedBytes_;
  for (const auto& [field, value] : fields_) {
    const auto* text = std::get_if<text::Text>(&value);
    size += text != nullptr ? text->size() * sizeof(char16_t) : 8;
  }
  return static_cast<std::int32_t>(std::min<std::uint64_t>(size, std::numeric_limits<std::int32_t>::max()));
}

}  // namespace velmora::output
