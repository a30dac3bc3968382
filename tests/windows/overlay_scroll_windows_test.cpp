// The scrolling areas: the rename/move panel's two one-line name boxes,
// which scroll sideways in character steps, and the active users' long
// list, which scrolls up and down in line steps. Driven with the scroll
// messages a user's clicks send, and once with a real drag of the thumb.
#include <windows.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "common/unique_resource.h"
#include "overlay/layouts/active_users_panel.h"
#include "overlay/windows/panels.h"
#include "overlay/windows/status_overlays.h"
#include "tests/caller.h"
#include "tests/windows/overlay_test_support.h"

namespace {
using UniqueOverlay = UniqueResource<OverlayWindowTraits>;

const std::wstring kLongPath =
    L"C:\\Users\\ann\\Filewell\\Team Folders\\Finance\\Quarterly reports\\2026\\Budget 2026 final version, approved "
    L"by the board.xlsx";
const std::wstring kShortName = L"a.docx";

// The scroll areas measure with their window's own device context, which
// has the system font: the same metrics, read the same way.
struct AreaMetrics {
  int charWidth;
  int capitalWidth;
  int lineHeight;
};
AreaMetrics MetricsOf(HWND area) {
  HDC dc = GetDC(area);
  TEXTMETRICW text{};
  GetTextMetricsW(dc, &text);
  ReleaseDC(area, dc);
  const int capital = (text.tmPitchAndFamily & TMPF_FIXED_PITCH) != 0 ? text.tmAveCharWidth * 3 / 2
                                                                         : text.tmAveCharWidth;
  return {text.tmAveCharWidth, capital, text.tmHeight + text.tmExternalLeading};
}

// The range a name of that length gets once painted: every character at
// the average width and a capital's width for every fourth one, in
// characters, plus two.
int ExpectedMaximum(const std::wstring& text, const AreaMetrics& metrics) {
  const int length = static_cast<int>(text.size());
  const int width = length * metrics.charWidth + (length / 4) * metrics.capitalWidth;
  return width / metrics.charWidth + 2;
}

SCROLLINFO BarOf(HWND window, int bar) {
  SCROLLINFO info{};
  info.cbSize = sizeof(info);
  info.fMask = SIF_ALL;
  info.nMin = info.nMax = info.nPos = info.nTrackPos = static_cast<int>(0xdeadbeef);
  info.nPage = 0xdeadbeef;
  EXPECT_TRUE(GetScrollInfo(window, bar, &info));
  return info;
}

HWND badge = nullptr;

class ScrollAreas : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    SetUpOverlayStage();
    if (badge == nullptr) {
      const RECT office = WindowRectOf(OfficeWindow());
      badge = CreateMainOverlay(OfficeWindow(), office.right - 300, office.bottom - 100);
    }
  }
  void SetUp() override {
    ASSERT_NE(nullptr, badge);
    SetWindowPos(OfficeWindow(), HWND_TOP, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
  }

  // A rename panel shown and painted, with these names in its boxes.
  UniqueOverlay ShownRenamePanel(const std::wstring& previous, const std::wstring& next) {
    UniqueOverlay panel(CreateRenameMovePanel(OfficeWindow(), badge, true, false, previous, next));
    EXPECT_TRUE(panel);
    ShowWindow(panel.get(), SW_SHOWNA);
    PumpMessagesFor(300);
    return panel;
  }
};

// --- The name boxes ---

TEST_F(ScrollAreas, GivesALongNameARangeOfItsWidthInCharactersPlusTwoOncePainted) {
  const UniqueOverlay panel = ShownRenamePanel(kLongPath, kShortName);
  const HWND box = GetDlgItem(panel.get(), 5001);
  const SCROLLINFO bar = BarOf(box, SB_HORZ);
  EXPECT_EQ(0, bar.nMin);
  EXPECT_EQ(ExpectedMaximum(kLongPath, MetricsOf(box)), bar.nMax);
}

TEST_F(ScrollAreas, GivesABoxAPageOfItsWidthInCharacters) {
  const UniqueOverlay panel = ShownRenamePanel(kLongPath, kShortName);
  const HWND box = GetDlgItem(panel.get(), 5001);
  EXPECT_EQ(static_cast<UINT>(360 / MetricsOf(box).charWidth), BarOf(box, SB_HORZ).nPage);
}

TEST_F(ScrollAreas, GivesAShortNameItsOwnRangeOfAtLeastTwo) {
  const UniqueOverlay panel = ShownRenamePanel(kLongPath, kShortName);
  const HWND box = GetDlgItem(panel.get(), 5002);
  const SCROLLINFO bar = BarOf(box, SB_HORZ);
  EXPECT_EQ(0, bar.nMin);
  EXPECT_EQ(ExpectedMaximum(kShortName, MetricsOf(box)), bar.nMax);
  EXPECT_LE(2, bar.nMax);
}

TEST_F(ScrollAreas, GivesAnEmptyNameARangeOfExactlyZeroToTwo) {
  const UniqueOverlay panel = ShownRenamePanel(kLongPath, L"");
  const SCROLLINFO bar = BarOf(GetDlgItem(panel.get(), 5002), SB_HORZ);
  EXPECT_EQ(0, bar.nMin);
  EXPECT_EQ(2, bar.nMax);
}

TEST_F(ScrollAreas, HidesTheBarOfANameThatFitsItsBox) {
  // Its page (the box's width in characters) covers the whole range, so
  // Windows hides the bar and takes WS_HSCROLL off the box; the long name's
  // box keeps both.
  const UniqueOverlay panel = ShownRenamePanel(kLongPath, kShortName);
  EXPECT_EQ(0, GetWindowLongW(GetDlgItem(panel.get(), 5002), GWL_STYLE) & WS_HSCROLL);
  EXPECT_EQ(WS_HSCROLL, GetWindowLongW(GetDlgItem(panel.get(), 5001), GWL_STYLE) & WS_HSCROLL);
}

TEST_F(ScrollAreas, LeavesANameThatFitsWhereItIsOnLineRight) {
  const UniqueOverlay panel = ShownRenamePanel(kLongPath, kShortName);
  const HWND box = GetDlgItem(panel.get(), 5002);
  SendMessageW(box, WM_HSCROLL, SB_LINERIGHT, 0);
  EXPECT_EQ(0, BarOf(box, SB_HORZ).nPos);
}

TEST_F(ScrollAreas, MovesALongNameOneCharacterOnLineRight) {
  const UniqueOverlay panel = ShownRenamePanel(kLongPath, kShortName);
  const HWND box = GetDlgItem(panel.get(), 5001);
  ASSERT_EQ(0, BarOf(box, SB_HORZ).nPos);
  SendMessageW(box, WM_HSCROLL, SB_LINERIGHT, 0);
  EXPECT_EQ(1, BarOf(box, SB_HORZ).nPos);
  SendMessageW(box, WM_HSCROLL, SB_LINERIGHT, 0);
  EXPECT_EQ(2, BarOf(box, SB_HORZ).nPos);
}

TEST_F(ScrollAreas, MovesALongNameBackOneCharacterOnLineLeft) {
  const UniqueOverlay panel = ShownRenamePanel(kLongPath, kShortName);
  const HWND box = GetDlgItem(panel.get(), 5001);
  SendMessageW(box, WM_HSCROLL, SB_LINERIGHT, 0);
  SendMessageW(box, WM_HSCROLL, SB_LINERIGHT, 0);
  SendMessageW(box, WM_HSCROLL, SB_LINELEFT, 0);
  EXPECT_EQ(1, BarOf(box, SB_HORZ).nPos);
}

TEST_F(ScrollAreas, StopsALongNameAtTheLeftEnd) {
  const UniqueOverlay panel = ShownRenamePanel(kLongPath, kShortName);
  const HWND box = GetDlgItem(panel.get(), 5001);
  SendMessageW(box, WM_HSCROLL, SB_LINELEFT, 0);
  EXPECT_EQ(0, BarOf(box, SB_HORZ).nPos);
}

TEST_F(ScrollAreas, MovesALongNameAPageOnPageRight) {
  const UniqueOverlay panel = ShownRenamePanel(kLongPath, kShortName);
  const HWND box = GetDlgItem(panel.get(), 5001);
  const SCROLLINFO before = BarOf(box, SB_HORZ);
  SendMessageW(box, WM_HSCROLL, SB_PAGERIGHT, 0);
  // As far as a page goes, or to the last page when that is nearer.
  const int lastPage = before.nMax - static_cast<int>(before.nPage) + 1;
  EXPECT_EQ(std::min(static_cast<int>(before.nPage), lastPage), BarOf(box, SB_HORZ).nPos);
}

// The box's client area on the screen, rows 10 to 10 + the line height:
// the line of text.
Pixels TextLineOf(HWND box) {
  RECT client{};
  GetClientRect(box, &client);
  POINT origin{0, 0};
  ClientToScreen(box, &origin);
  const int line = MetricsOf(box).lineHeight;
  return CaptureScreen({origin.x, origin.y + 10, origin.x + client.right, origin.y + 10 + line});
}

TEST_F(ScrollAreas, ShiftsTheDrawnTextOneCharacterLeftOnLineRight) {
  const UniqueOverlay panel = ShownRenamePanel(kLongPath, kShortName);
  const HWND box = GetDlgItem(panel.get(), 5001);
  const int step = MetricsOf(box).charWidth;
  const Pixels before = TextLineOf(box);
  SendMessageW(box, WM_HSCROLL, SB_LINERIGHT, 0);
  PumpMessagesFor(300);
  const Pixels after = TextLineOf(box);
  SaveArtefact(before, L"name-box-before-line-right");
  SaveArtefact(after, L"name-box-after-line-right");
  // What stood at x + step now stands at x.
  int different = 0;
  for (int y = 0; y < before.height; ++y) {
    for (int x = 0; x + step < before.width; ++x) {
      if (after.At(x, y) != before.At(x + step, y)) ++different;
    }
  }
  EXPECT_EQ(0, different);
  EXPECT_TRUE(before.rgb != after.rgb);
}

// A record of every SB_THUMBTRACK the box answered and the position it
// held right after: a hook on this thread's window procedure calls.
struct TrackStep {
  int trackPosition;
  int positionAfter;
};
std::vector<TrackStep>* trackSteps = nullptr;
HWND trackedBox = nullptr;

LRESULT CALLBACK AfterWindowProcedure(int code, WPARAM wParam, LPARAM lParam) {
  const auto* call = reinterpret_cast<const CWPRETSTRUCT*>(lParam);
  if (code == HC_ACTION && trackSteps != nullptr && call->hwnd == trackedBox && call->message == WM_HSCROLL &&
      LOWORD(call->wParam) == SB_THUMBTRACK) {
    trackSteps->push_back({static_cast<int>(HIWORD(call->wParam)), GetScrollPos(call->hwnd, SB_HORZ)});
  }
  return CallNextHookEx(nullptr, code, wParam, lParam);
}

INPUT MouseInput(DWORD flags, POINT at) {
  INPUT input{};
  input.type = INPUT_MOUSE;
  input.mi.dwFlags = flags | MOUSEEVENTF_ABSOLUTE;
  input.mi.dx = (at.x * 65536 + GetSystemMetrics(SM_CXSCREEN) / 2) / GetSystemMetrics(SM_CXSCREEN);
  input.mi.dy = (at.y * 65536 + GetSystemMetrics(SM_CYSCREEN) / 2) / GetSystemMetrics(SM_CYSCREEN);
  return input;
}

TEST_F(ScrollAreas, FollowsTheThumbAsItIsDraggedNotOnlyWhenItIsLetGo) {
  const UniqueOverlay panel = ShownRenamePanel(kLongPath, kShortName);
  const HWND box = GetDlgItem(panel.get(), 5001);
  SCROLLBARINFO bar{};
  bar.cbSize = sizeof(bar);
  ASSERT_TRUE(GetScrollBarInfo(box, OBJID_HSCROLL, &bar));
  const POINT thumb{bar.rcScrollBar.left + (bar.xyThumbTop + bar.xyThumbBottom) / 2,
                    (bar.rcScrollBar.top + bar.rcScrollBar.bottom) / 2};

  std::vector<TrackStep> steps;
  trackSteps = &steps;
  trackedBox = box;
  HHOOK hook = SetWindowsHookExW(WH_CALLWNDPROCRET, AfterWindowProcedure, nullptr, GetCurrentThreadId());
  ASSERT_NE(nullptr, hook);
  std::vector<INPUT> drag = {MouseInput(MOUSEEVENTF_MOVE, thumb), MouseInput(MOUSEEVENTF_LEFTDOWN, thumb)};
  for (int dx = 10; dx <= 60; dx += 10) drag.push_back(MouseInput(MOUSEEVENTF_MOVE, {thumb.x + dx, thumb.y}));
  drag.push_back(MouseInput(MOUSEEVENTF_LEFTUP, {thumb.x + 60, thumb.y}));
  EXPECT_EQ(drag.size(), SendInput(static_cast<UINT>(drag.size()), drag.data(), sizeof(INPUT)));
  PumpMessagesFor(600);
  UnhookWindowsHookEx(hook);
  trackSteps = nullptr;

  ASSERT_FALSE(steps.empty()) << "the drag sent no SB_THUMBTRACK";
  for (const TrackStep& step : steps) EXPECT_EQ(step.trackPosition, step.positionAfter);
  EXPECT_LT(0, steps.back().positionAfter);
  // Letting go (SB_THUMBPOSITION) changes nothing more.
  EXPECT_EQ(steps.back().positionAfter, BarOf(box, SB_HORZ).nPos);
}

// --- The member list ---

MemberNames Viewers(int count) {
  MemberNames viewers;
  for (int i = 0; i < count; ++i) viewers[L"v-" + std::to_wstring(10 + i)] = L"Viewer " + std::to_wstring(10 + i);
  return viewers;
}

class MemberList : public ScrollAreas {
 protected:
  void SetUp() override {
    ScrollAreas::SetUp();
    panel_.reset(CreateActiveUsersPanel(OfficeWindow(), badge, L"", L"", L"", {}, Viewers(9)));
    ASSERT_TRUE(panel_);
    list_ = GetDlgItem(panel_.get(), 5001);
    ASSERT_NE(nullptr, list_);
    firstAvatar_ = GetWindow(list_, GW_CHILD);
    // Shown, as a user who scrolls it sees it: ScrollWindow moves nothing
    // in a window that is not drawn.
    ShowWindow(panel_.get(), SW_SHOWNA);
    PumpMessagesFor(100);
  }
  // The first row's avatar, in the list's client coordinates.
  int FirstAvatarTop() const {
    RECT rect = WindowRectOf(firstAvatar_);
    MapWindowPoints(nullptr, list_, reinterpret_cast<POINT*>(&rect), 2);
    return rect.top;
  }
  UniqueOverlay panel_;
  HWND list_ = nullptr;
  HWND firstAvatar_ = nullptr;
};

TEST_F(MemberList, HasTwentyLinesOfSlackBeyondItsVisibleHeight) {
  const SCROLLINFO bar = BarOf(list_, SB_VERT);
  EXPECT_EQ(0, bar.nMin);
  EXPECT_EQ(460 / MetricsOf(list_).lineHeight + 20, bar.nMax);
}

TEST_F(MemberList, HasAPageOfItsVisibleHeightInLines) {
  EXPECT_EQ(static_cast<UINT>(460 / MetricsOf(list_).lineHeight), BarOf(list_, SB_VERT).nPage);
}

TEST_F(MemberList, MovesItsRowsUpOneLineOnLineDown) {
  ASSERT_EQ(15, FirstAvatarTop());
  SendMessageW(list_, WM_VSCROLL, SB_LINEDOWN, 0);
  EXPECT_EQ(1, BarOf(list_, SB_VERT).nPos);
  EXPECT_EQ(15 - MetricsOf(list_).lineHeight, FirstAvatarTop());
}

TEST_F(MemberList, MovesItsRowsBackOnLineUp) {
  SendMessageW(list_, WM_VSCROLL, SB_LINEDOWN, 0);
  SendMessageW(list_, WM_VSCROLL, SB_LINEUP, 0);
  EXPECT_EQ(0, BarOf(list_, SB_VERT).nPos);
  EXPECT_EQ(15, FirstAvatarTop());
}

TEST_F(MemberList, GoesToItsLastPageTwentyOneLinesDownOnBottom) {
  // SB_BOTTOM asks for the maximum; Windows keeps the last full page, which
  // begins maximum - page + 1 = 21 lines down.
  SendMessageW(list_, WM_VSCROLL, SB_BOTTOM, 0);
  EXPECT_EQ(21, BarOf(list_, SB_VERT).nPos);
  EXPECT_EQ(15 - 21 * MetricsOf(list_).lineHeight, FirstAvatarTop());
}

TEST_F(MemberList, ComesBackToTheFirstRowOnTop) {
  SendMessageW(list_, WM_VSCROLL, SB_BOTTOM, 0);
  SendMessageW(list_, WM_VSCROLL, SB_TOP, 0);
  EXPECT_EQ(0, BarOf(list_, SB_VERT).nPos);
  EXPECT_EQ(15, FirstAvatarTop());
}

TEST_F(MemberList, StopsAtTheLastPageOnPageDown) {
  // A page is more than the 20 lines of slack: it stops at the last page.
  const SCROLLINFO before = BarOf(list_, SB_VERT);
  ASSERT_LT(21, static_cast<int>(before.nPage));
  SendMessageW(list_, WM_VSCROLL, SB_PAGEDOWN, 0);
  EXPECT_EQ(21, BarOf(list_, SB_VERT).nPos);
  EXPECT_EQ(15 - 21 * MetricsOf(list_).lineHeight, FirstAvatarTop());
}

TEST_F(MemberList, ShowsTheLastMemberOnceScrolledToTheBottom) {
  SendMessageW(list_, WM_VSCROLL, SB_BOTTOM, 0);
  PumpMessagesFor(300);
  RECT area = WindowRectOf(panel_.get());
  // Tall enough to open below the badge: its picture is taken higher up.
  OffsetRect(&area, 0, -area.top);
  SetWindowPos(panel_.get(), nullptr, area.left, 0, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
  PumpMessagesFor(300);
  SaveArtefact(CaptureScreen(area), L"member-list-scrolled-to-bottom");
  // The ninth row's status line lies inside the list's client area now.
  RECT client{};
  GetClientRect(list_, &client);
  HWND last = nullptr;
  for (HWND child = GetWindow(list_, GW_CHILD); child != nullptr; child = GetWindow(child, GW_HWNDNEXT)) last = child;
  ASSERT_NE(nullptr, last);
  RECT status = WindowRectOf(last);
  MapWindowPoints(nullptr, list_, reinterpret_cast<POINT*>(&status), 2);
  EXPECT_LE(0, status.top);
  EXPECT_GE(client.bottom, status.bottom);
}
}  // namespace
