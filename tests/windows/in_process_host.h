#pragma once
// Plays one Office host inside the test's own process: the simulated
// Application with a real main window, set up the way the add-in's
// connection leaves things (OfficeApp, the stored application reference,
// the immediate-update event, the log). Tests then call the add-in's
// routines directly, or let the simulated user fire events at the add-in's
// sinks, and read back the log, the cache and the host's own objects.
#include <windows.h>

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "common/host_application.h"
#include "common/office_app.h"
#include "common/unique_resource.h"
#include "common/unique_window.h"
#include "log/log_folder.h"
#include "synclink/file_status_cache.h"
#include "synclink/immediate_update_event.h"
#include "tests/windows/wine_test_support.h"
#include "tools/officesim/sim_application.h"
#include "tools/officesim/sim_document.h"

// A window the test owns: destroyed at the end unless something else did.
using UniqueWindowForTest = UniqueWindow;

inline HWND CreatePlainWindow() {
  return CreateWindowExW(0, L"STATIC", L"test window", WS_POPUP, 0, 0, 10, 10, nullptr, nullptr, nullptr, nullptr);
}

inline OfficeHost AddinHostOf(SimHost host) {
  switch (host) {
    case SimHost::Word: return OfficeHost::Word;
    case SimHost::Excel: return OfficeHost::Excel;
    case SimHost::PowerPoint: return OfficeHost::PowerPoint;
    default: return OfficeHost::None;
  }
}

inline std::string HostName(SimHost host) { return Narrow(OfficeRegistryName(host)); }

// For parameterised suites: the test name ends in the host's name.
inline std::string HostParamName(const testing::TestParamInfo<SimHost>& info) { return HostName(info.param); }

// The file extension a user of that host would have.
inline std::wstring DocumentExtension(SimHost host) {
  return host == SimHost::Excel ? L".xlsx" : host == SimHost::PowerPoint ? L".pptx" : L".docx";
}

class InProcessHost {
 public:
  explicit InProcessHost(SimHost host) : host_(host) {
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    mainWindow_ = CreateWindowExW(0, L"STATIC", L"simulated host", WS_OVERLAPPEDWINDOW, 0, 0, 400, 300, nullptr,
                                  nullptr, nullptr, nullptr);
    application_ = new SimApplication(host, mainWindow_);
    OfficeApp = AddinHostOf(host);
    HostApplication = ComPtr<IDispatch>(application_);
    // Unnamed: the test watches only its own settings of the event.
    ImmediateUpdateEvent.reset(CreateEventW(nullptr, TRUE, FALSE, nullptr));

    static int instance = 0;
    wchar_t temp[MAX_PATH];
    const DWORD length = GetTempPathW(MAX_PATH, temp);
    folder_ = std::wstring(temp, length) + L"qsync-docs-" + std::to_wstring(GetCurrentProcessId()) + L"-" +
              std::to_wstring(++instance);
    CreateDirectoryW(folder_.c_str(), nullptr);

    CreateDirectoryW((AppDataFolder() + L"\\QelvoFilewell").c_str(), nullptr);
    CreateDirectoryW(LogFolder().c_str(), nullptr);
    ClearLog();
  }

  ~InProcessHost() {
    ForgetAllRecords();
    HostApplication.reset();
    OfficeApp = OfficeHost::None;
    ImmediateUpdateEvent.reset();
    application_->ReleaseDocumentsAtExit();
    application_->Release();
    DestroyWindow(mainWindow_);
    RemoveFolder();
    InitLogFolder();  // lets go of the log file
    CoUninitialize();
  }

  InProcessHost(const InProcessHost&) = delete;
  InProcessHost& operator=(const InProcessHost&) = delete;

  SimHost host() const { return host_; }
  SimApplication& app() { return *application_; }
  HWND mainWindow() const { return mainWindow_; }
  const std::wstring& folder() const { return folder_; }

  // A file of that name in the test's folder; its full path.
  std::wstring CreateFileNamed(const std::wstring& name) {
    const std::wstring path = folder_ + L"\\" + name;
    HANDLE file = CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    DWORD written = 0;
    WriteFile(file, "content\n", 8, &written, nullptr);
    CloseHandle(file);
    return path;
  }
  // The simulated user opens a saved file (open and activate events fire
  // at whatever sinks are advised).
  SimDocument* Open(const std::wstring& name) { return application_->OpenDocument(CreateFileNamed(name), false); }
  // The same file opened under a path as the user typed it.
  SimDocument* OpenPath(const std::wstring& path) { return application_->OpenDocument(path, false); }

  bool EventIsSet() const { return WaitForSingleObject(ImmediateUpdateEvent.get(), 0) == WAIT_OBJECT_0; }
  void ResetEvent() const { ::ResetEvent(ImmediateUpdateEvent.get()); }

  // Starts the log afresh: a new log object (its file not yet open) and no file.
  static void ClearLog() {
    InitLogFolder();
    DeleteLogFiles();
  }
  static std::vector<LogLine> Log() { return ReadLog(LogFilePath()); }
  static std::vector<std::string> Messages() {
    std::vector<std::string> messages;
    for (const LogLine& line : Log()) messages.push_back(line.message);
    return messages;
  }
  // The level letter of the first line with exactly this message, or "".
  static std::string LevelOf(const std::string& message) {
    for (const LogLine& line : Log()) {
      if (line.message == message) return line.level;
    }
    return "";
  }

  static std::vector<std::wstring> CachedPaths() {
    return TheFileStatusCache().Paths();
  }
  // A copy of the cached record (throws when there is none).
  static FileStatusRecord Record(const std::wstring& path) { return TheFileStatusCache().Find(path).value(); }
  static void ChangeRecord(const std::wstring& path, const std::function<void(FileStatusRecord&)>& change) {
    ASSERT_TRUE(TheFileStatusCache().Change(path, change));
  }

  static void ForgetAllRecords() {
    for (const std::wstring& path : CachedPaths()) TheFileStatusCache().RemoveFile(path);
  }

 private:
  void RemoveFolder() {
    WIN32_FIND_DATAW found;
    HANDLE search = FindFirstFileW((folder_ + L"\\*").c_str(), &found);
    if (search != INVALID_HANDLE_VALUE) {
      do {
        const std::wstring name = found.cFileName;
        if (name != L"." && name != L"..") DeleteFileW((folder_ + L"\\" + name).c_str());
      } while (FindNextFileW(search, &found));
      FindClose(search);
    }
    RemoveDirectoryW(folder_.c_str());
  }

  SimHost host_;
  HWND mainWindow_ = nullptr;
  SimApplication* application_ = nullptr;
  std::wstring folder_;
};
