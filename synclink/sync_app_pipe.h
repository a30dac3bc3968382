#pragma once
// The client end of the sync app's per-user named pipe: one connection per
// exchange, one request and one answer, both UTF-16.
#include <windows.h>

#include <string>

#include "common/unique_resource.h"

// The logon name of the user running the host, asked once per process
// (empty when Windows would not say). Also names the separate copies.
const std::wstring& WindowsUserName();

class SyncAppPipe {
 public:
  static constexpr DWORD kChunkBytes = 8192;

  // The whole answer, or "ERROR" when anything failed (logged).
  std::wstring Exchange(const std::wstring& request);
  void Close();

  const std::wstring& pipeName() const { return pipeName_; }
  // How many times the user name was asked of Windows (tests).
  static int UserNameQueries();

 private:
  std::wstring ExchangeLocked(const std::wstring& request);
  bool Open();
  bool ReadAnswer(std::wstring& answer);

  // The update thread and the UI thread share one pipe object, one whole
  // exchange at a time. A kernel mutex, not std::mutex: disconnection may
  // end the update thread inside an exchange, and only a kernel mutex passes
  // to the next waiter (abandoned) when its owner is gone.
  UniqueHandle exchangeLock_{CreateMutexW(nullptr, FALSE, nullptr)};
  HANDLE pipeHandle_ = nullptr;
  std::wstring pipeName_;
  // One spare unit beyond the chunk: a full chunk still ends in a NUL.
  wchar_t readBuffer_[kChunkBytes / sizeof(wchar_t) + 1] = {};
  DWORD bytesRead_ = 0;
  DWORD bytesToWrite_ = 0;
  DWORD bytesWritten_ = 0;
  BOOL lastResult_ = FALSE;
  DWORD readMode_ = PIPE_READMODE_MESSAGE;
};

// The one pipe client of the process.
SyncAppPipe& TheSyncAppPipe();
