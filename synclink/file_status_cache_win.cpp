// The cache's last act at disconnection, which needs the pipe.
#include <windows.h>

#include <map>
#include <mutex>
#include <utility>
#include <vector>

#include "log/exception_barrier.h"
#include "synclink/file_status_cache.h"
#include "synclink/sync_app_pipe.h"

int FileStatusCache::RemoveAll() {
  return Guarded(L"removing all cache data", 0, [&] {
    for (const std::wstring& path : Paths()) WriteLog(LogLevel::Info, L"file info removed from cache - " + path);
    // The sync app learns of every file one last time, and of the closes
    // it has not heard of yet; its answer no longer matters, and Office is
    // not kept waiting for one that does not come. Built in the exchange's
    // turn, so it comes after whatever the update thread built before it.
    std::vector<std::uint64_t> carriedCloses;
    const std::wstring answer =
        TheSyncAppPipe().Exchange([&] { return BuildUpdateRequest(carriedCloses); }, kLastRequestBounds);
    // Closes still undelivered stay: a later connection in this process
    // carries them.
    SettleCloses(carriedCloses, AnswerConfirmsRequest(answer));
    std::map<std::wstring, FileStatusRecord> erased;  // documents released outside the lock
    {
      std::lock_guard<RecordLock> lock(lock_);
      erased.swap(records_);
    }
    erased.clear();
    WriteLog(LogLevel::Info, L"all file info removed from cache");
    return 1;
  });
}
