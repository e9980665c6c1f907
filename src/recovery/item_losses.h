// What of an item's own values did not come across, for the report.
#pragma once

#include "recovery/item_run.h"

namespace velmora::recovery {

/// Lists what the message under work is known to lack in the new store: its body, fields, members, and the
/// attachments of a list that was not read. Says nothing of a message that gave no item: that is lost as a whole.
void ReportItemLosses(ItemRun& items);

}  // namespace velmora::recovery
