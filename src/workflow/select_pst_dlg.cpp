#include "workflow/select_pst_dlg.h"

#include <QDir>
#include <QFileDialog>
#include <QLineEdit>
#include <filesystem>

#include "controls/display_class.h"
#include "controls/file_rows.h"
#include "controls/tx_list_ctrl.h"
#include "platform/file_system.h"
#include "resources/string_table.h"
#include "resources/texts.h"
#include "workflow/file_search.h"
#include "workflow/qt_text.h"
#include "workflow/services.h"
#include "workflow/wizard_frame.h"

namespace velmora::workflow {

using namespace resources;

CSelectPstDlg::CSelectPstDlg(WizardFrame& frame)
    : Page(frame, kBrowseTemplate, controls::PageArtSize(frame.Display())) {
  OnClick(kBrowseId, [this] { OnBrowse(); });
  connect(Control<QLineEdit>(kSourceEditId), &QLineEdit::textChanged, this, &CSelectPstDlg::OnSourceChanged);
  for (const std::uint16_t id : {kBackId, kMainId}) OnClick(id, [this] { LeadToStart(); });
  OnClick(kNextId, [this] { LeadToDestination(kBrowseTemplate); });
}

void CSelectPstDlg::OnBrowse() {
  QFileDialog dialog(this, ToQt(LoadString(kProductTitle)));
  dialog.setFileMode(QFileDialog::ExistingFile);
  // The filter's text and its pattern stand in one text, with a bar between them.
  dialog.setNameFilter(ToQt(kOpenFilter).section(u'|', 0, 0).trimmed());
  dialog.setDefaultSuffix(ToQt(kOpenDefaultExtension));
  // Where the present choice lies, else the last one.
  const QString present = Control<QLineEdit>(kSourceEditId)->text();
  const QString near = present.isEmpty() ? ToQt(frame_.State().sourcePath) : present;
  if (!near.isEmpty()) dialog.setDirectory(QFileInfo(near).path());
  if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) return;

  const QFileInfo chosen(dialog.selectedFiles().first());
  frame_.State().sourceFileName = FromQt(chosen.fileName());
  const QString path = QDir::toNativeSeparators(chosen.filePath());
  frame_.State().sourcePath = FromQt(path);
  Control<QLineEdit>(kSourceEditId)->setText(path);
  const QString extension = chosen.suffix().toLower();
  if (extension != u"pst" && extension != u"ost") Control<QWidget>(kNextId)->setEnabled(false);
}

void CSelectPstDlg::OnSourceChanged(const QString& text) {
  Control<QWidget>(kNextId)->setEnabled(platform::Exists(ToPath(text)));
}

CRepairProfileDlg::CRepairProfileDlg(WizardFrame& frame) : Page(frame, kProfileTemplate, controls::kProfileArtSize) {
  auto* list = Control<controls::CTXListCtrl>(kFileListId);
  list->SetHint(ToQt(kProfileListHint));
  connect(list, &controls::CTXListCtrl::RowChosen, this,
          [this, list](int row) { ChooseSource(row, list->Rows().TextAt(row)); });
  for (const std::filesystem::path& folder : frame.Machine().profileFolders()) {
    for (const char* mask : {"*.PST", "*.OST"}) {
      SearchFolder(folder, mask,
                   {.onFile = [list](const std::filesystem::path& file) { list->Rows().Append({PathToQt(file)}); }});
    }
  }
  for (const std::uint16_t id : {kBackId, kMainId}) OnClick(id, [this] { LeadToStart(); });
  OnClick(kNextId, [this] { LeadToDestination(kProfileTemplate); });
}

}  // namespace velmora::workflow
