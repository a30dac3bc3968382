// The portable lock; the Windows build uses record_lock_win.cpp instead.
// Natively only the tests run it, so it simply waits: ThreadSanitizer
// understands std::mutex, not every timed wait of the C library.
#ifndef _WIN32
#include "synclink/record_lock.h"

#include <mutex>

RecordLock::RecordLock() : native_(new std::mutex()) {}
RecordLock::~RecordLock() { delete static_cast<std::mutex*>(native_); }

void RecordLock::lock() { static_cast<std::mutex*>(native_)->lock(); }
void RecordLock::unlock() { static_cast<std::mutex*>(native_)->unlock(); }
#endif
