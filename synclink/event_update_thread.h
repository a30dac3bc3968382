#pragma once
#include <windows.h>

// The worker that keeps the cache in step with the sync app. It takes no
// argument: the event, the cache and the pipe client are process-wide.
DWORD WINAPI EventUpdateThreadProc(LPVOID unused);

// Ends the thread at disconnection: it is asked to stop and given a moment
// to leave between two cycles; a thread stuck in an exchange is terminated
// rather than keeping Office waiting. False (with the last error set) when
// the thread could not be ended.
bool StopEventUpdateThread(HANDLE thread);
