// What the panes have to show, worked out from the written-down tables alone.
#pragma once

#include <QString>
#include <cstdint>
#include <optional>
#include <span>
#include <utility>
#include <vector>

#include "store/operations.h"
#include "workflow/panes/listed_rows.h"
#include "workflow/panes/written_items.h"

namespace velmora::workflow {

/// A kind of folder that the grid shows.
struct ListedKind {
  std::uint32_t message;            ///< fills the grid with it
  output::ItemInterface interface;  ///< that all its items answer to
  const char* caption;              ///< operation that names an item
  std::span<const ListedRow> rows;
};

/// Null where the list shows the folder.
const ListedKind* ListedKindOfClass(const QString& containerClass);

using ShownRows = std::vector<std::pair<QString, QString>>;  ///< label and value

/// The rows of an item in the grid, in their order.
ShownRows ExpectedRows(const WrittenItem& item, const ListedKind& kind);
QString ExpectedCaption(const WrittenItem& item, const ListedKind& kind);

/// The texts of an item in the list.
QStringList ExpectedTexts(const WrittenItem& item, bool isFirst);

/// Words that the body pane has to show, and nothing else that it may show.
QStringList ExpectedWords(const WrittenItem& item);

}  // namespace velmora::workflow
