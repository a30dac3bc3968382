#pragma once
// The client end of the sync app's per-user named pipe: one connection per
// exchange, one request and one answer, both UTF-16.
#include <windows.h>

#include <functional>
#include <string>

#include "common/unique_resource.h"
#include "common/windows_user_name.h"

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
  // The update thread's exchanges give way to Office's UI thread: once an
  // exchange of the UI thread has waited kGiveWayGraceMs for its turn, this
  // one ends wherever it is (its I/O cancelled) and the UI's goes first. A
  // sync app that hangs then keeps the UI waiting for its own exchange
  // only, never for the update thread's.
  bool givesWayToUi = false;
};

// What Office's UI thread may be kept waiting by one exchange (a close, a
// panel's button): well inside the second after which a user sees Office
// hang.
constexpr ExchangeBounds kUiExchangeBounds{700, nullptr};
// The last request when Office unloads the add-in: Office flags an add-in
// whose shutdown takes more than 500 ms as slow, and may disable it.
constexpr ExchangeBounds kLastRequestBounds{250, nullptr};

// How an exchange ended, for a caller that must tell the sync app's own
// failure from an exchange that was merely not waited for.
enum class ExchangeEnd {
  Answered,  // an answer came, whatever it says
  Failed,    // the sync app failed it: no pipe, busy too long, refused, hung up, cut
  TimedOut,  // the exchange's own time ran out first: nothing learnt about the sync app
  Stopped,   // its stop event ended it
  GaveWay,   // it gave the pipe to an exchange of the UI thread
};

class SyncAppPipe {
 public:
  static constexpr DWORD kChunkBytes = 8192;
  // WaitNamedPipeW cannot be interrupted: with a stop event to watch, a busy
  // pipe is waited for in slices this long.
  static constexpr DWORD kBusyWaitSliceMs = 100;
  // How long an exchange of the UI thread waits for the update thread's to
  // end by itself (a healthy sync app answers well within it) before asking
  // it to give way.
  static constexpr DWORD kGiveWayGraceMs = 50;
  // How the pipe is opened. Overlapped, so that a write or read can be
  // given up on (a plain ReadFile waits for as long as the server keeps
  // the connection open). Identification only: the server may learn who
  // we are but never act as us; without these flags any process that
  // serves the name could impersonate the user.
  static constexpr DWORD kPipeOpenFlags = FILE_FLAG_OVERLAPPED | SECURITY_SQOS_PRESENT | SECURITY_IDENTIFICATION;

  // The whole answer, or "ERROR" when anything failed (logged), within the
  // UI's bound.
  std::wstring Exchange(const std::wstring& request);

  SyncAppPipe() = default;
  SyncAppPipe(const SyncAppPipe&) = delete;
  SyncAppPipe& operator=(const SyncAppPipe&) = delete;
  // Ends a connection an ended exchange left open: its pending I/O is
  // cancelled before the buffers it reads into go with the object.
  ~SyncAppPipe();
  // Takes the exchange's turn, only then builds the request, exchanges it
  // and lets the turn go: requests reach the sync app in the order they
  // were built, so a stale state never arrives after a newer one. "ERROR"
  // without a word in the log when the stop event ended the wait for the
  // turn (the request was not even built). `end` (optional) says how it
  // ended.
  std::wstring Exchange(const std::function<std::wstring()>& buildRequest, const ExchangeBounds& bounds,
                        ExchangeEnd* end = nullptr);
  // Signalled while an exchange of the UI thread waits for an exchange
  // that gives way to it: the update thread's other waits (the cache lock
  // around building its request) watch it too.
  HANDLE GiveWayRequest() const { return giveWayEvent_.get(); }
  void Close();

  const std::wstring& pipeName() const { return pipeName_; }

 private:
  class Deadline;
  void TakeOverAbandonedExchange();
  ExchangeEnd EndOf(const std::wstring& answer, HANDLE stopEvent) const;
  bool AskedToGiveWay() const;
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
  // Set by a UI exchange that waits for one that gives way, reset once it
  // has its turn. Watched, during the exchange in turn, through
  // giveWayWatch_ (null for an exchange that does not give way).
  UniqueHandle giveWayEvent_{CreateEventW(nullptr, TRUE, FALSE, nullptr)};
  HANDLE giveWayWatch_ = nullptr;
  // Why the exchange in turn was cut short, if it was: TimedOut, Stopped
  // or GaveWay; Failed while nothing cut it.
  ExchangeEnd cutShort_ = ExchangeEnd::Failed;
  OVERLAPPED overlapped_ = {};
  // The connection of the exchange in turn; none between exchanges. An
  // exchange whose thread was ended leaves it open until the next takes
  // over, or until the pipe goes.
  UniqueHandle pipeHandle_;
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
