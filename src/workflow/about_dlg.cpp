#include "workflow/about_dlg.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <QPainter>
#include <QPointer>
#include <algorithm>

#include "controls/hyper_link.h"
#include "controls/x_cmd_btn.h"
#include "platform/shell.h"
#include "resources/string_table.h"
#include "resources/texts.h"
#include "workflow/boxes.h"
#include "workflow/page_palette.h"
#include "workflow/qt_text.h"
#include "workflow/services.h"
#include "workflow/wizard_frame.h"

namespace velmora::workflow {
namespace {

constexpr QSize kSize{435, 190};
constexpr QColor kBorder(0x56, 0x56, 0x56), kLine(0xB4, 0xB4, 0xB4), kVersionColour(0x0C, 0x6F, 0xAD);
constexpr int kOkImages[] = {150, 151, 152};

struct Link {
  int id;
  const char* captionKey;
  const char* targetKey;
};

// The maker's page has no caption of its own: it shows its address.
constexpr Link kLinks[] = {
    {CAboutDlg::kUninstallId, "IDS_UNINSTALL_URL_TXT", "IDS_UNINSTALL_URL"},
    {CAboutDlg::kPolicyId, "IDS_POLICY_URL_TXT", "IDS_POLICY_URL"},
    {CAboutDlg::kMakerId, "IDS_URL_ABOUT", "IDS_URL_ABOUT"},
};

}  // namespace

CAboutDlg::CAboutDlg(WizardFrame& frame, QWidget* owner)
    : QDialog(owner), frame_(frame), scale_(frame.Dpi().x() / 96.0), language_(frame.Base().LanguageFile()) {
  setWindowTitle(
      QStringLiteral("%1 %2").arg(language_.Text("IDS_ABOUT"), ToQt(resources::LoadString(resources::kProductTitle))));
  setFixedSize(kSize * scale_);
  setPalette(PagePalette());
  QFont small = font();
  small.setFamilies({QStringLiteral("Trebuchet MS"), font().family()});
  small.setPixelSize(Scaled(11));
  setFont(small);
  logo_.Load(QStringLiteral("about"));
  mark_.Load(128, "ICON");
  version_ = QCoreApplication::applicationVersion();
  if (version_.isEmpty()) version_ = ToQt(resources::kUnknownVersion);
  setAccessibleDescription(language_.Text("IDS_VERSION_TEXT") + u' ' + version_);
  AddLinks();

  auto* ok = new controls::CXCmdBtn(this);
  ok->setObjectName(QString::number(kOkId));
  if (!ok->SetImages(kOkImages[0], kOkImages[1], kOkImages[2])) {
    ShowBox(this, resources::kButtonCreationFailed, resources::LoadString(resources::kProductTitle), BoxIcon::Error);
  }
  ok->setText(language_.Text("IDS_OK"));
  ok->setAccessibleName(ok->text());
  ok->SetDisplayClass(controls::DisplayClass::Large);  // it fills its place
  ok->setGeometry(Scaled(337, 150, 84, 28));
  connect(ok, &QAbstractButton::clicked, this, &QDialog::accept);
  ok->setFocus();
  if (owner != nullptr) move(owner->mapToGlobal(owner->rect().center()) - rect().center());
}

void CAboutDlg::AddLinks() {
  QPoint place(Scaled(70), Scaled(124));
  for (const Link& link : kLinks) {
    const QString caption = language_.Text(link.captionKey);
    if (caption.isEmpty()) {
      ShowBox(this, resources::kLinkCreationFailed, resources::LoadString(resources::kProductTitle), BoxIcon::Error);
      continue;
    }
    auto* made = new controls::CHyperLink(link.id, caption, this);
    made->setObjectName(QString::number(link.id));
    made->setToolTip(language_.Text(link.targetKey));
    if (link.id == kMakerId) place = QPoint(Scaled(18), Scaled(156));
    made->setGeometry(QRect(place, made->sizeHint()).adjusted(0, 0, 0, 4));
    place.rx() += made->width() + Scaled(18);
    connect(made, &controls::CHyperLink::Clicked, this, &CAboutDlg::OpenLink);
  }
}

void CAboutDlg::OpenLink(int id) {
  const Link* link =
      std::find_if(std::begin(kLinks), std::end(kLinks), [id](const Link& each) { return each.id == id; });
  const std::string target = language_.Text(link->targetKey).toStdString();
  frame_.OpenWithShell(target, [&frame = frame_, target, title = FromQt(language_.Text("IDS_ERROR")),
                                self = QPointer<CAboutDlg>(this)](int code) {
    const text::TextView reason = resources::LinkFailureText(code);
    const bool isForBrowser = code == 0 || code == platform::kShellFileNotFound || code == platform::kShellNoProgram;
    if (isForBrowser && frame.Machine().openInBrowser(target)) return;
    if (reason.empty()) return frame.TellShellFailure(self, code, target, title);
    ShowBox(self, reason, title, BoxIcon::Error);
  });
}

QFont CAboutDlg::HeadingFont() const {
  QFont bold = font();
  bold.setBold(true);
  return bold;
}

void CAboutDlg::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
    accept();
  } else {
    QDialog::keyPressEvent(event);
  }
}

void CAboutDlg::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  // Filled, not stroked: a stroke lies half a pixel aside where the display is scaled.
  painter.fillRect(rect(), kBorder);
  painter.fillRect(rect().adjusted(2, 2, -2, -2), Qt::white);
  logo_.Draw(painter, Scaled(13, 13, 300, 44));
  painter.fillRect(2, Scaled(70), width() - 4, 1, kLine);
  for (int y = Scaled(127); y <= Scaled(145); y += 2) painter.fillRect(Scaled(63), y, 1, 1, kLine);
  mark_.Draw(painter, Scaled(26, 124, 24, 24));
  painter.setPen(kVersionColour);
  painter.setFont(HeadingFont());
  const int line = painter.fontMetrics().height();
  const QString caption = language_.Text("IDS_VERSION_TEXT");
  const int width = painter.fontMetrics().horizontalAdvance(caption);
  painter.drawText(QRect(Scaled(20), Scaled(77), width, line), Qt::AlignLeft, caption);
  const int next = std::max(Scaled(72), Scaled(20) + width + Scaled(5));  // where a language says it longer
  painter.drawText(QRect(next, Scaled(77), Scaled(300), line), Qt::AlignLeft, version_);
}

}  // namespace velmora::workflow
