#include "workflow/find_pst_dlg.h"

#include <QComboBox>
#include <QLineEdit>
#include <algorithm>

#include "controls/display_class.h"
#include "controls/file_rows.h"
#include "controls/picture_button.h"
#include "controls/tx_list_ctrl.h"
#include "resources/string_table.h"
#include "resources/texts.h"
#include "workflow/boxes.h"
#include "workflow/qt_text.h"
#include "workflow/services.h"
#include "workflow/wizard_frame.h"

namespace velmora::workflow {

using namespace resources;
using controls::CTXListCtrl;

CFindPstDlg::CFindPstDlg(WizardFrame& frame) : Page(frame, kFindTemplate, controls::PageArtSize(frame.Display())) {
  auto* list = Control<CTXListCtrl>(kFileListId);
  list->SetHint(ToQt(kSearchListHint));
  connect(list, &CTXListCtrl::RowChosen, this, [this, list](int row) { ChooseSource(row, list->Rows().TextAt(row)); });
  OnClick(kFindId, [this] { OnFind(); });
  OnClick(kBackId, [this] { OnBack(); });
  OnClick(kMainId, [this] { OnBack(); });
  OnClick(kNextId, [this] { LeadToDestination(kFindTemplate); });
}

CFindPstDlg::~CFindPstDlg() {
  if (search_ != nullptr) search_->Stop();
}

void CFindPstDlg::showEvent(QShowEvent* event) {
  Page::showEvent(event);
  if (!std::exchange(drivesListed_, true))
    QMetaObject::invokeMethod(this, &CFindPstDlg::FillDrives, Qt::QueuedConnection);
}

void CFindPstDlg::FillDrives() {
  if (frame_.Machine().volumes().empty()) ShowBox(this, kDrivesFailed, kDrivesFailedTitle, BoxIcon::Error);
  auto* combo = Control<QComboBox>(kDriveComboId);
  for (const std::filesystem::path& drive : SearchedDrives()) combo->addItem(PathToQt(drive));
  combo->model()->sort(0);
  combo->setCurrentIndex(0);
}

std::vector<std::filesystem::path> CFindPstDlg::SearchedDrives() const {
  std::vector<std::filesystem::path> drives;
  for (const platform::Volume& volume : frame_.Machine().volumes()) {
    if (!volume.removable) drives.push_back(volume.mountPoint);
  }
  return drives;
}

bool CFindPstDlg::IsRemovable(const std::filesystem::path& drive) const {
  const auto bare = [](const std::filesystem::path& path) { return path.has_filename() ? path : path.parent_path(); };
  const std::vector<platform::Volume> volumes = frame_.Machine().volumes();
  return std::any_of(volumes.begin(), volumes.end(), [&](const platform::Volume& volume) {
    return volume.removable && bare(volume.mountPoint) == bare(drive);
  });
}

void CFindPstDlg::ShowFindButton(bool searching) {
  auto* button = Control<controls::PictureButton>(kFindId);
  button->setText(ToQt(LoadString(searching ? kStopCaption : kFindCaption)));
  NameButton(*button, button->text().remove(u'&'));
  button->SetPicture(searching ? 221 : 131);
}

void CFindPstDlg::OnFind() {
  auto* list = Control<CTXListCtrl>(kFileListId);
  if (searching_) {
    searching_ = false;
    idle_ = true;
    if (search_ != nullptr) search_->Stop();
    ShowFindButton(false);
    list->setEnabled(true);
    return;
  }
  searching_ = true;
  idle_ = false;
  list->Rows().Clear();
  auto* combo = Control<QComboBox>(kDriveComboId);
  const std::filesystem::path drive = ToPath(combo->currentText());
  if (IsRemovable(drive)) {
    // The flags stay: the page counts as searching until the button is pressed once more.
    ShowBox(this, LoadString(kRemovableDrive), LoadString(kProductTitle), BoxIcon::Information);
    return;
  }
  ShowFindButton(true);
  combo->setEnabled(false);
  if (search_ != nullptr) search_->disconnect(this);
  search_ = DriveSearch::Start(drive, text::ToUtf8(kSearchMask), SearchedDrives());
  connect(search_.get(), &DriveSearch::Found, this, [list](const QStringList& files) { list->Rows().PutOnTop(files); });
  connect(search_.get(), &DriveSearch::Entered, this, [this](const QString& folder) { ShowFolder(folder); });
  connect(search_.get(), &DriveSearch::Over, this, &CFindPstDlg::OnSearchOver);
  list->setEnabled(false);
  Control<QWidget>(kNextId)->setEnabled(false);
}

void CFindPstDlg::ShowFolder(const QString& folder) {
  auto* status = Control<QLineEdit>(kSearchStatusId);
  // The field keeps a little room on both sides of its text.
  const int room = status->width() - 2 * status->fontMetrics().averageCharWidth();
  status->setText(status->fontMetrics().elidedText(folder, Qt::ElideRight, room));
}

void CFindPstDlg::OnSearchOver() {
  auto* list = Control<CTXListCtrl>(kFileListId);
  list->setEnabled(true);
  if (list->Rows().Count() < 1) {
    list->Rows().Append({ToQt(kFileNotFound)});
    list->setEnabled(false);
  }
  idle_ = true;
  searching_ = false;
  ShowFindButton(false);
  Control<QWidget>(kDriveComboId)->setEnabled(true);
  Control<QLineEdit>(kSearchStatusId)->clear();
}

void CFindPstDlg::OnBack() {
  if (!idle_) return ShowBox(this, kSearchBlocksBack, kInformation, BoxIcon::None);
  LeadToStart();
}

void CFindPstDlg::OnCloseBox() {
  if (!idle_) return ShowBox(this, kSearchBlocksClose, kInformation, BoxIcon::None);
  AskExit();
}

}  // namespace velmora::workflow
