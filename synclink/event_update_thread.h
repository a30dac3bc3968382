#pragma once
#include <windows.h>

// The worker that keeps the cache in step with the sync app. It takes no
// argument: the event, the cache and the pipe client are process-wide.
DWORD WINAPI EventUpdateThreadProc(LPVOID unused);

// Disconnection in two steps, so the thread can leave while the rest of
// the disconnection runs. First it is asked to stop: whatever it waits for
// (its period, its turn at the pipe, a busy pipe, the sync app's answer)
// ends at once, its pending I/O cancelled, and it returns.
void RequestEventUpdateThreadStop();
// Then it is waited for, a bounded while; only a thread that has not left
// by then is terminated, as a last resort. False (with the last error set)
// when the thread could not be ended. Leaves the stop request withdrawn for
// the next connection's thread.
// `waitMs`: how long, at most, before that last resort (disconnection
// passes what is left of Office's 500 ms).
bool AwaitEventUpdateThreadEnd(HANDLE thread, DWORD waitMs = 1000);
// Both steps at once, for an ending with nothing to do in between.
bool StopEventUpdateThread(HANDLE thread);

// How many times a thread had to be terminated in this process (tests).
int EventUpdateThreadTerminations();
