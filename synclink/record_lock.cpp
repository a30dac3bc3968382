// The portable lock; the Windows build uses record_lock_win.cpp instead.
// Natively only the tests run it, so it simply waits: ThreadSanitizer
// understands std::mutex, not every timed wait of the C library.
#ifndef _WIN32
#include "synclink/record_lock.h"

#include <atomic>
#include <mutex>

namespace {
std::atomic<std::uint64_t> acquisitions{0};
}

RecordLock::RecordLock() : native_(new std::mutex()) {}
RecordLock::~RecordLock() { delete static_cast<std::mutex*>(native_); }

void RecordLock::lock() {
  static_cast<std::mutex*>(native_)->lock();
  acquisitions.fetch_add(1, std::memory_order_relaxed);
}
void RecordLock::unlock() { static_cast<std::mutex*>(native_)->unlock(); }
std::uint64_t RecordLock::Acquisitions() { return acquisitions.load(std::memory_order_relaxed); }
#endif
