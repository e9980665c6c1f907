// Reads a folder of one kind, item by item, for the grid.
#pragma once

#include <QString>
#include <vector>

#include "workflow/panes/fill_kinds.h"
#include "workflow/panes/finished_store.h"

namespace velmora::workflow {

struct FilledRow {
  const GridRow* row = nullptr;
  QString value;
};

/// An item with its rows, in the order of the kind's table.
struct Category {
  QString caption;
  std::vector<FilledRow> rows;
};

/// Where a fill goes. Called by the thread that fills.
class FillTarget {
 public:
  virtual ~FillTarget() = default;
  virtual bool IsCancelled() const = 0;
  virtual void ShowPercent(int percent) = 0;
  virtual void Add(std::vector<Category> categories) = 0;
};

/// Adds the items of the folder at `path` in store order. A failing read, be it of the store, of an item or of
/// an item of another kind, ends the fill with the rows read so far; it is not reported.
void FillFolder(FinishedStore& store, text::TextView path, const FillKind& kind, FillTarget& target);

}  // namespace velmora::workflow
