// The pane that shows contacts, tasks, appointments, notes and journal entries of a folder.
#pragma once

#include <QWidget>
#include <memory>

#include "workflow/panes/finished_store.h"
#include "workflow/panes/pane_messages.h"

class QTreeView;

namespace velmora::workflow {

class GridRows;

/// Shows all items of a folder, each as a category with its fields below it, as they stand in the new store.
/// A fill runs behind a modal dialog; it adds to what the grid holds.
class CGridView : public QWidget {
  Q_OBJECT

 public:
  CGridView(QWidget* parent, std::shared_ptr<FinishedStore> store);

  /// kClearGridMessage and the five fills; any other message is none of the grid's.
  void OnMessage(const RunMessage& message);

  const GridRows& Rows() const { return *rows_; }

 private:
  void Add(std::vector<struct Category> categories);

  std::shared_ptr<FinishedStore> store_;
  text::Text folderPath_;
  GridRows* rows_;
  QTreeView* grid_;
};

}  // namespace velmora::workflow
