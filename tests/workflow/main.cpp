#include <gtest/gtest.h>

#include <QApplication>
#include <cstdio>

namespace {

/// The platform without a display says at every window what it cannot do; all else is passed on.
void PassOn(QtMsgType type, const QMessageLogContext& context, const QString& message) {
  if (!message.startsWith(QLatin1String("This plugin does not support"))) {
    fprintf(stderr, "%s\n", qUtf8Printable(qFormatLogMessage(type, context, message)));
  }
}

}  // namespace

int main(int argc, char** argv) {
  // No test needs a display; who wants to see one says so.
  if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  qInstallMessageHandler(PassOn);
  testing::InitGoogleTest(&argc, argv);
  // As the program itself does it: without this no display of a broken scale keeps its dots per inch.
  QGuiApplication::setHighDpiScaleFactorRoundingPolicy(Qt::HighDpiScaleFactorRoundingPolicy::RoundPreferFloor);
  QApplication application(argc, argv);
  QApplication::setQuitOnLastWindowClosed(false);
  return RUN_ALL_TESTS();
}
