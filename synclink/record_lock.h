#pragma once
// The cache's in-process lock. It is held only for plain reads and writes
// of records (microseconds: no window, COM, pipe or log call inside), so
// neither thread ever waits long for it. It is not recursive.
//
// On Windows it is a kernel mutex: should the update thread ever be ended
// from outside while holding it, the next waiter is told the owner is gone
// and goes on, where a critical section or std::mutex would stay held for
// good and freeze the UI thread. Elsewhere (the native tests, which run it
// under ThreadSanitizer) it is a std::mutex.
#include <cstdint>

class RecordLock {
 public:
  RecordLock();
  ~RecordLock();
  RecordLock(const RecordLock&) = delete;
  RecordLock& operator=(const RecordLock&) = delete;

  // On Windows, throws std::runtime_error when the lock cannot be had
  // within 5 s, which only a broken process can cause; callers' exception
  // barriers log it and Office carries on.
  void lock();
  void unlock();

  // How many times a cache lock of this process was taken: each taking is
  // a round trip to the kernel on Windows, so the benchmarks and tests
  // count them per tick and per window message.
  static std::uint64_t Acquisitions();

 private:
  void* native_;
};
