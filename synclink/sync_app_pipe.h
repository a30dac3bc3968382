#pragma once
// The client end of the sync app's per-user named pipe: one connection per
// exchange, one request and one answer, both UTF-16.
#include <windows.h>

#include <functional>
#include <string>

#include "common/unique_resource.h"

// The logon name of the user running the host, asked once per process
// (empty when Windows would not say). Also names the separate copies.
const std::wstring& WindowsUserName();

// How long one exchange may keep its caller, and what ends it early. The
// sync app may accept a connection and never answer; without a bound the
// caller (Office's UI thread, for a close or a button) would wait for good.
struct ExchangeBounds {
  // Everything the caller waits for, counted from the call: its turn, a
  // busy pipe, writing the request and reading the answer. Past it the
  // exchange ends as a failure ("ERROR"), its pending I/O cancelled.
  DWORD limitMs;
  // Optional: when signalled, the exchange ends at once (the update thread
  // passes its stop event so that disconnection never waits for an answer).
  HANDLE stopEvent = nullptr;
};

// What Office's UI thread may be kept waiting by one exchange.
constexpr ExchangeBounds kUiExchangeBounds{5000, nullptr};

class SyncAppPipe {
 public:
  static constexpr DWORD kChunkBytes = 8192;
  // WaitNamedPipeW cannot be interrupted: with a stop event to watch, a busy
  // pipe is waited for in slices this long.
  static constexpr DWORD kBusyWaitSliceMs = 100;
  // How the pipe is opened. Overlapped, so that a write or read can be
  // given up on (a plain ReadFile waits for as long as the server keeps
  // the connection open). Identification only: the server may learn who
  // we are but never act as us; without these flags any process that
  // serves the name could impersonate the user.
  static constexpr DWORD kPipeOpenFlags = FILE_FLAG_OVERLAPPED | SECURITY_SQOS_PRESENT | SECURITY_IDENTIFICATION;

  // The whole answer, or "ERROR" when anything failed (logged), within the
  // UI's bound.
  std::wstring Exchange(const std::wstring& request);
  // Takes the exchange's turn, only then builds the request, exchanges it
  // and lets the turn go: requests reach the sync app in the order they
  // were built, so a stale state never arrives after a newer one. "ERROR"
  // without a word in the log when the stop event ended the wait for the
  // turn (the request was not even built).
  std::wstring Exchange(const std::function<std::wstring()>& buildRequest, const ExchangeBounds& bounds);
  void Close();

  const std::wstring& pipeName() const { return pipeName_; }
  // How many times the user name was asked of Windows (tests).
  static int UserNameQueries();

 private:
  class Deadline;
  void TakeOverAbandonedExchange();
  std::wstring ExchangeInTurn(const std::wstring& request, HANDLE stopEvent, const Deadline& deadline);
  bool Open(HANDLE stopEvent, const Deadline& deadline);
  DWORD WaitForFreeInstance(HANDLE stopEvent, const Deadline& deadline);
  DWORD Finish(BOOL started, DWORD& bytes, HANDLE stopEvent, const Deadline& deadline);
  DWORD ReadAnswer(std::wstring& answer, HANDLE stopEvent, const Deadline& deadline);

  // The update thread and the UI thread share one pipe object, one whole
  // exchange at a time. A kernel mutex, not std::mutex: it is waited for
  // with a bound and together with a stop event, and should the update
  // thread ever be ended inside an exchange it passes to the next waiter
  // (abandoned) instead of staying locked.
  UniqueHandle exchangeLock_{CreateMutexW(nullptr, FALSE, nullptr)};
  // Signalled when the pending read or write completes. The OVERLAPPED and
  // the buffers live here, not on a stack: I/O of a thread that was ended
  // must not complete into memory that is gone.
  UniqueHandle ioEvent_{CreateEventW(nullptr, TRUE, FALSE, nullptr)};
  OVERLAPPED overlapped_ = {};
  HANDLE pipeHandle_ = nullptr;
  std::wstring pipeName_;
  std::wstring requestText_;
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
