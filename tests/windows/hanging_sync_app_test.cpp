// A sync app that accepts the connection, reads the request and never
// answers. The add-in's routines run in a simulated Word in this process,
// this thread playing Office's UI thread, with the real update thread stuck
// on the silent pipe: Office must carry on regardless.
#include <gtest/gtest.h>

#include <functional>

#include "addin/custom_ui_timer.h"
#include "addin/event_sinks.h"
#include "addin/file_closing.h"
#include "common/unique_resource.h"
#include "log/thread_names.h"
#include "synclink/event_update_thread.h"
#include "synclink/sync_app_pipe.h"
#include "tests/caller.h"
#include "tests/windows/in_process_host.h"
#include "tests/windows/sync_sim_process.h"

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

class HangingSyncApp : public testing::Test {
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

  InProcessHost host_{SimHost::Word};
  HostEventSinks sinks_;
  SyncSimProcess syncApp_;
  std::wstring requests_;
  UniqueHandle thread_;
};
}  // namespace

TEST_F(HangingSyncApp, ADocumentClosedMeanwhileReturnsToOfficeWithinFiveSecondsAndIsLogged) {
  SimDocument* document = host_.Open(L"report.docx");
  const std::string path = Narrow(document->fullName());
  StartStuckUpdateThread();
  const ULONGLONG start = GetTickCount64();

  OnFileClosing(ComPtr<IDispatch>(document));

  const ULONGLONG took = GetTickCount64() - start;
  std::printf("the close waited %llu ms\n", took);
  EXPECT_LT(took, 5500u);
  EXPECT_FALSE(TheFileStatusCache().Contains(document->fullName()));
  // The pipe stayed with the update thread's exchange the whole time.
  EXPECT_TRUE(ContainsInOrder(MainThreadMessages(), {"close file - " + path,
                                                     "file info removed from cache - " + path,
                                                     "Wait time over, could not open pipe. errcode=258"}));
  EXPECT_EQ(ReadLines(requests_).size(), 1u);
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
