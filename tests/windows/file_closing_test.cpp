// The before-close handler against each simulated host: the user's own
// close of a modified file, the add-in's close for a sync action, a clean
// close, and a document the cache never knew. A small pipe server in the
// test stands in for the sync app and keeps the bytes it was sent.
#include <gtest/gtest.h>

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <thread>

#include "addin/event_sinks.h"
#include "addin/file_closing.h"
#include "docactions/close_file.h"
#include "overlay/windows/overlay_window_states.h"
#include "synclink/sync_app_pipe.h"
#include "tests/windows/in_process_host.h"

namespace {
// Serves the sync app's pipe, one request and one answer per connection,
// until stopped; keeps every request as received (NUL included).
class RecordingSyncApp {
 public:
  RecordingSyncApp() : name_(L"\\\\.\\pipe\\FilewellSync-MSOfficeIntegration-" + WindowsUserName()) {
    thread_ = std::thread([this] { Serve(); });
    // The first instance exists before anyone may try to connect.
    std::unique_lock<std::mutex> lock(lock_);
    ready_.wait(lock, [this] { return listening_; });
  }
  ~RecordingSyncApp() {
    stopping_ = true;
    // Wakes the waiting ConnectNamedPipe (again, should it have been
    // between two connections).
    while (!finished_) {
      HANDLE client = CreateFileW(name_.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr);
      if (client != INVALID_HANDLE_VALUE) CloseHandle(client);
      Sleep(5);
    }
    thread_.join();
  }
  std::vector<std::wstring> requests() {
    std::lock_guard<std::mutex> lock(lock_);
    return requests_;
  }

 private:
  HANDLE CreateInstance() const {
    return CreateNamedPipeW(name_.c_str(), PIPE_ACCESS_DUPLEX, PIPE_TYPE_MESSAGE | PIPE_READMODE_MESSAGE | PIPE_WAIT,
                            PIPE_UNLIMITED_INSTANCES, 65536, 65536, 0, nullptr);
  }
  void Serve() {
    HANDLE next = CreateInstance();
    {
      std::lock_guard<std::mutex> lock(lock_);
      listening_ = true;
    }
    ready_.notify_all();
    while (next != INVALID_HANDLE_VALUE) {
      HANDLE pipe = next;
      const BOOL connected = ConnectNamedPipe(pipe, nullptr) || GetLastError() == ERROR_PIPE_CONNECTED;
      if (stopping_ || !connected) {
        CloseHandle(pipe);
        break;
      }
      // The next client finds an instance waiting while this one is served.
      next = CreateInstance();
      wchar_t buffer[32768];
      DWORD read = 0;
      if (ReadFile(pipe, buffer, sizeof(buffer), &read, nullptr)) {
        std::lock_guard<std::mutex> lock(lock_);
        requests_.emplace_back(buffer, read / sizeof(wchar_t));
      }
      // The sync app's answer begins with a unit that is not text.
      const std::wstring answer = L"\xFEFF{\"resp\":[]}";
      DWORD written = 0;
      WriteFile(pipe, answer.c_str(), static_cast<DWORD>((answer.size() + 1) * sizeof(wchar_t)), &written, nullptr);
      FlushFileBuffers(pipe);
      DisconnectNamedPipe(pipe);
      CloseHandle(pipe);
    }
    finished_ = true;
  }

  std::wstring name_;
  std::thread thread_;
  std::mutex lock_;
  std::condition_variable ready_;
  bool listening_ = false;
  std::atomic<bool> stopping_{false};
  std::atomic<bool> finished_{false};
  std::vector<std::wstring> requests_;
};

class FileClosing : public testing::TestWithParam<SimHost> {
 protected:
  void SetUp() override { ASSERT_EQ(sinks_.Subscribe(AddinHostOf(GetParam()), &host_.app()), S_OK); }
  void TearDown() override {
    sinks_.Unsubscribe(AddinHostOf(GetParam()), &host_.app());
    DropAllWindowStates();
  }

  void Closing(IDispatch* document) {
    OnFileClosing(ComPtr<IDispatch>(document));
  }
  // An open, cached document with a badge and a panel window of its own.
  SimDocument* OpenCachedWithWindows(const wchar_t* base) {
    SimDocument* document = host_.Open(base + DocumentExtension(GetParam()));
    badge_.reset(CreatePlainWindow());
    panel_.reset(CreatePlainWindow());
    const SharedWindowState windows = WindowStateFor(document->fullName(), nullptr);
    windows->badgeWindow = badge_.get();
    windows->subOverlayWindow = panel_.get();
    host_.ClearLog();
    return document;
  }
  // The request that says the file is no longer open, as the sync app receives it.
  std::wstring ClosedRequest(const std::wstring& path, bool resolveConflict, bool retryModify,
                             bool retryRenameOrMove) const {
    auto flag = [](bool value) { return value ? L"true" : L"false"; };
    return L"{\"files\":[{\"filepath\":\"" + path + L"\",\"isOpen\":false,\"isEditing\":false,\"resolveConflict\":" +
           flag(resolveConflict) + L",\"retryModify\":" + flag(retryModify) + L",\"retryRenameOrMove\":" +
           flag(retryRenameOrMove) + L",\"retryDelete\":false,\"file_combo_id\":\"\",\"officeApp\":\"" +
           std::to_wstring(static_cast<int>(AddinHostOf(GetParam()))) + L"\"}]}" + std::wstring(1, L'\0');
  }

  InProcessHost host_{GetParam()};
  HostEventSinks sinks_;
  RecordingSyncApp syncApp_;
  UniqueWindowForTest badge_, panel_;
};

TEST_P(FileClosing, TheUsersCloseOfAModifiedCachedFileOnlyLogs) {
  SimDocument* document = OpenCachedWithWindows(L"modified");
  document->MarkEdited();
  Closing(document);
  const std::string message = "user tried to close file, but has unsaved changes - " + Narrow(document->fullName());
  EXPECT_EQ(host_.Messages(), std::vector<std::string>{message});
  EXPECT_EQ(host_.LevelOf(message), "I");
  ASSERT_TRUE(TheFileStatusCache().Contains(document->fullName()));
  const FileStatusRecord record = host_.Record(document->fullName());
  EXPECT_EQ(record.isOpen, 1u);
  EXPECT_EQ(FindWindowState(document->fullName())->badgeWindow, badge_.get());
  EXPECT_TRUE(IsWindow(badge_.get()));
  EXPECT_TRUE(IsWindow(panel_.get()));
  EXPECT_TRUE(syncApp_.requests().empty());
}

TEST_P(FileClosing, TheAddinsOwnCloseForEachSyncActionDropsTheRecordAndItsWindows) {
  for (int flag = 0; flag < 3; ++flag) {
    SimDocument* document = OpenCachedWithWindows(flag == 0 ? L"retry" : flag == 1 ? L"conflict" : L"moved");
    const std::wstring path = document->fullName();
    host_.ChangeRecord(path, [&](FileStatusRecord& record) {
      record.choices.Set(UserChoice::retryModify, flag == 0);
      record.choices.Set(UserChoice::resolveConflict, flag == 1);
      record.choices.Set(UserChoice::retryRenameOrMove, flag == 2);
    });
    document->MarkEdited();
    const size_t requestsBefore = syncApp_.requests().size();
    Closing(document);
    EXPECT_EQ(host_.Messages(), (std::vector<std::string>{"we close this file to sync event - " + Narrow(path),
                                                           "file info removed from cache - " + Narrow(path)}))
        << flag;
    EXPECT_FALSE(TheFileStatusCache().Contains(path));
    EXPECT_FALSE(IsWindow(badge_.get()));
    EXPECT_FALSE(IsWindow(panel_.get()));
    const auto requests = syncApp_.requests();
    ASSERT_EQ(requests.size(), requestsBefore + 1);
    EXPECT_EQ(requests.back(), ClosedRequest(path, flag == 1, flag == 0, flag == 2));
  }
}

TEST_P(FileClosing, ACleanCloseLogsCloseFileAndTellsTheSyncAppTheFileIsNoLongerOpen) {
  SimDocument* document = OpenCachedWithWindows(L"clean");
  const std::wstring path = document->fullName();
  Closing(document);
  EXPECT_EQ(host_.Messages(), (std::vector<std::string>{"close file - " + Narrow(path),
                                                         "file info removed from cache - " + Narrow(path)}));
  EXPECT_EQ(host_.LevelOf("close file - " + Narrow(path)), "I");
  EXPECT_FALSE(TheFileStatusCache().Contains(path));
  EXPECT_FALSE(IsWindow(badge_.get()));
  EXPECT_FALSE(IsWindow(panel_.get()));
  EXPECT_EQ(syncApp_.requests(), std::vector<std::wstring>{ClosedRequest(path, false, false, false)});
}

TEST_P(FileClosing, ADocumentNotInTheCacheIsOnlyLoggedAtWarning) {
  SimDocument* document = host_.Open(L"unknown" + DocumentExtension(GetParam()));
  host_.ForgetAllRecords();
  host_.ClearLog();
  Closing(document);
  const std::string message = "close file - file info not available in cache - " + Narrow(document->fullName());
  EXPECT_EQ(host_.Messages(), std::vector<std::string>{message});
  EXPECT_EQ(host_.LevelOf(message), "W");
  EXPECT_TRUE(syncApp_.requests().empty());
}

TEST_P(FileClosing, TheAddinsCloseRunsTheHandlerInsideTheHostsClose) {
  SimDocument* keep = host_.Open(L"keep" + DocumentExtension(GetParam()));
  SimDocument* document = OpenCachedWithWindows(L"resync");
  const std::wstring path = document->fullName();
  host_.ChangeRecord(path, [](FileStatusRecord& record) { record.choices.Set(UserChoice::retryModify); });
  document->MarkEdited();
  CloseFile(ComPtr<IDispatch>(document), CloseMode::CloseWithoutSaving);
  // By the time CloseFile returns the host has closed it and the record is
  // gone. PowerPoint's presentation was marked saved before its Close, so
  // that no PowerPoint asks about the changes being let go.
  const std::string closeLine =
      (GetParam() == SimHost::PowerPoint ? "close file - " : "we close this file to sync event - ") + Narrow(path);
  EXPECT_EQ(host_.Messages(), (std::vector<std::string>{"going to close file", closeLine,
                                                         "file info removed from cache - " + Narrow(path)}));
  EXPECT_EQ(host_.app().FindDocument(path), nullptr);
  EXPECT_EQ(host_.CachedPaths(), std::vector<std::wstring>{keep->fullName()});
  EXPECT_FALSE(IsWindow(badge_.get()));
  EXPECT_EQ(syncApp_.requests(), std::vector<std::wstring>{ClosedRequest(path, false, true, false)});
}

INSTANTIATE_TEST_SUITE_P(EveryHost, FileClosing, testing::Values(SimHost::Word, SimHost::Excel, SimHost::PowerPoint),
                         HostParamName);
}  // namespace
