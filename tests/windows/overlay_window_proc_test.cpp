// The overlay's window procedure with real mouse and command messages sent
// to a badge and panel that a tick built inside the simulated Word: clicks
// open and close the panel against the badge, drags move the badge within
// the Office window, "Hide" takes both windows away and tells the sync app,
// and a window destroyed from outside is forgotten by its record at once.
#include <gtest/gtest.h>

#include "synclink/record_lock.h"
#include "synclink/sync_app_pipe.h"
#include "tests/windows/sync_sim_process.h"
#include "tests/windows/tick_test_support.h"

namespace {
// The mouse as Windows reports it to the badge: client coordinates, which
// for the borderless badge are offsets from its top-left corner.
LPARAM At(int x, int y) { return MAKELPARAM(static_cast<WORD>(x), static_cast<WORD>(y)); }
void Press(HWND badge, int x, int y) { SendMessageW(badge, WM_LBUTTONDOWN, MK_LBUTTON, At(x, y)); }
void MoveTo(HWND badge, int x, int y) { SendMessageW(badge, WM_MOUSEMOVE, MK_LBUTTON, At(x, y)); }
void Release(HWND badge, int x, int y) { SendMessageW(badge, WM_LBUTTONUP, 0, At(x, y)); }
void Click(HWND badge) {
  Press(badge, 35, 35);
  Release(badge, 35, 35);
}
// Drags the badge by its middle until its top-left corner would be at
// (left, top) on the screen.
void DragTo(HWND badge, int left, int top) {
  const RECT now = WindowRectOf(badge);
  Press(badge, 35, 35);
  MoveTo(badge, left - now.left + 35, top - now.top + 35);
  Release(badge, left - now.left + 35, top - now.top + 35);
}

// The active users panel for one viewer and no last modifier.
constexpr int kPanelWidth = 400;
constexpr int kPanelHeight = 250;

class OverlayWindowProc : public testing::Test {
 protected:
  void SetUp() override {
    AnswerFields answer = QuietAnswer();
    AddViewers(answer, L"u-ann", L"Ann Lee");
    path_ = host_.OpenAnswered(L"viewed", answer)->fullName();
    Tick();
    badge_ = BadgeOf(path_);
    panel_ = PanelOf(path_);
    ASSERT_NE(badge_, nullptr);
    ASSERT_NE(panel_, nullptr);
    ASSERT_TRUE(IsWindowVisible(panel_));
    host_.ClearLog();
  }

  OverlayHost host_{SimHost::Word};
  std::wstring path_;
  HWND badge_ = nullptr;
  HWND panel_ = nullptr;
};

TEST_F(OverlayWindowProc, AClickShowsTheClosedPanelAboveTheBadgeWithRightEdgesAligned) {
  ShowWindow(panel_, SW_HIDE);
  MoveWindow(panel_, 10, 10, kPanelWidth, kPanelHeight, TRUE);
  Click(badge_);
  EXPECT_TRUE(IsWindowVisible(panel_));
  EXPECT_TRUE(RectIs(WindowRectOf(panel_), 870 - kPanelWidth, 650 - kPanelHeight, 870, 650));
  EXPECT_EQ(PanelOf(path_), panel_);
}

TEST_F(OverlayWindowProc, TheNextClickHidesThePanelAndTheOneAfterPlacesItAgain) {
  Click(badge_);
  EXPECT_FALSE(IsWindowVisible(panel_));
  DragTo(badge_, 600, 500);
  Click(badge_);
  EXPECT_TRUE(IsWindowVisible(panel_));
  EXPECT_TRUE(RectIs(WindowRectOf(panel_), 670 - kPanelWidth, 500 - kPanelHeight, 670, 500));
}

TEST_F(OverlayWindowProc, ABadgeNearTheTopOfTheOfficeWindowOpensItsPanelBelow) {
  Click(badge_);
  DragTo(badge_, 800, 60);
  Click(badge_);
  EXPECT_TRUE(RectIs(WindowRectOf(panel_), 870 - kPanelWidth, 130, 870, 130 + kPanelHeight));
}

TEST_F(OverlayWindowProc, ABadgeNearTheLeftOfTheOfficeWindowAlignsThePanelsLeftEdgeWithIt) {
  Click(badge_);
  DragTo(badge_, 120, 500);
  Click(badge_);
  EXPECT_TRUE(RectIs(WindowRectOf(panel_), 120, 500 - kPanelHeight, 120 + kPanelWidth, 500));
}

TEST_F(OverlayWindowProc, ADragCentresTheBadgeOnTheCursorAndStoresItsPosition) {
  Press(badge_, 35, 35);
  MoveTo(badge_, 10, 20);
  // The cursor is at (810, 670) on the screen; the badge's middle goes there.
  EXPECT_TRUE(RectIs(WindowRectOf(badge_), 775, 635, 845, 705));
  const OverlayWindowState record = WindowsOf(path_);
  EXPECT_EQ(record.posX, 775);
  EXPECT_EQ(record.posY, 635);
  EXPECT_EQ(record.buttonDown, 1u);
  EXPECT_EQ(record.dragged, 1u);
}

TEST_F(OverlayWindowProc, ADragThatWouldCrossAnEdgeOfTheOfficeWindowDoesNotMoveTheBadgeAtAll) {
  // Corners that would put the badge one pixel over each edge in turn, or
  // exactly on it (the inside test is strict).
  const POINT beyond[] = {{100, 300}, {99, 300}, {1100 - kBadgeSize, 300}, {500, 50}, {500, 750 - kBadgeSize}};
  for (const POINT& corner : beyond) {
    Press(badge_, 35, 35);
    MoveTo(badge_, corner.x - 800 + 35, corner.y - 650 + 35);
    EXPECT_TRUE(RectIs(WindowRectOf(badge_), 800, 650, 870, 720)) << corner.x << ", " << corner.y;
    EXPECT_EQ(WindowsOf(path_).posX, 800);
    EXPECT_EQ(WindowsOf(path_).posY, 650);
    Release(badge_, 0, 0);
  }
}

// The badge's own state is found through the window: dragging it never
// waits on the cache, whatever the number of open documents.
TEST_F(OverlayWindowProc, PressingDraggingAndReleasingTheBadgeNeverTakesTheCacheLock) {
  const std::uint64_t before = RecordLock::Acquisitions();
  Press(badge_, 35, 35);
  MoveTo(badge_, 10, 20);
  MoveTo(badge_, 12, 22);
  Release(badge_, 12, 22);
  EXPECT_EQ(RecordLock::Acquisitions() - before, 0u);
  // The second move is in the moved badge's own coordinates: the cursor at
  // (787, 657) on the screen.
  EXPECT_TRUE(RectIs(WindowRectOf(badge_), 752, 622, 822, 692));
  EXPECT_EQ(WindowsOf(path_).posX, 752);
}

TEST_F(OverlayWindowProc, ADragEndsWithoutTogglingThePanel) {
  DragTo(badge_, 700, 600);
  EXPECT_TRUE(IsWindowVisible(panel_));
  ShowWindow(panel_, SW_HIDE);
  DragTo(badge_, 600, 600);
  EXPECT_FALSE(IsWindowVisible(panel_));
  const OverlayWindowState record = WindowsOf(path_);
  EXPECT_EQ(record.buttonDown, 0u);
  EXPECT_EQ(record.dragged, 0u);
  EXPECT_EQ(record.posX, 600);
}

TEST_F(OverlayWindowProc, AMoveWithoutAPressDoesNotDrag) {
  MoveTo(badge_, 10, 20);
  EXPECT_TRUE(RectIs(WindowRectOf(badge_), 800, 650, 870, 720));
  EXPECT_EQ(WindowsOf(path_).dragged, 0u);
}

TEST_F(OverlayWindowProc, APressCapturesTheMouseAndTheReleaseLetsItGo) {
  Press(badge_, 35, 35);
  EXPECT_EQ(GetCapture(), badge_);
  const OverlayWindowState pressed = WindowsOf(path_);
  EXPECT_EQ(pressed.pressX, 835);
  EXPECT_EQ(pressed.pressY, 685);
  Release(badge_, 35, 35);
  EXPECT_EQ(GetCapture(), nullptr);
}

// A drag starts only once the cursor leaves the system's drag rectangle
// around the press point; a hand that shakes by a pixel still clicks.
TEST_F(OverlayWindowProc, AMoveInsideTheDragRectangleLeavesTheBadgeAndTheReleaseIsAClick) {
  const int cx = GetSystemMetrics(SM_CXDRAG);
  const int cy = GetSystemMetrics(SM_CYDRAG);
  ASSERT_GT(cx, 0);
  ASSERT_GT(cy, 0);
  Press(badge_, 35, 35);
  MoveTo(badge_, 36, 35);
  MoveTo(badge_, 35 + cx, 35 - cy);
  EXPECT_TRUE(RectIs(WindowRectOf(badge_), 800, 650, 870, 720));
  EXPECT_EQ(WindowsOf(path_).dragged, 0u);
  Release(badge_, 35 + cx, 35 - cy);
  EXPECT_FALSE(IsWindowVisible(panel_));  // the click closed the open panel
  EXPECT_EQ(WindowsOf(path_).buttonDown, 0u);
  EXPECT_EQ(GetCapture(), nullptr);
}

TEST_F(OverlayWindowProc, AMoveOnePixelBeyondTheDragRectangleStartsTheDrag) {
  const int cx = GetSystemMetrics(SM_CXDRAG);
  Press(badge_, 35, 35);
  MoveTo(badge_, 35 + cx + 1, 35);
  EXPECT_TRUE(RectIs(WindowRectOf(badge_), 801 + cx, 650, 871 + cx, 720));
  EXPECT_EQ(WindowsOf(path_).dragged, 1u);
  Release(badge_, 35, 35);
  EXPECT_TRUE(IsWindowVisible(panel_));  // a drag, not a click
}

TEST_F(OverlayWindowProc, ALostCaptureEndsTheDrag) {
  UniqueWindowForTest dialog(CreatePlainWindow());
  Press(badge_, 35, 35);
  MoveTo(badge_, 10, 20);
  ASSERT_TRUE(RectIs(WindowRectOf(badge_), 775, 635, 845, 705));
  // An Office dialog takes the mouse; the badge hears of it and is let go.
  SetCapture(dialog.get());
  OverlayWindowState record = WindowsOf(path_);
  EXPECT_EQ(record.buttonDown, 0u);
  EXPECT_EQ(record.dragged, 0u);
  // Later the cursor passes over the badge, even with the button held:
  // it stays where it is.
  MoveTo(badge_, 60, 60);
  EXPECT_TRUE(RectIs(WindowRectOf(badge_), 775, 635, 845, 705));
  ReleaseCapture();
}

TEST_F(OverlayWindowProc, AMoveWithoutTheLeftButtonEndsTheDrag) {
  Press(badge_, 35, 35);
  MoveTo(badge_, 10, 20);
  ASSERT_TRUE(RectIs(WindowRectOf(badge_), 775, 635, 845, 705));
  // The button went up where the badge did not hear it.
  SendMessageW(badge_, WM_MOUSEMOVE, 0, At(60, 60));
  EXPECT_TRUE(RectIs(WindowRectOf(badge_), 775, 635, 845, 705));
  const OverlayWindowState record = WindowsOf(path_);
  EXPECT_EQ(record.buttonDown, 0u);
  EXPECT_EQ(record.dragged, 0u);
  EXPECT_NE(GetCapture(), badge_);
  MoveTo(badge_, 60, 60);
  EXPECT_TRUE(RectIs(WindowRectOf(badge_), 775, 635, 845, 705));
}

TEST_F(OverlayWindowProc, ABadgeRebuiltInTheMiddleOfADragDoesNotFollowTheCursor) {
  Press(badge_, 35, 35);
  MoveTo(badge_, 10, 20);
  // The tick takes the badge down mid-drag and builds it again.
  DestroyWindow(badge_);
  Tick();
  const HWND rebuilt = BadgeOf(path_);
  ASSERT_NE(rebuilt, nullptr);
  const RECT before = WindowRectOf(rebuilt);
  EXPECT_EQ(WindowsOf(path_).buttonDown, 0u);
  MoveTo(rebuilt, 10, 10);
  EXPECT_TRUE(RectIs(WindowRectOf(rebuilt), before.left, before.top, before.right, before.bottom));
}

TEST_F(OverlayWindowProc, TheCursorIsTheHandOverTheClientAreaAndTheArrowElsewhere) {
  EXPECT_EQ(SendMessageW(badge_, WM_SETCURSOR, reinterpret_cast<WPARAM>(badge_), MAKELPARAM(HTCLIENT, WM_MOUSEMOVE)),
            TRUE);
  EXPECT_EQ(GetCursor(), LoadCursorW(nullptr, IDC_HAND));
  EXPECT_EQ(SendMessageW(badge_, WM_SETCURSOR, reinterpret_cast<WPARAM>(badge_), MAKELPARAM(HTBORDER, WM_MOUSEMOVE)),
            TRUE);
  EXPECT_EQ(GetCursor(), LoadCursorW(nullptr, IDC_ARROW));
}

TEST_F(OverlayWindowProc, ABadgeDestroyedFromOutsideIsForgottenByItsOverlayStateAtOnceWithItsPanel) {
  DestroyWindow(badge_);
  const OverlayWindowState record = WindowsOf(path_);
  EXPECT_EQ(record.badgeWindow, nullptr);
  EXPECT_EQ(record.subOverlayWindow, nullptr);
  EXPECT_FALSE(IsWindow(panel_));
}

TEST_F(OverlayWindowProc, APanelDestroyedFromOutsideIsForgottenByItsOverlayStateAtOnce) {
  DestroyWindow(panel_);
  const OverlayWindowState record = WindowsOf(path_);
  EXPECT_EQ(record.subOverlayWindow, nullptr);
  EXPECT_EQ(record.badgeWindow, badge_);
}

TEST_F(OverlayWindowProc, TheTickAfterTheBadgeWasDestroyedFromOutsideBuildsItAgain) {
  DestroyWindow(badge_);
  Tick();
  ExpectBadgeAndPanel(path_, 8, L"Another user is viewing this file", true);
}

// "Hide", with the simulated sync app recording what it is sent.
class HideOption : public OverlayWindowProc {
 protected:
  void SetUp() override {
    OverlayWindowProc::SetUp();
    record_ = FreshTempPath(L"syncsim-hide-requests.txt");
    ASSERT_TRUE(syncSim_.Start(L"--record " + Quoted(record_)));
  }
  void TearDown() override { syncSim_.Stop(); }

  void PressHide() {
    const HWND button = ChildWithId(panel_, ControlId::Hide);
    ASSERT_NE(button, nullptr);
    SendMessageW(panel_, WM_COMMAND, MAKEWPARAM(static_cast<int>(ControlId::Hide), BN_CLICKED),
                 reinterpret_cast<LPARAM>(button));
  }

  SyncSimProcess syncSim_;
  std::wstring record_;
};

TEST_F(HideOption, TakesBothWindowsAwayAtOnceAndMarksTheRecord) {
  host_.ChangeRecord(path_, [](FileStatusRecord& record) { record.choices.Set(UserChoice::retryDelete); });
  PressHide();
  EXPECT_FALSE(IsWindow(badge_));
  EXPECT_FALSE(IsWindow(panel_));
  const FileStatusRecord record = host_.Record(path_);
  const OverlayWindowState recordWindows = WindowsOf(path_);
  EXPECT_TRUE(record.choices.Has(UserChoice::uiHide));
  EXPECT_EQ(recordWindows.overlayKind, 0);
  EXPECT_EQ(recordWindows.badgeWindow, nullptr);
  EXPECT_EQ(recordWindows.subOverlayWindow, nullptr);
  EXPECT_FALSE(record.choices.Has(UserChoice::retryDelete));
  EXPECT_EQ(InfoMessages(), std::vector<std::string>{"user clicked hide option: " + Narrow(path_)});
}

TEST_F(HideOption, AClickOnTheHideButtonItselfTakesBothWindowsAway) {
  const HWND button = ChildWithId(panel_, ControlId::Hide);
  ASSERT_NE(button, nullptr);
  // The button tells its panel from inside its own click handling, and the
  // panel (with the button) is gone before that handling returns.
  SendMessageW(button, BM_CLICK, 0, 0);
  EXPECT_FALSE(IsWindow(badge_));
  EXPECT_FALSE(IsWindow(panel_));
  EXPECT_TRUE(host_.Record(path_).choices.Has(UserChoice::uiHide));
}

TEST_F(HideOption, TellsTheSyncAppAtOnceWithUiHideBetweenRetryDeleteAndTheFileId) {
  PressHide();
  ASSERT_EQ(syncSim_.Stop(), 0u);
  EXPECT_EQ(ReadFileBytes(record_),
            "{\"files\":[{\"filepath\":\"" + Narrow(path_) +
                "\",\"isOpen\":true,\"isEditing\":false,\"resolveConflict\":false,\"retryModify\":false,"
                "\"retryRenameOrMove\":false,\"retryDelete\":false,\"uiHide\":true,\"file_combo_id\":\"f-1001\","
                "\"officeApp\":\"1\"}]}\n");
}

TEST_F(HideOption, KeepsTheBadgeAwayOnLaterTicksWhileUiHideIsSet) {
  PressHide();
  AnswerFields answer = QuietAnswer();
  answer.is_download_present = L"Downloaded";
  Answer(path_, answer);
  Ticks(3);
  ExpectNothingShown(path_);
  EXPECT_TRUE(host_.Record(path_).choices.Has(UserChoice::uiHide));
}
}  // namespace
