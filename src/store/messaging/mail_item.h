// Items of a store.
#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "store/ltp/property_context.h"
#include "store/messaging/items/item_attachments.h"
#include "store/messaging/items/item_properties.h"
#include "store/messaging/store_writer.h"
#include "store/operations.h"

namespace velmora::messaging {

/// An item is in memory until it is saved, but for its long attachments. Fields written since the last Save
/// are answered from memory, the others from the store.
class MailItem : public output::RDOMail, public std::enable_shared_from_this<MailItem>, private PostponedSave {
 public:
  /// A new item.
  MailItem(std::shared_ptr<Store> store, Folder& folder, text::TextView messageClass);

  /// A saved item. Raises STG_E_READFAULT when it cannot be read.
  MailItem(std::shared_ptr<Store> store, Folder& folder, Nid nid);
  ~MailItem() override;

  void Save() override;
  void Put(output::Field field, const output::FieldValue& value) override;
  void PutBytes(output::Field field, std::string_view bytes) override;
  output::FieldRead Get(output::Field field) const override;
  bool Answers(output::ItemInterface interface) const override;
  output::Ref<output::RDOAttachments> Attachments() override;
  void Delete() override;
  output::Ref<output::RDOMail> Reply() override;
  output::Ref<output::RDOMail> Forward() override;
  void AddPicture(const output::ContentSource& content) override;
  text::Text MessageClass() const override { return state_.messageClass; }
  std::int32_t Size() const override;
  std::int32_t AttachmentCount() const override;
  output::AttachmentTotals SavedAttachments() const override;

  void Attach(const output::ContentSource& content, text::TextView name);
  void Attach(const output::Ref<output::RDOMail>& item, text::TextView name);

 private:
  void CheckInterface(output::Field field) const;
  ItemFields& FieldsToChange(output::Field field);
  ltp::PropertyContext* Saved() const;
  void Load();
  void WriteSave() override;
  Message MessageWith(std::size_t attachments) const;
  void WritePostponed() const;
  output::Ref<output::RDOMail> Answer(Verb verb, text::TextView prefix, text::TextView to);

  std::shared_ptr<Store> store_;
  Folder& folder_;
  output::ItemInterface interface_ = output::ItemInterface::RDOMail;
  std::optional<Nid> nid_;  ///< none while it is in no folder
  bool loaded_ = true;      ///< state_ and attachments_ hold all of the item
  bool deleted_ = false;
  bool unwritten_ = false;              ///< the last save waits to be written
  std::size_t savedAttachments_ = 0;    ///< how many attachments it has
  std::vector<output::Field> changed_;  ///< fields written since the last save
  ItemState state_;
  std::vector<ItemAttachment> attachments_;
  mutable std::optional<ltp::PropertyContext> saved_;  ///< opened at the first read
};

/// The class of a new item: a text that can be no message class (empty, longer than 255 characters, with
/// characters beyond printable ASCII or a dot at its end) becomes that of a mail.
text::Text MessageClassOf(text::TextView messageClass);

}  // namespace velmora::messaging
