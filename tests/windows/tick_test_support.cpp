#include "tests/windows/tick_test_support.h"

#include <algorithm>

#include "addin/document_handlers.h"
#include "common/module_instance.h"
#include "overlay/tick/custom_ui_updater.h"
#include "overlay/windows/overlay_window_states.h"
#include "overlay/windows/overlay_windows.h"
#include "overlay/windows/ui_toolkit.h"
#include "overlay/windows/window_class_names.h"
#include "overlay/windows/window_classes.h"

void StartOverlayUiOnce() {
  static bool started = false;
  if (started) return;
  started = true;
  InitUiToolkit();
  for (const OverlayWindowClass& windowClass : kOverlayWindowClasses) {
    RegisterOverlayWindowClass(ModuleInstance(), windowClass.name);
  }
}

void PlaceWindow(HWND window, const RECT& rect) {
  SetWindowPos(window, HWND_TOP, rect.left, rect.top, rect.right - rect.left, rect.bottom - rect.top,
               SWP_SHOWWINDOW | SWP_NOACTIVATE);
}

void Tick() { UpdateCustomUI(RecordDocument); }

void Ticks(int count) {
  for (int i = 0; i < count; ++i) Tick();
}

void PumpMessages() {
  MSG message;
  while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
    TranslateMessage(&message);
    DispatchMessageW(&message);
  }
}

AnswerFields QuietAnswer() {
  AnswerFields answer;
  answer.is_sync_file = 1;
  answer.file_combo_id = L"f-1001";
  answer.is_internet_connected = 1;
  answer.is_loading_data_from_server = 0;
  answer.is_download_present = L"Already Up-to-date";
  return answer;
}

void AddViewers(AnswerFields& answer, const std::wstring& quids, const std::wstring& names) {
  answer.all_viewers_quid = quids;
  answer.all_viewers_names = names;
}

void AddEditors(AnswerFields& answer, const std::wstring& quids, const std::wstring& names) {
  answer.all_editors_quid = quids;
  answer.all_editors_names = names;
}

void Answer(const std::wstring& path, const AnswerFields& answer) {
  AnswerFields named = answer;
  named.file_path = path;
  TheFileStatusCache().UpdateFile(path, named);
}

std::wstring ClassNameOf(HWND window) {
  wchar_t name[256] = {};
  GetClassNameW(window, name, 256);
  return name;
}

HWND OwnerOf(HWND window) { return GetWindow(window, GW_OWNER); }

namespace {
BOOL CALLBACK CollectChild(HWND child, LPARAM list) {
  reinterpret_cast<std::vector<HWND>*>(list)->push_back(child);
  return TRUE;
}
std::vector<HWND> Descendants(HWND window) {
  std::vector<HWND> children;
  if (window != nullptr) EnumChildWindows(window, CollectChild, reinterpret_cast<LPARAM>(&children));
  return children;
}
}  // namespace

std::vector<std::wstring> ChildTexts(HWND window) {
  std::vector<std::wstring> texts;
  for (HWND child : Descendants(window)) {
    wchar_t text[1024] = {};
    GetWindowTextW(child, text, 1024);
    texts.emplace_back(text);
  }
  return texts;
}

bool HasChildText(HWND window, const std::wstring& text) {
  const std::vector<std::wstring> texts = ChildTexts(window);
  return std::find(texts.begin(), texts.end(), text) != texts.end();
}

HWND ChildWithId(HWND window, ControlId id) {
  for (HWND child : Descendants(window)) {
    if (GetDlgCtrlID(child) == static_cast<int>(id)) return child;
  }
  return nullptr;
}

std::vector<std::string> InfoMessages() {
  std::vector<std::string> messages;
  for (const LogLine& line : InProcessHost::Log()) {
    if (line.level == "I") messages.push_back(line.message);
  }
  return messages;
}

size_t CountOf(const std::vector<std::string>& messages, const std::string& message) {
  return static_cast<size_t>(std::count(messages.begin(), messages.end(), message));
}

testing::AssertionResult RectIs(const RECT& actual, long left, long top, long right, long bottom) {
  if (actual.left == left && actual.top == top && actual.right == right && actual.bottom == bottom) {
    return testing::AssertionSuccess();
  }
  return testing::AssertionFailure() << "rectangle (" << actual.left << ", " << actual.top << ", " << actual.right
                                     << ", " << actual.bottom << "), expected (" << left << ", " << top << ", "
                                     << right << ", " << bottom << ")";
}

OverlayHost::OverlayHost(SimHost host, const RECT& office) : InProcessHost(host) {
  StartOverlayUiOnce();
  PlaceWindow(mainWindow(), office);
  TheFileStatusCache().syncAppHasData = true;
}

OverlayHost::~OverlayHost() {
  // Every file's windows and overlay state go before the records do: the
  // next test may open a file of the same name.
  DropAllWindowStates();
  TheFileStatusCache().syncAppHasData = true;
  PumpMessages();
}

SimDocument* OverlayHost::OpenRecorded(const std::wstring& baseName) {
  SimDocument* document = Open(baseName + DocumentExtension(host()));
  if (document != nullptr) RecordDocument(ComPtr<IDispatch>(document));
  return document;
}

SimDocument* OverlayHost::OpenAnswered(const std::wstring& baseName, const AnswerFields& answer) {
  SimDocument* document = OpenRecorded(baseName);
  if (document != nullptr) Answer(document->fullName(), answer);
  return document;
}

OverlayWindowState WindowsOf(const std::wstring& path) {
  const SharedWindowState state = FindWindowState(path);
  return state ? *state : OverlayWindowState{};
}

HWND BadgeOf(const std::wstring& path) { return WindowsOf(path).badgeWindow; }

HWND PanelOf(const std::wstring& path) { return WindowsOf(path).subOverlayWindow; }

int KindOf(const std::wstring& path) {
  if (!TheFileStatusCache().Contains(path)) return -1;
  return WindowsOf(path).overlayKind;
}

void ExpectBadgeAndPanel(const std::wstring& path, int kind, const std::wstring& panelText, bool panelVisible,
                         POINT at, Caller caller) {
  TRACE_CALLER(caller);
  ASSERT_TRUE(TheFileStatusCache().Contains(path)) << Narrow(path);
  const OverlayWindowState windows = WindowsOf(path);
  EXPECT_EQ(windows.overlayKind, kind);
  ASSERT_NE(windows.badgeWindow, nullptr);
  EXPECT_EQ(ClassNameOf(windows.badgeWindow), L"QelvoFilewellSync-MSOfficeAddin-MainUI");
  EXPECT_TRUE(IsWindowVisible(windows.badgeWindow));
  EXPECT_TRUE(RectIs(WindowRectOf(windows.badgeWindow), at.x, at.y, at.x + kBadgeSize, at.y + kBadgeSize));
  EXPECT_EQ(windows.posX, at.x);
  EXPECT_EQ(windows.posY, at.y);
  ASSERT_NE(windows.subOverlayWindow, nullptr);
  EXPECT_EQ(OwnerOf(windows.subOverlayWindow), windows.badgeWindow);
  EXPECT_TRUE(HasChildText(windows.subOverlayWindow, panelText)) << Narrow(panelText);
  EXPECT_EQ(IsWindowVisible(windows.subOverlayWindow) != FALSE, panelVisible);
}

void ExpectNothingShown(const std::wstring& path, Caller caller) {
  TRACE_CALLER(caller);
  ASSERT_TRUE(TheFileStatusCache().Contains(path)) << Narrow(path);
  const OverlayWindowState windows = WindowsOf(path);
  EXPECT_EQ(windows.overlayKind, 0);
  EXPECT_EQ(windows.badgeWindow, nullptr);
  EXPECT_EQ(windows.subOverlayWindow, nullptr);
}
