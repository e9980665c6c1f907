#include "workflow/custom2_dlg.h"

#include <QAbstractButton>
#include <QDir>
#include <QFileDialog>
#include <QLineEdit>
#include <filesystem>

#include "controls/display_class.h"
#include "platform/file_system.h"
#include "platform/path_text.h"
#include "resources/texts.h"
#include "workflow/qt_text.h"
#include "workflow/wizard_frame.h"

namespace velmora::workflow {

using namespace resources;

CCustom2Dlg::CCustom2Dlg(WizardFrame& frame, TemplateId previous)
    : Page(frame, kDestinationTemplate, controls::PageArtSize(frame.Display())), previous_(previous) {
  frame_.State().run.smartScan = false;
  Control<QAbstractButton>(kNormalScanId)->setChecked(true);
  OnClick(kNormalScanId, [this] { frame_.State().run.smartScan = false; });
  OnClick(kSmartScanId, [this] { frame_.State().run.smartScan = true; });
  OnClick(kBrowseId, [this] { OnBrowse(); });
  OnClick(kBackId, [this] { OnBack(); });
  OnClick(kNextId, [this] { OnConvert(); });
  OnClick(kMainId, [this] { LeadToStart(); });
  connect(Control<QLineEdit>(kDestinationEditId), &QLineEdit::textChanged, this, [this] {
    Control<QWidget>(kNextId)->setEnabled(platform::Exists(platform::PathOf(frame_.State().destinationPath)));
  });
}

void CCustom2Dlg::OnBrowse() {
  QFileDialog dialog(this, ToQt(kFolderDialogTitle));
  dialog.setFileMode(QFileDialog::Directory);
  dialog.setOption(QFileDialog::ShowDirsOnly);
  // The present choice, else the folder of the source.
  const QString present = Control<QLineEdit>(kDestinationEditId)->text();
  const QString source = ToQt(frame_.State().sourcePath);
  if (!present.isEmpty()) {
    dialog.setDirectory(present);
  } else if (!source.isEmpty()) {
    dialog.setDirectory(QFileInfo(source).path());
  }
  if (dialog.exec() == QDialog::Accepted && !dialog.selectedUrls().isEmpty())
    OnFolderPicked(dialog.selectedUrls().first());
}

void CCustom2Dlg::OnFolderPicked(const QUrl& folder) {
  const QString path = QDir::toNativeSeparators(folder.toLocalFile());
  frame_.State().destinationPath = FromQt(path);
  Control<QLineEdit>(kDestinationEditId)->setText(path);
}

void CCustom2Dlg::OnBack() {
  switch (previous_) {
    case kBrowseTemplate:
      EndDialog();
      return frame_.OpenBrowsePage();
    case kProfileTemplate:
      EndDialog();
      return frame_.OpenProfilePage();
    case kFindTemplate:
      EndDialog();
      return frame_.OpenFindPage();
    default:
      return;
  }
}

void CCustom2Dlg::OnConvert() {
  EndDialog();
  frame_.StartConversion();
}

}  // namespace velmora::workflow
