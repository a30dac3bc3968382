#include "synclink/update_cycle.h"

#include "synclink/answer_apply.h"
#include "synclink/answer_parser.h"
#include "synclink/cache_mutex.h"
#include "synclink/file_status_cache.h"
#include "synclink/sync_app_pipe.h"

void RunUpdateCycle() {
  FileStatusCache& cache = TheFileStatusCache();
  std::wstring request;
  {
    UpdateThreadCacheLock lock;  // only while the request is built
    request = cache.BuildRequest(L"", 0);
  }
  const std::wstring answer = TheSyncAppPipe().Exchange(request);
  ApplyAnswer(cache, ParseAnswer(answer));
}
