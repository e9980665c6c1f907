#include "workflow/panes/form_view_left.h"

#include <QGroupBox>
#include <QIcon>
#include <QTreeWidget>
#include <QVBoxLayout>
#include <unordered_set>
#include <utility>
#include <vector>

#include "controls/plain_tip.h"
#include "workflow/panes/fill_kinds.h"
#include "workflow/panes/image_list.h"
#include "workflow/panes/waiting_panels.h"
#include "workflow/qt_text.h"

namespace velmora::workflow {
namespace {

using engine::FolderRecord;

constexpr int kFolderIcons = 141;

constexpr std::uint32_t kRootFolderId = 290;  ///< of the source's root, where every climb ends
constexpr std::uint32_t kLostAndFoundMarker = 4369;
constexpr std::uint32_t kOrphansMarker = 4386;

constexpr std::size_t kPlainIcon = 0;
constexpr std::size_t kLostAndFoundIcon = 9;

struct IconRow {
  text::TextView name;
  std::size_t icon;
};

constexpr IconRow kIcons[] = {
    {u"Inbox", 1},    {u"Deleted Items", 2}, {u"Drafts", 3}, {u"Contacts", 4},
    {u"Calendar", 5}, {u"Notes", 6},         {u"Tasks", 7},  {u"Journals", 8},
};

std::size_t IconOf(text::TextView name) {
  for (const IconRow& row : kIcons) {
    if (row.name == name) return row.icon;
  }
  return kPlainIcon;
}

QTreeWidgetItem* MakeItem(QTreeWidgetItem& parent, text::TextView name, const QIcon& icon) {
  auto* item = new QTreeWidgetItem(&parent, {ToQt(name)});
  item->setIcon(0, icon);
  item->setToolTip(0, controls::PlainTip(ToQt(name)));  // the pane is narrow
  return item;
}

/// Deeper folders stand beside each other at this level: the tree control goes down by recursion, and a
/// damaged store can make a chain of any length.
constexpr std::size_t kDeepestLevel = 200;

}  // namespace

CFormViewLeft::CFormViewLeft(QWidget* parent, Surroundings surroundings)
    : QWidget(parent), surroundings_(std::move(surroundings)), icons_(LoadImageList(kFolderIcons)) {
  setObjectName(QStringLiteral("CFormViewLeft"));
  auto* box = new QGroupBox(QStringLiteral("Folder list"), this);
  box->setObjectName(QStringLiteral("1001"));
  tree_ = new QTreeWidget(box);
  tree_->setObjectName(QStringLiteral("1002"));
  tree_->setAccessibleName(box->title());
  tree_->setHeaderHidden(true);
  tree_->setUniformRowHeights(true);
  tree_->setIconSize({16, 16});
  auto* inner = new QVBoxLayout(box);
  inner->setContentsMargins(4, 4, 4, 4);
  inner->addWidget(tree_);
  auto* outer = new QVBoxLayout(this);
  outer->setContentsMargins(4, 4, 4, 4);
  outer->addWidget(box);
  new CFindDlg(this);
  connect(tree_, &QTreeWidget::currentItemChanged, this, &CFormViewLeft::OnSelectionChanged);
}

void CFormViewLeft::OnMessage(const RunMessage& message) {
  switch (message.code) {
    case MSG_ADD_FOLDER:
      AddFolder(message.number, message.text);
      break;
    case kRenewSelectionMessage:
      RenewSelection();
      break;
    default:
      break;
  }
}

void CFormViewLeft::OnFoldersKnown(const engine::FoldersKnown& known) {
  known_.clear();
  for (const FolderRecord& folder : known.folders) known_.emplace(folder.nid, folder);
  topFolderNid_ = known.topFolderNid;
}

void CFormViewLeft::Clear() {
  folders_.Clear();
  tree_->clear();
  lostAndFoundMade_ = orphansMade_ = false;
  counters_ = {};
}

void CFormViewLeft::AddFolder(std::uint32_t id, text::TextView markerName) {
  if (folders_.IsEmpty()) {
    surroundings_.store->Use(surroundings_.state.destinationPath);
    auto* root = MakeItem(*tree_->invisibleRootItem(), surroundings_.state.convertedName, icons_.at(kPlainIcon));
    folders_.Add({.id = topFolderNid_, .item = root, .name = surroundings_.state.convertedName});
  }

  // From the folder upwards to the first one that stands in the tree; its own chain stands there too.
  std::vector<const FolderRecord*> chain;
  std::unordered_set<std::uint32_t> seen;
  const TreeFolderRecord* above = nullptr;
  for (std::uint32_t current = id; above == nullptr && current != kRootFolderId && seen.insert(current).second;) {
    above = folders_.OfId(current);
    const auto folder = known_.find(current);
    if (above != nullptr || folder == known_.end()) break;
    chain.push_back(&folder->second);
    current = folder->second.parentNid;
  }
  if (above == nullptr) above = &folders_.Root();
  // Whoever closed one of the folders above it sees it all the same.
  for (QTreeWidgetItem* item = above->item; item != nullptr; item = item->parent()) item->setExpanded(true);
  for (auto folder = chain.rbegin(); folder != chain.rend(); ++folder) {
    const FolderRecord& element = **folder;
    // Below a folder that is named like the store, and beside it, nothing new is inserted.
    if (folders_.HasChildNamedAsRoot(*above)) continue;
    above = &Insert(*above, element.nid, element.parentNid, element.name, element.containerClass, IconOf(element.name));
  }

  if (id == kLostAndFoundMarker) AddMarker(id, markerName, kLostAndFoundIcon, lostAndFoundMade_);
  if (id == kOrphansMarker) AddMarker(id, markerName, kPlainIcon, orphansMade_);
}

void CFormViewLeft::AddMarker(std::uint32_t id, text::TextView name, std::size_t icon, bool& made) {
  if (!std::exchange(made, true)) Insert(folders_.Root(), id, folders_.Root().id, name, {}, icon);
}

const TreeFolderRecord& CFormViewLeft::Insert(const TreeFolderRecord& parent, std::uint32_t id, std::uint32_t parentId,
                                              text::TextView name, text::TextView containerClass, std::size_t icon) {
  QTreeWidgetItem* below = parent.depth < kDeepestLevel ? parent.item : parent.item->parent();
  QTreeWidgetItem* item = MakeItem(*below, name, icons_.at(icon));
  below->setExpanded(true);
  return folders_.Add({.id = id,
                       .item = item,
                       .parentId = parentId,
                       .name = text::Text(name),
                       .containerClass = text::Text(containerClass),
                       .parent = &parent,
                       .depth = parent.depth + 1});
}

void CFormViewLeft::OnSelectionChanged(QTreeWidgetItem* item) {
  const TreeFolderRecord* folder = folders_.OfItem(item);
  if (folder == nullptr || !surroundings_.state.treeFilling || surroundings_.listBusy()) return;
  const text::Text path = PathOf(*folder);
  const SendToPane& send = surroundings_.send;
  if (const FillKind* kind = FillKindOfClass(folder->containerClass)) {
    send({.code = kSwapPaneMessage, .number = 0});
    send({.code = kClearGridMessage});
    send({.code = kind->message, .text = path});
  } else {
    send({.code = kSwapPaneMessage, .number = 1});
    send({.code = MSG_CLEAR_LIST});
    send({.code = kListFolderMessage, .text = path});
  }
}

void CFormViewLeft::RenewSelection() {
  const bool filling = surroundings_.state.treeFilling.exchange(false);
  QTreeWidgetItem* current = tree_->currentItem();
  tree_->setCurrentItem(nullptr);
  tree_->setCurrentItem(current);
  surroundings_.state.treeFilling = filling;
}

void CFormViewLeft::WriteSummary(output::RDOSession& session) {
  std::vector<conversion::SummaryFolder> folders;
  for (const TreeFolderRecord& folder : folders_.Records()) {
    folders.push_back({.path = PathOf(folder), .name = folder.name, .hasParent = folder.parentId != 0});
  }
  try {
    const auto counts = conversion::WriteSummary(session, folders, surroundings_.state.logPath, counters_);
    for (std::size_t i = 0; i < counts.size(); ++i) {
      if (counts[i]) ShowCount(folders_.Records()[i], *counts[i]);
    }
  } catch (const std::exception&) {
    // Nothing passes through the loop of the windows; the run goes on, without the numbers.
  }
}

void CFormViewLeft::ShowCount(const TreeFolderRecord& folder, std::int32_t count) {
  folder.item->setText(0, ToQt(folder.name) + QStringLiteral("(%1)").arg(count));
}

}  // namespace velmora::workflow
