// velmora: the wizard. No command line is read.
#include <QApplication>

#include "platform/file_version.h"
#include "workflow/application.h"

namespace {

/// The program's own version, as its file carries it.
[[gnu::used]] const velmora::platform::FileVersionBlock kVersion{
    .fileVersionHigh = VELMORA_VERSION_MAJOR << 16 | VELMORA_VERSION_MINOR,
    .fileVersionLow = VELMORA_VERSION_PATCH << 16};

}  // namespace

int main(int argc, char** argv) {
  // Between whole factors of scale a display keeps its dots per inch, so the pages have the size of its class.
  QGuiApplication::setHighDpiScaleFactorRoundingPolicy(Qt::HighDpiScaleFactorRoundingPolicy::RoundPreferFloor);
  // The first word is the program's name; the others are not for Qt either.
  argc = 1;
  QApplication qt(argc, argv);
  QApplication::setApplicationName(QStringLiteral("velmora"));
  QApplication::setDesktopFileName(QStringLiteral("example.velmora.convert"));
  QApplication::setQuitOnLastWindowClosed(false);  // the program does not end with its last window

  velmora::workflow::CVMREPAIRMAILApp application(velmora::workflow::RealServices());
  if (application.InitInstance()) QApplication::exec();
  application.ExitInstance();
}
