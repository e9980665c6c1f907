#include "workflow/harness.h"

#include <QAbstractButton>
#include <QEventLoop>
#include <QLineEdit>
#include <fstream>

#include "output/trace/trace_library.h"
#include "workflow/progress_dlg.h"

namespace velmora::workflow {

namespace {

class NoTrace : public output::TraceSink {
 public:
  void WriteLine(std::string_view) override {}
};

}  // namespace

Machine::Machine() : folder(platform::TemporaryFolder::Create().value()) {
  base = folder.Path() / "prefix";
  program = Write(base / "bin" / "velmora");
  registryFile = folder.Path() / "registry.ini";
  hasEnoughFreeSpace = [](text::TextView, text::TextView) { return true; };
  volumes = {{folder.Path() / "drive", false}};
  std::filesystem::create_directories(folder.Path() / "drive");
  makeOutput = [sink = std::make_shared<NoTrace>()] {
    return conversion::RunOutput{std::make_shared<output::TraceLibrary>(*sink), {}};
  };
  run = conversion::RunConversion;
}

std::filesystem::path Machine::Write(const std::filesystem::path& path, std::string_view text) {
  const std::filesystem::path full = folder.Path() / path;
  std::filesystem::create_directories(full.parent_path());
  std::ofstream(full, std::ios::binary) << text;
  return full;
}

Services Machine::Make() {
  Services services;
  services.programFile = program;
  services.registerWindowClass = [this] { return hasWindowClass; };
  services.startControls = [this] { return hasControls; };
  services.takeInstanceLock = [this] { return lock; };
  services.settingsFolder = folder.Path() / "settings";
  services.registry = std::make_shared<platform::IniRegistry>(registryFile);
  services.runningPrograms = [this] { return programs; };
  services.programFilesFolder = [] { return std::filesystem::path("/programs"); };
  services.openWithShell = [this](const std::string& target, std::function<void()> onRefusal) {
    log.push_back("open " + target);
    refuse = std::move(onRefusal);
    return shellResult;
  };
  services.openInBrowser = [this](const std::string& address) {
    log.push_back("browse " + address);
    return browserOpens;
  };
  services.startProgram = [this](const std::filesystem::path& file, const std::vector<std::string>& arguments) {
    std::string line = "start " + file.string();
    for (const std::string& argument : arguments) line += " " + argument;
    log.push_back(line);
    return true;
  };
  services.volumes = [this] { return volumes; };
  services.profileFolders = [this] { return profileFolders; };
  services.hasEnoughFreeSpace = [this](text::TextView destination, text::TextView source) {
    return hasEnoughFreeSpace(destination, source);
  };
  services.makeOutput = [this] { return makeOutput(); };
  services.runWorker = [this](conversion::COutLook& outLook, conversion::RunState& state) {
    return run(outLook, state);
  };
  services.sleep = [this](std::chrono::milliseconds time) {
    log.push_back("sleep " + std::to_string(time.count()));
    if (onSleep) onSleep(int(time.count()));
  };
  services.hardExit = [this] { log.push_back("exit"); };
  return services;
}

std::vector<std::string> Machine::Log(std::string_view beginning) const {
  std::vector<std::string> found;
  for (const std::string& line : log) {
    if (line.starts_with(beginning)) found.push_back(line);
  }
  return found;
}

Boxes::Boxes() {
  QObject::connect(&timer_, &QTimer::timeout, &timer_, [this] { Look(); });
  timer_.start(10);
}

void Boxes::Answer(QMessageBox::StandardButton button, std::function<void()> meanwhile) {
  planned_.push_back({.button = button, .meanwhile = std::move(meanwhile)});
}

void Boxes::Work(std::function<void(QMessageBox&)> work) { planned_.push_back({.work = std::move(work)}); }

void Boxes::Look() {
  auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
  // Boxes of a file dialog are its own.
  if (looking_ || box == nullptr || !box->isVisible() || qobject_cast<QFileDialog*>(box->parentWidget()) != nullptr)
    return;
  seen.push_back({box->windowTitle(), box->text(), box->icon(), box->standardButtons()});
  if (planned_.empty()) {
    box->reject();
    return;
  }
  const Planned answer = std::move(planned_.front());
  planned_.pop_front();
  looking_ = true;
  if (answer.meanwhile) answer.meanwhile();
  looking_ = false;
  if (answer.work) return answer.work(*box);
  QAbstractButton* button = box->button(answer.button);
  ASSERT_NE(button, nullptr) << "the box has no such button: " << box->text().toStdString();
  QTest::mouseClick(button, Qt::LeftButton);
}

QStringList Boxes::Texts() const {
  QStringList texts;
  for (const Seen& box : seen) texts << box.title + ": " + box.text;
  return texts;
}

bool Comes(const std::function<bool()>& condition, int milliseconds) {
  if (condition()) return true;
  QEventLoop loop;
  QTimer looks;
  bool hasCome = false;  // and may be gone again before the loop is left
  QObject::connect(&looks, &QTimer::timeout, &loop, [&] {
    hasCome = hasCome || condition();
    if (hasCome) loop.quit();
  });
  looks.start(5);
  QTimer::singleShot(milliseconds, &loop, &QEventLoop::quit);
  loop.exec();
  return hasCome || condition();
}

void PickInDialog(const QString& name) {
  InDialog<QFileDialog>([name](QFileDialog& dialog) {
    auto* edit = dialog.findChild<QLineEdit*>("fileNameEdit");
    ASSERT_NE(edit, nullptr);
    edit->setText(name);
    // The dialog refuses a name by a box of its own, and stays.
    QTimer refusals;
    QObject::connect(&refusals, &QTimer::timeout, &refusals, [&dialog] {
      for (auto* box : dialog.findChildren<QMessageBox*>()) box->reject();
    });
    refusals.start(10);
    QMetaObject::invokeMethod(&dialog, "accept", Qt::DirectConnection);
    if (dialog.isVisible()) dialog.reject();
  });
}

WizardTest::~WizardTest() {
  Settle();  // what a page posted to itself needs the frame
  frame_.reset();
  Settle();
}

void WizardTest::Start() {
  frame_ = std::make_unique<CMainFrame>(machine_.Make());
  ASSERT_TRUE(frame_->Create());
  ASSERT_TRUE(Comes([this] { return frame_->CurrentPage() != nullptr; }));
}

Page& WizardTest::CurrentPage() {
  if (frame_->CurrentPage() == nullptr) throw std::runtime_error("no page is open");
  return *frame_->CurrentPage();
}

void WizardTest::Press(std::uint16_t id) {
  QTest::mouseClick(&Control<QWidget>(id), Qt::LeftButton);
  Settle();
}

void WizardTest::Key(Qt::Key key, Qt::KeyboardModifiers modifiers) {
  QTest::keyClick(&CurrentPage(), key, modifiers);
  Settle();
}

void WizardTest::OnEachPage(const std::function<void(Page&)>& look) {
  const std::function<void()> openers[] = {[this] { frame_->OpenStartPage(); }, [this] { frame_->OpenBrowsePage(); },
                                           [this] { frame_->OpenFindPage(); }, [this] { frame_->OpenProfilePage(); },
                                           [this] { frame_->OpenDestinationPage(resources::kBrowseTemplate); }};
  for (const auto& open : openers) {
    LeavePage();
    open();
    Settle();
    look(CurrentPage());
  }
  LeavePage();
  WizardWindow window;
  auto* progress = new CProgressDlg(*frame_);
  window.Show(progress);
  Settle();
  look(*progress);
}

std::vector<QWidget*> WizardTest::Controls(Page& page) {
  std::vector<QWidget*> controls;
  for (QWidget* widget : page.findChildren<QWidget*>(Qt::FindDirectChildrenOnly)) {
    if (!widget->isWindow() && !widget->objectName().isEmpty()) controls.push_back(widget);
  }
  return controls;
}

void WizardTest::CloseBox() {
  CurrentPage().window()->close();
  Settle();
}

bool WizardTest::IsNowhere() {
  Settle();
  for (const QWidget* window : QApplication::topLevelWidgets()) {
    if (window->isVisible()) return false;
  }
  return true;
}

void WizardTest::Settle() {
  for (int i = 0; i < 3; ++i) {
    QCoreApplication::processEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  }
}

}  // namespace velmora::workflow
