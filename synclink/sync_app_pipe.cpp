#include "synclink/sync_app_pipe.h"

#include <algorithm>
#include <atomic>

#include "log/exception_barrier.h"
#include "synclink/answer_assembly.h"
#include "synclink/pipe_server_check.h"
#include "log/write_log.h"

namespace {
std::wstring ErrorText(const wchar_t* what, DWORD error) { return what + std::to_wstring(error); }

// ReadAnswer's result for an answer past the size cap (already logged).
constexpr DWORD kAnswerAbandoned = ERROR_BUFFER_OVERFLOW;

bool IsSignalled(HANDLE event) { return event != nullptr && WaitForSingleObject(event, 0) == WAIT_OBJECT_0; }
}  // namespace

SyncAppPipe::~SyncAppPipe() { TakeOverAbandonedExchange(); }

SyncAppPipe& TheSyncAppPipe() {
  static auto* pipe = new SyncAppPipe();  // outlives the update thread
  return *pipe;
}

// The moment an exchange must be over by, fixed when it is asked for.
class SyncAppPipe::Deadline {
 public:
  explicit Deadline(DWORD limitMs) : end_(GetTickCount64() + limitMs) {}
  DWORD Left() const {
    const ULONGLONG now = GetTickCount64();
    return now >= end_ ? 0 : static_cast<DWORD>(end_ - now);
  }

 private:
  ULONGLONG end_;
};

namespace {
// Owns the exchange lock for one exchange, if it came in time. With
// `askToGiveWay`, a holder that has not let go within the grace is asked to
// give way (the event stays set until this wait ends).
class ExchangeTurn {
 public:
  ExchangeTurn(HANDLE lock, HANDLE stopEvent, HANDLE askToGiveWay, DWORD timeoutMs) : lock_(lock) {
    if (lock_ == nullptr) {
      state_ = State::Unguarded;
      return;
    }
    // The stop event first: when both are signalled, a thread asked to
    // stop does not start another exchange.
    HANDLE waits[2];
    DWORD count = 0;
    if (stopEvent != nullptr) waits[count++] = stopEvent;
    const DWORD lockIndex = count;
    waits[count++] = lock_;
    DWORD woken = WAIT_TIMEOUT;
    if (askToGiveWay != nullptr && timeoutMs > SyncAppPipe::kGiveWayGraceMs) {
      const ULONGLONG start = GetTickCount64();
      woken = WaitForMultipleObjects(count, waits, FALSE, SyncAppPipe::kGiveWayGraceMs);
      if (woken == WAIT_TIMEOUT) {
        SetEvent(askToGiveWay);
        const ULONGLONG waited = GetTickCount64() - start;
        const DWORD left = waited >= timeoutMs ? 0 : static_cast<DWORD>(timeoutMs - waited);
        woken = WaitForMultipleObjects(count, waits, FALSE, left);
        ResetEvent(askToGiveWay);
      }
    } else {
      woken = WaitForMultipleObjects(count, waits, FALSE, timeoutMs);
    }
    if (woken == WAIT_OBJECT_0 + lockIndex) {
      state_ = State::Owned;
    } else if (woken == WAIT_ABANDONED_0 + lockIndex) {
      state_ = State::Abandoned;
    } else if (woken == WAIT_TIMEOUT) {
      state_ = State::TimedOut;
    } else if (stopEvent != nullptr && woken == WAIT_OBJECT_0) {
      state_ = State::Stopped;
    } else {
      state_ = State::Unguarded;  // the wait itself failed: go on as without a lock
    }
  }
  ~ExchangeTurn() {
    if (state_ == State::Owned || state_ == State::Abandoned) ReleaseMutex(lock_);
  }
  ExchangeTurn(const ExchangeTurn&) = delete;
  ExchangeTurn& operator=(const ExchangeTurn&) = delete;

  bool timedOut() const { return state_ == State::TimedOut; }
  bool stopped() const { return state_ == State::Stopped; }
  // The thread of the previous exchange was ended inside it.
  bool abandoned() const { return state_ == State::Abandoned; }

 private:
  enum class State { Owned, Abandoned, TimedOut, Stopped, Unguarded };
  HANDLE lock_;
  State state_ = State::Unguarded;
};
}  // namespace

std::wstring SyncAppPipe::Exchange(const std::wstring& request) {
  return Exchange([&] { return request; }, kUiExchangeBounds);
}

std::wstring SyncAppPipe::Exchange(const std::function<std::wstring()>& buildRequest, const ExchangeBounds& bounds,
                                   ExchangeEnd* end) {
  ExchangeEnd ignored = ExchangeEnd::Failed;
  ExchangeEnd& ended = end != nullptr ? *end : ignored;
  const Deadline deadline(bounds.limitMs);
  // Only an exchange that does not give way itself asks others to.
  const ExchangeTurn turn(exchangeLock_.get(), bounds.stopEvent,
                          bounds.givesWayToUi ? nullptr : giveWayEvent_.get(), deadline.Left());
  if (turn.stopped()) {
    ended = ExchangeEnd::Stopped;
    return L"ERROR";
  }
  if (turn.timedOut()) {
    // Another exchange kept the pipe all this time; nothing was tried on it.
    WriteLog(LogLevel::Error, ErrorText(L"Wait time over, could not open pipe. errcode=", WAIT_TIMEOUT));
    ended = ExchangeEnd::TimedOut;
    return L"ERROR";
  }
  // The turn is ours: the fields of the exchange in turn are ours too.
  giveWayWatch_ = bounds.givesWayToUi ? giveWayEvent_.get() : nullptr;
  cutShort_ = ExchangeEnd::Failed;
  if (turn.abandoned()) TakeOverAbandonedExchange();
  // A UI exchange came while this one waited for its turn: it goes first.
  if (AskedToGiveWay()) {
    ended = ExchangeEnd::GaveWay;
    return L"ERROR";
  }
  const std::wstring answer = Guarded(L"communicating with sync app", std::wstring(L"ERROR"), [&] {
    std::wstring request = buildRequest();
    // Asked while the request was built (the update thread waits for the
    // cache lock there): nothing was sent yet, nothing is.
    if (AskedToGiveWay()) {
      cutShort_ = ExchangeEnd::GaveWay;
      return std::wstring(L"ERROR");
    }
    return ExchangeInTurn(request, bounds.stopEvent, deadline);
  });
  if (answer == L"ERROR") Close();  // also after an exception
  ended = EndOf(answer, bounds.stopEvent);
  giveWayWatch_ = nullptr;
  return answer;
}

bool SyncAppPipe::AskedToGiveWay() const { return IsSignalled(giveWayWatch_); }

ExchangeEnd SyncAppPipe::EndOf(const std::wstring& answer, HANDLE stopEvent) const {
  if (answer != L"ERROR") return ExchangeEnd::Answered;
  if (cutShort_ != ExchangeEnd::Failed) return cutShort_;
  // Seen after the request was built: nothing was sent.
  if (IsSignalled(stopEvent)) return ExchangeEnd::Stopped;
  return ExchangeEnd::Failed;
}

// The thread of the previous exchange was ended inside it (disconnection's
// last resort). Its connection is still open, perhaps with a read or write
// pending into this object's buffers: that is cancelled and given a moment
// to land before the buffers are used again, and closing the connection
// frees the sync app's instance.
void SyncAppPipe::TakeOverAbandonedExchange() {
  if (!pipeHandle_) return;
  CancelIoEx(pipeHandle_.get(), nullptr);
  // Bounded: a thread ended between starting a call and its return may
  // have left the operation marked pending with nothing left to finish it.
  if (!HasOverlappedIoCompleted(&overlapped_)) WaitForSingleObject(ioEvent_.get(), 100);
  Close();
}

std::wstring SyncAppPipe::ExchangeInTurn(const std::wstring& request, HANDLE stopEvent, const Deadline& deadline) {
  // Kept by the object while a write may be pending on it.
  requestText_ = request;
  WriteLog(LogLevel::Debug, L"ipc: " + pipeName_);
  if (pipeName_.empty()) {
    const std::wstring& userName = WindowsUserName();
    WriteLog(LogLevel::Debug, L"username: " + userName);
    pipeName_ = SyncAppPipeNameFor(userName);
    if (pipeName_.empty()) {
      // A pipe without the user's name belongs to nobody in particular: it
      // is never opened. Said once; every exchange is then "ERROR".
      static std::atomic<bool> told{false};
      if (!told.exchange(true)) {
        WriteLog(LogLevel::Error, L"couldn't get the Windows user name - the sync app's pipe is not opened");
      }
      return L"ERROR";
    }
  }
  // Asked to stop while the request was built: the sync app need not hear
  // from a thread that is leaving.
  if (IsSignalled(stopEvent)) return L"ERROR";
  if (!Open(stopEvent, deadline)) return L"ERROR";
  WriteLog(LogLevel::Debug, L"pipe connected");
  // Not a byte goes to a server that is not the user's own sync app.
  if (!PipeServerIsTrusted(pipeHandle_.get())) return L"ERROR";

  lastResult_ = SetNamedPipeHandleState(pipeHandle_.get(), &readMode_, nullptr, nullptr);
  if (!lastResult_) {
    WriteLog(LogLevel::Error, ErrorText(L"setting msg-read mode failed. errcode=", GetLastError()));
    return L"ERROR";
  }
  WriteLog(LogLevel::Debug, L"set msg-read mode");

  // The request's units and its terminating NUL.
  bytesToWrite_ = static_cast<DWORD>((lstrlenW(requestText_.c_str()) + 1) * sizeof(wchar_t));
  WriteLog(LogLevel::Debug, L"sending msg" + std::to_wstring(bytesToWrite_));
  overlapped_ = OVERLAPPED{};
  overlapped_.hEvent = ioEvent_.get();
  const BOOL started = WriteFile(pipeHandle_.get(), requestText_.c_str(), bytesToWrite_, nullptr, &overlapped_);
  const DWORD writeError = Finish(started, bytesWritten_, stopEvent, deadline);
  lastResult_ = writeError == ERROR_SUCCESS;
  if (!lastResult_) {
    WriteLog(LogLevel::Error, ErrorText(L"send msg failed. errcode=", writeError));
    return L"ERROR";
  }
  WriteLog(LogLevel::Debug, L"sent msg" + std::to_wstring(bytesWritten_));

  std::wstring answer;
  const DWORD readError = ReadAnswer(answer, stopEvent, deadline);
  if (readError != ERROR_SUCCESS) {
    if (readError != kAnswerAbandoned) WriteLog(LogLevel::Error, ErrorText(L"read msg failed. errcode=", readError));
    return L"ERROR";
  }
  if (LogWrites(LogLevel::Debug)) WriteLog(LogLevel::Debug, L"read msg completely = " + answer);
  Close();
  return answer;
}

bool SyncAppPipe::Open(HANDLE stopEvent, const Deadline& deadline) {
  for (;;) {
    WriteLog(LogLevel::Debug, L"Tring to open pipe: " + pipeName_);
    const HANDLE opened = CreateFileW(pipeName_.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING,
                                      kPipeOpenFlags, nullptr);
    if (opened != INVALID_HANDLE_VALUE) {
      pipeHandle_.reset(opened);
      return true;
    }
    if (GetLastError() != ERROR_PIPE_BUSY) {
      WriteLog(LogLevel::Error, ErrorText(L"Could not open pipe. errcode=", GetLastError()));
      return false;
    }
    // Every instance is busy: wait for one to be free, as long as the sync
    // app keeps freeing one within five seconds and the exchange has time.
    const DWORD error = WaitForFreeInstance(stopEvent, deadline);
    if (error != ERROR_SUCCESS) {
      WriteLog(LogLevel::Error, ErrorText(L"Wait time over, could not open pipe. errcode=", error));
      return false;
    }
  }
}

// One wait of up to five seconds (less when the exchange has less time
// left) for a free instance: 0 when one is free, else WaitNamedPipeW's
// error, or ERROR_OPERATION_ABORTED when the stop event cut the wait short.
DWORD SyncAppPipe::WaitForFreeInstance(HANDLE stopEvent, const Deadline& deadline) {
  // Never 0: to WaitNamedPipeW that means the server's default time-out.
  const DWORD budget = std::max<DWORD>(1, std::min<DWORD>(5000, deadline.Left()));
  // Past the exchange's own limit, not the sync app's five seconds.
  const auto timedOut = [&](DWORD error) {
    if (error == ERROR_SEM_TIMEOUT && deadline.Left() == 0) cutShort_ = ExchangeEnd::TimedOut;
    return error;
  };
  if (stopEvent == nullptr && giveWayWatch_ == nullptr) {
    return WaitNamedPipeW(pipeName_.c_str(), budget) ? ERROR_SUCCESS : timedOut(GetLastError());
  }
  const ULONGLONG end = GetTickCount64() + budget;
  for (;;) {
    if (IsSignalled(stopEvent)) {
      cutShort_ = ExchangeEnd::Stopped;
      return ERROR_OPERATION_ABORTED;
    }
    if (AskedToGiveWay()) {
      cutShort_ = ExchangeEnd::GaveWay;
      return ERROR_OPERATION_ABORTED;
    }
    const ULONGLONG now = GetTickCount64();
    const DWORD left = now >= end ? 1 : static_cast<DWORD>(end - now);
    if (WaitNamedPipeW(pipeName_.c_str(), std::min(kBusyWaitSliceMs, left))) return ERROR_SUCCESS;
    const DWORD error = GetLastError();
    if (error != ERROR_SEM_TIMEOUT || GetTickCount64() >= end) return timedOut(error);
  }
}

// Sees through the overlapped write or read that `started` (the call's
// result) began: waits for it until the deadline or the stop event, and
// then cancels it. The bytes moved; 0 when it completed, else its error:
// ERROR_MORE_DATA when a message goes on beyond the buffer,
// ERROR_OPERATION_ABORTED when it was cancelled.
DWORD SyncAppPipe::Finish(BOOL started, DWORD& bytes, HANDLE stopEvent, const Deadline& deadline) {
  bytes = 0;
  if (!started) {
    const DWORD error = GetLastError();
    if (error == ERROR_IO_PENDING) {
      HANDLE waits[3] = {overlapped_.hEvent};
      DWORD count = 1;
      const DWORD stopIndex = count;
      if (stopEvent != nullptr) waits[count++] = stopEvent;
      if (giveWayWatch_ != nullptr) waits[count++] = giveWayWatch_;
      const DWORD woken = WaitForMultipleObjects(count, waits, FALSE, deadline.Left());
      if (woken == WAIT_OBJECT_0) {
        return GetOverlappedResult(pipeHandle_.get(), &overlapped_, &bytes, TRUE) ? ERROR_SUCCESS : GetLastError();
      }
      CancelIoEx(pipeHandle_.get(), &overlapped_);
      // Waits for the cancellation to land, or takes what came just before it.
      if (GetOverlappedResult(pipeHandle_.get(), &overlapped_, &bytes, TRUE)) return ERROR_SUCCESS;
      const DWORD cancelled = GetLastError();
      if (woken == WAIT_TIMEOUT) {
        cutShort_ = ExchangeEnd::TimedOut;
      } else if (stopEvent != nullptr && woken == WAIT_OBJECT_0 + stopIndex) {
        cutShort_ = ExchangeEnd::Stopped;
      } else if (giveWayWatch_ != nullptr && woken == WAIT_OBJECT_0 + count - 1) {
        cutShort_ = ExchangeEnd::GaveWay;
      }
      return cancelled;
    }
    // Done at once with part of a message: the bytes are in the buffer.
    if (error != ERROR_MORE_DATA) return error;
  }
  return GetOverlappedResult(pipeHandle_.get(), &overlapped_, &bytes, FALSE) ? ERROR_SUCCESS : GetLastError();
}

DWORD SyncAppPipe::ReadAnswer(std::wstring& answer, HANDLE stopEvent, const Deadline& deadline) {
  WriteLog(LogLevel::Debug, L"reading msg");
  AnswerAssembly assembly;
  for (;;) {
    overlapped_ = OVERLAPPED{};
    overlapped_.hEvent = ioEvent_.get();
    const BOOL started = ReadFile(pipeHandle_.get(), readBuffer_, kChunkBytes, nullptr, &overlapped_);
    const DWORD error = Finish(started, bytesRead_, stopEvent, deadline);
    lastResult_ = error == ERROR_SUCCESS;
    if (!lastResult_ && error != ERROR_MORE_DATA) return error;
    WriteLog(LogLevel::Debug, L"read msg" + std::to_wstring(bytesRead_));
    // The first unit of every answer is not part of the text, whatever it
    // holds (the sync app writes U+FEFF there); a NUL ends the answer.
    const AnswerAssembly::Step step =
        assembly.Add(readBuffer_, bytesRead_ / sizeof(wchar_t), bytesRead_, lastResult_ != FALSE);
    ZeroMemory(readBuffer_, sizeof(readBuffer_));
    if (step == AnswerAssembly::Step::TooLong) {
      WriteLog(LogLevel::Error, L"couldn't read the sync app's answer - longer than " +
                                    std::to_wstring(kMaxAnswerBytes) + L" bytes, abandoned");
      return kAnswerAbandoned;
    }
    if (step == AnswerAssembly::Step::Complete) {
      // What follows a NUL is not read at all: the connection is closed.
      answer = assembly.TakeText();
      return ERROR_SUCCESS;
    }
  }
}

void SyncAppPipe::Close() {
  // Closed here rather than by the wrapper so that a failure is logged.
  const HANDLE connection = pipeHandle_.release();
  if (connection == nullptr) return;
  if (CloseHandle(connection)) {
    WriteLog(LogLevel::Debug, L"closed pipe");
  } else {
    WriteLog(LogLevel::Error, ErrorText(L"close pipe failed. errcode=", GetLastError()));
  }
}
