// A sync app that accepts the connection, reads the request and never
// answers. The add-in's routines run in a simulated Word in this process,
// this thread playing Office's UI thread, with the real update thread stuck
// on the silent pipe: Office must carry on regardless.
#include <gtest/gtest.h>

#include <functional>

#include "addin/custom_ui_timer.h"
#include "addin/event_sinks.h"
#include "addin/file_closing.h"
#include "common/text.h"
#include "common/unique_resource.h"
#include "log/thread_names.h"
#include "synclink/event_update_thread.h"
#include "synclink/sync_app_pipe.h"
#include "synclink/update_cycle.h"
#include "tests/caller.h"
#include "tests/windows/in_process_host.h"
#include "tests/windows/sync_sim_process.h"
#include "tests/windows/tick_test_support.h"

namespace {
// Polls until the condition holds or the time is up; true when it held.
bool WaitUntil(const std::function<bool()>& condition, DWORD timeoutMs) {
  const ULONGLONG end = GetTickCount64() + timeoutMs;
  for (;;) {
    if (condition()) return true;
    if (GetTickCount64() >= end) return false;
    Sleep(20);
  }
}

// A window of this thread that notes how long each posted message waited
// before it was dispatched.
class MessageProbe {
 public:
  static constexpr UINT kProbe = WM_APP + 7;

  MessageProbe() {
    WNDCLASSW windowClass{};
    windowClass.lpfnWndProc = Procedure;
    windowClass.hInstance = GetModuleHandleW(nullptr);
    windowClass.lpszClassName = L"QSyncTestMessageProbe";
    RegisterClassW(&windowClass);
    window_ = CreateWindowExW(0, windowClass.lpszClassName, L"probe", WS_POPUP, 0, 0, 10, 10, nullptr, nullptr,
                              windowClass.hInstance, nullptr);
    SetWindowLongPtrW(window_, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
  }
  ~MessageProbe() { DestroyWindow(window_); }
  MessageProbe(const MessageProbe&) = delete;
  MessageProbe& operator=(const MessageProbe&) = delete;

  bool valid() const { return window_ != nullptr; }
  void Post() {
    ++posted_;
    PostMessageW(window_, kProbe, 0, static_cast<LPARAM>(GetTickCount64()));
  }
  int posted() const { return posted_; }
  int dispatched() const { return dispatched_; }
  ULONGLONG longestDelayMs() const { return longestDelay_; }

 private:
  static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == kProbe) {
      auto* probe = reinterpret_cast<MessageProbe*>(GetWindowLongPtrW(window, GWLP_USERDATA));
      const ULONGLONG delay = GetTickCount64() - static_cast<ULONGLONG>(lParam);
      if (probe != nullptr) {
        ++probe->dispatched_;
        if (delay > probe->longestDelay_) probe->longestDelay_ = delay;
      }
      return 0;
    }
    return DefWindowProcW(window, message, wParam, lParam);
  }

  HWND window_ = nullptr;
  int posted_ = 0;
  int dispatched_ = 0;
  ULONGLONG longestDelay_ = 0;
};

// Runs this thread's message loop for a while, as Office's would.
void PumpFor(DWORD milliseconds, const std::function<void()>& everyTurn = {}) {
  const ULONGLONG end = GetTickCount64() + milliseconds;
  while (GetTickCount64() < end) {
    if (everyTurn) everyTurn();
    MsgWaitForMultipleObjects(0, nullptr, FALSE, 10, QS_ALLINPUT);
    MSG message;
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
      TranslateMessage(&message);
      DispatchMessageW(&message);
    }
  }
}

// What Office's UI thread may be kept waiting at most: a user sees Office
// hang beyond it.
constexpr ULONGLONG kUiWaitBoundMs = 1000;

// One file object of a request, as the cache writes it for a saved Word
// document that the sync app has not named yet.
std::string FileObject(const std::string& path, bool open) {
  return "{\"filepath\":\"" + path + "\",\"isOpen\":" + (open ? "true" : "false") +
         ",\"isEditing\":false,\"resolveConflict\":false,\"retryModify\":false,\"retryRenameOrMove\":false,"
         "\"retryDelete\":false,\"file_combo_id\":\"\",\"officeApp\":\"1\"}";
}

// A request's bytes on the pipe: its UTF-16 units and one NUL unit.
std::string RequestBytes(const std::string& text) {
  const std::wstring wide = Widen(text.c_str());
  std::string bytes(reinterpret_cast<const char*>(wide.c_str()), (wide.size() + 1) * sizeof(wchar_t));
  return bytes;
}

template <class Host>
class HangingSyncAppWith : public testing::Test {
 protected:
  void SetUp() override {
    NameThread(GetCurrentThreadId(), L"MainThread");
    TheFileStatusCache().syncAppHasData = true;
    ASSERT_EQ(sinks_.Subscribe(OfficeHost::Word, &host_.app()), S_OK);
    requests_ = FreshTempPath(L"hanging-sync-app-requests.txt");
    ASSERT_TRUE(syncApp_.Start(L"--never-answer --record " + Quoted(requests_)));
  }
  void TearDown() override {
    StopUpdateThread();
    syncApp_.Stop();
    sinks_.Unsubscribe(OfficeHost::Word, &host_.app());
    DeliverLeftoverCloses();
  }

  // Closes a test left undelivered would ride with the next test's
  // requests: a sync app that answers takes them now.
  void DeliverLeftoverCloses() {
    if (TheFileStatusCache().UndeliveredCloseCount() == 0) return;
    SyncSimProcess healthy;
    ASSERT_TRUE(healthy.Start(L""));
    RunUpdateCycle(ExchangeBounds{5000});
    EXPECT_EQ(TheFileStatusCache().UndeliveredCloseCount(), 0u);
  }
  // The sync app that hung is ended and a healthy one takes its place,
  // recording every request's bytes.
  void ReplaceWithAnsweringSyncApp(const std::wstring& rawRecord, Caller caller = {}) {
    TRACE_CALLER(caller);
    syncApp_.Stop();
    ASSERT_TRUE(syncApp_.Start(L"--record-raw " + Quoted(rawRecord)));
  }
  // Wakes the update thread until the sync app has recorded `bytes` bytes.
  static bool WaitForRecordedBytes(const std::wstring& rawRecord, size_t bytes) {
    return WaitUntil(
        [&] {
          SetEvent(ImmediateUpdateEvent.get());
          return ReadFileBytes(rawRecord).size() >= bytes;
        },
        15000);
  }
  // Closes `document` as Office does on its UI thread; how long it waited.
  static ULONGLONG TimedClose(SimDocument* document) {
    const ULONGLONG start = GetTickCount64();
    OnFileClosing(ComPtr<IDispatch>(document));
    const ULONGLONG took = GetTickCount64() - start;
    std::printf("the close waited %llu ms\n", took);
    return took;
  }

  // The update thread as the connection starts it; it returns once the
  // thread's first request has reached the sync app, which never answers.
  void StartStuckUpdateThread(Caller caller = {}) {
    TRACE_CALLER(caller);
    DWORD threadId = 0;
    thread_.reset(CreateThread(nullptr, 0, EventUpdateThreadProc, nullptr, CREATE_SUSPENDED, &threadId));
    ASSERT_TRUE(thread_);
    NameThread(threadId, L"EvntUpdate");
    ResumeThread(thread_.get());
    ASSERT_TRUE(WaitUntil([&] { return ReadLines(requests_).size() == 1; }, 10000));
  }
  void StopUpdateThread(Caller caller = {}) {
    TRACE_CALLER(caller);
    if (!thread_) return;
    const int terminationsBefore = EventUpdateThreadTerminations();
    EXPECT_TRUE(StopEventUpdateThread(thread_.get()));
    EXPECT_EQ(EventUpdateThreadTerminations(), terminationsBefore) << "the thread had to be terminated";
    thread_.reset();
  }
  static std::vector<std::string> MainThreadMessages() {
    return MessagesOfThread(ReadLog(LogFilePath()), "MainThread");
  }

  static std::vector<std::string> UpdateThreadMessages() {
    return MessagesOfThread(ReadLog(LogFilePath()), "EvntUpdate");
  }

  Host host_{SimHost::Word};
  HostEventSinks sinks_;
  SyncSimProcess syncApp_;
  std::wstring requests_;
  UniqueHandle thread_;
};

using HangingSyncApp = HangingSyncAppWith<InProcessHost>;
// With the overlay's windows on screen.
using HangingSyncAppOverlay = HangingSyncAppWith<OverlayHost>;
}  // namespace

TEST_F(HangingSyncApp, ADocumentClosedMeanwhileReturnsToOfficeWithinASecondAndItsCloseIsKept) {
  SimDocument* document = host_.Open(L"report.docx");
  const std::string path = Narrow(document->fullName());
  StartStuckUpdateThread();

  const ULONGLONG took = TimedClose(document);

  EXPECT_LT(took, kUiWaitBoundMs);
  EXPECT_FALSE(TheFileStatusCache().Contains(document->fullName()));
  // The update thread gave the pipe up at once: the close went out, and
  // the sync app did not answer it either.
  EXPECT_TRUE(ContainsInOrder(MainThreadMessages(),
                              {"close file - " + path, "file info removed from cache - " + path,
                               "read msg failed. errcode=995",
                               "close not delivered to sync app, kept for the next request - " + path}));
  EXPECT_TRUE(ContainsInOrder(UpdateThreadMessages(), {"read msg failed. errcode=995",
                                                       "update exchange gave way to the UI thread, shown state kept"}));
  const auto requests = ReadLines(requests_);
  ASSERT_EQ(requests.size(), 2u);
  EXPECT_EQ(requests[1], "{\"files\":[" + FileObject(path, false) + "]}");
  EXPECT_EQ(TheFileStatusCache().UndeliveredCloseCount(), 1u);
}

TEST_F(HangingSyncApp, AnUndeliveredCloseGoesOutWithTheFirstRequestTheSyncAppAnswersAndThenNoMore) {
  SimDocument* report = host_.Open(L"report.docx");
  SimDocument* notes = host_.Open(L"notes.docx");
  const std::string reportPath = Narrow(report->fullName());
  const std::string notesPath = Narrow(notes->fullName());
  StartStuckUpdateThread();
  ASSERT_LT(TimedClose(report), kUiWaitBoundMs);

  const std::wstring raw = FreshTempPath(L"hanging-sync-app-delivered.bin");
  ReplaceWithAnsweringSyncApp(raw);
  const std::string first = RequestBytes("{\"files\":[" + FileObject(notesPath, true) + "," +
                                         FileObject(reportPath, false) + "]}");
  const std::string second = RequestBytes("{\"files\":[" + FileObject(notesPath, true) + "]}");
  ASSERT_TRUE(WaitForRecordedBytes(raw, first.size() + second.size()));
  StopUpdateThread();

  // The bytes as the sync app received them: the close rides with the
  // first request it answers, after the open files, and only with that one.
  EXPECT_EQ(ReadFileBytes(raw).substr(0, first.size() + second.size()), first + second);
  EXPECT_EQ(TheFileStatusCache().UndeliveredCloseCount(), 0u);
  EXPECT_TRUE(ContainsInOrder(UpdateThreadMessages(),
                              {"undelivered close now delivered to sync app - " + reportPath}));
}

TEST_F(HangingSyncApp, ADocumentOpenedAgainIsNotReportedClosedOnceTheSyncAppAnswers) {
  SimDocument* report = host_.Open(L"report.docx");
  const std::wstring reportPath = report->fullName();
  StartStuckUpdateThread();
  ASSERT_LT(TimedClose(report), kUiWaitBoundMs);
  host_.app().CloseDocument(report, SimApplication::SaveChoice::Discard);
  // The user opens it again before the sync app answers.
  ASSERT_NE(host_.OpenPath(reportPath), nullptr);
  ASSERT_TRUE(TheFileStatusCache().Contains(reportPath));

  const std::wstring raw = FreshTempPath(L"hanging-sync-app-reopened.bin");
  ReplaceWithAnsweringSyncApp(raw);
  const std::string open = RequestBytes("{\"files\":[" + FileObject(Narrow(reportPath), true) + "]}");
  ASSERT_TRUE(WaitForRecordedBytes(raw, 2 * open.size()));
  StopUpdateThread();

  EXPECT_EQ(ReadFileBytes(raw).substr(0, 2 * open.size()), open + open);
  EXPECT_EQ(TheFileStatusCache().UndeliveredCloseCount(), 0u);
  EXPECT_TRUE(ContainsInOrder(MainThreadMessages(),
                              {"undelivered close withdrawn, file open again - " + Narrow(reportPath)}));
}

TEST_F(HangingSyncAppOverlay, AShownBadgeStaysThroughACycleThatGaveWayToAClose) {
  AnswerFields viewed = QuietAnswer();
  AddViewers(viewed, L"u-ann", L"Ann Lee");
  SimDocument* notes = host_.Open(L"notes.docx");
  SimDocument* report = host_.OpenAnswered(L"report", viewed);
  const std::wstring reportPath = report->fullName();
  Tick();
  const HWND badge = BadgeOf(reportPath);
  ASSERT_NE(badge, nullptr);
  StartStuckUpdateThread();

  ASSERT_LT(TimedClose(notes), kUiWaitBoundMs);
  ASSERT_TRUE(WaitUntil(
      [] {
        return static_cast<bool>(
            ContainsInOrder(UpdateThreadMessages(), {"update exchange gave way to the UI thread, shown state kept"}));
      },
      5000));
  Tick();
  PumpMessages();

  // The same badge, still on screen: nothing flickered.
  EXPECT_TRUE(TheFileStatusCache().syncAppHasData);
  EXPECT_EQ(BadgeOf(reportPath), badge);
  EXPECT_TRUE(IsWindow(badge));
  EXPECT_TRUE(IsWindowVisible(badge));
  EXPECT_EQ(KindOf(reportPath), 8);
}

TEST_F(HangingSyncApp, TheHostsMessageLoopKeepsRunningWhileTheUpdateThreadWaits) {
  host_.Open(L"report.docx");
  StartStuckUpdateThread();
  MessageProbe probe;
  ASSERT_TRUE(probe.valid());
  // The add-in's UI tick runs in the loop too, more often than in Office.
  const UINT_PTR timer = SetTimer(nullptr, 0, 250, CustomUiTimerProc);
  ASSERT_NE(timer, 0u);
  ULONGLONG nextPost = 0;

  PumpFor(3000, [&] {
    if (GetTickCount64() < nextPost) return;
    probe.Post();
    nextPost = GetTickCount64() + 100;
  });
  PumpFor(100);

  KillTimer(nullptr, timer);
  std::printf("%d posted messages, the longest waited %llu ms\n", probe.posted(), probe.longestDelayMs());
  EXPECT_GE(probe.posted(), 20);
  EXPECT_EQ(probe.dispatched(), probe.posted());
  EXPECT_LT(probe.longestDelayMs(), 1000u);
  // The thread was stuck all along.
  EXPECT_EQ(ReadLines(requests_).size(), 1u);
}

TEST_F(HangingSyncApp, TheNextCycleAfterTheSyncAppAnswersAgainWritesTheAnswerIntoTheRecord) {
  SimDocument* document = host_.Open(L"report.docx");
  const std::wstring path = document->fullName();
  StartStuckUpdateThread();

  // The hung sync app is ended and started again, answering.
  syncApp_.Stop();
  const std::wstring scenario = FreshTempPath(L"hanging-sync-app-scenario.txt");
  WriteUtf8File(scenario, L"file " + path +
                              L"\nset is_sync_file=true\nset file_combo_id=k3v9x\n"
                              L"set is_loading_data_from_server=false\n");
  const std::wstring answered = FreshTempPath(L"hanging-sync-app-answered.txt");
  ASSERT_TRUE(syncApp_.Start(L"--scenario " + Quoted(scenario) + L" --record " + Quoted(answered)));
  SetEvent(ImmediateUpdateEvent.get());
  ASSERT_TRUE(WaitUntil([&] { return ReadLines(answered).size() >= 1; }, 10000));
  // A second cycle carries the id the first answer gave: that answer is in the record.
  SetEvent(ImmediateUpdateEvent.get());
  ASSERT_TRUE(WaitUntil([&] { return ReadLines(answered).size() >= 2; }, 10000));
  StopUpdateThread();

  EXPECT_NE(ReadLines(answered)[1].find("\"file_combo_id\":\"k3v9x\""), std::string::npos) << ReadLines(answered)[1];
  const FileStatusRecord record = host_.Record(path);
  EXPECT_TRUE(TheFileStatusCache().syncAppHasData);
  EXPECT_EQ(record.sync.is_sync_file, 1u);
  EXPECT_EQ(record.sync.file_combo_id, L"k3v9x");
  EXPECT_EQ(record.sync.is_loading_data_from_server, 0u);
}
