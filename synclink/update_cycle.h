#pragma once
#include <windows.h>

#include "synclink/sync_app_pipe.h"

// How long the update thread waits for the sync app in one cycle: a sync
// app that takes longer is given up on, and the cycle counts as one without
// data. Its stop event is added by the thread.
constexpr DWORD kUpdateExchangeLimitMs = 30000;

// One cycle of the update thread: report every open file to the sync app
// and write its answer into the cache. The request is built only once the
// pipe is ours (so it reaches the sync app after every request built before
// it), under the cache lock. Signalling `bounds.stopEvent` ends the cycle
// wherever it is; its answer, if any, is then not applied.
void RunUpdateCycle(const ExchangeBounds& bounds);
