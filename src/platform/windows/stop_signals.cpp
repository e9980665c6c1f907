#include "platform/stop_signals.h"

#include <atomic>

#include "platform/windows/win32.h"

namespace velmora::platform {
namespace {

constexpr UINT kEndedByControlC = 0xC000013A;  // the code that the system itself gives

std::atomic<void (*)(void*)> g_handler = nullptr;
std::atomic<void*> g_argument = nullptr;
std::atomic<unsigned> g_seen = 0;  ///< a bit for each kind of request that came already

/// The system calls it in a thread of its own.
BOOL WINAPI OnRequest(DWORD kind) {
  void (*const handler)(void*) = g_handler;
  if (handler == nullptr) return FALSE;
  const unsigned bit = 1u << kind;
  if ((g_seen.fetch_or(bit) & bit) != 0) ::TerminateProcess(::GetCurrentProcess(), kEndedByControlC);
  handler(g_argument);
  // Of a console that closes, and of a session that ends, the program has some seconds, but no more than until this
  // returns. The run ends meanwhile, and the program with it.
  if (kind != CTRL_C_EVENT && kind != CTRL_BREAK_EVENT) ::Sleep(INFINITE);
  return TRUE;
}

}  // namespace

StopSignals::StopSignals(void (*handler)(void*), void* argument) {
  g_seen = 0;
  g_argument = argument;
  g_handler = handler;
  static const BOOL installed = ::SetConsoleCtrlHandler(OnRequest, TRUE);
  static_cast<void>(installed);
}

// It stays installed: while a request is answered, the list of handlers is locked, and the run would wait for the
// answer that waits for the run.
StopSignals::~StopSignals() { g_handler = nullptr; }

// Writes fail as they are here; but a medium that is not in its drive must not be asked for in a box.
void LetWritesFail() { ::SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX); }

}  // namespace velmora::platform
