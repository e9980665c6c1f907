// The pane that lists the items of a folder.
#pragma once

#include <QTableView>
#include <QTimer>
#include <array>
#include <memory>

#include "controls/art.h"
#include "workflow/panes/display_body.h"
#include "workflow/panes/finished_store.h"
#include "workflow/panes/item_rows.h"
#include "workflow/panes/pane_messages.h"

namespace velmora::controls {
class CXCmdBtn;
}

namespace velmora::workflow {

class CDlgLoading;
class FolderListing;

/// During a run each mail appears as it is converted; later it lists whatever folder it is told to, on a thread
/// of its own. A click on a row and the keys Up and Down show the item's body.
class CListViewRight : public QTableView, public ItemSelection {
  Q_OBJECT

 public:
  CListViewRight(QWidget* parent, std::shared_ptr<FinishedStore> store, SendToPane send);
  ~CListViewRight() override;

  /// Once, ahead of the first run. Until then a picture fills the empty pane.
  void BuildColumns();
  bool HasColumns() const { return rows_->columnCount() > 0; }

  /// MSG_LIST_FIELD, MSG_LIST_ATTACHMENT, MSG_CLEAR_LIST and kListFolderMessage.
  void OnMessage(const RunMessage& message);

  /// True from the start of a listing until its last row is shown.
  bool ListBusy() const { return listing_ != nullptr; }

  /// Ends a listing that is under way. Its last rows are lost.
  void StopListing();

  int RowCount() const override { return rows_->rowCount(); }
  int SelectedRow() const override { return currentIndex().row(); }

  /// Background of a row: white for even rows, a pale blue for odd ones, the first row being row 0.
  static QColor StripeOf(int row);

 protected:
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  /// Home and End go to the first and the last row, as rows are what is selected.
  QModelIndex moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) override;

 private:
  void SetField(std::uint32_t field, text::TextView text);
  void ListFolder(text::TextView path);
  void OnListed();
  void ShowBody(std::uint32_t key);
  void FitLastColumn();
  void PlacePanels();

  std::shared_ptr<FinishedStore> store_;
  SendToPane send_;
  ItemRows* rows_;
  int currentRow_ = -1;  ///< takes the fields of a run
  QTimer makeVisible_;   ///< brings the current row into view; not more often than anybody could see
  text::Text folderPath_;
  std::unique_ptr<FolderListing> listing_;
  quint64 listingNumber_ = 0;  ///< of the last listing; what an earlier one left behind is not shown
  CDlgLoading* loading_;
  controls::CGdiPlusBitmapResource background_;
  std::array<controls::CXCmdBtn*, 2> placeholders_{};
};

}  // namespace velmora::workflow
