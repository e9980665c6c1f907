#include "workflow/customize_sheet.h"

#include <QAction>
#include <QCheckBox>
#include <QFormLayout>
#include <QKeySequenceEdit>
#include <QLineEdit>
#include <QListWidget>
#include <QTabWidget>
#include <QToolBar>
#include <QVBoxLayout>

#include "resources/menus.h"
#include "workflow/qt_text.h"

namespace velmora::workflow {
namespace {

QToolBar* BarOf(QMainWindow& frame) { return frame.findChild<QToolBar*>(QStringLiteral("Standard ToolBar")); }

/// The commands of the menus that have an action, in the menus' order.
QList<QAction*> CommandsOf(QMainWindow& frame) {
  QList<QAction*> actions;
  for (const resources::MenuEntry& menu : resources::FrameMenu()) {
    for (const resources::MenuEntry& entry : menu.submenu) {
      auto* action = frame.findChild<QAction*>(QString::number(entry.id));
      if (action != nullptr) actions << action;
    }
  }
  return actions;
}

}  // namespace

CustomizeSheet::CustomizeSheet(QMainWindow& frame) {
  setWindowTitle(QStringLiteral("Customize"));
  auto* pages = new QTabWidget(this);
  pages->setAccessibleName(windowTitle());
  pages->addTab(KeyboardPage(frame), QStringLiteral("Keyboard"));
  pages->addTab(OptionsPage(frame), QStringLiteral("Options"));
  pages->addTab(CommandsPage(frame), QStringLiteral("Commands"));
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(pages);
}

QWidget* CustomizeSheet::KeyboardPage(QMainWindow& frame) {
  auto* page = new QWidget(this);
  auto* form = new QFormLayout(page);
  for (QAction* action : CommandsOf(frame)) {
    auto* keys = new QKeySequenceEdit(action->shortcut(), page);
    keys->setObjectName(action->objectName());
    keys->findChild<QLineEdit*>()->setAccessibleName(QString(action->text()).remove(u'&'));
    connect(keys, &QKeySequenceEdit::keySequenceChanged, action,
            [action](const QKeySequence& sequence) { action->setShortcut(sequence); });
    form->addRow(action->text(), keys);
  }
  return page;
}

QWidget* CustomizeSheet::OptionsPage(QMainWindow& frame) {
  auto* page = new QWidget(this);
  auto* layout = new QVBoxLayout(page);
  auto* large = new QCheckBox(QStringLiteral("&Large icons"), page);
  QToolBar* bar = BarOf(frame);
  large->setChecked(bar->iconSize().width() == 48);
  connect(large, &QCheckBox::toggled, bar, [bar](bool on) { bar->setIconSize(on ? QSize(48, 48) : QSize(16, 16)); });
  layout->addWidget(large);
  layout->addStretch();
  return page;
}

QWidget* CustomizeSheet::CommandsPage(QMainWindow& frame) {
  auto* list = new QListWidget(this);
  QToolBar* bar = BarOf(frame);
  const QList<QAction*> actions = CommandsOf(frame);
  for (QAction* action : actions) {
    auto* row = new QListWidgetItem(action->icon(), QString(action->text()).remove(u'&'), list);
    row->setCheckState(bar->actions().contains(action) ? Qt::Checked : Qt::Unchecked);
  }
  connect(list, &QListWidget::itemChanged, bar, [bar, list, actions](QListWidgetItem* row) {
    QAction* action = actions[list->row(row)];
    if (row->checkState() == Qt::Checked) {
      bar->addAction(action);
    } else {
      bar->removeAction(action);
    }
  });
  return list;
}

}  // namespace velmora::workflow
