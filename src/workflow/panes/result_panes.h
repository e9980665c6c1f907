// The panes of the result view with their splitters, as the frame holds them.
#pragma once

#include <QSplitter>
#include <memory>

#include "conversion/out_look.h"
#include "conversion/run_state.h"
#include "workflow/panes/display_body.h"
#include "workflow/panes/finished_store.h"
#include "workflow/panes/form_view_left.h"
#include "workflow/panes/grid_view.h"
#include "workflow/panes/list_view_right.h"

class QStackedWidget;

namespace velmora::workflow {

/// The folders on the left; on the right the list or the grid, and the body below. It fills itself from the
/// messages of a run, and shows the new store once the run is over; whether anybody sees it is the frame's affair.
class ResultPanes : public QSplitter {
  Q_OBJECT

 public:
  /// `state` and `outLook` outlive this object. `makeOutput` gives the library by which a finished store is
  /// opened for reading.
  ResultPanes(QWidget* parent, conversion::RunState& state, const conversion::COutLook& outLook,
              conversion::OutputFactory makeOutput);

  /// Ahead of each run: shows folders and body, builds what is built once, and forgets the last result.
  void BeginRun();

  /// Once the page of a run is left: the file of the new store is in use no longer, until a folder is opened.
  void EndRun();

  void OnFoldersKnown(const engine::FoldersKnown& known) { folders_->OnFoldersKnown(known); }

  /// Every message of a run and every message of the panes, in the thread of the windows; those that are
  /// meant for nobody here are passed over. During a run the worker goes on meanwhile, but for the closing stage.
  void OnMessage(const RunMessage& message);

  /// While true, the frame opens no start page.
  bool ListBusy() const { return list_->ListBusy(); }

  CFormViewLeft& FolderPane() { return *folders_; }
  CListViewRight& ListPane() { return *list_; }
  CGridView& Grid() { return *grid_; }
  CDisplayBody& BodyPane() { return *body_; }

  /// Is the grid in the place of the list?
  bool ShowsGrid() const;

 private:
  void SwapPane(bool toList);

  conversion::RunState& state_;
  const conversion::COutLook& outLook_;
  std::shared_ptr<FinishedStore> store_;
  CFormViewLeft* folders_;
  QSplitter* inner_;
  QStackedWidget* upper_;  ///< row 0 of the inner splitter
  CListViewRight* list_;
  CGridView* grid_;
  CDisplayBody* body_;
};

}  // namespace velmora::workflow
