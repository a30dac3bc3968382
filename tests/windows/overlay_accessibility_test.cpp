// What a screen reader hears from the overlay: the badge in each kind, and
// every owner-drawn button, link and title of each panel, read as
// Narrator, NVDA or JAWS read them: AccessibleObjectFromWindow with
// OBJID_CLIENT. UI Automation reads the same answers through its MSAA
// proxy. No object handed out outlives its caller and its window.
#include <windows.h>
#include <oleacc.h>

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "common/bstr.h"
#include "common/com_ptr.h"
#include "common/text.h"
#include "common/unique_resource.h"
#include "overlay/decision/overlay_kind.h"
#include "overlay/windows/overlay_accessible.h"
#include "overlay/windows/overlay_window_states.h"
#include "overlay/windows/panels.h"
#include "overlay/windows/status_overlays.h"
#include "synclink/file_status_cache.h"
#include "tests/windows/overlay_test_support.h"

namespace {
constexpr long kSentinelRole = 0xdeadbeef;

// One window as a screen reader hears it.
struct Heard {
  std::wstring name = L"(sentinel)";
  long role = kSentinelRole;
  std::wstring defaultAction = L"(sentinel)";
};
bool operator==(const Heard& a, const Heard& b) {
  return a.name == b.name && a.role == b.role && a.defaultAction == b.defaultAction;
}
std::ostream& operator<<(std::ostream& out, const Heard& heard) {
  return out << "{\"" << Narrow(heard.name) << "\", role " << heard.role << ", \"" << Narrow(heard.defaultAction)
             << "\"}";
}

VARIANT Self() {
  VARIANT self;
  VariantInit(&self);
  self.vt = VT_I4;
  self.lVal = CHILDID_SELF;
  return self;
}

ComPtr<IAccessible> ObjectOf(HWND window) {
  ComPtr<IAccessible> object;
  EXPECT_EQ(AccessibleObjectFromWindow(window, static_cast<DWORD>(OBJID_CLIENT), IID_IAccessible, object.put_void()),
            S_OK);
  return object;
}

Heard Hear(HWND window) {
  Heard heard;
  const ComPtr<IAccessible> object = ObjectOf(window);
  if (!object) return heard;
  UniqueBstr name;
  if (object->get_accName(Self(), name.put()) == S_OK) heard.name = name.str();
  VARIANT role;
  VariantInit(&role);
  if (object->get_accRole(Self(), &role) == S_OK && role.vt == VT_I4) heard.role = role.lVal;
  VariantClear(&role);
  UniqueBstr action;
  heard.defaultAction = object->get_accDefaultAction(Self(), action.put()) == S_OK ? action.str() : L"(none)";
  return heard;
}

std::wstring ClassOf(HWND window) {
  wchar_t name[128] = {};
  GetClassNameW(window, name, 128);
  return name;
}

// The owner-drawn buttons and the links of a panel, at any depth, in
// creation order.
std::vector<HWND> ControlsWithOwnAnswers(HWND panel) {
  std::vector<HWND> found;
  EnumChildWindows(
      panel,
      [](HWND child, LPARAM list) {
        const std::wstring name = ClassOf(child);
        const LONG_PTR style = GetWindowLongPtrW(child, GWL_STYLE);
        const bool ownerDrawnButton = lstrcmpiW(name.c_str(), L"Button") == 0 && (style & BS_TYPEMASK) == BS_OWNERDRAW;
        const bool link = name.find(L"SysLink") != std::wstring::npos;
        if (ownerDrawnButton || link) reinterpret_cast<std::vector<HWND>*>(list)->push_back(child);
        return TRUE;
      },
      reinterpret_cast<LPARAM>(&found));
  return found;
}

const Heard Button(const wchar_t* caption) { return {caption, ROLE_SYSTEM_PUSHBUTTON, L"Press"}; }
const Heard Link(const wchar_t* text) { return {text, ROLE_SYSTEM_LINK, L"(none)"}; }

struct PanelCase {
  const char* name;
  std::function<HWND(HWND badge)> create;
  std::wstring title;
  std::vector<Heard> controls;
};

std::vector<PanelCase> Panels() {
  const MemberNames bo{{L"u1bo", L"Bo Chan"}};
  return {
      {"Conflict", [](HWND b) { return CreateConflictPanel(OfficeWindow(), b); }, L"File conflict occurred",
       {Button(L"Resolve conflict")}},
      {"Delete", [](HWND b) { return CreateDeletePanel(OfficeWindow(), b); }, L"This file has been deleted", {}},
      {"Rename",
       [](HWND b) { return CreateRenameMovePanel(OfficeWindow(), b, true, false, L"Old.docx", L"New.docx"); },
       L"This file has been renamed", {Button(L"Reload")}},
      {"MoveCloseFirst",
       [](HWND b) { return CreateRenameMovePanel(OfficeWindow(), b, false, true, L"C:\\a", L"C:\\b"); },
       L"This file has been moved to a new location", {}},
      {"Download",
       [](HWND b) { return CreateDownloadPanel(OfficeWindow(), b, L"", L"Bo Chan", L"2026-03-01 10:15", true, false); },
       L"This file has been modified", {Button(L"Download latest version")}},
      {"Downloading",
       [](HWND b) { return CreateDownloadPanel(OfficeWindow(), b, L"", L"Bo Chan", L"2026-03-01 10:15", false, true); },
       L"This file has been modified", {Button(L"Downloading...")}},
      {"SafeToEdit",
       [](HWND b) { return CreateSafeToEditPanel(OfficeWindow(), b, L"", L"Bo Chan", L"2026-03-01 10:15"); },
       L"No active collaborators", {Link(L"Learn More"), Button(L"Hide")}},
      {"Editing",
       [bo](HWND b) { return CreateActiveUsersPanel(OfficeWindow(), b, L"", L"", L"", bo, {}); },
       L"Another user is editing this file", {Link(L"Learn More"), Button(L"Hide")}},
      {"ErrorReadOnly", [](HWND b) { return CreateErrorMessagePanel(OfficeWindow(), b, true); },
       L"You can't make changes to this file, because the file has a read-only permission level.",
       {Link(L"Learn more")}},
      {"ConfirmConflictUnsaved",
       [](HWND b) { return CreateConfirmLeavePanel(OfficeWindow(), b, true, true, false, false, false); },
       L"Filewell Sync will close this file and open the Resolve Conflict window. Do you want to save your changes "
       L"before closing this file?",
       {Button(L"Save & Continue"), Button(L"Discard & Continue")}},
      {"ConfirmReload",
       [](HWND b) { return CreateConfirmLeavePanel(OfficeWindow(), b, false, false, true, false, false); },
       L"To load the latest version of this file, click \"Reload\".", {Button(L"Reload")}},
      {"ConfirmReloadUnsaved",
       [](HWND b) { return CreateConfirmLeavePanel(OfficeWindow(), b, true, false, true, false, false); },
       L"This file has unsaved changes. Do you want to save your changes as a separate copy before reloading this "
       L"file?",
       {Button(L"Save a copy & Reload"), Button(L"Discard & Reload")}},
  };
}

using UniqueOverlay = UniqueResource<OverlayWindowTraits>;

class ScreenReader : public testing::Test {
 protected:
  static void SetUpTestSuite() { SetUpOverlayStage(); }
  void SetUp() override {
    path_ = L"C:\\Sync\\Heard.docx";
    TheFileStatusCache().AddFile(path_, OfficeWindow(), 0, nullptr);
  }
  void TearDown() override {
    DropWindowState(path_);
    TheFileStatusCache().RemoveFile(path_);
    EXPECT_EQ(LiveOverlayAccessibleObjects(), 0);
  }

  // The file's badge shows `kind`: its window state says so, as the tick
  // leaves it.
  void Shows(HWND badge, OverlayKind kind) {
    const SharedWindowState state = WindowStateFor(path_, OfficeWindow());
    state->overlayKind = static_cast<std::int32_t>(kind);
    SetWindowLongPtrW(badge, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(state.get()));
  }

  std::wstring path_;
};
}  // namespace

TEST_F(ScreenReader, HearsTheBadgeSayWhatEachKindShows) {
  const UniqueOverlay badge(CreateMainOverlay(OfficeWindow(), 700, 500));
  ASSERT_TRUE(badge);
  const struct {
    OverlayKind kind;
    Heard heard;
  } expected[] = {
      {OverlayKind::SafeToEdit,
       {L"No other users are currently viewing or editing this file", ROLE_SYSTEM_PUSHBUTTON, L"(none)"}},
      {OverlayKind::Editing, {L"Another user is editing this file", ROLE_SYSTEM_PUSHBUTTON, L"(none)"}},
      {OverlayKind::DeletedOrMoved,
       {L"This file has been deleted, renamed or moved on the web", ROLE_SYSTEM_PUSHBUTTON, L"(none)"}},
      {OverlayKind::Conflict, {L"File conflict occurred", ROLE_SYSTEM_PUSHBUTTON, L"(none)"}},
      {OverlayKind::Download, {L"A newer version of this file is available", ROLE_SYSTEM_PUSHBUTTON, L"(none)"}},
      {OverlayKind::ViewingOnly, {L"Another user is viewing this file", ROLE_SYSTEM_PUSHBUTTON, L"(none)"}},
  };
  for (const auto& e : expected) {
    Shows(badge.get(), e.kind);
    EXPECT_EQ(Hear(badge.get()), e.heard) << e.kind;
  }
}

TEST_F(ScreenReader, HearsTheStripsAndTheLoadingTitle) {
  const UniqueOverlay loading(CreateLoadingOverlay(OfficeWindow(), nullptr, 700, 500));
  ASSERT_TRUE(loading);
  Shows(loading.get(), OverlayKind::Loading);
  EXPECT_EQ(Hear(loading.get()),
            (Heard{L"Filewell Sync is loading this file's status", ROLE_SYSTEM_STATICTEXT, L"(none)"}));
  // The drive picture shares the title's id: the title is found by its text.
  HWND title = FindWindowExW(loading.get(), nullptr, L"Static", L"Qelvo Filewell");
  ASSERT_NE(title, nullptr);
  EXPECT_EQ(Hear(title), (Heard{L"Qelvo Filewell", ROLE_SYSTEM_STATICTEXT, L"(none)"}));

  const UniqueOverlay offline(CreateNoInternetOverlay(OfficeWindow(), nullptr, 700, 500));
  ASSERT_TRUE(offline);
  Shows(offline.get(), OverlayKind::NoInternet);
  EXPECT_EQ(Hear(offline.get()), (Heard{L"No Internet Connection", ROLE_SYSTEM_STATICTEXT, L"(none)"}));
}

TEST_F(ScreenReader, HearsEachPanelByItsTitleAndEachButtonAndLinkByItsText) {
  const UniqueOverlay badge(CreateMainOverlay(OfficeWindow(), 900, 600));
  ASSERT_TRUE(badge);
  Shows(badge.get(), OverlayKind::Conflict);
  for (const PanelCase& c : Panels()) {
    SCOPED_TRACE(c.name);
    const UniqueOverlay panel(c.create(badge.get()));
    ASSERT_TRUE(panel);
    EXPECT_EQ(Hear(panel.get()), (Heard{c.title, ROLE_SYSTEM_DIALOG, L"(none)"}));
    std::vector<Heard> controls;
    for (HWND control : ControlsWithOwnAnswers(panel.get())) controls.push_back(Hear(control));
    EXPECT_EQ(controls, c.controls);
  }
}

TEST_F(ScreenReader, PressesAnOwnerDrawnButtonAsItsClickWould) {
  const UniqueOverlay badge(CreateMainOverlay(OfficeWindow(), 900, 600));
  ASSERT_TRUE(badge);
  Shows(badge.get(), OverlayKind::Conflict);
  // A panel of the test's own class, which records the clicks it hears.
  static std::vector<std::pair<WPARAM, LPARAM>> clicks;
  clicks.clear();
  WNDCLASSW windowClass{};
  windowClass.lpfnWndProc = [](HWND window, UINT message, WPARAM wParam, LPARAM lParam) -> LRESULT {
    if (message == WM_COMMAND) clicks.emplace_back(wParam, lParam);
    return DefWindowProcW(window, message, wParam, lParam);
  };
  windowClass.hInstance = GetModuleHandleW(nullptr);
  windowClass.lpszClassName = L"ScreenReaderClickRecorder";
  RegisterClassW(&windowClass);
  const UniqueOverlay parent(CreateWindowExW(0, L"ScreenReaderClickRecorder", L"", WS_POPUP, 0, 0, 200, 100, nullptr,
                                             nullptr, GetModuleHandleW(nullptr), nullptr));
  ASSERT_TRUE(parent);
  HWND button = CreateWindowExW(0, L"BUTTON", L"Resolve conflict", WS_CHILD | WS_VISIBLE | BS_OWNERDRAW, 0, 0, 100, 40,
                                parent.get(), reinterpret_cast<HMENU>(3006), GetModuleHandleW(nullptr), nullptr);
  ASSERT_NE(button, nullptr);
  ASSERT_TRUE(GiveAccessibleAnswer(button, AccessibleControl::OwnerDrawnButton));
  {
    const ComPtr<IAccessible> object = ObjectOf(button);
    ASSERT_TRUE(object);
    EXPECT_EQ(LiveOverlayAccessibleObjects(), 1);
    EXPECT_EQ(object->accDoDefaultAction(Self()), S_OK);
    EXPECT_TRUE(clicks.empty());  // posted: the screen reader's call returns first
  }
  PumpMessagesFor(50);
  ASSERT_EQ(clicks.size(), 1u);
  EXPECT_EQ(clicks[0].first, MAKEWPARAM(3006, BN_CLICKED));
  EXPECT_EQ(clicks[0].second, reinterpret_cast<LPARAM>(button));
}

TEST_F(ScreenReader, LeavesNoObjectOrHandleBehindOnceTheWindowsAreGone) {
  PumpMessagesFor(20);
  const DWORD gdiBefore = GetGuiResources(GetCurrentProcess(), GR_GDIOBJECTS);
  const DWORD userBefore = GetGuiResources(GetCurrentProcess(), GR_USEROBJECTS);
  ComPtr<IAccessible> kept;
  {
    const UniqueOverlay badge(CreateMainOverlay(OfficeWindow(), 900, 600));
    Shows(badge.get(), OverlayKind::Conflict);
    const UniqueOverlay panel(CreateConflictPanel(OfficeWindow(), badge.get()));
    ASSERT_TRUE(panel);
    for (int round = 0; round < 20; ++round) {
      Hear(badge.get());
      Hear(panel.get());
      Hear(GetDlgItem(panel.get(), 3006));
    }
    EXPECT_EQ(LiveOverlayAccessibleObjects(), 0);
    // A screen reader that keeps the button's object past the panel.
    kept = ObjectOf(GetDlgItem(panel.get(), 3006));
    EXPECT_EQ(LiveOverlayAccessibleObjects(), 1);
  }
  UniqueBstr name;
  EXPECT_EQ(kept->get_accName(Self(), name.put()), E_FAIL);  // its window is gone
  EXPECT_EQ(name.get(), nullptr);
  kept.reset();
  EXPECT_EQ(LiveOverlayAccessibleObjects(), 0);
  PumpMessagesFor(20);
  EXPECT_EQ(GetGuiResources(GetCurrentProcess(), GR_GDIOBJECTS), gdiBefore);
  EXPECT_EQ(GetGuiResources(GetCurrentProcess(), GR_USEROBJECTS), userBefore);
}
