// What the tests of the wizard share: a machine of their own, hands that answer boxes and dialogs, and a
// frame with its pages.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QFileDialog>
#include <QMessageBox>
#include <QTest>
#include <QTimer>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/user_folders.h"
#include "workflow/main_frame.h"
#include "workflow/page.h"
#include "workflow/qt_print.h"
#include "workflow/qt_text.h"

namespace velmora::workflow {

/// Answers of the machine, and what was asked of it.
class Machine {
 public:
  Machine();

  Services Make();

  /// Writes a file below the machine's folder, with its folders.
  std::filesystem::path Write(const std::filesystem::path& path, std::string_view text = "");

  platform::TemporaryFolder folder;
  std::filesystem::path base, program, registryFile;

  // Answers.
  bool hasWindowClass = true, hasControls = true;
  std::function<bool(text::TextView destination, text::TextView source)> hasEnoughFreeSpace;
  platform::Result<void> lock;
  std::vector<std::string> programs;
  std::vector<platform::Volume> volumes;
  std::vector<std::filesystem::path> profileFolders;
  int shellResult = 33;
  bool browserOpens = true;
  conversion::OutputFactory makeOutput;
  std::function<conversion::RunEnd(conversion::COutLook&, conversion::RunState&)> run;

  std::function<void()> refuse;  ///< the desktop finds nothing that opens what it was handed last

  // What happened, in order: "open X", "browse X", "start X a b", "sleep 100", "exit".
  std::vector<std::string> log;
  std::function<void(int milliseconds)> onSleep;

  /// The entries of the log that begin so.
  std::vector<std::string> Log(std::string_view beginning) const;
};

/// Presses the buttons of message boxes while a test is in them, and writes down what they showed. A box
/// that no answer waits for is closed, and its text is kept all the same.
class Boxes {
 public:
  Boxes();

  struct Seen {
    QString title, text;
    QMessageBox::Icon icon;
    QMessageBox::StandardButtons buttons;
  };

  /// The next box is answered by that button, after `meanwhile` was called with the box on the screen.
  void Answer(QMessageBox::StandardButton button, std::function<void()> meanwhile = {});

  /// The next box is closed by what is done to it.
  void Work(std::function<void(QMessageBox&)> work);

  std::vector<Seen> seen;

  /// Titles and texts of all boxes, "title: text".
  QStringList Texts() const;

 private:
  void Look();

  struct Planned {
    QMessageBox::StandardButton button = QMessageBox::NoButton;
    std::function<void()> meanwhile = {};
    std::function<void(QMessageBox&)> work = {};
  };
  QTimer timer_;
  std::deque<Planned> planned_;
  bool looking_ = false;
};

/// Whether the condition comes true within that time. Events are handled as they come meanwhile.
bool Comes(const std::function<bool()>& condition, int milliseconds = 10000);

/// Works a modal dialog of type T as soon as it is on the screen.
template <class T>
void InDialog(std::function<void(T&)> work) {
  auto* timer = new QTimer;
  QObject::connect(timer, &QTimer::timeout, timer, [timer, work = std::move(work)] {
    if (auto* dialog = qobject_cast<T*>(QApplication::activeModalWidget())) {
      timer->stop();
      timer->deleteLater();
      work(*dialog);
    }
  });
  timer->start(10);
}

/// Types a name into a file dialog and accepts it.
void PickInDialog(const QString& name);

class WizardTest : public testing::Test {
 protected:
  ~WizardTest() override;

  /// Makes the frame and waits for the start page.
  void Start();

  Page& CurrentPage();

  template <class T>
  T& Control(std::uint16_t id) {
    T* control = CurrentPage().Control<T>(id);
    if (control == nullptr) throw std::runtime_error("no control " + std::to_string(id));
    return *control;
  }

  /// Clicks a control of the current page with the mouse.
  void Press(std::uint16_t id);

  /// Presses a key on the current page.
  void Key(Qt::Key key, Qt::KeyboardModifiers modifiers = {});

  /// Takes the current page away, if there is one, as if it had ended.
  void LeavePage() { delete frame_->CurrentPage(); }

  /// Opens each page in turn and hands it over; the progress page last, without a run.
  void OnEachPage(const std::function<void(Page&)>& look);

  /// The controls of a page's template.
  static std::vector<QWidget*> Controls(Page& page);

  /// Clicks the close box of the current page.
  void CloseBox();

  template <class T>
  bool IsPage() {
    Settle();
    return qobject_cast<T*>(frame_->CurrentPage()) != nullptr && frame_->CurrentPage()->isVisible();
  }

  /// No page is on the screen.
  bool IsNowhere();

  /// Lets everything that is posted happen.
  static void Settle();

  conversion::RunState& State() { return frame_->State(); }

  Machine machine_;
  Boxes boxes_;
  std::unique_ptr<CMainFrame> frame_;
};

}  // namespace velmora::workflow
