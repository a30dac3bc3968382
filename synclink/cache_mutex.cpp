#include "synclink/cache_mutex.h"

HANDLE CacheMutex() {
  static const HANDLE mutex = CreateMutexW(nullptr, FALSE, L"QelvoFilewell" L"-MSOfficeIntegration-cachemutex");
  return mutex;
}

// Both sides ignore the wait's outcome and release afterwards, as the
// cache's design expects; a release of a mutex not owned simply fails.
UpdateThreadCacheLock::UpdateThreadCacheLock() {
  if (HANDLE mutex = CacheMutex()) WaitForSingleObject(mutex, 5000);
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
