#include "platform/stop_signals.h"

#include <signal.h>

namespace velmora::platform {
namespace {

constexpr int kSignals[] = {SIGINT, SIGTERM, SIGHUP};

void (*g_handler)(void*) = nullptr;
void* g_argument = nullptr;

void OnSignal(int) { g_handler(g_argument); }

void Install(void (*action)(int), int flags) {
  struct sigaction settings {};
  settings.sa_handler = action;
  settings.sa_flags = flags;
  for (const int number : kSignals) ::sigaction(number, &settings, nullptr);
}

}  // namespace

StopSignals::StopSignals(void (*handler)(void*), void* argument) {
  g_handler = handler;
  g_argument = argument;
  // SA_RESETHAND: the second one of a kind finds the system's own action.
  Install(OnSignal, SA_RESTART | static_cast<int>(SA_RESETHAND));
}

StopSignals::~StopSignals() { Install(SIG_DFL, 0); }

void LetWritesFail() {
  ::signal(SIGPIPE, SIG_IGN);
  ::signal(SIGXFSZ, SIG_IGN);
}

}  // namespace velmora::platform
