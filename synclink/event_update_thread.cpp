#include "synclink/event_update_thread.h"

#include <atomic>

#include "synclink/immediate_update_event.h"
#include "log/exception_barrier.h"
#include "common/unique_resource.h"
#include "log/write_log.h"
#include "synclink/update_cycle.h"

namespace {
constexpr DWORD kUpdatePeriodMs = 4000;
std::atomic<int> g_terminations{0};

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
    GuardedVoid(L"updating cache data", [] { RunUpdateCycle(ExchangeBounds{kUpdateExchangeLimitMs, StopEvent(), true}); });
    const HANDLE immediate = ImmediateUpdateEvent.get();
    HANDLE waits[] = {StopEvent(), immediate};
    const DWORD woken = WaitForMultipleObjects(immediate ? 2 : 1, waits, FALSE, kUpdatePeriodMs);
    // Reset after every wait, signalled or not: a signal that came during
    // the cycle has just cut this wait short and is now used up.
    if (immediate) ResetEvent(immediate);
    if (woken == WAIT_OBJECT_0) return 0;
  }
}

void RequestEventUpdateThreadStop() { SetEvent(StopEvent()); }

// Every wait of the thread watches the stop event, so it leaves within a
// few milliseconds of being asked (on a busy machine, a good many more);
// the bound is for the unforeseen, where Office must not hang.
bool AwaitEventUpdateThreadEnd(HANDLE thread, DWORD waitMs) {
  bool ended = WaitForSingleObject(thread, waitMs) == WAIT_OBJECT_0;
  if (!ended) {
    // Stuck where no wait of ours is: ending it may leave a lock it held
    // behind, which is still better than Office waiting for it.
    ++g_terminations;
    ended = TerminateThread(thread, 0) != FALSE;
  }
  const DWORD error = GetLastError();
  ResetEvent(StopEvent());  // ready for the next connection's thread
  SetLastError(error);
  return ended;
}

bool StopEventUpdateThread(HANDLE thread) {
  RequestEventUpdateThreadStop();
  return AwaitEventUpdateThreadEnd(thread, 1000);
}

int EventUpdateThreadTerminations() { return g_terminations.load(); }
