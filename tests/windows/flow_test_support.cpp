#include "tests/windows/flow_test_support.h"

#include <algorithm>
#include <cstdio>

#include "addin/document_handlers.h"
#include "common/module_instance.h"
#include "common/text.h"
#include "log/thread_names.h"
#include "overlay/tick/custom_ui_updater.h"
#include "overlay/windows/overlay_window_states.h"
#include "overlay/windows/overlay_windows.h"
#include "overlay/windows/ui_toolkit.h"
#include "overlay/windows/window_class_names.h"
#include "overlay/windows/window_classes.h"
#include "synclink/update_cycle.h"

namespace {
// GDI+, the common controls and the eight classes, once per process as the
// first connection of the add-in sets them up; they stay for the process.
void SetUpOverlayOnce() {
  static bool done = false;
  if (done) return;
  done = true;
  InitUiToolkit();
  for (const OverlayWindowClass& windowClass : kOverlayWindowClasses) {
    RegisterOverlayWindowClass(ModuleInstance(), windowClass.name);
  }
}

std::wstring Flag(bool value) { return value ? L"true" : L"false"; }
}  // namespace

std::wstring ExpectedRequest(const std::wstring& path, const RequestFields& fields, SimHost host) {
  std::wstring text = L"{\"files\":[{\"filepath\":\"" + path + L"\",\"isOpen\":" + Flag(fields.isOpen) +
                      L",\"isEditing\":" + Flag(fields.isEditing) + L",\"resolveConflict\":" +
                      Flag(fields.resolveConflict) + L",\"retryModify\":" + Flag(fields.retryModify) +
                      L",\"retryRenameOrMove\":" + Flag(fields.retryRenameOrMove) + L",\"retryDelete\":false,";
  if (fields.withUiHide) text += L"\"uiHide\":" + Flag(fields.uiHide) + L",";
  text += std::wstring(L"\"file_combo_id\":\"") + fields.fileComboId + L"\",\"officeApp\":\"" +
          std::to_wstring(static_cast<int>(AddinHostOf(host))) + L"\"}]}";
  return text;
}

std::string MessageBytes(const std::wstring& text) {
  std::string bytes;
  for (wchar_t unit : text) {
    bytes += static_cast<char>(unit & 0xFF);
    bytes += static_cast<char>((unit >> 8) & 0xFF);
  }
  bytes += std::string(2, '\0');
  return bytes;
}

std::wstring SyncedFileScenario(const std::wstring& path) {
  return L"file " + path +
         L"\n"
         L"set is_sync_file=true\n"
         L"set file_combo_id=" +
         kFileComboId +
         L"\n"
         L"set is_internet_connected=true\n"
         L"set is_loading_data_from_server=false\n"
         L"set is_download_present=Already Up-to-date\n"
         L"set last_modified_by_quid=u1bo\n"
         L"set last_modified_by=Bo Chan\n"
         L"set last_modified_time=2026-11-23 09:41\n";
}

std::wstring WindowTextOf(HWND window) {
  wchar_t text[1024] = {};
  const int length = GetWindowTextW(window, text, static_cast<int>(std::size(text)));
  return std::wstring(text, length > 0 ? length : 0);
}

std::vector<PanelChild> PanelChildrenOf(HWND panel) {
  std::vector<PanelChild> children;
  for (HWND child = GetWindow(panel, GW_CHILD); child != nullptr; child = GetWindow(child, GW_HWNDNEXT)) {
    PanelChild found;
    found.window = child;
    wchar_t className[256] = {};
    GetClassNameW(child, className, static_cast<int>(std::size(className)));
    found.className = className;
    found.text = WindowTextOf(child);
    found.id = static_cast<ControlId>(GetDlgCtrlID(child));
    found.style = static_cast<DWORD>(GetWindowLongPtrW(child, GWL_STYLE));
    GetWindowRect(child, &found.rect);
    MapWindowPoints(nullptr, panel, reinterpret_cast<POINT*>(&found.rect), 2);
    children.push_back(found);
  }
  // A new child goes below its elder siblings: the z-order is the order of
  // creation, as a dialog's tab order is.
  return children;
}

std::string DescribePanel(HWND panel) {
  if (panel == nullptr) return "no panel";
  if (!IsWindow(panel)) return "a destroyed panel";
  const SIZE size = WindowSizeOf(panel);
  std::string text = std::to_string(size.cx) + " x " + std::to_string(size.cy) +
                     (IsWindowVisible(panel) ? ", shown:" : ", hidden:");
  for (const PanelChild& child : PanelChildrenOf(panel)) {
    text += "\n  " + ToUtf8(child.className) + " " + std::to_string(static_cast<int>(child.id)) + " \"" +
            ToUtf8(child.text) + "\"";
  }
  return text;
}

SIZE WindowSizeOf(HWND window) {
  RECT rect{};
  GetWindowRect(window, &rect);
  return {rect.right - rect.left, rect.bottom - rect.top};
}

std::vector<ControlId> ButtonIdsOf(HWND panel) {
  std::vector<ControlId> ids;
  for (const PanelChild& child : PanelChildrenOf(panel)) {
    if (lstrcmpiW(child.className.c_str(), L"Button") == 0) ids.push_back(child.id);
  }
  return ids;
}

HWND ChildOfClass(HWND panel, const wchar_t* classSuffix) {
  const std::wstring suffix = classSuffix;
  for (const PanelChild& child : PanelChildrenOf(panel)) {
    if (child.className.size() < suffix.size()) continue;
    const std::wstring end = child.className.substr(child.className.size() - suffix.size());
    if (lstrcmpiW(end.c_str(), suffix.c_str()) == 0) return child.window;
  }
  return nullptr;
}

std::string CopyStampNow() {
  SYSTEMTIME now;
  GetLocalTime(&now);
  char text[32];
  std::snprintf(text, sizeof(text), "%04u-%02u-%02u %02u.%02u.%02u.%03u", now.wYear, now.wMonth, now.wDay, now.wHour,
                now.wMinute, now.wSecond, now.wMilliseconds);
  return text;
}

std::vector<std::wstring> FilesIn(const std::wstring& folder) {
  std::vector<std::wstring> names;
  WIN32_FIND_DATAW found;
  HANDLE search = FindFirstFileW((folder + L"\\*").c_str(), &found);
  if (search == INVALID_HANDLE_VALUE) return names;
  do {
    const std::wstring name = found.cFileName;
    if (name != L"." && name != L"..") names.push_back(name);
  } while (FindNextFileW(search, &found));
  FindClose(search);
  std::sort(names.begin(), names.end());
  return names;
}

OfficeFlow::OfficeFlow(SimHost host) : host_(host) {
  NameThread(GetCurrentThreadId(), L"MainThread");
  SetUpOverlayOnce();
  // Office's window, in front and large enough that every panel opens
  // above its badge.
  MoveWindow(host_.mainWindow(), 100, 50, 900, 700, TRUE);
  ShowWindow(host_.mainWindow(), SW_SHOW);
  UpdateWindow(host_.mainWindow());
  EXPECT_EQ(sinks_.Subscribe(AddinHostOf(host), &host_.app()), S_OK);
  TheFileStatusCache().syncAppHasData = true;
  // The sync app keeps the avatar of everyone it names, in a file named by
  // the person's id less its first two characters: Bo Chan's (u1bo) is "bo".
  const std::wstring roaming = AppDataFolder() + L"\\QelvoFilewell";
  CreateDirectoryW((roaming + L"\\avatar").c_str(), nullptr);
  CopyFileW((roaming + L"\\bin\\images\\user-thumbnail.png").c_str(), (roaming + L"\\avatar\\bo").c_str(), FALSE);
  scenarioFile_ = FreshTempPath(L"flow-scenario.txt");
  recordFile_ = FreshTempPath(L"flow-requests.txt");
  recordRawFile_ = FreshTempPath(L"flow-requests.bin");
  ClearLog();
}

OfficeFlow::~OfficeFlow() {
  // Whatever a failed test left on screen goes before the host does.
  DropAllWindowStates();
  sinks_.Unsubscribe(AddinHostOf(host_.host()), &host_.app());
  syncApp_.Stop();
}

testing::AssertionResult OfficeFlow::StartSyncApp(const std::wstring& scenario) {
  syncApp_.Stop();
  WriteUtf8File(scenarioFile_, scenario);
  DeleteFileW(recordFile_.c_str());
  DeleteFileW(recordRawFile_.c_str());
  return syncApp_.Start(L"--scenario " + Quoted(scenarioFile_) + L" --record " + Quoted(recordFile_) +
                        L" --record-raw " + Quoted(recordRawFile_) + L" --run-ms 600000");
}

SimDocument* OfficeFlow::Open(const std::wstring& name, bool readOnly) {
  return host_.app().OpenDocument(host_.CreateFileNamed(name), readOnly);
}

void OfficeFlow::Cycle() { RunUpdateCycle(ExchangeBounds{kUpdateExchangeLimitMs, nullptr}); }

void OfficeFlow::Tick() {
  UpdateCustomUI(RecordDocument);
  Pump();
}

void OfficeFlow::Pump() {
  MSG message;
  while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
    TranslateMessage(&message);
    DispatchMessageW(&message);
  }
}

HWND OfficeFlow::PanelOf(const std::wstring& path) {
  const SharedWindowState state = FindWindowState(path);
  return state ? state->subOverlayWindow : nullptr;
}

HWND OfficeFlow::BadgeOf(const std::wstring& path) {
  const SharedWindowState state = FindWindowState(path);
  return state ? state->badgeWindow : nullptr;
}

void OfficeFlow::Press(HWND panel, ControlId control, Caller caller) {
  const int id = static_cast<int>(control);
  TRACE_CALLER(caller);
  ASSERT_NE(panel, nullptr) << "no panel to press " << id << " on";
  ASSERT_TRUE(IsWindowVisible(panel)) << "the panel with " << id << " is not on screen: " << DescribePanel(panel);
  HWND button = GetDlgItem(panel, id);
  ASSERT_NE(button, nullptr) << "the panel has no control " << id << ": " << DescribePanel(panel);
  SendMessageW(button, BM_CLICK, 0, 0);
  Pump();
}

void OfficeFlow::Click(HWND panel, ControlId control, Caller caller) {
  const int id = static_cast<int>(control);
  TRACE_CALLER(caller);
  ASSERT_NE(panel, nullptr) << "no panel to click " << id << " on";
  ASSERT_TRUE(IsWindowVisible(panel)) << "the panel with " << id << " is not on screen: " << DescribePanel(panel);
  HWND button = GetDlgItem(panel, id);
  ASSERT_NE(button, nullptr) << "the panel has no control " << id << ": " << DescribePanel(panel);
  SendMessageW(panel, WM_COMMAND, MAKEWPARAM(id, BN_CLICKED), reinterpret_cast<LPARAM>(button));
  Pump();
}

void OfficeFlow::Check(HWND panel, ControlId control, Caller caller) {
  const int id = static_cast<int>(control);
  TRACE_CALLER(caller);
  ASSERT_NE(panel, nullptr);
  HWND box = GetDlgItem(panel, id);
  ASSERT_NE(box, nullptr) << "the panel has no control " << id;
  SendMessageW(box, BM_SETCHECK, BST_CHECKED, 0);
}

std::vector<std::wstring> OfficeFlow::Requests() const {
  std::vector<std::wstring> requests;
  for (const std::string& line : ReadLines(recordFile_)) requests.push_back(FromUtf8(line));
  return requests;
}

std::vector<std::string> OfficeFlow::RawRequests() const {
  // Each request ends in its NUL unit.
  const std::string bytes = ReadFileBytes(recordRawFile_);
  std::vector<std::string> requests;
  size_t start = 0;
  for (size_t i = 0; i + 1 < bytes.size(); i += 2) {
    if (bytes[i] != '\0' || bytes[i + 1] != '\0') continue;
    requests.push_back(bytes.substr(start, i + 2 - start));
    start = i + 2;
  }
  if (start < bytes.size()) requests.push_back(bytes.substr(start));
  return requests;
}
