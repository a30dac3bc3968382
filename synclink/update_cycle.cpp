#include "synclink/update_cycle.h"

#include "synclink/answer_apply.h"
#include "synclink/answer_parser.h"
#include "synclink/cache_mutex.h"
#include "synclink/file_status_cache.h"

void RunUpdateCycle(const ExchangeBounds& bounds) {
  FileStatusCache& cache = TheFileStatusCache();
  const std::wstring answer = TheSyncAppPipe().Exchange(
      [&] {
        UpdateThreadCacheLock lock(bounds.stopEvent);  // only while the request is built
        return cache.BuildRequest(L"", 0);
      },
      bounds);
  // Disconnection asked the thread to stop: the cache is about to be
  // emptied, and an exchange that was cut short says nothing about the
  // sync app.
  if (bounds.stopEvent != nullptr && WaitForSingleObject(bounds.stopEvent, 0) == WAIT_OBJECT_0) return;
  ApplyAnswer(cache, ParseAnswer(answer));
}
