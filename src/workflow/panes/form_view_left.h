// The pane with the folders of the new store.
#pragma once

#include <QWidget>
#include <functional>
#include <memory>
#include <unordered_map>

#include "conversion/run_state.h"
#include "conversion/summary.h"
#include "workflow/panes/finished_store.h"
#include "workflow/panes/pane_messages.h"
#include "workflow/panes/tree_folders.h"

class QTreeWidget;
class QTreeWidgetItem;

namespace velmora::workflow {

/// Mirrors the folders of the new store while a run makes them. Once the run is over, the folder that is
/// selected is shown by the list or by the grid.
class CFormViewLeft : public QWidget {
  Q_OBJECT

 public:
  /// What the pane works with; all of it outlives the pane.
  struct Surroundings {
    conversion::RunState& state;
    std::shared_ptr<FinishedStore> store;
    SendToPane send;
    std::function<bool()> listBusy;
  };

  CFormViewLeft(QWidget* parent, Surroundings surroundings);

  /// The folders that a run is going to fill; to be called before the first of them is added.
  void OnFoldersKnown(const engine::FoldersKnown& known);

  /// MSG_ADD_FOLDER and kRenewSelectionMessage.
  void OnMessage(const RunMessage& message);

  /// Empties the tree, ahead of a run. A run before it that still goes on adds the folders that it reaches from now on.
  void Clear();

  const TreeFolders& Folders() const { return folders_; }

  /// Counts all folders in the session of a run, writes the block at the end of its log and shows each
  /// folder's number behind its name. To be called before the session closes.
  void WriteSummary(output::RDOSession& session);

 private:
  void AddFolder(std::uint32_t id, text::TextView markerName);
  void AddMarker(std::uint32_t id, text::TextView name, std::size_t icon, bool& made);
  const TreeFolderRecord& Insert(const TreeFolderRecord& parent, std::uint32_t id, std::uint32_t parentId,
                                 text::TextView name, text::TextView containerClass, std::size_t icon);
  void ShowCount(const TreeFolderRecord& folder, std::int32_t count);
  void OnSelectionChanged(QTreeWidgetItem* item);
  void RenewSelection();

  Surroundings surroundings_;
  QTreeWidget* tree_;
  std::vector<QIcon> icons_;
  TreeFolders folders_;
  std::unordered_map<std::uint32_t, engine::FolderRecord> known_;  ///< by nid; climbed while folders are added
  std::uint32_t topFolderNid_ = 0;
  bool lostAndFoundMade_ = false;
  bool orphansMade_ = false;
  conversion::FolderCounters counters_;
};

}  // namespace velmora::workflow
