#pragma once
// The server end of the sync app's pipe: message-type instances, one
// request and one answer per connection, each connection served on its own
// thread so a slow answer does not block the next client.
#include <windows.h>

#include <atomic>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "common/unique_resource.h"
#include "tools/syncsim/options.h"
#include "tools/syncsim/request_recorder.h"

class PipeServer {
 public:
  // syncsim's exit code when it ended itself inside an answer.
  static constexpr UINT kDiedExitCode = 9;
  static constexpr std::size_t kDyingAnswerUnits = 2 * 1024 * 1024;
  static constexpr DWORD kDieAfterMs = 1;
  // Gives the answer text (without the leading unit) for the request text
  // (without its NUL) and the request's number, counted from 1. Called
  // for one request at a time.
  using AnswerFunction = std::function<std::wstring(const std::wstring& request, long number)>;

  PipeServer(const SyncSimOptions& options, AnswerFunction answer, RequestRecorder& recorder);

  // Serves until a stop condition holds; the process's exit code.
  int Run();

 private:
  bool StopWanted() const;
  DWORD MillisecondsLeft() const;
  UniqueFileHandle CreateInstance();
  // Starts listening on `instance`; true when a client is already there.
  bool StartConnect(HANDLE instance, OVERLAPPED& overlapped, bool& failed);
  bool HoldBusy();
  void AnnounceReady(const char* how);
  void Serve(HANDLE pipe);
  // With awaitHangUp, waits for the client to close its end and disconnects.
  void Deliver(HANDLE pipe, HANDLE ioEvent, const std::wstring& message, bool awaitHangUp);
  void HoldUnanswered(HANDLE pipe, HANDLE ioEvent);
  // Starts writing `message` and ends the process while it is under way,
  // as when the sync app is killed or crashes mid-answer. Never returns.
  [[noreturn]] void DieMidAnswer(HANDLE pipe, HANDLE ioEvent, std::wstring message);

  const SyncSimOptions& options_;
  AnswerFunction answer_;
  RequestRecorder& recorder_;
  UniqueHandle stopEvent_;
  UniqueHandle readyEvent_;
  UniqueHandle wakeEvent_;  // a connection has been served
  DWORD startTick_ = 0;
  bool announced_ = false;
  std::atomic<long> requestCount_{0};
  std::atomic<long> servedCount_{0};
  std::mutex answerLock_;
  std::vector<std::thread> handlers_;
};
