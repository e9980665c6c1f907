#include "workflow/mode_notice.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "resources/string_table.h"
#include "resources/texts.h"
#include "workflow/outlook_checks.h"
#include "workflow/qt_text.h"

namespace velmora::workflow {
namespace {

using namespace resources;

QPlainTextEdit* MakeText(QWidget* owner, const QString& text) {
  auto* edit = new QPlainTextEdit(owner);
  edit->setReadOnly(true);
  edit->setTabChangesFocus(true);
  edit->setPlainText(QString(text).replace(QStringLiteral("\r\n"), QStringLiteral("\n")));
  edit->setMinimumSize(520, 260);
  return edit;
}

/// Two buttons, of which neither takes Enter.
void AddButtons(QDialog& dialog, QVBoxLayout& layout, StringId yes, StringId no) {
  auto* row = new QHBoxLayout;
  row->addStretch();
  for (const StringId id : {yes, no}) {
    auto* button = new QPushButton(ToQt(LoadString(id)), &dialog);
    button->setObjectName(QString::number(id));
    button->setAutoDefault(false);
    QObject::connect(button, &QPushButton::clicked, &dialog, id == yes ? &QDialog::accept : &QDialog::reject);
    row->addWidget(button);
  }
  layout.addLayout(row);
}

}  // namespace

CInformationDlg::CInformationDlg() {
  setWindowTitle(ToQt(kModeNoticeTitle));
  auto* layout = new QVBoxLayout(this);
  auto* heading = new QLabel(ToQt(LoadString(kModeNoticeHeading)), this);
  heading->setWordWrap(true);
  QFont bold = heading->font();
  bold.setBold(true);
  heading->setFont(bold);
  layout->addWidget(heading);

  QStringList parts;
  for (const StringId id : {kModeNoticeMode, kModeNoticeAutomatic, kModeNoticeChoice, kModeNoticeManual}) {
    parts << ToQt(LoadString(id));
  }
  QPlainTextEdit* text = MakeText(this, parts.join(QStringLiteral("\r\n\r\n")));
  text->setAccessibleName(ToQt(kModeNoticeTitle));
  layout->addWidget(text);
  AddButtons(*this, *layout, kConfirm, kIgnore);
}

CDisclaimerDlg::CDisclaimerDlg() {
  setWindowTitle(ToQt(kTermsTitle));
  auto* layout = new QVBoxLayout(this);
  QPlainTextEdit* text = MakeText(this, ToQt(kTermsOfModeChange));
  text->setAccessibleName(ToQt(kTermsTitle));
  layout->addWidget(text);
  AddButtons(*this, *layout, kAcceptTerms, kRefuseTerms);
}

void ShowModeNotice(const Services& services) {
  CInformationDlg notice;
  notice.exec();
  if (!notice.IsConfirmed()) return;
  CDisclaimerDlg terms;
  if (terms.exec() == QDialog::Accepted) ChangeOutlook2000Mode(services);
}

}  // namespace velmora::workflow
