// The five kinds of folder that the grid shows.
#pragma once

#include <span>

#include "store/format/classes.h"
#include "workflow/panes/pane_messages.h"
#include "workflow/panes/row_value.h"

namespace velmora::workflow {

struct FillKind {
  PaneMessage message;              ///< that starts the fill
  ItemKind items;                   ///< whose classes stand on the folders
  text::TextView dialogText;        ///< of the dialog that stands over it
  output::ItemInterface interface;  ///< that every item has to answer to
  output::Field caption;            ///< names the category of an item
  std::span<const GridRow> rows;
};

std::span<const FillKind> FillKinds();

/// Null for a message that starts no fill.
const FillKind* FillKindOf(std::uint32_t message);

/// The kind that shows a folder of that container class; null where the list shows it. Letter case counts.
const FillKind* FillKindOfClass(text::TextView containerClass);

}  // namespace velmora::workflow
