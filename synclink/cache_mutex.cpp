#include "synclink/cache_mutex.h"

HANDLE CacheMutex() {
  static const HANDLE mutex = CreateMutexW(nullptr, FALSE, L"QelvoFilewell" L"-MSOfficeIntegration-cachemutex");
  return mutex;
}

// Both sides ignore the wait's outcome and release afterwards, as the
// cache's design expects; a release of a mutex not owned simply fails.
UpdateThreadCacheLock::UpdateThreadCacheLock(HANDLE stopEvent, HANDLE giveWay) {
  HANDLE mutex = CacheMutex();
  if (mutex == nullptr) return;
  // The events first: when one of them and the lock are signalled, the
  // lock is not taken.
  HANDLE waits[3];
  DWORD count = 0;
  if (stopEvent != nullptr) waits[count++] = stopEvent;
  if (giveWay != nullptr) waits[count++] = giveWay;
  waits[count++] = mutex;
  WaitForMultipleObjects(count, waits, FALSE, 5000);
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
