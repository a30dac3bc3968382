#include "tools/syncsim/pipe_server.h"

#include <cstdio>
#include <cstring>

#include "common/text.h"

namespace {
constexpr DWORD kBufferBytes = 65536;
constexpr DWORD kReadRequestMs = 10000;   // a client that connects but says nothing
constexpr DWORD kWriteAnswerMs = 30000;   // a client that stops reading
constexpr DWORD kAwaitHangUpMs = 10000;   // a client that keeps the connection open
constexpr DWORD kCutAfterMs = 200;        // lets the client start reading before the cut
constexpr wchar_t kGarbage[] = L"Internal error 0x80004005";

// Finishes an overlapped read or write that `started` (the call's result)
// began, waiting at most timeoutMs and cancelling it after that. The bytes
// moved; FALSE with the last error set when it failed (ERROR_MORE_DATA for
// a message longer than the buffer, WAIT_TIMEOUT when it took too long).
BOOL Finish(HANDLE handle, OVERLAPPED& overlapped, BOOL started, DWORD timeoutMs, DWORD& bytes) {
  bytes = 0;
  if (!started) {
    const DWORD error = GetLastError();
    if (error == ERROR_MORE_DATA) {
      bytes = static_cast<DWORD>(overlapped.InternalHigh);
      SetLastError(error);
      return FALSE;
    }
    if (error != ERROR_IO_PENDING) return FALSE;
    if (WaitForSingleObject(overlapped.hEvent, timeoutMs) != WAIT_OBJECT_0) {
      CancelIoEx(handle, &overlapped);
      GetOverlappedResult(handle, &overlapped, &bytes, TRUE);
      SetLastError(WAIT_TIMEOUT);
      return FALSE;
    }
  }
  return GetOverlappedResult(handle, &overlapped, &bytes, FALSE);
}

// The whole request message, its NUL included; false when the client
// left (or said nothing for too long) before it was complete.
bool ReadRequestBytes(HANDLE pipe, HANDLE ioEvent, std::string& bytes) {
  std::string buffer(kBufferBytes, '\0');
  for (;;) {
    OVERLAPPED overlapped{};
    overlapped.hEvent = ioEvent;
    DWORD read = 0;
    const BOOL started = ReadFile(pipe, buffer.data(), kBufferBytes, nullptr, &overlapped);
    const BOOL done = Finish(pipe, overlapped, started, kReadRequestMs, read);
    const DWORD error = GetLastError();
    bytes.append(buffer.data(), read);
    if (done) return true;
    if (error != ERROR_MORE_DATA) return false;
  }
}

std::wstring RequestText(const std::string& bytes) {
  std::wstring text(bytes.size() / sizeof(wchar_t), L'\0');
  if (!text.empty()) memcpy(text.data(), bytes.data(), text.size() * sizeof(wchar_t));
  if (!text.empty() && text.back() == L'\0') text.pop_back();
  return text;
}
}  // namespace

PipeServer::PipeServer(const SyncSimOptions& options, AnswerFunction answer, RequestRecorder& recorder)
    : options_(options), answer_(std::move(answer)), recorder_(recorder) {}

DWORD PipeServer::MillisecondsLeft() const {
  if (options_.runMs == 0) return INFINITE;
  const DWORD elapsed = GetTickCount() - startTick_;
  return elapsed >= options_.runMs ? 0 : options_.runMs - elapsed;
}

bool PipeServer::StopWanted() const {
  if (WaitForSingleObject(stopEvent_.get(), 0) == WAIT_OBJECT_0) return true;
  if (MillisecondsLeft() == 0) return true;
  return options_.maxRequests > 0 && servedCount_.load() >= options_.maxRequests;
}

UniqueFileHandle PipeServer::CreateInstance() {
  const DWORD type =
      options_.byteMode ? PIPE_TYPE_BYTE | PIPE_READMODE_BYTE : PIPE_TYPE_MESSAGE | PIPE_READMODE_MESSAGE;
  // The first instance must be ours alone: a syncsim left over from an
  // earlier test would otherwise answer some of the connections.
  const DWORD firstFlag = announced_ ? 0 : FILE_FLAG_FIRST_PIPE_INSTANCE;
  return UniqueFileHandle(CreateNamedPipeW(options_.pipeName.c_str(),
                                           PIPE_ACCESS_DUPLEX | FILE_FLAG_OVERLAPPED | firstFlag,
                                           type | PIPE_WAIT, options_.instances, kBufferBytes, kBufferBytes, 0,
                                           nullptr));
}

bool PipeServer::StartConnect(HANDLE instance, OVERLAPPED& overlapped, bool& failed) {
  failed = false;
  ResetEvent(overlapped.hEvent);
  if (ConnectNamedPipe(instance, &overlapped)) return true;
  const DWORD error = GetLastError();
  if (error == ERROR_PIPE_CONNECTED) return true;  // the client came before the call
  if (error == ERROR_IO_PENDING) return false;
  std::printf("syncsim: ConnectNamedPipe failed, error %lu\n", error);
  failed = true;
  return false;
}

void PipeServer::AnnounceReady(const char* how) {
  if (announced_) return;
  announced_ = true;
  std::printf("syncsim: %s %s\n", how, ToUtf8(options_.pipeName).c_str());
  SetEvent(readyEvent_.get());
}

int PipeServer::Run() {
  startTick_ = GetTickCount();
  stopEvent_.reset(CreateEventW(nullptr, TRUE, FALSE, options_.stopEvent.c_str()));
  readyEvent_.reset(CreateEventW(nullptr, TRUE, FALSE, options_.readyEvent.c_str()));
  wakeEvent_.reset(CreateEventW(nullptr, TRUE, FALSE, nullptr));
  UniqueHandle connectEvent(CreateEventW(nullptr, TRUE, FALSE, nullptr));
  if (!stopEvent_ || !readyEvent_ || !wakeEvent_ || !connectEvent) {
    std::printf("syncsim: could not create the events, error %lu\n", GetLastError());
    return 3;
  }
  // Left signalled by an earlier run whose handles are still open somewhere.
  ResetEvent(stopEvent_.get());
  ResetEvent(readyEvent_.get());

  // Another server on the same pipe (a syncsim left over from an earlier
  // test) would answer some of the connections.
  const bool served = WaitNamedPipeW(options_.pipeName.c_str(), 1) != FALSE;
  if (served || GetLastError() == ERROR_SEM_TIMEOUT || GetLastError() == ERROR_PIPE_BUSY) {
    std::printf("syncsim: %s is already served by another process\n", ToUtf8(options_.pipeName).c_str());
    return 3;
  }

  UniqueFileHandle listening;
  OVERLAPPED connectOverlapped{};
  connectOverlapped.hEvent = connectEvent.get();
  bool connected = false;
  bool failed = false;

  if (options_.busy) {
    // The only instance, taken by a client of our own: every other client
    // gets ERROR_PIPE_BUSY and waits in WaitNamedPipeW.
    UniqueFileHandle occupied = CreateInstance();
    if (!occupied) {
      std::printf("syncsim: CreateNamedPipeW failed, error %lu\n", GetLastError());
      return 3;
    }
    UniqueFileHandle occupant(CreateFileW(options_.pipeName.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr,
                                          OPEN_EXISTING, 0, nullptr));
    if (!occupant) {
      std::printf("syncsim: could not occupy the instance, error %lu\n", GetLastError());
      return 3;
    }
    AnnounceReady("every instance busy on");
    const DWORD left = MillisecondsLeft();
    const DWORD hold = options_.busyMs == 0 ? left : (left < options_.busyMs ? left : options_.busyMs);
    WaitForSingleObject(stopEvent_.get(), hold);
    if (options_.busyMs == 0 || StopWanted()) return 0;
    // A listening instance first, so a client waiting for the pipe finds
    // it the moment the busy one goes.
    listening = CreateInstance();
    if (!listening) {
      std::printf("syncsim: CreateNamedPipeW failed, error %lu\n", GetLastError());
      return 3;
    }
    connected = StartConnect(listening.get(), connectOverlapped, failed);
    occupant.reset();
    DisconnectNamedPipe(occupied.get());
    occupied.reset();
    std::printf("syncsim: an instance is free\n");
  }

  // A new instance that listens; false only when creating it failed for
  // another reason than the instance limit.
  auto listenAnew = [&] {
    listening = CreateInstance();
    if (!listening) {
      const DWORD error = GetLastError();
      if (error == ERROR_PIPE_BUSY && announced_) return true;  // the limit: retried below
      std::printf("syncsim: CreateNamedPipeW failed, error %lu\n", error);
      return false;
    }
    connected = StartConnect(listening.get(), connectOverlapped, failed);
    return !failed;
  };

  int exitCode = 0;
  while (!StopWanted()) {
    if (!listening) {
      if (!listenAnew()) {
        exitCode = 3;
        break;
      }
      if (!listening) {
        // As many instances as allowed are serving: wait for one to end.
        const HANDLE waits[] = {stopEvent_.get(), wakeEvent_.get()};
        const DWORD left = MillisecondsLeft();
        WaitForMultipleObjects(2, waits, FALSE, left < 50 ? left : 50);
        ResetEvent(wakeEvent_.get());
        continue;
      }
      AnnounceReady("listening on");
    }
    if (!connected) {
      const HANDLE waits[] = {stopEvent_.get(), connectEvent.get(), wakeEvent_.get()};
      const DWORD which = WaitForMultipleObjects(3, waits, FALSE, MillisecondsLeft());
      if (which == WAIT_OBJECT_0 + 2) {
        ResetEvent(wakeEvent_.get());
        continue;
      }
      if (which != WAIT_OBJECT_0 + 1) break;  // stop, or time is up
      DWORD unused = 0;
      if (!GetOverlappedResult(listening.get(), &connectOverlapped, &unused, FALSE)) {
        listening.reset();  // the client left at once; listen anew
        continue;
      }
    }
    HANDLE pipe = listening.release();
    // The next instance listens before this connection is served: a client
    // that comes right after this one never finds the pipe without a free
    // instance (it would get ERROR_FILE_NOT_FOUND, not ERROR_PIPE_BUSY).
    if (!listenAnew()) {
      CloseHandle(pipe);
      exitCode = 3;
      break;
    }
    handlers_.emplace_back([this, pipe] { Serve(pipe); });
  }

  if (listening && !connected) {
    CancelIoEx(listening.get(), &connectOverlapped);
    DWORD unused = 0;
    GetOverlappedResult(listening.get(), &connectOverlapped, &unused, TRUE);
  }
  listening.reset();
  for (std::thread& handler : handlers_) handler.join();
  std::printf("syncsim: stopped after %ld requests\n", requestCount_.load());
  return exitCode;
}

void PipeServer::Serve(HANDLE pipeHandle) {
  UniqueFileHandle pipe(pipeHandle);
  UniqueHandle ioEvent(CreateEventW(nullptr, TRUE, FALSE, nullptr));
  std::string bytes;
  if (!ReadRequestBytes(pipe.get(), ioEvent.get(), bytes)) {
    std::printf("syncsim: a client left without a whole request (error %lu)\n", GetLastError());
    DisconnectNamedPipe(pipe.get());
    SetEvent(wakeEvent_.get());
    return;
  }
  // Normally one pass; with --answer-every-request, one per request the
  // client writes on this connection.
  for (;;) {
    const long number = ++requestCount_;
    const std::wstring request = RequestText(bytes);
    std::printf("syncsim: request %ld: %zu bytes\n", number, bytes.size());
    recorder_.Record(bytes, request);

    if (!options_.hangUpOn.empty() && request.find(options_.hangUpOn) != std::wstring::npos) {
      DisconnectNamedPipe(pipe.get());
      std::printf("syncsim: hung up on a request carrying %s\n", ToUtf8(options_.hangUpOn).c_str());
      break;
    }
    if (options_.delivery == AnswerDelivery::NeverAnswer) {
      HoldUnanswered(pipe.get(), ioEvent.get());
      break;
    }
    std::wstring answer;
    {
      std::lock_guard<std::mutex> lock(answerLock_);
      answer = answer_(request, number);
    }
    std::wstring message;
    if (options_.hasLeadUnit) message += options_.leadUnit;
    message += options_.delivery == AnswerDelivery::Garbage ? std::wstring(kGarbage) : answer;

    DWORD delay = options_.delayMs;
    if (delay == 0 && options_.delivery == AnswerDelivery::CutMidAnswer) delay = kCutAfterMs;
    if (delay > 0) Sleep(delay);
    if (number == options_.dieMidAnswer) DieMidAnswer(pipe.get(), ioEvent.get(), message);
    Deliver(pipe.get(), ioEvent.get(), message, !options_.answerEveryRequest);
    if (!options_.answerEveryRequest) break;
    bytes.clear();
    if (!ReadRequestBytes(pipe.get(), ioEvent.get(), bytes)) {
      DisconnectNamedPipe(pipe.get());
      break;
    }
  }
  ++servedCount_;
  SetEvent(wakeEvent_.get());
}

void PipeServer::DieMidAnswer(HANDLE pipe, HANDLE ioEvent, std::wstring message) {
  // Long enough that the write is still going when the process ends: the
  // client has read part of the message, and the rest never comes.
  if (message.size() < kDyingAnswerUnits) message.append(kDyingAnswerUnits - message.size(), L' ');
  OVERLAPPED overlapped{};
  overlapped.hEvent = ioEvent;
  WriteFile(pipe, message.data(), static_cast<DWORD>(message.size() * sizeof(wchar_t)), nullptr, &overlapped);
  Sleep(kDieAfterMs);
  // What the client has not read yet goes with the connection: a pipe
  // buffers the whole write at once under Wine, where a killed process
  // would otherwise still deliver its answer whole.
  DisconnectNamedPipe(pipe);
  std::printf("syncsim: dying in the middle of answer %ld\n", options_.dieMidAnswer);
  TerminateProcess(GetCurrentProcess(), kDiedExitCode);
  ExitProcess(kDiedExitCode);  // not reached
}

void PipeServer::HoldUnanswered(HANDLE pipe, HANDLE ioEvent) {
  // A hung sync app: the connection stays open and silent until syncsim
  // stops. Only the client giving up (closing its end, which completes
  // this read) ends it sooner, so abandoned connections do not pile up.
  char unused = 0;
  OVERLAPPED watch{};
  watch.hEvent = ioEvent;
  ResetEvent(ioEvent);
  const BOOL started = ReadFile(pipe, &unused, 1, nullptr, &watch);
  bool clientLeft = started || GetLastError() != ERROR_IO_PENDING;
  if (!clientLeft) {
    const HANDLE waits[] = {stopEvent_.get(), ioEvent};
    clientLeft = WaitForMultipleObjects(2, waits, FALSE, MillisecondsLeft()) == WAIT_OBJECT_0 + 1;
    if (!clientLeft) CancelIoEx(pipe, &watch);
    DWORD read = 0;
    GetOverlappedResult(pipe, &watch, &read, TRUE);
  }
  DisconnectNamedPipe(pipe);
  std::printf(clientLeft ? "syncsim: the client gave up waiting for an answer\n"
                         : "syncsim: left a request unanswered\n");
}

void PipeServer::Deliver(HANDLE pipe, HANDLE ioEvent, const std::wstring& message, bool awaitHangUp) {
  if (options_.delivery == AnswerDelivery::HangUpUnanswered) {
    DisconnectNamedPipe(pipe);
    std::printf("syncsim: hung up without an answer\n");
    return;
  }
  const DWORD size = static_cast<DWORD>(message.size() * sizeof(wchar_t));
  OVERLAPPED overlapped{};
  overlapped.hEvent = ioEvent;
  const BOOL started = WriteFile(pipe, message.data(), size, nullptr, &overlapped);
  if (options_.delivery == AnswerDelivery::CutMidAnswer) {
    // Whatever the client has not read yet is thrown away with the
    // connection, as when the sync app dies while answering.
    const bool pending = !started && GetLastError() == ERROR_IO_PENDING;
    DisconnectNamedPipe(pipe);
    if (pending) {
      CancelIoEx(pipe, &overlapped);
      DWORD unused = 0;
      GetOverlappedResult(pipe, &overlapped, &unused, TRUE);
    }
    std::printf("syncsim: cut the answer of %lu bytes\n", size);
    return;
  }
  DWORD written = 0;
  if (!Finish(pipe, overlapped, started, kWriteAnswerMs, written)) {
    std::printf("syncsim: answer not delivered, error %lu\n", GetLastError());
  } else {
    std::printf("syncsim: answered %lu bytes\n", written);
  }
  if (!awaitHangUp) return;
  // The client closes its end once it has read the answer; the connection
  // ends then, not before, so no unread answer is thrown away.
  char unused = 0;
  OVERLAPPED hangUp{};
  hangUp.hEvent = ioEvent;
  DWORD read = 0;
  const BOOL readStarted = ReadFile(pipe, &unused, 1, nullptr, &hangUp);
  Finish(pipe, hangUp, readStarted, kAwaitHangUpMs, read);
  DisconnectNamedPipe(pipe);
}
