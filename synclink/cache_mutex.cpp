#include "synclink/cache_mutex.h"

HANDLE CacheMutex() {
  static const HANDLE mutex = CreateMutexW(nullptr, FALSE, L"QelvoFilewell" L"-MSOfficeIntegration-cachemutex");
  return mutex;
}

// Both sides ignore the wait's outcome and release afterwards, as the
// cache's design expects; a release of a mutex not owned simply fails.
UpdateThreadCacheLock::UpdateThreadCacheLock(HANDLE stopEvent) {
  HANDLE mutex = CacheMutex();
  if (mutex == nullptr) return;
  if (stopEvent == nullptr) {
    WaitForSingleObject(mutex, 5000);
    return;
  }
  // The stop event first: when both are signalled the lock is not taken.
  const HANDLE waits[] = {stopEvent, mutex};
  WaitForMultipleObjects(2, waits, FALSE, 5000);
}
UpdateThreadCacheLock::~UpdateThreadCacheLock() {
  if (HANDLE mutex = CacheMutex()) ReleaseMutex(mutex);
}

UiTickCacheLock::UiTickCacheLock() {
  if (HANDLE mutex = CacheMutex()) WaitForSingleObject(mutex, 0);
}
UiTickCacheLock::~UiTickCacheLock() {
  if (HANDLE mutex = CacheMutex()) ReleaseMutex(mutex);
}
