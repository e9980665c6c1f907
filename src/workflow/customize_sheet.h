// Which commands the toolbar shows, with which keys and how large.
#pragma once

#include <QDialog>
#include <QMainWindow>

namespace velmora::workflow {

/// Three pages over the commands of the menu: keyboard, options, commands. What is set is set at once.
class CustomizeSheet : public QDialog {
  Q_OBJECT

 public:
  explicit CustomizeSheet(QMainWindow& frame);

 private:
  QWidget* KeyboardPage(QMainWindow& frame);
  QWidget* OptionsPage(QMainWindow& frame);
  QWidget* CommandsPage(QMainWindow& frame);
};

}  // namespace velmora::workflow
