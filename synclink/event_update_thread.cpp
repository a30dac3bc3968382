#include "synclink/event_update_thread.h"

#include "synclink/immediate_update_event.h"
#include "log/exception_barrier.h"
#include "common/unique_resource.h"
#include "log/write_log.h"
#include "synclink/update_cycle.h"

namespace {
constexpr DWORD kUpdatePeriodMs = 4000;
// How long disconnection waits for the thread to leave on its own before
// ending it; an exchange with a healthy sync app takes a few milliseconds.
constexpr DWORD kStopGraceMs = 250;

// Private to this process: unlike the shared immediate-update event,
// signalling it wakes only our own thread.
HANDLE StopEvent() {
  static const HANDLE event = CreateEventW(nullptr, TRUE, FALSE, nullptr);
  return event;
}
}  // namespace

DWORD WINAPI EventUpdateThreadProc(LPVOID) {
  WriteLog(LogLevel::Info, L"event update thread starts");
  for (;;) {
    WriteLog(LogLevel::Debug, L"event update thread running");
    GuardedVoid(L"updating cache data", [] { RunUpdateCycle(); });
    const HANDLE immediate = ImmediateUpdateEvent.get();
    HANDLE waits[] = {StopEvent(), immediate};
    const DWORD woken = WaitForMultipleObjects(immediate ? 2 : 1, waits, FALSE, kUpdatePeriodMs);
    // Reset after every wait, signalled or not: a signal that came during
    // the cycle has just cut this wait short and is now used up.
    if (immediate) ResetEvent(immediate);
    if (woken == WAIT_OBJECT_0) return 0;
  }
}

bool StopEventUpdateThread(HANDLE thread) {
  SetEvent(StopEvent());
  bool stopped = WaitForSingleObject(thread, kStopGraceMs) == WAIT_OBJECT_0;
  if (!stopped) stopped = TerminateThread(thread, 0) != FALSE;
  const DWORD error = GetLastError();
  ResetEvent(StopEvent());  // ready for the next connection's thread
  SetLastError(error);
  return stopped;
}
