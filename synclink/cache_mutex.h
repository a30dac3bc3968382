#pragma once
#include <windows.h>

// "QelvoFilewell-MSOfficeIntegration-cachemutex": shared by the add-ins in
// every Office process of the logon, though each has its own cache. The
// lock is advisory; neither side ever waits long for it.
HANDLE CacheMutex();

// The update thread around building its request: up to 5 s, then on
// regardless. A stop event, when given, cuts the wait short: the thread is
// leaving and its request will not be sent; so does `giveWay`, signalled
// when an exchange of the UI thread wants the pipe first.
class UpdateThreadCacheLock {
 public:
  explicit UpdateThreadCacheLock(HANDLE stopEvent = nullptr, HANDLE giveWay = nullptr);
  ~UpdateThreadCacheLock();
  UpdateThreadCacheLock(const UpdateThreadCacheLock&) = delete;
  UpdateThreadCacheLock& operator=(const UpdateThreadCacheLock&) = delete;
};

// The UI tick: takes the lock only if it is free at that moment, never waits.
class UiTickCacheLock {
 public:
  UiTickCacheLock();
  ~UiTickCacheLock();
  UiTickCacheLock(const UiTickCacheLock&) = delete;
  UiTickCacheLock& operator=(const UiTickCacheLock&) = delete;
};
