#include <windows.h>

#include <atomic>
#include <stdexcept>

#include "synclink/record_lock.h"

namespace {
std::atomic<std::uint64_t> acquisitions{0};
}

RecordLock::RecordLock() : native_(CreateMutexW(nullptr, FALSE, nullptr)) {
  if (native_ == nullptr) throw std::runtime_error("couldn't create the file status cache's lock");
}
RecordLock::~RecordLock() { CloseHandle(static_cast<HANDLE>(native_)); }

void RecordLock::lock() {
  // WAIT_ABANDONED: the owner was ended inside; the lock is ours now.
  const DWORD wait = WaitForSingleObject(static_cast<HANDLE>(native_), 5000);
  if (wait != WAIT_OBJECT_0 && wait != WAIT_ABANDONED) {
    throw std::runtime_error("the file status cache stayed locked for 5 s");
  }
  acquisitions.fetch_add(1, std::memory_order_relaxed);
}
void RecordLock::unlock() { ReleaseMutex(static_cast<HANDLE>(native_)); }

std::uint64_t RecordLock::Acquisitions() { return acquisitions.load(std::memory_order_relaxed); }
