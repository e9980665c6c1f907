#include "platform/stop_signals.h"

#include <gtest/gtest.h>

#include <atomic>
#include <string>

#include "platform/process.h"
#include "platform/windows/handle.h"

namespace velmora::platform {
namespace {

void CountUp(void* count) { static_cast<std::atomic<int>*>(count)->fetch_add(1); }

/// Sends a request as the system does: by a thread of its own that calls the handlers of the program.
Handle Request(DWORD kind) {
  const auto routine = reinterpret_cast<LPTHREAD_START_ROUTINE>(
      reinterpret_cast<void*>(::GetProcAddress(::GetModuleHandleW(L"kernelbase.dll"), "CtrlRoutine")));
  if (routine == nullptr) return Handle(nullptr);
  return Handle(
      ::CreateThread(nullptr, 0, routine, reinterpret_cast<void*>(static_cast<std::uintptr_t>(kind)), 0, nullptr));
}

bool IsAnswered(const Handle& request) { return ::WaitForSingleObject(request.Get(), 5000) == WAIT_OBJECT_0; }

TEST(StopSignals, TheFirstRequestOfAKindCallsTheHandler) {
  std::atomic<int> count = 0;
  const StopSignals signals(CountUp, &count);
  EXPECT_TRUE(IsAnswered(Request(CTRL_C_EVENT)));
  EXPECT_EQ(count, 1);
  EXPECT_TRUE(IsAnswered(Request(CTRL_BREAK_EVENT)));
  EXPECT_EQ(count, 2);
}

constexpr DWORD kNotEnded = 7;

/// Runs the test of that name, which ends its process, in a process of its own: the code that it ends with.
DWORD CodeOf(const std::string& test) {
  std::wstring command = L"x --gtest_also_run_disabled_tests --gtest_filter=StopSignals.DISABLED_";
  command.append(test.begin(), test.end());
  STARTUPINFOW start{};
  start.cb = sizeof start;
  PROCESS_INFORMATION started{};
  const std::filesystem::path program = ProgramPath().value();
  if (!::CreateProcessW(program.c_str(), command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &start,
                        &started)) {
    return kNotEnded;
  }
  const Handle process(started.hProcess);
  const Handle thread(started.hThread);
  DWORD code = kNotEnded;
  ::WaitForSingleObject(process.Get(), 20000);
  ::GetExitCodeProcess(process.Get(), &code);
  return code;
}

TEST(StopSignals, DISABLED_GetTwoRequestsOfOneKind) {
  std::atomic<int> count = 0;
  const StopSignals signals(CountUp, &count);
  if (!IsAnswered(Request(CTRL_C_EVENT)) || count != 1) return;
  const Handle second = Request(CTRL_C_EVENT);
  ::Sleep(10000);
}

TEST(StopSignals, DISABLED_GetARequestWhenTheHolderIsGone) {
  std::atomic<int> count = 0;
  { const StopSignals signals(CountUp, &count); }
  const Handle request = Request(CTRL_C_EVENT);
  ::Sleep(10000);
  ::ExitProcess(kNotEnded);
}

TEST(StopSignals, DISABLED_EndItselfWhenItsConsoleCloses) {
  std::atomic<int> count = 0;
  {
    const StopSignals signals(CountUp, &count);
    const Handle request = Request(CTRL_CLOSE_EVENT);
    for (int i = 0; i < 500 && count == 0; ++i) ::Sleep(10);
    EXPECT_EQ(count, 1);
    EXPECT_EQ(::WaitForSingleObject(request.Get(), 100), static_cast<DWORD>(WAIT_TIMEOUT))
        << "with its answer the system would end the program";
  }
}

constexpr DWORD kEndedByControlC = 0xC000013A;

TEST(StopSignals, AConsoleThatClosesGivesTheRunItsTimeToEnd) { EXPECT_EQ(CodeOf("EndItselfWhenItsConsoleCloses"), 0u); }

TEST(StopSignals, TheSecondRequestEndsTheProgram) { EXPECT_EQ(CodeOf("GetTwoRequestsOfOneKind"), kEndedByControlC); }

TEST(StopSignals, WithoutAHolderARequestEndsTheProgram) {
  EXPECT_NE(CodeOf("GetARequestWhenTheHolderIsGone"), kNotEnded) << "the code is the system's affair";
}

}  // namespace
}  // namespace velmora::platform
