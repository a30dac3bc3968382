// The cache's last act at disconnection, which needs windows and the pipe.
#include <windows.h>

#include "log/exception_barrier.h"
#include "synclink/file_status_cache.h"
#include "synclink/sync_app_pipe.h"

int FileStatusCache::RemoveAll(WindowDestroyer destroyWindows) {
  return Guarded(L"removing all cache data", 0, [&] {
    {
      std::lock_guard<std::recursive_mutex> lock(mapLock_);
      for (auto& [path, record] : records_) {
        if (destroyWindows) destroyWindows(record);
        WriteLog(LogLevel::Info, L"file info removed from cache - " + path);
      }
    }
    // The sync app learns of every file one last time; its answer no
    // longer matters. Built in the exchange's turn, so it comes after
    // whatever the update thread built before it. The map lock is not held
    // while the turn is waited for: the update thread builds its request
    // inside its turn, under that lock, and the two would wait for each
    // other until this exchange gave up.
    TheSyncAppPipe().Exchange([this] { return BuildRequest(L"", 0); }, kUiExchangeBounds);
    {
      // Only this (the UI) thread adds records; none came in between.
      std::lock_guard<std::recursive_mutex> lock(mapLock_);
      records_.clear();
    }
    WriteLog(LogLevel::Info, L"all file info removed from cache");
    return 1;
  });
}
