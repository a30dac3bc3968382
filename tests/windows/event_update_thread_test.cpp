// The worker that keeps the cache in step with the sync app, run in this
// process as the connection runs it, with no sync app serving the pipe:
// its cycles are counted by the open failures it logs.
#include <gtest/gtest.h>

#include <functional>
#include <thread>

#include "synclink/immediate_update_event.h"
#include "common/office_app.h"
#include "common/unique_resource.h"
#include "log/thread_names.h"
#include "log/write_log.h"
#include "synclink/cache_mutex.h"
#include "synclink/event_update_thread.h"
#include "synclink/file_status_cache.h"
#include "synclink/sync_app_pipe.h"
#include "synclink/update_cycle.h"
#include "tests/caller.h"
#include "tests/windows/sync_sim_process.h"
#include "tests/windows/wine_test_support.h"

namespace {
const wchar_t kPath[] = L"C:\\users\\Public\\Documents\\report.docx";
const char kOpenFailure[] = "Could not open pipe. errcode=2";

// Polls until the condition holds or the time is up; true when it held.
bool WaitUntil(const std::function<bool()>& condition, DWORD timeoutMs) {
  const ULONGLONG end = GetTickCount64() + timeoutMs;
  for (;;) {
    if (condition()) return true;
    if (GetTickCount64() >= end) return false;
    Sleep(20);
  }
}

class EventUpdateThread : public testing::Test {
 protected:
  void SetUp() override {
    OfficeApp = OfficeHost::Word;
    StartFreshLog();
    ImmediateUpdateEvent.reset(CreateEventW(nullptr, TRUE, FALSE, L"immediatelyUpdateEvent"));
    ASSERT_TRUE(ImmediateUpdateEvent);
    TheFileStatusCache().syncAppHasData = true;
    TheFileStatusCache().cyclesWithoutAnswer = 0;
  }
  void TearDown() override {
    StopThread();
    FileStatusCache& cache = TheFileStatusCache();
    if (cache.Contains(kPath)) cache.RemoveFile(kPath);
    ImmediateUpdateEvent.reset();
    OfficeApp = OfficeHost::None;
  }

  void StartThread(Caller caller = {}) {
    TRACE_CALLER(caller);
    DWORD threadId = 0;
    thread_.reset(CreateThread(nullptr, 0, EventUpdateThreadProc, nullptr, 0, &threadId));
    ASSERT_TRUE(thread_);
    NameThread(threadId, L"EvntUpdate");
  }
  void StopThread(Caller caller = {}) {
    TRACE_CALLER(caller);
    if (thread_) {
      EXPECT_TRUE(StopEventUpdateThread(thread_.get()));
    }
    thread_.reset();
  }

  // The thread's cycles so far: each one fails to open the missing pipe.
  static size_t Cycles() {
    size_t cycles = 0;
    for (const std::string& message : MessagesOfThread(ReadLog(LogFilePath()), "EvntUpdate")) {
      cycles += message == kOpenFailure;
    }
    return cycles;
  }
  // Runs the thread against a sync app that misbehaves as `arguments` say:
  // the cycle logs `logged` (when given), finds no data and leaves the
  // record as it was.
  void ExpectNoRecordChangeWith(const std::wstring& arguments, const std::string& logged, Caller caller = {}) {
    TRACE_CALLER(caller);
    FileStatusCache& cache = TheFileStatusCache();
    ASSERT_EQ(cache.AddFile(kPath, nullptr, 0, nullptr), 1);
    cache.Change(kPath, [&](FileStatusRecord& r) { r.sync.is_sync_file = 1; });
    cache.Change(kPath, [&](FileStatusRecord& r) { r.sync.file_combo_id = L"k3"; });
    cache.Change(kPath, [&](FileStatusRecord& r) { r.overlayUpToDate = 1; });
    SyncSimProcess syncApp;
    ASSERT_TRUE(syncApp.Start(arguments));
    StartThread();
    EXPECT_TRUE(WaitUntil([&] { return !cache.syncAppHasData; }, 15000));
    StopThread();
    syncApp.Stop();
    if (!logged.empty()) {
      const auto messages = MessagesOfThread(ReadLog(LogFilePath()), "EvntUpdate");
      EXPECT_TRUE(ContainsInOrder(messages, {"event update thread starts", logged}));
    }
    const FileStatusRecord after = *cache.Find(kPath);
    EXPECT_EQ(after.sync.is_sync_file, 1u);
    EXPECT_EQ(after.sync.file_combo_id, L"k3");
    EXPECT_EQ(after.sync.is_loading_data_from_server, 1u);
    EXPECT_EQ(after.overlayUpToDate, 1u);
  }
  static bool EventIsSet() { return WaitForSingleObject(ImmediateUpdateEvent.get(), 0) == WAIT_OBJECT_0; }

  UniqueHandle thread_;
};
}  // namespace

TEST_F(EventUpdateThread, WithoutASyncAppLogsTheOpenFailureAndChangesNoRecord) {
  FileStatusCache& cache = TheFileStatusCache();
  ASSERT_EQ(cache.AddFile(kPath, nullptr, 1, nullptr), 1);
  cache.Change(kPath, [&](FileStatusRecord& r) { r.sync.is_sync_file = 1; });
  cache.Change(kPath, [&](FileStatusRecord& r) { r.sync.file_combo_id = L"k3"; });
  cache.Change(kPath, [&](FileStatusRecord& r) { r.overlayUpToDate = 1; });

  StartThread();
  ASSERT_TRUE(WaitUntil([] { return Cycles() >= 1; }, 10000));
  StopThread();

  const auto messages = MessagesOfThread(ReadLog(LogFilePath()), "EvntUpdate");
  ASSERT_GE(messages.size(), 2u);
  EXPECT_EQ(messages[0], "event update thread starts");
  EXPECT_EQ(messages[1], kOpenFailure);
  EXPECT_FALSE(cache.syncAppHasData);
  const FileStatusRecord record = *cache.Find(kPath);
  EXPECT_EQ(record.sync.is_sync_file, 1u);
  EXPECT_EQ(record.sync.file_combo_id, L"k3");
  EXPECT_EQ(record.sync.is_loading_data_from_server, 1u);
  EXPECT_EQ(record.overlayUpToDate, 1u);
  EXPECT_EQ(record.isOpen, 1u);
}

TEST_F(EventUpdateThread, StartsACycleAtOnceWhenTheEventIsSet) {
  StartThread();
  ASSERT_TRUE(WaitUntil([] { return Cycles() >= 1; }, 10000));
  // Three signals well inside one 4000 ms period: each wakes a cycle.
  for (size_t expected = 2; expected <= 4; ++expected) {
    SetEvent(ImmediateUpdateEvent.get());
    EXPECT_TRUE(WaitUntil([&] { return Cycles() >= expected; }, 1000)) << "signal " << expected - 1;
  }
}

TEST_F(EventUpdateThread, ResetsTheEventAfterTheWaitItCutShort) {
  StartThread();
  ASSERT_TRUE(WaitUntil([] { return Cycles() >= 1; }, 10000));
  SetEvent(ImmediateUpdateEvent.get());
  ASSERT_TRUE(WaitUntil([] { return Cycles() >= 2; }, 2000));
  // The reset comes between the wait and the cycle that logged the failure.
  EXPECT_FALSE(EventIsSet());
}

TEST_F(EventUpdateThread, WaitsForABusyCacheLockAtMostFiveSecondsAndKeepsASignalFromThatTime) {
  // This thread holds the cache lock, as another Office process might.
  ASSERT_NE(CacheMutex(), nullptr);
  ASSERT_EQ(WaitForSingleObject(CacheMutex(), 0), WAIT_OBJECT_0);
  StartThread();
  Sleep(1500);
  EXPECT_EQ(Cycles(), 0u) << "the first cycle did not wait for the lock";
  // A document opens while the thread is inside its cycle.
  SetEvent(ImmediateUpdateEvent.get());
  EXPECT_TRUE(WaitUntil([] { return Cycles() >= 1; }, 8000)) << "the thread waited beyond its five seconds";
  ReleaseMutex(CacheMutex());
  // The signal given during the first cycle cuts the following wait short.
  EXPECT_TRUE(WaitUntil([] { return Cycles() >= 2; }, 2000));
}

TEST_F(EventUpdateThread, WritesTheSyncAppsAnswerIntoTheRecord) {
  FileStatusCache& cache = TheFileStatusCache();
  ASSERT_EQ(cache.AddFile(kPath, nullptr, 0, nullptr), 1);
  const std::wstring scenario = FreshTempPath(L"thread-scenario.txt");
  WriteUtf8File(scenario, std::wstring(L"file ") + kPath +
                              L"\nset is_sync_file=true\nset file_combo_id=k3v9x\n"
                              L"set is_loading_data_from_server=false\nset is_download_present=Downloaded\n"
                              L"set all_editors_quid=u1|u2\nset all_editors_names=Ann|Bo\n");
  const std::wstring requestsFile = FreshTempPath(L"thread-requests.txt");
  SyncSimProcess syncApp;
  ASSERT_TRUE(syncApp.Start(L"--scenario " + Quoted(scenario) + L" --record " + Quoted(requestsFile)));
  StartThread();
  // The second cycle's request carries the id the first answer gave: by
  // then that answer is in the record.
  ASSERT_TRUE(WaitUntil([&] { return ReadLines(requestsFile).size() >= 1; }, 10000));
  SetEvent(ImmediateUpdateEvent.get());
  ASSERT_TRUE(WaitUntil([&] { return ReadLines(requestsFile).size() >= 2; }, 10000));
  StopThread();
  syncApp.Stop();
  const FileStatusRecord record = *cache.Find(kPath);
  EXPECT_TRUE(cache.syncAppHasData);
  EXPECT_EQ(record.sync.is_sync_file, 1u);
  EXPECT_EQ(record.sync.is_loading_data_from_server, 0u);
  EXPECT_EQ(record.sync.is_internet_connected, 1u);  // not reported: connected
  EXPECT_EQ(record.sync.downloadState, 1);
  EXPECT_EQ(record.sync.editorsByQuid, (std::map<std::wstring, std::wstring>{{L"u1", L"Ann"}, {L"u2", L"Bo"}}));
  EXPECT_EQ(record.overlayUpToDate, 0u);
  // The thread asks about every open file, without uiHide, and sends the
  // sync app's id back once it has one.
  const auto requests = ReadLines(requestsFile);
  ASSERT_GE(requests.size(), 2u);
  const auto request = [](const std::string& id) {
    return std::string("{\"files\":[{\"filepath\":\"") + Narrow(kPath) +
           "\",\"isOpen\":true,\"isEditing\":false,\"resolveConflict\":false,"
           "\"retryModify\":false,\"retryRenameOrMove\":false,\"retryDelete\":false,"
           "\"file_combo_id\":\"" + id + "\",\"officeApp\":\"1\"}]}";
  };
  EXPECT_EQ(requests[0], request(""));
  EXPECT_EQ(requests[1], request("k3v9x"));
}

TEST_F(EventUpdateThread, KeepsTheRecordWhenTheAnswerIsGarbage) {
  ExpectNoRecordChangeWith(L"--garbage", "");
}

TEST_F(EventUpdateThread, KeepsTheRecordWhenTheSyncAppHangsUp) {
  ExpectNoRecordChangeWith(L"--hang-up", "read msg failed. errcode=233");
}

TEST_F(EventUpdateThread, KeepsTheRecordWhenTheSyncAppIsBusy) {
  ExpectNoRecordChangeWith(L"--busy", "Wait time over, could not open pipe. errcode=121");
}

TEST_F(EventUpdateThread, LeavesThePipeToTheNextExchangeWhenEndedInsideOne) {
  const std::wstring requestsFile = FreshTempPath(L"thread-ended-requests.txt");
  SyncSimProcess syncApp;
  ASSERT_TRUE(syncApp.Start(L"--delay 3000 --record " + Quoted(requestsFile)));
  StartThread();
  ASSERT_TRUE(WaitUntil([&] { return ReadLines(requestsFile).size() >= 1; }, 10000));
  // Disconnection while the thread waits for the slow answer: it is ended.
  StopThread();

  // The next exchange, as the UI thread makes one when a document closes,
  // on a thread of its own so that a hang fails the test instead of it.
  struct NextExchange {
    std::wstring answer;
  } next;
  UniqueHandle exchange(CreateThread(
      nullptr, 0,
      [](LPVOID context) -> DWORD {
        // Given time enough for the slow answer: the point is the turn.
        static_cast<NextExchange*>(context)->answer =
            TheSyncAppPipe().Exchange([] { return std::wstring(L"{\"files\":[]}"); }, ExchangeBounds{10000});
        return 0;
      },
      &next, 0, nullptr));
  ASSERT_TRUE(exchange);
  const DWORD waited = WaitForSingleObject(exchange.get(), 15000);
  if (waited != WAIT_OBJECT_0) TerminateThread(exchange.get(), 1);
  ASSERT_EQ(waited, WAIT_OBJECT_0) << "the exchange still waits for the thread that was ended";
  EXPECT_EQ(Narrow(next.answer), "{\"resp\":[]}");
  const auto requests = ReadLines(requestsFile);
  ASSERT_EQ(requests.size(), 2u);
  EXPECT_EQ(requests[1], "{\"files\":[]}");
  syncApp.Stop();
}

TEST_F(EventUpdateThread, LeavesAtOnceWhenAskedToStopWhileTheSyncAppNeverAnswers) {
  const std::wstring requestsFile = FreshTempPath(L"thread-unanswered-requests.txt");
  SyncSimProcess syncApp;
  ASSERT_TRUE(syncApp.Start(L"--never-answer --record " + Quoted(requestsFile)));
  StartThread();
  ASSERT_TRUE(WaitUntil([&] { return ReadLines(requestsFile).size() >= 1; }, 10000));
  Sleep(200);  // well inside the wait for the answer
  const int terminationsBefore = EventUpdateThreadTerminations();
  const ULONGLONG start = GetTickCount64();

  RequestEventUpdateThreadStop();
  const DWORD ended = WaitForSingleObject(thread_.get(), 5000);

  const ULONGLONG took = GetTickCount64() - start;
  EXPECT_EQ(ended, static_cast<DWORD>(WAIT_OBJECT_0));
  EXPECT_LT(took, 500u);
  EXPECT_TRUE(AwaitEventUpdateThreadEnd(thread_.get()));
  EXPECT_EQ(EventUpdateThreadTerminations(), terminationsBefore);
  thread_.reset();
  EXPECT_EQ(ReadLines(requestsFile).size(), 1u);
  EXPECT_EQ(MessagesOfThread(ReadLog(LogFilePath()), "EvntUpdate"),
            (std::vector<std::string>{"event update thread starts", "read msg failed. errcode=995"}));
}

TEST_F(EventUpdateThread, LeavesAtOnceWhenAskedToStopWhileItWaitsForTheCacheLock) {
  ASSERT_EQ(WaitForSingleObject(CacheMutex(), 0), WAIT_OBJECT_0);
  StartThread();
  Sleep(500);
  const int terminationsBefore = EventUpdateThreadTerminations();
  const ULONGLONG start = GetTickCount64();

  RequestEventUpdateThreadStop();
  const DWORD ended = WaitForSingleObject(thread_.get(), 5000);

  const ULONGLONG took = GetTickCount64() - start;
  ReleaseMutex(CacheMutex());
  EXPECT_EQ(ended, static_cast<DWORD>(WAIT_OBJECT_0));
  EXPECT_LT(took, 500u);
  EXPECT_TRUE(AwaitEventUpdateThreadEnd(thread_.get()));
  EXPECT_EQ(EventUpdateThreadTerminations(), terminationsBefore);
  thread_.reset();
  // It left without trying the pipe.
  EXPECT_EQ(Cycles(), 0u);
}

TEST_F(EventUpdateThread, WaitsThirtySecondsForAnAnswer) { EXPECT_EQ(kUpdateExchangeLimitMs, 30000u); }

TEST_F(EventUpdateThread, ACycleGivesUpOnAnAnswerThatDoesNotComeWithinItsLimitAndChangesNothingShown) {
  // The thread's own cycle with a limit short enough for a test.
  FileStatusCache& cache = TheFileStatusCache();
  ASSERT_EQ(cache.AddFile(kPath, nullptr, 0, nullptr), 1);
  cache.Change(kPath, [&](FileStatusRecord& r) { r.sync.is_sync_file = 1; });
  cache.Change(kPath, [&](FileStatusRecord& r) { r.overlayUpToDate = 1; });
  SyncSimProcess syncApp;
  ASSERT_TRUE(syncApp.Start(L"--never-answer"));
  const ULONGLONG start = GetTickCount64();

  ExchangeEnd end = static_cast<ExchangeEnd>(0xdead);

  end = RunUpdateCycle(ExchangeBounds{300});

  const ULONGLONG took = GetTickCount64() - start;
  EXPECT_GE(took, 290u);
  EXPECT_LT(took, 1300u);
  EXPECT_EQ(end, ExchangeEnd::TimedOut);
  // A sync app that did not answer in time said nothing about the files:
  // the badges stay as they are instead of all vanishing.
  EXPECT_TRUE(cache.syncAppHasData);
  EXPECT_EQ(cache.Find(kPath)->sync.is_sync_file, 1u);
  EXPECT_EQ(cache.Find(kPath)->overlayUpToDate, 1u);
  EXPECT_TRUE(ContainsInOrder(LogMessages(LogFilePath()),
                              {"read msg failed. errcode=995", "no answer from sync app in time, shown state kept"}));
}

TEST_F(EventUpdateThread, ASyncAppSilentForTwoCyclesInARowIsNoLongerBelieved) {
  // One silent cycle keeps the badges; a sync app that stays silent must not
  // leave them saying "safe to edit" for good while others may be editing.
  FileStatusCache& cache = TheFileStatusCache();
  ASSERT_EQ(cache.AddFile(kPath, nullptr, 0, nullptr), 1);
  cache.Change(kPath, [&](FileStatusRecord& r) { r.sync.is_sync_file = 1; });
  SyncSimProcess syncApp;
  ASSERT_TRUE(syncApp.Start(L"--never-answer"));

  EXPECT_EQ(RunUpdateCycle(ExchangeBounds{300}), ExchangeEnd::TimedOut);
  EXPECT_TRUE(cache.syncAppHasData);

  EXPECT_EQ(RunUpdateCycle(ExchangeBounds{300}), ExchangeEnd::TimedOut);

  EXPECT_FALSE(cache.syncAppHasData);
  EXPECT_TRUE(ContainsInOrder(LogMessages(LogFilePath()),
                              {"no answer from sync app in time, shown state kept",
                               "no answer from sync app in 2 cycles in a row, shown state cleared"}));
}

TEST_F(EventUpdateThread, AnAnswerBetweenTwoSilentCyclesStartsTheCountAgain) {
  FileStatusCache& cache = TheFileStatusCache();
  ASSERT_EQ(cache.AddFile(kPath, nullptr, 0, nullptr), 1);
  {
    SyncSimProcess silent;
    ASSERT_TRUE(silent.Start(L"--never-answer"));
    EXPECT_EQ(RunUpdateCycle(ExchangeBounds{300}), ExchangeEnd::TimedOut);
  }
  {
    SyncSimProcess healthy;
    ASSERT_TRUE(healthy.Start(L""));
    EXPECT_EQ(RunUpdateCycle(ExchangeBounds{5000}), ExchangeEnd::Answered);
  }
  cache.syncAppHasData = true;
  SyncSimProcess silentAgain;
  ASSERT_TRUE(silentAgain.Start(L"--never-answer"));

  EXPECT_EQ(RunUpdateCycle(ExchangeBounds{300}), ExchangeEnd::TimedOut);

  EXPECT_TRUE(cache.syncAppHasData);
  EXPECT_EQ(cache.cyclesWithoutAnswer, 1);
}

TEST_F(EventUpdateThread, ACycleThatGaveWayToTheUiThreadChangesNothingShown) {
  FileStatusCache& cache = TheFileStatusCache();
  ASSERT_EQ(cache.AddFile(kPath, nullptr, 0, nullptr), 1);
  cache.Change(kPath, [&](FileStatusRecord& r) { r.overlayUpToDate = 1; });
  const std::wstring requestsFile = FreshTempPath(L"thread-gave-way-requests.txt");
  SyncSimProcess syncApp;
  ASSERT_TRUE(syncApp.Start(L"--never-answer --record " + Quoted(requestsFile)));
  StartThread();
  ASSERT_TRUE(WaitUntil([&] { return ReadLines(requestsFile).size() >= 1; }, 10000));
  const ULONGLONG start = GetTickCount64();

  // Office's UI thread wants the pipe (a panel's button, say).
  const std::wstring answer = TheSyncAppPipe().Exchange(L"{\"files\":[]}");

  const ULONGLONG took = GetTickCount64() - start;
  EXPECT_EQ(Narrow(answer), "ERROR");
  EXPECT_LT(took, 1000u);
  ASSERT_TRUE(WaitUntil(
      [] {
        return static_cast<bool>(ContainsInOrder(MessagesOfThread(ReadLog(LogFilePath()), "EvntUpdate"),
                                                 {"update exchange gave way to the UI thread, shown state kept"}));
      },
      3000));
  StopThread();
  syncApp.Stop();
  EXPECT_TRUE(cache.syncAppHasData);
  EXPECT_EQ(cache.Find(kPath)->overlayUpToDate, 1u);
  const auto requests = ReadLines(requestsFile);
  ASSERT_GE(requests.size(), 2u);
  EXPECT_EQ(requests[1], "{\"files\":[]}");
}

TEST_F(EventUpdateThread, BuildsItsRequestOnlyWhenItsTurnAtThePipeHasCome) {
  FileStatusCache& cache = TheFileStatusCache();
  ASSERT_EQ(cache.AddFile(kPath, nullptr, 0, nullptr), 1);
  const std::wstring requestsFile = FreshTempPath(L"thread-order-requests.txt");
  SyncSimProcess syncApp;
  ASSERT_TRUE(syncApp.Start(L"--delay 1500 --record " + Quoted(requestsFile)));
  // An exchange of the UI thread holds the pipe while the sync app is slow.
  std::thread ui([] { TheSyncAppPipe().Exchange(L"{\"files\":[]}"); });
  ASSERT_TRUE(WaitUntil([&] { return ReadLines(requestsFile).size() >= 1; }, 10000));
  StartThread();
  Sleep(300);  // its first cycle now waits for the pipe
  // Meanwhile the document closes.
  cache.RemoveFile(kPath);
  ui.join();
  ASSERT_TRUE(WaitUntil([&] { return ReadLines(requestsFile).size() >= 2; }, 10000));
  StopThread();
  syncApp.Stop();
  // Its request tells the state as it was when it went out: no open file.
  EXPECT_EQ(ReadLines(requestsFile), (std::vector<std::string>{"{\"files\":[]}", "{\"files\":[]}"}));
}

TEST(CacheLock, IsTheNamedMutexSharedByEveryOfficeProcess) {
  ASSERT_NE(CacheMutex(), nullptr);
  UniqueHandle opened(OpenMutexW(SYNCHRONIZE, FALSE, L"QelvoFilewell-MSOfficeIntegration-cachemutex"));
  EXPECT_TRUE(opened);
}

TEST(CacheLock, NeverKeepsTheUiTickWaitingForAnotherHolder) {
  ASSERT_EQ(WaitForSingleObject(CacheMutex(), 0), WAIT_OBJECT_0);
  // The tick runs on another thread here; it must come back at once although
  // this thread holds the lock.
  UniqueHandle tick(CreateThread(
      nullptr, 0,
      [](LPVOID) -> DWORD {
        UiTickCacheLock lock;
        return 0;
      },
      nullptr, 0, nullptr));
  ASSERT_TRUE(tick);
  EXPECT_EQ(WaitForSingleObject(tick.get(), 3000), WAIT_OBJECT_0);
  ReleaseMutex(CacheMutex());
}
