// velmora: the wizard. The command line says nothing about a conversion.
#include <QApplication>
#include <algorithm>
#include <string>
#include <string_view>

#include "platform/terminal.h"
#include "workflow/application.h"

namespace {

const std::string kVersionText = "velmora " VELMORA_VERSION "\n";

const std::string kHelpText =
    "Usage: velmora [--help | --version]\n"
    "\n"
    "Opens the wizard that converts a store of Outlook (.ost or .pst), sound or damaged, to a new .pst. Its\n"
    "steps ask for everything. velmora-convert does the same without windows.\n"
    "\n"
    "  --help     show this text\n"
    "  --version  show the version\n";

/// The answer to a question that needs no window; null where none was asked.
const std::string* AnswerTo(int argc, char** argv) {
  const auto asks = [&](std::string_view word) { return std::find(argv, argv + argc, word) != argv + argc; };
  if (asks("--help")) return &kHelpText;
  return asks("--version") ? &kVersionText : nullptr;
}

}  // namespace

int main(int argc, char** argv) {
  if (const std::string* answer = AnswerTo(argc, argv)) {
    return velmora::platform::WriteTo(velmora::platform::StandardStream::kOutput, *answer) ? 0 : 1;
  }
  // Between whole factors of scale a display keeps its dots per inch, so the pages have the size of its class.
  QGuiApplication::setHighDpiScaleFactorRoundingPolicy(Qt::HighDpiScaleFactorRoundingPolicy::RoundPreferFloor);
  // The first word is the program's name; the others are not for Qt either.
  argc = 1;
  QApplication qt(argc, argv);
  QApplication::setApplicationName(QStringLiteral("velmora"));
  QApplication::setApplicationVersion(QStringLiteral(VELMORA_VERSION ".0"));  // the windows show four numbers
  QApplication::setDesktopFileName(QStringLiteral("example.velmora.convert"));
  QApplication::setQuitOnLastWindowClosed(false);  // the program does not end with its last window

  velmora::workflow::CVMREPAIRMAILApp application(velmora::workflow::RealServices());
  if (application.InitInstance()) QApplication::exec();
  application.ExitInstance();
}
