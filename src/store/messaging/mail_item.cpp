#include "store/messaging/mail_item.h"

#include <algorithm>

#include "store/format/property_tags.h"
#include "store/format/store_nodes.h"
#include "store/ltp/table_context.h"
#include "store/messaging/failures.h"
#include "store/messaging/items/field_table.h"
#include "store/messaging/store_writer.h"
#include "store/messaging/values/stored_text.h"
#include "store/messaging/values/subject.h"

namespace velmora::messaging {
namespace {

using output::Field;
using output::FieldRead;
using output::FieldValue;
using output::OutputFailure;
using output::RDOMail;
using output::Ref;
using output::ResultCode;

constexpr text::TextView kPictureName = u"ContactPicture.jpg";
constexpr std::size_t kLongestClass = 255;

class ItemAttachments : public output::RDOAttachments {
 public:
  explicit ItemAttachments(std::shared_ptr<MailItem> item) : item_(std::move(item)) {}
  void Add(const output::ContentSource& content, text::TextView displayName) override {
    item_->Attach(content, displayName);
  }
  void Add(const Ref<RDOMail>& item, text::TextView displayName) override { item_->Attach(item, displayName); }
  std::int32_t Count() const override { return item_->AttachmentCount(); }

 private:
  std::shared_ptr<MailItem> item_;
};

}  // namespace

text::Text MessageClassOf(text::TextView messageClass) {
  const bool printable = std::ranges::all_of(messageClass, [](char16_t unit) { return unit >= 0x20 && unit < 0x7F; });
  const bool usable =
      printable && !messageClass.empty() && messageClass.size() <= kLongestClass && messageClass.back() != u'.';
  return text::Text(usable ? messageClass : kMailMessageClass);
}

MailItem::MailItem(std::shared_ptr<Store> store, Folder& folder, text::TextView messageClass)
    : store_(std::move(store)), folder_(folder) {
  state_.messageClass = MessageClassOf(messageClass);
  interface_ = output::TypedInterfaceOf(state_.messageClass);
  state_.searchKey = store_->Writer().NewUid();
  state_.created = store_->Writer().Now();
}

MailItem::MailItem(std::shared_ptr<Store> store, Folder& folder, Nid nid)
    : store_(std::move(store)), folder_(folder), nid_(nid), loaded_(false) {
  ltp::PropertyContext* saved = Saved();
  if (saved == nullptr) throw OutputFailure(ResultCode::STG_E_READFAULT, "The item cannot be read.");
  state_.messageClass = saved->Text(tag::kMessageClass).value_or(text::Text());
  interface_ = output::TypedInterfaceOf(state_.messageClass);
}

MailItem::~MailItem() {
  try {
    WritePostponed();
  } catch (const std::exception&) {
    // The store keeps a failure of its own and raises it with the next change.
  }
}

/// The saved item's properties; null when it is not in the store.
ltp::PropertyContext* MailItem::Saved() const {
  if (!nid_) return nullptr;
  WritePostponed();
  if (!saved_) {
    const auto node = store_->Source().FindNode(*nid_);
    if (!node) return nullptr;
    saved_ = IfReadable([&] { return ltp::PropertyContext::Open(store_->Source(), node->trees); });
  }
  return saved_ ? &*saved_ : nullptr;
}

bool MailItem::Answers(output::ItemInterface interface) const {
  return interface == output::ItemInterface::RDOMail || interface == interface_;
}

void MailItem::CheckInterface(Field field) const {
  if (!Answers(output::InfoOf(field).interface)) {
    throw OutputFailure(ResultCode::E_NOINTERFACE, "The item has no such field.");
  }
}

void MailItem::Put(Field field, const FieldValue& value) {
  CheckInterface(field);
  const output::FieldType type = output::InfoOf(field).type;
  if (value.index() != EmptyValue(type).index()) {
    throw OutputFailure(ResultCode::E_INVALIDARG, "The value is not of the field's type.");
  }
  const bool narrow = type == output::FieldType::Number16;
  FieldsToChange(field).Put(
      field, narrow ? FieldValue(std::int32_t{static_cast<std::int16_t>(std::get<std::int32_t>(value))}) : value);
}

/// Pages of HTML are long, and their bytes go into the store as they are.
void MailItem::PutBytes(Field field, std::string_view bytes) {
  if (field != Field::HTMLBody) return RDOMail::PutBytes(field, bytes);
  CheckInterface(field);
  FieldsToChange(field).PutBytes(field, bytes);
}

ItemFields& MailItem::FieldsToChange(Field field) {
  store_->Writer();
  WritePostponed();
  Load();
  if (nid_ && std::ranges::find(changed_, field) == changed_.end()) changed_.push_back(field);
  return state_.fields;
}

FieldRead MailItem::Get(Field field) const {
  CheckInterface(field);
  ltp::PropertyContext* saved = std::ranges::find(changed_, field) == changed_.end() ? Saved() : nullptr;
  if (saved != nullptr) return ReadField(field, *saved, store_->Names());
  if (auto value = state_.fields.Value(field)) return {std::move(*value), true};
  return {EmptyValue(output::InfoOf(field).type), false};
}

/// To be called ahead of a change: what was saved is written as it was saved.
void MailItem::WritePostponed() const {
  if (unwritten_) store_->Writer().WritePostponed();
}

/// Takes all of a saved item into memory, so that it can be changed and written anew.
void MailItem::Load() {
  if (loaded_) return;
  ltp::PropertyContext* saved = Saved();
  if (saved == nullptr) throw OutputFailure(ResultCode::STG_E_READFAULT, "The item cannot be read.");
  for (const output::FieldInfo& info : output::kFields) {
    if (!Answers(info.interface)) continue;
    FieldRead read = ReadField(info.field, *saved, store_->Names());
    if (read.written) state_.fields.Put(info.field, std::move(read.value));
  }
  state_.verb = static_cast<Verb>(saved->Integer32(tag::kLastVerbExecuted).value_or(0));
  state_.created = static_cast<text::FileTime>(saved->Integer64(tag::kCreationTime).value_or(0));
  const Bytes searchKey = saved->Binary(tag::kSearchKey).value_or(Bytes());
  std::copy_n(searchKey.begin(), std::min(searchKey.size(), state_.searchKey.size()), state_.searchKey.begin());
  attachments_ = AsReading([&] { return ReadAttachments(store_->Writer().Ndb(), *saved); });
  loaded_ = true;
}

void MailItem::Save() {
  if (deleted_) return;  // it can still be embedded, but it is in no folder any more
  StoreWriter& writer = store_->Writer();
  Load();
  saved_.reset();
  changed_.clear();
  savedAttachments_ = attachments_.size();
  if (!nid_) return WriteSave();
  writer.Postpone(*this);
  unwritten_ = true;
}

void MailItem::WriteSave() {
  unwritten_ = false;
  nid_ = store_->Writer().Save(MessageWith(savedAttachments_), folder_, nid_);
}

/// The item as a message, with so many of its attachments.
Message MailItem::MessageWith(std::size_t attachments) const {
  const StoreWriter& writer = store_->Writer();
  return ComposeMessage(state_, std::span(attachments_).first(attachments), writer.Now(), writer.CodePage());
}

void MailItem::Delete() {
  StoreWriter& writer = store_->Writer();
  Load();
  writer.Forget(*this);
  unwritten_ = false;
  if (nid_) writer.Delete(folder_, *nid_);
  nid_.reset();
  saved_.reset();
  changed_.clear();
  deleted_ = true;
}

Ref<output::RDOAttachments> MailItem::Attachments() { return std::make_shared<ItemAttachments>(shared_from_this()); }

void MailItem::Attach(const output::ContentSource& content, text::TextView name) {
  StoreWriter& writer = store_->Writer();
  Load();
  ItemAttachment attachment{NameOf(name), false, {}};
  writer.PutStream(attachment.content, tag::kAttachDataBinary, content);
  attachments_.push_back(std::move(attachment));
}

void MailItem::Attach(const Ref<RDOMail>& item, text::TextView name) {
  StoreWriter& writer = store_->Writer();
  auto* embedded = dynamic_cast<MailItem*>(&*item);
  if (embedded == nullptr || embedded->store_ != store_) {
    throw OutputFailure(ResultCode::E_INVALIDARG, "The item to embed is of another store.");
  }
  Load();
  embedded->Load();
  ItemAttachment attachment{NameOf(name), false, {}};
  writer.PutMessage(attachment.content, embedded->MessageWith(embedded->attachments_.size()));
  attachments_.push_back(std::move(attachment));
}

void MailItem::AddPicture(const output::ContentSource& content) {
  if (!Answers(output::ItemInterface::RDOContactItem)) {
    throw OutputFailure(ResultCode::E_NOINTERFACE, "Only a contact has a picture.");
  }
  StoreWriter& writer = store_->Writer();
  WritePostponed();
  Load();
  ItemAttachment picture{text::Text(kPictureName), true, {}};
  writer.PutStream(picture.content, tag::kAttachDataBinary, content);
  std::erase_if(attachments_, [](const ItemAttachment& attachment) { return attachment.isContactPhoto; });
  attachments_.push_back(std::move(picture));
}

Ref<RDOMail> MailItem::Answer(Verb verb, text::TextView prefix, text::TextView to) {
  store_->Writer();
  WritePostponed();
  Load();
  state_.verb = verb;
  auto answer = std::make_shared<MailItem>(store_, folder_, kMailMessageClass);
  const text::Text subject = std::get<text::Text>(Get(Field::Subject).value);
  answer->Put(Field::Subject, text::Text(prefix) + StoreSubject(subject).normalized);
  if (!to.empty()) answer->Put(Field::To, text::Text(to));
  return answer;
}

Ref<RDOMail> MailItem::Reply() {
  return Answer(Verb::kReplied, u"RE: ", std::get<text::Text>(Get(Field::SenderName).value));
}

Ref<RDOMail> MailItem::Forward() { return Answer(Verb::kForwarded, u"FW: ", {}); }

std::int32_t MailItem::Size() const {
  ltp::PropertyContext* saved = Saved();
  return saved != nullptr ? saved->Integer32(tag::kMessageSize).value_or(0) : 0;
}

std::int32_t MailItem::AttachmentCount() const {
  if (loaded_) return static_cast<std::int32_t>(attachments_.size());
  ltp::PropertyContext* saved = Saved();
  if (saved == nullptr) return 0;
  const auto count = IfReadable([&] {
    const auto table = saved->FindSubnode(nid::kAttachmentTable);
    return table ? ltp::TableContext::Open(store_->Source(), table->trees).RowCount() : 0;
  });
  return static_cast<std::int32_t>(count.value_or(0));
}

output::AttachmentTotals MailItem::SavedAttachments() const {
  const ltp::PropertyContext* saved = Saved();
  return saved != nullptr ? CountAttachments(store_->Source(), *saved) : output::AttachmentTotals();
}

}  // namespace velmora::messaging
