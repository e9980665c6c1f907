#include "recovery/item_steps.h"
#include "recovery/lost_items.h"
#include "recovery/message_classes.h"

namespace velmora::recovery {

using output::Field;
using output::RDOMail;
using output::Ref;

namespace {

Ref<RDOMail> AddItem(ItemRun& items, text::TextView messageClass) {
  auto item = items.state.targetFolder->Items()->Add(messageClass);
  if (!item) return item;
  auto& created = items.state.report.items;
  const auto known = created.find(text::Text(messageClass));
  ++(known == created.end() ? created[ToldText(items.state, messageClass)] : known->second);
  return item;
}

/// Every mail starts out as sent, and is saved with its work record.
void TakeMail(ItemRun& items, const Ref<RDOMail>& mail) {
  items.message.Item(ItemKind::kMail) = mail;
  mail->Put(Field::Sent, true);
  items.Current().createdItem = mail;
  items.message.kindSet[static_cast<std::size_t>(ItemKind::kMail)] = true;
}

}  // namespace

bool CreateItemForClass(ItemRun& items, text::TextView messageClass) {
  MessageWork& message = items.message;
  const ItemClass itemClass = Classify(messageClass);
  if (itemClass.verdict == ClassVerdict::kNoClass) return false;
  if (itemClass.verdict == ClassVerdict::kRefused) {
    message.classRefused = true;
    return false;
  }

  const auto item = AddItem(items, messageClass);
  if (itemClass.kind == ItemKind::kMail) {
    if (item) TakeMail(items, item);
    if (!item && itemClass.verdict == ClassVerdict::kDamaged) message.classRefused = true;
    return true;
  }
  // A refused interface is no failure: the item stays without a kind, and unsaved.
  message.Item(itemClass.kind) = Query(item, InterfaceOf(itemClass.kind));
  message.kindSet[static_cast<std::size_t>(itemClass.kind)] = static_cast<bool>(message.Item(itemClass.kind));
  return true;
}

void CreateFallbackMail(ItemRun& items) {
  items.message.kindSet[static_cast<std::size_t>(ItemKind::kMail)] = true;
  const auto mail = AddItem(items, u"IPM.Note");
  if (!mail) throw output::OutputFailure(output::ResultCode::E_POINTER);
  TakeMail(items, mail);
}

}  // namespace velmora::recovery
