#include "controls/up_dialog.h"

#include <gtest/gtest.h>

#include <QElapsedTimer>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QTest>
#include <QThread>
#include <QTimer>
#include <atomic>

namespace velmora::controls {
namespace {

using Link = CUPDialog::Link;

constexpr qint64 kPatience = 500;  // milliseconds that a wait for the function takes

/// Has something called while the function goes on. To be called by the function.
template <class Call>
void Meanwhile(const Link& link, QObject* context, Call call) {
  link.Call([context, call] { QTimer::singleShot(0, context, call); });
}

void WaitUntil(const std::function<bool()>& condition) {
  for (int i = 0; i < 5000 && !condition(); ++i) QThread::msleep(1);
}

TEST(UPDialogTest, EndsWithTheResultOfTheFunction) {
  EXPECT_EQ(CUPDialog(nullptr, "Caption", [](const Link&) { return true; }).Run(), 1);
  EXPECT_EQ(CUPDialog(nullptr, "Caption", [](const Link&) { return false; }).Run(), 2);
}

TEST(UPDialogTest, TheFunctionRunsOnAThreadOfItsOwn) {
  QThread* thread = QThread::currentThread();
  CUPDialog(nullptr, "Caption", [&](const Link&) {
    thread = QThread::currentThread();
    return true;
  }).Run();
  EXPECT_NE(thread, QThread::currentThread());
}

TEST(UPDialogTest, ShowsWhatTheFunctionSends) {
  QString text, percent;
  int position = -1;
  CUPDialog dialog(nullptr, "Caption", [&](const Link& link) {
    link.Send(CUPDialog::kTextMessage, 0, "Loading...");
    link.Send(CUPDialog::kPositionMessage, 42);
    link.Send(CUPDialog::kPercentMessage, 0, "42%");
    return link.Call([&] {
      text = dialog.findChild<QLabel*>("1026")->text();
      percent = dialog.findChild<QLabel*>("1061")->text();
      position = dialog.findChild<QProgressBar*>("1018")->value();
    });
  });
  EXPECT_EQ(dialog.Run(), 1);
  EXPECT_EQ(text, "Loading...");
  EXPECT_EQ(percent, "42%");
  EXPECT_EQ(position, 42);
  EXPECT_EQ(dialog.windowTitle(), "Caption");
}

TEST(UPDialogTest, ItsMessagesHaveTheirNumbers) {
  EXPECT_EQ(CUPDialog::kLockMessage, 2258u);
  EXPECT_EQ(CUPDialog::kEndMessage, 2259u);
  EXPECT_EQ(CUPDialog::kPositionMessage, 2260u);
  EXPECT_EQ(CUPDialog::kTextMessage, 2261u);
  EXPECT_EQ(CUPDialog::kCancelMessage, 2262u);
  EXPECT_EQ(CUPDialog::kPercentMessage, 2263u);
}

TEST(UPDialogTest, ACancelOfTheFunctionsOwnIsACancel) {
  bool heard = false;
  CUPDialog dialog(nullptr, "Caption", [&](const Link& link) {
    link.Send(CUPDialog::kCancelMessage, 0);
    heard = link.IsCancelled();
    return true;
  });
  EXPECT_EQ(dialog.Run(), 0x10002) << "whatever the function gave";
  EXPECT_TRUE(heard);
}

TEST(UPDialogTest, WhileItClosesItSaysSoAndHasNoOtherWayOut) {
  CUPDialog dialog(nullptr, "Caption", [&](const Link& link) {
    link.Send(CUPDialog::kTextMessage, 0, "Loading...");
    Meanwhile(link, &dialog, [&] { dialog.reject(); });
    WaitUntil([&] { return link.IsCancelled(); });
    link.Send(CUPDialog::kTextMessage, 0, "Loading...");
    return true;
  });
  EXPECT_EQ(dialog.Run(), 0x10002);
  EXPECT_EQ(dialog.findChild<QLabel*>("1026")->text(), "Closing...") << "nothing is told after a cancel";
  EXPECT_FALSE(dialog.findChild<QPushButton*>("2")->isEnabled());
  EXPECT_EQ(dialog.findChild<QPushButton*>("2")->text(), "&Cancel");
}

TEST(UPDialogTest, IsModalToTheWindowThatOwnsIt) {
  QWidget owner;
  bool modal = false;
  CUPDialog dialog(&owner, "Caption", [&](const Link& link) {
    return link.Call([&] { modal = dialog.isModal() && QApplication::activeModalWidget() == &dialog; });
  });
  EXPECT_EQ(dialog.Run(), 1);
  EXPECT_TRUE(modal);
  EXPECT_EQ(dialog.parentWidget(), &owner);
}

TEST(UPDialogTest, EndMessageEndsTheDialogWithItsNumber) {
  CUPDialog dialog(nullptr, "Caption", [](const Link& link) {
    link.Send(CUPDialog::kEndMessage, 77);
    return true;
  });
  EXPECT_EQ(dialog.Run(), 77);
}

TEST(UPDialogTest, LockLeavesNoWayOut) {
  bool enabled = true;
  bool up = false;
  CUPDialog dialog(nullptr, "Caption", [&](const Link& link) {
    link.Send(CUPDialog::kLockMessage, 0);
    link.Call([&] {
      enabled = dialog.findChild<QPushButton*>("2")->isEnabled();
      dialog.close();
      dialog.reject();
      up = dialog.isVisible();
    });
    return !link.IsCancelled();
  });
  EXPECT_EQ(dialog.Run(), 1);
  EXPECT_FALSE(enabled);
  EXPECT_TRUE(up);
}

TEST(UPDialogTest, TheFunctionCancelsItselfInSpiteOfALock) {
  bool heard = false;
  CUPDialog dialog(nullptr, "Caption", [&](const Link& link) {
    link.Send(CUPDialog::kLockMessage, 0);
    link.Send(CUPDialog::kCancelMessage, 0);
    heard = link.IsCancelled();
    return true;
  });
  EXPECT_EQ(dialog.Run(), 0x10002);
  EXPECT_TRUE(heard);
}

TEST(UPDialogTest, CancelWaitsForAFunctionThatHeedsItAndNoLonger) {
  std::atomic<bool> ended{false};
  QElapsedTimer timer;
  CUPDialog dialog(nullptr, "Caption", [&](const Link& link) {
    Meanwhile(link, &dialog, [&] {
      timer.start();
      QTest::mouseClick(dialog.findChild<QPushButton*>("2"), Qt::LeftButton);
    });
    WaitUntil([&] { return link.IsCancelled(); });
    QThread::msleep(50);
    ended = true;
    return true;
  });
  EXPECT_EQ(dialog.Run(), 0x10002);
  EXPECT_TRUE(ended);
  EXPECT_LT(timer.elapsed(), kPatience - 50) << "what ends at once is not waited for";
  EXPECT_EQ(dialog.findChild<QLabel*>("1026")->text(), "Closing...");
}

TEST(UPDialogTest, TheCloseBoxAndEscapeCancelToo) {
  for (const bool escape : {true, false}) {
    CUPDialog dialog(nullptr, "Caption", [&](const Link& link) {
      Meanwhile(link, &dialog, [&] { escape ? QTest::keyClick(&dialog, Qt::Key_Escape) : void(dialog.close()); });
      WaitUntil([&] { return link.IsCancelled(); });
      return true;
    });
    EXPECT_EQ(dialog.Run(), 0x10002);
  }
}

TEST(UPDialogTest, ACancelReachesAFunctionThatWaitsForTheWindows) {
  bool called = false, delivered = true;
  CUPDialog* shown = nullptr;
  CUPDialog dialog(nullptr, "Caption", [&](const Link& link) {
    link.Call([&] { shown->reject(); });  // the function waits for this very call
    delivered = link.Call([&] { called = true; });
    return true;
  });
  shown = &dialog;
  QElapsedTimer timer;
  timer.start();
  EXPECT_EQ(dialog.Run(), 0x10002);
  EXPECT_FALSE(delivered);
  EXPECT_FALSE(called);
  EXPECT_LT(timer.elapsed(), kPatience - 50);
}

TEST(UPDialogTest, AFunctionThatDoesNotHeedACancelIsLeftToItself) {
  struct Left {
    std::atomic<bool> go{false}, ended{false}, called{false};
  };
  auto left = std::make_shared<Left>();
  QElapsedTimer timer;
  qint64 atItsEnd = 0;
  {
    CUPDialog* shown = nullptr;
    CUPDialog dialog(nullptr, "Caption", [left, &shown, &timer](const Link& link) {
      Meanwhile(link, shown, [&shown, &timer] {
        timer.start();
        shown->reject();
      });
      WaitUntil([&] { return left->go.load(); });
      link.Call([left] { left->called = true; });
      left->ended = true;
      return true;
    });
    shown = &dialog;
    QObject::connect(&dialog, &QDialog::finished, [&] { atItsEnd = timer.elapsed(); });
    EXPECT_EQ(dialog.Run(), 0x10002);
  }
  const qint64 afterwards = timer.elapsed();
  EXPECT_GE(atItsEnd, 2 * kPatience) << "the dialog waits for it twice";
  EXPECT_LT(atItsEnd, 3 * kPatience);
  EXPECT_GE(afterwards, 3 * kPatience) << "and once more when it is cleared away";
  EXPECT_LT(afterwards, 4 * kPatience);
  left->go = true;
  WaitUntil([&] { return left->ended.load(); });
  QCoreApplication::processEvents();
  EXPECT_TRUE(left->ended);
  EXPECT_FALSE(left->called) << "nothing of it reaches the windows any more";
}

}  // namespace
}  // namespace velmora::controls
