// What all pages of the wizard have in common.
#pragma once

#include <QAbstractButton>

#include "controls/art.h"
#include "controls/display_class.h"
#include "resources/dialog_templates.h"

namespace velmora::workflow {

class WizardFrame;

/// What the window of the wizard shows: a template's controls over the page's art. Each page is made anew on each
/// visit and deletes itself when it has ended. Enter and Escape do nothing unless a page says so; the close box
/// asks whether to exit.
class Page : public QWidget {
  Q_OBJECT

 public:
  /// The control of a number; of the page's template.
  template <class T>
  T* Control(std::uint16_t id) const {
    return findChild<T*>(QString::number(id), Qt::FindDirectChildrenOnly);
  }

  /// The close box of the window.
  virtual void OnCloseBox() { AskExit(); }

  void keyPressEvent(QKeyEvent* event) override;

 signals:
  /// The page is off the screen for good.
  void Ended();

 protected:
  /// `client` is the size of the page, over which the art is stretched.
  Page(WizardFrame& frame, resources::TemplateId id, QSize client);

  template <class Action>
  void OnClick(std::uint16_t id, Action action) {
    connect(Control<QAbstractButton>(id), &QAbstractButton::clicked, this, action);
  }

  virtual void OnOK() {}
  virtual void OnCancel() {}

  /// Takes the page off the screen.
  void EndDialog();
  /// The same, and opens another one.
  void LeadToStart();
  void LeadToDestination(resources::TemplateId previous);

  /// The exit question; on Yes the page ends, and the program with it.
  void AskExit();

  /// A button's name, which is also its tip, with the key that works it.
  static void NameButton(QAbstractButton& button, const QString& name);

  /// A row of a page's list of files becomes the source. Row -1 disables "Next" and leaves the source as it was.
  void ChooseSource(int row, const QString& file);

  /// The page's menu, at the left bottom corner of its button.
  void OpenPageMenu();

  void paintEvent(QPaintEvent* event) override;

  WizardFrame& frame_;

 private:
  QWidget* MakeControl(const resources::ControlTemplate& control);
  void PlaceTopButtons();

  const controls::DisplayClass display_;
  controls::CGdiPlusBitmapResource art_, icon_;
};

}  // namespace velmora::workflow
