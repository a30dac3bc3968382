#pragma once
#include <windows.h>

#include "synclink/sync_app_pipe.h"

// How long the update thread waits for the sync app in one cycle: a sync
// app that takes longer is given up on, and the cycle counts as one without
// data. Its stop event is added by the thread.
constexpr DWORD kUpdateExchangeLimitMs = 30000;

// One cycle of the update thread: report every open file, and every close
// the sync app has not yet heard of, and write its answer into the cache.
// The request is built only once the pipe is ours (so it reaches the sync
// app after every request built before it), under the cache lock.
// Signalling `bounds.stopEvent` ends the cycle wherever it is. A cycle that
// was stopped, gave way to the UI thread or ran out of time applies
// nothing and leaves syncAppHasData alone: only the sync app's own answer
// or failure changes what the overlays show, or a sync app that let two
// cycles in a row run out of time. How the exchange ended.
ExchangeEnd RunUpdateCycle(const ExchangeBounds& bounds);
