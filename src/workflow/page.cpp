#include "workflow/page.h"

#include <QComboBox>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPainter>
#include <QStyle>

#include "controls/picture_button.h"
#include "controls/progress_bar.h"
#include "controls/transparent_static.h"
#include "controls/tx_list_ctrl.h"
#include "controls/x_cmd_btn.h"
#include "controls/x_skin_button.h"
#include "resources/menus.h"
#include "resources/string_table.h"
#include "workflow/about_dlg.h"
#include "workflow/boxes.h"
#include "workflow/page_palette.h"
#include "workflow/qt_text.h"
#include "workflow/wizard_frame.h"

namespace velmora::workflow {
namespace {

using namespace resources;
using controls::DisplayClass;

/// Places of the two buttons at the top, in pixels, and the text margin of the buttons at the bottom.
struct TopButtons {
  QRect menu, main;
  int textMargin;
};

/// The profile page has one size on every display, that of the Medium class.
DisplayClass ClassOf(TemplateId id, const WizardFrame& frame) {
  return id == kProfileTemplate ? DisplayClass::Medium : frame.Display();
}

/// Height of a letter in pixels. It goes with the size of the page, as the page does not grow with the letters.
int LetterSize(QSize client) { return qRound(12 * qreal(client.width()) / 700); }

TopButtons TopButtonsOf(DisplayClass display) {
  switch (display) {
    case DisplayClass::Medium:
      return {{640, 16, 55, 65}, {720, 16, 55, 65}, 5};
    case DisplayClass::Large:
      return {{850, 16, 66, 78}, {950, 16, 66, 78}, 15};
    default:
      return {{560, 16, 51, 64}, {624, 16, 51, 64}, 4};
  }
}

controls::CTransparentStatic* MakeText(Page* page, const QString& text, bool bold) {
  auto* made = new controls::CTransparentStatic(page);
  QFont font = made->font();
  font.setBold(bold);
  if (bold) font.setPixelSize(qRound(font.pixelSize() * 1.25));
  made->setFont(font);
  made->SetText(text);
  return made;
}

/// A style sheet keeps a widget from taking over the colours of its page, so it gets them by itself.
void GiveLook(QWidget& field, const QString& style) {
  field.setStyleSheet(style);
  field.setPalette(PagePalette());
}

}  // namespace

Page::Page(WizardFrame& frame, TemplateId id, QSize client) : frame_(frame), display_(ClassOf(id, frame)) {
  const DialogTemplate& made = FindTemplate(id);
  icon_.Load(128, "ICON");
  setFixedSize(client);
  setPalette(PagePalette());
  QFont letters = font();
  letters.setPixelSize(LetterSize(client));
  setFont(letters);
  art_.Load(made.art, "BITMAP");

  const qreal across = qreal(client.width()) / made.width, down = qreal(client.height()) / made.height;
  QWidget* before = nullptr;
  for (const ControlTemplate& control : made.controls) {
    QWidget* widget = MakeControl(control);
    const TemplateRect& place = control.rect;
    widget->setObjectName(QString::number(control.id));
    widget->setGeometry(QRectF(place.x * across, place.y * down, place.width * across, place.height * down).toRect());
    widget->setAccessibleName(
        ToQt(control.accessibleName.empty() ? control.text : control.accessibleName).remove(u'&'));
    widget->setEnabled(control.enabled);
    widget->setVisible(control.visible);
    if (before != nullptr) setTabOrder(before, widget);
    before = widget;
  }
  for (auto* combo : findChildren<QComboBox*>()) combo->lineEdit()->setAccessibleName(combo->accessibleName());
  for (const ControlTemplate& control : made.controls) {
    if (control.labels != 0) Control<QLabel>(control.id)->setBuddy(Control<QWidget>(control.labels));
  }
  PlaceTopButtons();
}

QWidget* Page::MakeControl(const ControlTemplate& control) {
  const QString text = ToQt(control.text);
  const auto finish = [&](QAbstractButton* button) {
    button->setText(text);
    if (control.key != 0) button->setShortcut(QKeySequence(Qt::ALT | Qt::Key(control.key)));
    NameButton(*button, ToQt(control.accessibleName.empty() ? control.text : control.accessibleName).remove(u'&'));
    return button;
  };
  const auto& art = control.art;
  switch (control.kind) {
    case ControlKind::kText:
      return MakeText(this, text, false);
    case ControlKind::kHeading:
      return MakeText(this, text, true);
    case ControlKind::kEdit:
    case ControlKind::kStatus: {
      auto* edit = new QLineEdit(this);
      edit->setReadOnly(true);
      GiveLook(*edit, control.kind == ControlKind::kEdit ? FieldStyle() : BareFieldStyle());
      return edit;
    }
    case ControlKind::kCombo: {
      auto* combo = new QComboBox(this);
      combo->setEditable(true);
      combo->setInsertPolicy(QComboBox::NoInsert);
      GiveLook(*combo, FieldStyle());
      return combo;
    }
    case ControlKind::kList: {
      auto* list = new controls::CTXListCtrl(this);
      list->SetTitle(ToQt(LoadString(kColumnFileName)));
      GiveLook(*list, FieldStyle());
      return list;
    }
    case ControlKind::kButton: {
      auto* button = new controls::PictureButton(this);
      button->SetPicture(art[0]);
      button->SetRelation(control.pictureSide == PictureSide::kAbove ? controls::PictureButton::Relation::Above
                                                                     : controls::PictureButton::Relation::Left);
      return finish(button);
    }
    case ControlKind::kImageButton: {
      auto* button = new controls::CXCmdBtn(this);
      button->SetImages(art[0], art[1], art[2]);
      button->SetDisplayClass(display_);
      button->SetImageOnly(true);
      return finish(button);
    }
    case ControlKind::kRadio: {
      auto* radio = new controls::CxSkinButton(this);
      radio->SetSkin(art[0], art[1], art[2], art[3], art[4]);
      return finish(radio);
    }
    case ControlKind::kProgressBar:
      return new controls::ProgressBar(this);
  }
  return nullptr;
}

void Page::NameButton(QAbstractButton& button, const QString& name) {
  button.setAccessibleName(name);
  const QString key = button.shortcut().toString();
  button.setToolTip(key.isEmpty() ? QString() : QStringLiteral("%1 (%2)").arg(name, key));
}

void Page::PlaceTopButtons() {
  const TopButtons places = TopButtonsOf(display_);
  if (auto* menu = Control<controls::CXCmdBtn>(kMenuButtonId)) {
    menu->setGeometry(places.menu);
    connect(menu, &QAbstractButton::clicked, this, &Page::OpenPageMenu);
  }
  if (auto* main = Control<controls::CXCmdBtn>(kMainId)) main->setGeometry(places.main);
  for (const std::uint16_t id : {kBackId, kNextId, kCancelId, kFinishId}) {
    if (auto* button = Control<controls::PictureButton>(id)) button->SetTextMargin(places.textMargin);
  }
}

void Page::EndDialog() {
  hide();
  deleteLater();
  emit Ended();
}

void Page::LeadToStart() {
  EndDialog();
  frame_.OpenStartPage();
}

void Page::LeadToDestination(TemplateId previous) {
  EndDialog();
  frame_.OpenDestinationPage(previous);
}

void Page::AskExit() {
  if (!AskYesNo(this, LoadString(kExitQuestion), LoadString(kInformationTitle))) return;
  frame_.State().skipExitPrompt = true;
  EndDialog();
  frame_.CloseRule();
}

void Page::ChooseSource(int row, const QString& file) {
  auto* next = Control<QWidget>(kNextId);
  if (row < 0) return next->setEnabled(false);
  frame_.State().sourcePath = FromQt(file);
  frame_.State().sourceFileName = FromQt(file.section(u'/', -1));
  if (!frame_.State().sourceFileName.empty()) next->setEnabled(true);
}

void Page::OpenPageMenu() {
  auto* menu = new QMenu(this);
  menu->setAttribute(Qt::WA_DeleteOnClose);
  for (const MenuEntry& entry : PageMenu()) {
    controls::CGdiPlusBitmapResource picture;
    picture.Load(entry.picture, "BITMAP");
    QAction* action = menu->addAction(QIcon(picture.ToPixmap({16, 16}, 2)), ToQt(entry.text));
    action->setObjectName(QString::number(entry.id));
  }
  connect(menu, &QMenu::triggered, this, [this](QAction* action) {
    if (action->objectName() == QString::number(kPageHelpCommand)) return frame_.OpenHelp(this);
    CAboutDlg(frame_, this).exec();
  });
  const auto* button = Control<QWidget>(kMenuButtonId);
  menu->popup(button->mapToGlobal(button->rect().bottomLeft()));
}

void Page::keyPressEvent(QKeyEvent* event) {
  switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
      OnOK();
      break;
    case Qt::Key_Escape:
      OnCancel();
      break;
    default:
      QWidget::keyPressEvent(event);
      break;
  }
}

void Page::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.fillRect(rect(), Qt::white);
  if (!window()->isMinimized()) return art_.Draw(painter, rect());
  const int side = style()->pixelMetric(QStyle::PM_LargeIconSize);
  icon_.Draw(painter, QRect((width() - side) / 2, (height() - side) / 2, side, side));
}

}  // namespace velmora::workflow
