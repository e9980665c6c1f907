#include "workflow/custom2_dlg.h"

#include <QAbstractButton>
#include <QFileDialog>
#include <QLineEdit>
#include <filesystem>

#include "controls/display_class.h"
#include "resources/texts.h"
#include "workflow/main_frame.h"
#include "workflow/qt_text.h"

namespace velmora::workflow {

using namespace resources;

CCustom2Dlg::CCustom2Dlg(CMainFrame& frame, TemplateId previous)
    : Page(frame, kDestinationTemplate, controls::PageArtSize(frame.Display())), previous_(previous) {
  frame_.State().run.smartScan = false;
  const auto onClick = [this](std::uint16_t id, auto action) {
    connect(Control<QAbstractButton>(id), &QAbstractButton::clicked, this, action);
  };
  Control<QAbstractButton>(kNormalScanId)->setChecked(true);
  onClick(kNormalScanId, [this] { frame_.State().run.smartScan = false; });
  onClick(kSmartScanId, [this] { frame_.State().run.smartScan = true; });
  onClick(kBrowseId, [this] { OnBrowse(); });
  onClick(kBackId, [this] { OnBack(); });
  onClick(kNextId, [this] { OnConvert(); });
  onClick(kMainId, [this] {
    EndDialog();
    frame_.OpenStartPage();
  });
  connect(Control<QLineEdit>(kDestinationEditId), &QLineEdit::textChanged, this, [this] {
    std::error_code ignored;
    const std::filesystem::path path = text::ToFileName(frame_.State().destinationPath);
    Control<QWidget>(kNextId)->setEnabled(std::filesystem::exists(path, ignored));
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
  frame_.State().destinationPath = FromQt(folder.toLocalFile());
  Control<QLineEdit>(kDestinationEditId)->setText(folder.toLocalFile());
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
