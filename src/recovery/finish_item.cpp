#include "recovery/catching_frame.h"
#include "recovery/item_steps.h"

namespace velmora::recovery {

using output::Field;

namespace {

struct KindLabel {
  ItemKind kind;
  text::TextView label;
};
constexpr KindLabel kLabels[] = {
    {ItemKind::kContact, u"Contact Subject: "}, {ItemKind::kTask, u"Task Item: "},
    {ItemKind::kAppointment, u"Appointment: "}, {ItemKind::kMeeting, u"Meeting: "},
    {ItemKind::kJournal, u"Journals: "},        {ItemKind::kNote, u"Notes: "},
};

}  // namespace

void FinishItem(ItemRun& items) {
  for (const KindLabel& row : kLabels) {
    if (!items.message.IsKind(row.kind)) continue;
    WithinFrame([&] {
      const auto& item = items.message.Item(row.kind);
      if (row.kind == ItemKind::kContact && item->Get(Field::Subject).AsText().empty()) {
        item->Put(Field::Subject, item->Get(Field::FullName).value);
      }
      item->Save();
      items.Current().outcome.saved = true;
      if (items.run.log == nullptr) return;
      items.run.Log(u"\r\n\r\n");
      items.run.Log(row.label);
      items.run.Log(item->Get(Field::Subject).AsText());
    });
    items.message.readBuffer.clear();
    items.message.block.bytes = {};
    return;
  }
}

}  // namespace velmora::recovery
