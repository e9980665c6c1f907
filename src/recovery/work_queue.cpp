#include <ranges>

#include "recovery/item_steps.h"

namespace velmora::recovery {

void CloseWorkQueue(ItemRun& items) {
  if (items.queue.empty()) return;
  // From the deepest level upwards, so that a mail is embedded when all that belongs into it is in place.
  output::Ref<output::RDOMail> lastParent = items.queue.back().parentItem;
  for (ItemWorkRecord& record : std::views::reverse(items.queue)) {
    if (record.parentItem && record.createdItem) {
      record.parentItem->Attachments()->Add(record.createdItem, record.attachmentName);
      record.parentItem->Save();
      record.outcome.saved = true;
      ++items.state.report.embedded;
    }
    // An item that served as parent leaves the folder in which it was built.
    if (lastParent && record.parentItem && !(lastParent == record.parentItem)) lastParent->Delete();
    lastParent = record.parentItem;
  }

  ItemWorkRecord& first = items.queue.front();
  if (!first.createdItem) return;
  first.createdItem->Save();
  first.outcome.saved = true;
  items.run.Log(u"\r\n");
  items.run.Log(u"Status: Recovered\r\n");
}

}  // namespace velmora::recovery
