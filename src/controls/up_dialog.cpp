#include "controls/up_dialog.h"

#include <QCloseEvent>
#include <QGridLayout>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <chrono>
#include <condition_variable>
#include <mutex>

namespace velmora::controls {
namespace {

constexpr auto kPatience = std::chrono::milliseconds(500);

}  // namespace

/// What dialog and worker have in common; it lives as long as one of them.
struct CUPDialog::Shared {
  std::mutex mutex;
  std::condition_variable changed;
  CUPDialog* dialog = nullptr;  ///< null once it is gone
  bool busy = false;
  bool cancel = false;

  void Set(bool Shared::*flag, bool value) {
    const std::lock_guard lock(mutex);
    this->*flag = value;
    changed.notify_all();
  }

  /// Waits a while for the worker's end. True: it has ended.
  bool WaitForWorker() {
    std::unique_lock lock(mutex);
    return changed.wait_for(lock, kPatience, [this] { return !busy; });
  }
};

bool CUPDialog::Link::IsCancelled() const {
  const std::lock_guard lock(shared_->mutex);
  return shared_->cancel || shared_->dialog == nullptr;
}

bool CUPDialog::Link::Call(std::function<void()> call) const {
  auto done = std::make_shared<bool>(false);
  std::unique_lock lock(shared_->mutex);
  if (shared_->cancel || shared_->dialog == nullptr) return false;
  // Cancelling happens in the thread of the windows too, so a call is either over by then or never begins.
  const auto serve = [shared = shared_, done, call = std::move(call)] {
    {
      const std::lock_guard inner(shared->mutex);
      if (shared->cancel) return;
    }
    call();
    const std::lock_guard inner(shared->mutex);
    *done = true;
    shared->changed.notify_all();
  };
  QMetaObject::invokeMethod(shared_->dialog, serve, Qt::QueuedConnection);
  shared_->changed.wait(lock, [&] { return *done || shared_->cancel; });
  return *done;
}

void CUPDialog::Link::Send(Message message, int number, const QString& text) const {
  Call([shared = shared_, message, number, text] { shared->dialog->OnMessage(message, number, text); });
}

CUPDialog::CUPDialog(QWidget* parent, const QString& caption, Function function)
    : QDialog(parent), shared_(std::make_shared<Shared>()), function_(std::move(function)) {
  shared_->dialog = this;
  setWindowTitle(caption);
  const auto named = [](auto* widget, const char* name) {
    widget->setObjectName(QLatin1String(name));
    return widget;
  };
  auto* text = named(new QLabel(this), "1026");
  auto* percent = named(new QLabel(this), "1061");
  auto* bar = named(new QProgressBar(this), "1018");
  auto* cancel = named(new QPushButton(QStringLiteral("&Cancel"), this), "2");
  bar->setRange(0, 100);
  bar->setTextVisible(false);
  bar->setAccessibleName(caption);
  for (QLabel* label : {text, percent}) label->setTextFormat(Qt::PlainText);
  auto* layout = new QGridLayout(this);
  layout->addWidget(text, 0, 0);
  layout->addWidget(percent, 0, 1, Qt::AlignRight);
  layout->addWidget(bar, 1, 0, 1, 2);
  layout->addWidget(cancel, 2, 0, 1, 2, Qt::AlignRight);
  setMinimumWidth(320);
  connect(cancel, &QPushButton::clicked, this, &CUPDialog::reject);
}

CUPDialog::~CUPDialog() {
  EndWorker();
  const std::lock_guard lock(shared_->mutex);
  shared_->dialog = nullptr;
}

int CUPDialog::Run() {
  shared_->busy = true;
  worker_ = std::thread([shared = shared_, function = function_] { Work(shared, function); });
  const int result = exec();
  EndWorker();
  return result;
}

void CUPDialog::Work(const std::shared_ptr<Shared>& shared, const Function& function) {
  const Link link(shared);
  const bool done = !link.IsCancelled() && function(link);
  shared->Set(&Shared::busy, false);
  link.Send(kEndMessage, done ? kDone : kNotDone);
}

void CUPDialog::OnMessage(Message message, int number, const QString& text) {
  switch (message) {
    case kLockMessage:
      locked_ = true;
      findChild<QPushButton*>(QStringLiteral("2"))->setEnabled(false);
      break;
    case kEndMessage:
      done(number);
      break;
    case kPositionMessage:
      findChild<QProgressBar*>(QStringLiteral("1018"))->setValue(number);
      break;
    case kTextMessage:
      findChild<QLabel*>(QStringLiteral("1026"))->setText(text);
      break;
    case kPercentMessage:
      findChild<QLabel*>(QStringLiteral("1061"))->setText(text);
      break;
    case kCancelMessage:
      OnCancel();
      break;
  }
}

void CUPDialog::reject() {
  if (!locked_) OnCancel();
}

void CUPDialog::OnCancel() {
  shared_->Set(&Shared::cancel, true);
  const auto tell = [this] {
    auto* text = findChild<QLabel*>(QStringLiteral("1026"));
    text->setText(QStringLiteral("Closing..."));
    text->repaint();
  };
  tell();
  OnMessage(kLockMessage, 0, {});
  if (!shared_->WaitForWorker()) {
    tell();
    shared_->WaitForWorker();
  }
  done(kCancelled);
}

void CUPDialog::EndWorker() {
  if (!worker_.joinable()) return;
  shared_->Set(&Shared::cancel, true);
  if (shared_->WaitForWorker()) {
    worker_.join();
  } else {
    worker_.detach();
  }
}

void CUPDialog::closeEvent(QCloseEvent* event) {
  event->ignore();
  reject();
}

}  // namespace velmora::controls
