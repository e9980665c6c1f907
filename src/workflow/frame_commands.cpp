// Menus, toolbar, keys and the command table of the frame.
#include <QAction>
#include <QApplication>
#include <QMenuBar>
#include <QPointer>
#include <QStatusBar>
#include <QToolBar>

#include "platform/path_text.h"
#include "platform/shell.h"
#include "resources/menus.h"
#include "resources/string_table.h"
#include "resources/texts.h"
#include "workflow/boxes.h"
#include "workflow/customize_sheet.h"
#include "workflow/main_frame.h"
#include "workflow/panes/image_list.h"
#include "workflow/qt_text.h"

namespace velmora::workflow {
namespace {

using namespace resources;

constexpr const char* kMakersHost = "https://www.velmora.example/";

/// Prompt and tip of a command stand in one text, with a line end between them.
void SetPrompts(QAction& action, const QString& prompts) {
  const QString tip = prompts.section(u'\n', 1);
  action.setStatusTip(prompts.section(u'\n', 0, 0));
  if (!tip.isEmpty()) action.setToolTip(QString(tip).remove(u'&'));
}

void FillMenu(QMainWindow& frame, QMenu& menu, std::span<const MenuEntry> entries) {
  for (const MenuEntry& entry : entries) {
    if (!entry.submenu.empty()) {
      FillMenu(frame, *menu.addMenu(ToQt(entry.text)), entry.submenu);
    } else if (auto* action = frame.findChild<QAction*>(QString::number(entry.id))) {
      action->setText(ToQt(entry.text));
      menu.addAction(action);
    }
  }
}

}  // namespace

void CMainFrame::BuildBars() {
  const auto action = [this](std::uint16_t id) {
    auto* made = findChild<QAction*>(QString::number(id), Qt::FindDirectChildrenOnly);
    if (made != nullptr) return made;
    made = new QAction(this);
    made->setObjectName(QString::number(id));
    SetPrompts(*made, ToQt(LoadString(id)));
    connect(made, &QAction::triggered, this, [this, id] { OnCommand(id); });
    addAction(made);
    return made;
  };
  for (const Accelerator& key : FrameAccelerators()) {
    QAction* made = action(key.id);
    made->setShortcuts(
        made->shortcuts() << QKeySequence(QString::fromUtf8(key.keys.data(), qsizetype(key.keys.size()))));
  }
  const std::vector<QIcon> icons = LoadImageList(204), large = LoadImageList(128);
  for (std::size_t i = 0; i < IconStrip().size(); ++i) action(IconStrip()[i])->setIcon(icons.at(i));
  for (const std::uint16_t id : {kToolbarCommand, kCustomizeCommand}) action(id);

  statusBar()->setObjectName(QStringLiteral("59393"));
  statusBar()->showMessage(ToQt(LoadString(kStatusIndicator)));
  for (const MenuEntry& menu : FrameMenu()) FillMenu(*this, *menuBar()->addMenu(ToQt(menu.text)), menu.submenu);
  menuBar()->setObjectName(QStringLiteral("Menu Bar"));

  QToolBar* bar = addToolBar(QStringLiteral("Standard ToolBar"));
  bar->setObjectName(QStringLiteral("Standard ToolBar"));
  bar->setIconSize({48, 48});
  std::size_t picture = 0;
  for (const std::uint16_t id : FrameToolbar()) {
    if (id == 0) {
      bar->addSeparator();
      continue;
    }
    action(id)->setIcon(large.at(picture++));
    bar->addAction(action(id));
  }
  WithSavedBars([this](QSettings& bars) { restoreState(bars.value(QStringLiteral("CommandBars")).toByteArray()); });
}

void CMainFrame::WithSavedBars(const std::function<void(QSettings&)>& use) const {
  QSettings bars(PathToQt(services_.settingsFolder / "bars.ini"), QSettings::IniFormat);
  bars.beginGroup(QStringLiteral("Velmora Software"));
  use(bars);
}

bool CMainFrame::IsCommandEnabled(std::uint16_t id) const {
  return id != kConvertCommand || !state_.sourcePath.empty();
}

void CMainFrame::OnCommand(std::uint16_t id) {
  if (!IsCommandEnabled(id)) return;
  const auto tellFocus = [](const char* slot) {
    if (QWidget* focus = QApplication::focusWidget()) QMetaObject::invokeMethod(focus, slot);
  };
  switch (id) {
    case kExitCommand:
      CloseRule();
      break;
    case kRepairCommand:
      if (!panes_->ListBusy()) OpenStartPage();
      break;
    case kConvertCommand:
      StartConversion();
      break;
    case kHelpCommand:
      OpenHelp(this);
      break;
    case kUpdatesCommand:
      services_.startProgram(base_.UpdateHelper(), {});
      break;
    case kHowToRepairCommand:
      OpenWebPage("pst-recovery");
      break;
    case kHowToImportCommand:
      OpenWebPage("how-to-import-pst-file-outlook");
      break;
    case kCustomizeCommand:
      CustomizeSheet(*this).exec();
      break;
    case kToolbarCommand: {
      auto* bar = findChild<QToolBar*>(QStringLiteral("Standard ToolBar"));
      bar->setVisible(bar->isHidden());
      break;
    }
    case kNextPaneCommand:
      focusNextPrevChild(true);
      break;
    case kPreviousPaneCommand:
      focusNextPrevChild(false);
      break;
    case kUndoCommand:
      tellFocus("undo");
      break;
    case kCutCommand:
      tellFocus("cut");
      break;
    case kCopyCommand:
      tellFocus("copy");
      break;
    case kPasteCommand:
      tellFocus("paste");
      break;
    default:
      break;
  }
}

void CMainFrame::OpenHelp(QWidget* owner) {
  const std::string help = platform::BytesOfPath(base_.Help());
  OpenWithShell(help, [this, help, near = QPointer<QWidget>(owner)](int code) {
    QWidget* over = near != nullptr && near->isVisible() ? near.data() : nullptr;
    if (code == platform::kShellFileNotFound || code == platform::kShellPathNotFound) {
      ShowBox(over, kHelpFileMissing, kInformation, BoxIcon::Information);
    } else if (code != platform::kShellNoProgram || !services_.openInBrowser(help)) {
      TellShellFailure(over, code, help, kInformation);
    }
  });
}

void CMainFrame::OpenWebPage(const char* path) {
  const std::string address = std::string(kMakersHost) + path;
  OpenWithShell(address, [this, address](int code) { TellShellFailure(nullptr, code, address, kInformation); });
}

void CMainFrame::OpenWithShell(const std::string& target, std::function<void(int code)> onFailure) {
  const auto onRefusal = [self = QPointer<CMainFrame>(this), onFailure] {
    QMetaObject::invokeMethod(
        qApp,
        [self, onFailure] {
          if (self != nullptr) onFailure(platform::kShellNoProgram);
        },
        Qt::QueuedConnection);
  };
  if (const int code = services_.openWithShell(target, onRefusal); code < platform::kShellSuccess) onFailure(code);
}

void CMainFrame::TellShellFailure(QWidget* owner, int code, const std::string& target, text::TextView title) {
  const text::TextView reason = LinkFailureText(code);
  ShowBox(owner,
          text::Text(reason.empty() ? kNothingOpens : reason) + u"\n" + platform::TextOfPath(platform::PathOf(target)),
          title, BoxIcon::Error);
}

void CMainFrame::StartUpdateHelper() {
  services_.startProgram(base_.UpdateHelper(), {"/SilentCheck", "/NoIcon", "/NoUpdateSelf"});
}

}  // namespace velmora::workflow
