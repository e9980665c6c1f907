// What a row of the grid says about an item.
#pragma once

#include <QString>
#include <optional>

#include "workflow/panes/grid_row.h"

namespace velmora::workflow {

/// The value of a row, or nothing where the item has no such row. A number beyond the words of its form gives
/// a row with an empty value. Raises what the read raises.
std::optional<QString> ValueOf(const output::RDOMail& item, const GridRow& row);

}  // namespace velmora::workflow
