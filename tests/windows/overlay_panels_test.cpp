// Every panel the badge opens, built against a badge at its home in the
// Office window and read back from Windows: the panel's own window (class,
// style, owner, size and place) and each child (class, text, id, rectangle
// in its parent's client coordinates, style, font). The expected tables are
// written out from the overlay's design, not taken from the add-in's own
// layout functions, so a slip in those shows here.
//
// Styles are compared whole, as GetWindowLongW reports them. Every child is
// created WS_CHILD | WS_VISIBLE and reads back with WS_VISIBLE although its
// panel is created hidden: WS_VISIBLE is the window's own flag, and only
// IsWindowVisible looks at the ancestors too (see ChildrenOfAHiddenPanel...).
#include <windows.h>
#include <commctrl.h>

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "common/unique_resource.h"
#include "overlay/layouts/active_users_panel.h"
#include "overlay/layouts/help_links.h"
#include "overlay/images/image_file_names.h"
#include "overlay/images/overlay_images.h"
#include "overlay/windows/panels.h"
#include "overlay/windows/status_overlays.h"
#include "tests/caller.h"
#include "tests/windows/overlay_test_support.h"
#include "tests/windows/wine_test_support.h"

namespace {
using UniqueOverlay = UniqueResource<OverlayWindowTraits>;

// --- The rows of the design's tables ---

constexpr DWORD kText = 0x50000000;
// People's names and times come from the sync app's answer: SS_NOPREFIX,
// so an "&" in them is shown as it is.
constexpr DWORD kEllipsisText = 0x50004080;
constexpr DWORD kPlainText = 0x50000080;
constexpr DWORD kImage = 0x5000004E;
constexpr DWORD kIcon = 0x50000003;
constexpr DWORD kButton = 0x5000000B;
constexpr DWORD kBorderedButton = 0x5080000B;
constexpr DWORD kCheckBox = 0x50000003;
constexpr DWORD kLink = 0x50010000;
constexpr DWORD kMarquee = 0x50000008;
constexpr DWORD kPlainChild = 0x50000000;
constexpr DWORD kHorizontalScrollArea = 0x50100000;
constexpr DWORD kVerticalScrollArea = 0x50200000;

const std::wstring kUnderscores78(78, L'_');
const std::wstring kHyphens111(111, L'-');

std::wstring Anchor(const std::wstring& path, const std::wstring& caption) {
  // The help centre's host is the one thing about the links left to us.
  return L"<a href=\"" + std::wstring(kHelpHost) + path + L"\">" + caption + L"</a>";
}
const std::wstring kCollaborationLink = Anchor(
    L"/portal/kb/filewell/sync/filewell-sync/articles/"
    L"track-live-user-activity-in-ms-office-files-using-filewell-collaboration-widget",
    L"Learn More");
const std::wstring kPermissionsLink = Anchor(L"/portal/kb/articles/team-folder-roles-and-permissions", L"Learn more");

// Where a text needs more room than the design's rectangle, the control
// grows to fit it and what sits to its right or below moves by as much.
// The figures come from Arial's advance widths (2,048 units to the em)
// rounded at the 16 pixels per em of an 18-pixel cell, line by line:
// - "Learn More" in the body font: L 9, e 9, a 9, r 5, n 9, space 4, M 13,
//   o 9, r 5, e 9 = 81, one more than its 80-pixel link, so the link is 81
//   wide and "Hide" beside it starts at 121 instead of 120;
// - the editors' advice wraps to three lines of 17 (51) in a box of 50 whose
//   last 5 pixels the rule below covers (it starts at 95): the text needs 6
//   more than its 45 clear pixels, so the advice is 56 high, what follows
//   it moves down by 6 and the panel is 6 taller;
// - the delete panel's description wraps to three lines (51) in a box of
//   40, which would lose its last line: 11 more, and the grey box and the
//   panel move and grow by 11.
constexpr int kLearnMoreWidth = 81;
constexpr int kHideX = 121;

ChildRow Text(const std::wstring& text, ControlId id, int x, int y, int w, int h, FontLook font, int parent = 0) {
  return {L"Static", text, id, x, y, w, h, kText, font, parent};
}
ChildRow Ellipsis(const std::wstring& text, ControlId id, int x, int y, int w, int h, FontLook font, int parent = 0) {
  return {L"Static", text, id, x, y, w, h, kEllipsisText, font, parent};
}
ChildRow Time(const std::wstring& text, ControlId id, int x, int y, int w, int h, FontLook font) {
  return {L"Static", text, id, x, y, w, h, kPlainText, font, 0};
}
ChildRow Picture(int x, int y, int w, int h, int parent = 0) {
  return {L"Static", L"", ControlId::None, x, y, w, h, kImage, kNoFont, parent};
}
ChildRow Button(const std::wstring& text, ControlId id, int x, int y, int w, int h) {
  return {L"Button", text, id, x, y, w, h, kButton, kBodyFont, 0};
}
ChildRow BorderedButton(const std::wstring& text, ControlId id, int x, int y, int w, int h) {
  return {L"Button", text, id, x, y, w, h, kBorderedButton, kBodyFont, 0};
}
ChildRow Link(const std::wstring& text, int x, int y, int w, int h) {
  return {L"SysLink", text, ControlId::None, x, y, w, h, kLink, kBodyFont, 0};
}
ChildRow Marquee(int x, int y, int w, int h) {
  return {L"msctls_progress32", L"", ControlId::None, x, y, w, h, kMarquee, kNoFont, 0};
}

void Append(std::vector<ChildRow>& rows, const std::vector<ChildRow>& more) {
  rows.insert(rows.end(), more.begin(), more.end());
}

// --- The stage: a badge at its home in the Office window ---

HWND badge = nullptr;

RECT BadgeRect() { return WindowRectOf(badge); }

class Panels : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    SetUpOverlayStage();
    if (badge == nullptr) {
      const POINT home = BadgeHome();
      badge = CreateMainOverlay(OfficeWindow(), home.x, home.y);
    }
  }
  void SetUp() override {
    ASSERT_NE(nullptr, badge);
    StartFreshLog();
  }
};

// A panel against the badge, or above or below it.
enum class Opens { Above, Below };

void ExpectPanelWindow(HWND panel, int width, int height, Opens opens, Caller caller = {}) {
  TRACE_CALLER(caller);
  ASSERT_NE(nullptr, panel);
  wchar_t className[256] = {};
  GetClassNameW(panel, className, 256);
  EXPECT_EQ(std::wstring(L"QelvoFilewellSync-MSOfficeAddin-MainUI"), className);
  // Created WS_POPUP | WS_BORDER and hidden; Windows adds WS_CLIPSIBLINGS
  // to every window that is not a child.
  EXPECT_EQ(static_cast<DWORD>(WS_POPUP | WS_BORDER | WS_CLIPSIBLINGS),
            static_cast<DWORD>(GetWindowLongW(panel, GWL_STYLE)));
  EXPECT_EQ(0u, static_cast<DWORD>(GetWindowLongW(panel, GWL_EXSTYLE)));
  EXPECT_FALSE(IsWindowVisible(panel));
  EXPECT_EQ(badge, GetWindow(panel, GW_OWNER));
  const RECT badgeRect = BadgeRect();
  ExpectWindowRect(panel, badgeRect.right - width, opens == Opens::Above ? badgeRect.top - height : badgeRect.bottom,
                   width, height);
}

// --- A variant: how to build it, its size and its children ---

struct Variant {
  std::string name;
  std::function<HWND()> build;
  int width;
  int height;
  Opens opens;
  std::vector<ChildRow> children;
};

std::string VariantName(const testing::TestParamInfo<Variant>& info) { return info.param.name; }
void PrintTo(const Variant& variant, std::ostream* out) { *out << variant.name; }

class PanelVariant : public Panels, public testing::WithParamInterface<Variant> {};

TEST_P(PanelVariant, BuildsItsChildrenAsDesigned) {
  const UniqueOverlay panel(GetParam().build());
  ASSERT_TRUE(panel);
  ExpectChildren(panel.get(), GetParam().children);
}

TEST_P(PanelVariant, IsAHiddenBorderedPopUpOfItsSizeOwnedByTheBadgeWithRightEdgesAligned) {
  const UniqueOverlay panel(GetParam().build());
  ExpectPanelWindow(panel.get(), GetParam().width, GetParam().height, GetParam().opens);
}

TEST_P(PanelVariant, WritesNoErrorLineButForAvatarFilesThatAreNotThere) {
  // Nobody here has an avatar file: each try logs its path, by design.
  const UniqueOverlay panel(GetParam().build());
  ASSERT_TRUE(panel);
  const std::string missingAvatar = "couldn't load bitmap (" + Utf8(AvatarFolderForTest()) + "\\";
  for (const std::string& line : ErrorLines()) EXPECT_EQ(missingAvatar, line.substr(0, missingAvatar.size()));
}

TEST_P(PanelVariant, ShowsOnScreenWhiteInsideItsBorder) {
  const UniqueOverlay panel(GetParam().build());
  ASSERT_TRUE(panel);
  // The tallest lists open below the badge and run off the bottom of the
  // screen; for their picture they are moved up to the screen's top edge.
  RECT area = WindowRectOf(panel.get());
  if (area.bottom > GetSystemMetrics(SM_CYSCREEN)) {
    OffsetRect(&area, 0, -area.top);
    SetWindowPos(panel.get(), nullptr, area.left, area.top, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
  }
  ShowWindow(panel.get(), SW_SHOWNA);
  PumpMessagesFor(400);
  const Pixels picture = CaptureScreen(area);
  EXPECT_NE(L"", SaveArtefact(picture, L"panel-" + std::wstring(GetParam().name.begin(), GetParam().name.end())));
  const Rgb border = RgbOf(GetSysColor(COLOR_WINDOWFRAME));
  EXPECT_EQ(border, picture.At(0, 0));
  EXPECT_EQ(border, picture.At(picture.width - 1, picture.height - 1));
  // The rules run across the full width, so the top-right corner inside
  // the border is the panel's own white.
  EXPECT_EQ((Rgb{255, 255, 255}), picture.At(picture.width - 2, 1));
}

// --- Safe to edit ---

std::vector<ChildRow> SafeToEditWithSection() {
  return {
      Text(L"No active collaborators", ControlId::Title, 15, 15, 370, 25, kDefaultBoldFont),
      Text(L"No other users are currently viewing or editing this file. You can safely make changes.",
           ControlId::Description, 15, 45, 370, 40, kBodyFont),
      Text(kUnderscores78, ControlId::Rule, 0, 85, 400, 20, kNoFont),
      Text(L"LAST MODIFIED BY", ControlId::Description, 20, 115, 360, 25, kSectionFont),
      Picture(20, 145, 40, 40),
      Ellipsis(L"Ann Lee", ControlId::None, 75, 145, 305, 20, kTitleFont),
      Time(L"Modified on 2026-03-01 10:15", ControlId::Description, 75, 165, 305, 20, kBodyFont),
      Text(kUnderscores78, ControlId::Rule, 0, 185, 400, 20, kNoFont),
      Link(kCollaborationLink, 20, 215, kLearnMoreWidth, 20),
      Button(L"Hide", ControlId::Hide, kHideX, 215, 40, 20),
  };
}

std::vector<ChildRow> SafeToEditWithoutSection() {
  return {
      Text(L"No active collaborators", ControlId::Title, 15, 15, 370, 25, kDefaultBoldFont),
      Text(L"No other users are currently viewing or editing this file. You can safely make changes.", ControlId::Description, 15, 45,
           370, 40, kBodyFont),
      Text(kUnderscores78, ControlId::Rule, 0, 85, 400, 20, kNoFont),
      Link(kCollaborationLink, 20, 115, kLearnMoreWidth, 20),
      Button(L"Hide", ControlId::Hide, kHideX, 115, 40, 20),
  };
}

// --- Active users ---

// The list is the fifth child of the panel; the rows are its children.
constexpr int kListRow = 5;

// The k-th member's four controls (k from 1), inside the list.
std::vector<ChildRow> MemberRow(int k, const std::wstring& name, bool editor) {
  const int t = 15 + 55 * (k - 1);
  return {
      Picture(20, t, 40, 40, kListRow),
      Ellipsis(name, ControlId::MemberRow, 75, t, 305, 20, kTitleFont, kListRow),
      {editor ? L"QelvoFilewellSync-MSOfficeAddin-RedUI" : L"QelvoFilewellSync-MSOfficeAddin-GreenUI", L"",
       ControlId::None, 75, t + 22, 12, 12, kPlainChild, kNoFont, kListRow},
      Text(editor ? L"Editing now" : L"Viewing now", ControlId::MemberRow, 95, t + 20, 305, 20, kBodyFont, kListRow),
  };
}

// A list of up to eight members is shrunk to its rows with SetWindowPos
// and a null insert-after window, that is HWND_TOP without SWP_NOZORDER:
// the list rises to the top of the panel's z-order. Nothing overlaps it,
// so nobody sees a difference, but EnumChildWindows walks the z-order and
// reports the list and its rows first. The design's table, in that order.
std::vector<ChildRow> InZOrderAfterTheListShrank(const std::vector<ChildRow>& designOrder) {
  std::vector<ChildRow> list;
  std::vector<ChildRow> rest;
  for (size_t i = 0; i < designOrder.size(); ++i) {
    ChildRow row = designOrder[i];
    if (static_cast<int>(i) + 1 == kListRow) {
      list.push_back(row);
    } else if (row.parent == kListRow) {
      row.parent = 1;
      list.push_back(row);
    } else {
      rest.push_back(row);
    }
  }
  list.insert(list.end(), rest.begin(), rest.end());
  return list;
}

// The "LAST MODIFIED BY" section from its rule at s.
std::vector<ChildRow> ActiveUsersSection(int s) {
  return {
      Text(kHyphens111, ControlId::Rule, 0, s, 400, 25, kNoFont),
      Text(L"LAST MODIFIED BY", ControlId::Description, 20, s + 30, 360, 25, kSectionFont),
      Picture(20, s + 65, 40, 40),
      Ellipsis(L"Ann Lee", ControlId::None, 75, s + 65, 305, 20, kTitleFont),
      Time(L"Modified on 2026-03-01 10:15", ControlId::Description, 75, s + 85, 305, 20, kBodyFont),
  };
}

// The last rule, the link and "Hide" from the rule at r.
std::vector<ChildRow> ActiveUsersFoot(int r) {
  return {
      Text(kHyphens111, ControlId::Rule, 0, r, 400, 25, kNoFont),
      Link(kCollaborationLink, 20, r + 25, kLearnMoreWidth, 20),
      Button(L"Hide", ControlId::Hide, kHideX, r + 25, 40, 20),
  };
}

const wchar_t kViewingAdvice[] = L"If they make changes, we'll let you know.";
const wchar_t kOneEditorAdvice[] =
    L"Please avoid editing now, as it may create multiple versions. Check with other user for more details.";
const wchar_t kEditorsAdvice[] =
    L"Please avoid editing now, as it may create multiple versions. Check with other users for more details.";

MemberNames Viewers(int count) {
  MemberNames viewers;
  for (int i = 0; i < count; ++i) viewers[L"v-" + std::to_wstring(10 + i)] = L"Viewer " + std::to_wstring(10 + i);
  return viewers;
}

std::function<HWND()> ActiveUsers(const MemberNames& editors, const MemberNames& viewers, bool section) {
  return [=] {
    return CreateActiveUsersPanel(OfficeWindow(), badge, L"u-ann42", section ? L"Ann Lee" : L"",
                                  L"2026-03-01 10:15", editors, viewers);
  };
}

// One viewer, with the section: title, advice (25 high), the list of one
// row (55 + 5), the section, the foot.
std::vector<ChildRow> OneViewerWithSection() {
  std::vector<ChildRow> rows = {
      Text(L"Another user is viewing this file", ControlId::ViewingTitle, 20, 20, 360, 30, kDefaultBoldFont),
      Text(kViewingAdvice, ControlId::Description, 20, 50, 360, 25, kBodyFont),
      Text(kHyphens111, ControlId::Rule, 0, 70, 400, 25, kNoFont),
      Text(L"LIVE MEMBERS ( 1 )", ControlId::Description, 20, 100, 360, 25, kSectionFont),
      {L"QelvoFilewellSync-MSOfficeAddin-MainUI", L"", ControlId::List, 0, 125, 400, 60, kPlainChild, kNoFont, 0},
  };
  Append(rows, MemberRow(1, L"Viewer 10", false));
  Append(rows, ActiveUsersSection(185));
  Append(rows, ActiveUsersFoot(300));
  return InZOrderAfterTheListShrank(rows);
}

std::vector<ChildRow> TwoViewersWithSection() {
  std::vector<ChildRow> rows = {
      Text(L"Multiple users are viewing this file", ControlId::ViewingTitle, 20, 20, 360, 30, kDefaultBoldFont),
      Text(kViewingAdvice, ControlId::Description, 20, 50, 360, 25, kBodyFont),
      Text(kHyphens111, ControlId::Rule, 0, 70, 400, 25, kNoFont),
      Text(L"LIVE MEMBERS ( 2 )", ControlId::Description, 20, 100, 360, 25, kSectionFont),
      {L"QelvoFilewellSync-MSOfficeAddin-MainUI", L"", ControlId::List, 0, 125, 400, 115, kPlainChild, kNoFont, 0},
  };
  Append(rows, MemberRow(1, L"Viewer 10", false));
  Append(rows, MemberRow(2, L"Viewer 11", false));
  Append(rows, ActiveUsersSection(240));
  Append(rows, ActiveUsersFoot(355));
  return InZOrderAfterTheListShrank(rows);
}

// One editor and three viewers: the editor's red row first, then the
// viewers in the order of their identifiers.
std::vector<ChildRow> OneEditorThreeViewersWithSection() {
  std::vector<ChildRow> rows = {
      Text(L"Another user is editing this file", ControlId::EditingTitle, 20, 20, 360, 30, kDefaultBoldFont),
      Text(kOneEditorAdvice, ControlId::Description, 20, 50, 360, 56, kBodyFont),
      Text(kHyphens111, ControlId::Rule, 0, 101, 400, 25, kNoFont),
      Text(L"LIVE MEMBERS ( 4 )", ControlId::Description, 20, 131, 360, 25, kSectionFont),
      {L"QelvoFilewellSync-MSOfficeAddin-MainUI", L"", ControlId::List, 0, 156, 400, 225, kPlainChild, kNoFont, 0},
  };
  Append(rows, MemberRow(1, L"Bob Stone", true));
  Append(rows, MemberRow(2, L"Cat", false));
  Append(rows, MemberRow(3, L"Dan", false));
  Append(rows, MemberRow(4, L"Eve", false));
  Append(rows, ActiveUsersSection(381));
  Append(rows, ActiveUsersFoot(496));
  return InZOrderAfterTheListShrank(rows);
}
const MemberNames kBob = {{L"e-bob", L"Bob Stone"}};
const MemberNames kDanCatEve = {{L"v-dan", L"Dan"}, {L"v-cat", L"Cat"}, {L"v-eve", L"Eve"}};

// n viewers: the plain list up to eight, the scrolling one from nine.
std::vector<ChildRow> ViewersList(int n, bool section) {
  const bool scrolling = n >= 9;
  const int content = 55 * n + (section ? 5 : 0);
  const int listHeight = scrolling ? 460 : content;
  std::vector<ChildRow> rows = {
      Text(L"Multiple users are viewing this file", ControlId::ViewingTitle, 20, 20, 360, 30, kDefaultBoldFont),
      Text(kViewingAdvice, ControlId::Description, 20, 50, 360, 25, kBodyFont),
      Text(kHyphens111, ControlId::Rule, 0, 70, 400, 25, kNoFont),
      Text(L"LIVE MEMBERS ( " + std::to_wstring(n) + L" )", ControlId::Description, 20, 100, 360, 25, kSectionFont),
      {scrolling ? L"QelvoFilewellSync-MSOfficeAddin-VerWhiteScrollUI" : L"QelvoFilewellSync-MSOfficeAddin-MainUI", L"",
       ControlId::List, 0, 125, 400, listHeight, scrolling ? kVerticalScrollArea : kPlainChild, kNoFont, 0},
  };
  for (int k = 1; k <= n; ++k) Append(rows, MemberRow(k, L"Viewer " + std::to_wstring(9 + k), false));
  const int s = 125 + listHeight;
  if (section) Append(rows, ActiveUsersSection(s));
  Append(rows, ActiveUsersFoot(section ? s + 115 : s + 10));
  // A scrolling list keeps its height: it is never resized, so it stays
  // where it was created in the z-order.
  return scrolling ? rows : InZOrderAfterTheListShrank(rows);
}

// Two editors and ten viewers: plural advice (50 high), scrolling list.
std::vector<ChildRow> TwelveMembersWithSection() {
  std::vector<ChildRow> rows = {
      Text(L"Multiple users are editing this file", ControlId::EditingTitle, 20, 20, 360, 30, kDefaultBoldFont),
      Text(kEditorsAdvice, ControlId::Description, 20, 50, 360, 56, kBodyFont),
      Text(kHyphens111, ControlId::Rule, 0, 101, 400, 25, kNoFont),
      Text(L"LIVE MEMBERS ( 12 )", ControlId::Description, 20, 131, 360, 25, kSectionFont),
      {L"QelvoFilewellSync-MSOfficeAddin-VerWhiteScrollUI", L"", ControlId::List, 0, 156, 400, 460, kVerticalScrollArea, kNoFont,
       0},
  };
  Append(rows, MemberRow(1, L"Bob Stone", true));
  Append(rows, MemberRow(2, L"Zoe Park", true));
  for (int k = 3; k <= 12; ++k) Append(rows, MemberRow(k, L"Viewer " + std::to_wstring(7 + k), false));
  Append(rows, ActiveUsersSection(616));
  Append(rows, ActiveUsersFoot(731));
  return rows;
}
const MemberNames kBobAndZoe = {{L"e-bob", L"Bob Stone"}, {L"e-zoe", L"Zoe Park"}};

// --- Download ---

const wchar_t kModified[] = L"This file has been modified";
const wchar_t kRetrieving[] = L"Retrieving more details...";
const wchar_t kDownloadLatest[] = L"Download latest version";
const wchar_t kDownloading[] = L"Downloading...";
const wchar_t kSaveCopy[] = L"Save my changes as a separate copy";

std::function<HWND()> Download(bool details, bool editing, bool downloading) {
  return [=] {
    return CreateDownloadPanel(OfficeWindow(), badge, details ? L"u-ann42" : L"", details ? L"Ann Lee" : L"",
                               details ? L"2026-03-01 10:15" : L"", editing, downloading);
  };
}

// Avatar, name and time of a panel w wide.
std::vector<ChildRow> DownloadDetails(int w) {
  return {
      Picture(20, 55, 40, 40),
      Ellipsis(L"Ann Lee", ControlId::None, 70, 55, w - 90, 25, kTitleFont),
      Time(L"Modified on 2026-03-01 10:15", ControlId::Description, 70, 80, w - 90, 25, kBodyFont),
  };
}

// --- Rename/move ---

const wchar_t kOldName[] = L"Budget 2025.xlsx";
const wchar_t kNewName[] = L"Budget 2026 final.xlsx";

std::vector<ChildRow> RenameMoveRows(const std::wstring& title, const std::wstring& description,
                                     const std::wstring& first, const std::wstring& second, bool button) {
  std::vector<ChildRow> rows = {
      Text(title, ControlId::None, 20, 20, 360, 25, kTitleFont),
      Text(description, ControlId::Description, 20, 45, 360, 50, kBodyFont),
      Text(first, ControlId::None, 20, 95, 360, 25, kOverlayTitleFont),
      {L"QelvoFilewellSync-MSOfficeAddin-LightGreyHorScrollUI", kOldName, ControlId::PreviousName, 20, 120, 360, 60,
       kHorizontalScrollArea, kNoFont, 0},
      Text(second, ControlId::None, 20, 200, 360, 25, kOverlayTitleFont),
      {L"QelvoFilewellSync-MSOfficeAddin-LightBlueHorScrollUI", kNewName, ControlId::NewName, 20, 225, 360, 60,
       kHorizontalScrollArea, kBodyFont, 0},
  };
  if (button) rows.push_back(Button(L"Reload", ControlId::FollowRenameOrMove, 20, 305, 120, 40));
  return rows;
}

std::function<HWND()> RenameMove(bool renamed, bool closeFirst) {
  return [=] { return CreateRenameMovePanel(OfficeWindow(), badge, renamed, closeFirst, kOldName, kNewName); };
}

// --- Confirm leave ---

std::function<HWND()> ConfirmLeave(bool unsaved, bool conflict, bool download, bool rename, bool move) {
  return [=] { return CreateConfirmLeavePanel(OfficeWindow(), badge, unsaved, conflict, download, rename, move); };
}

const wchar_t kNote[] = L"This may take some time...";

std::vector<Variant> AllVariants() {
  std::vector<Variant> variants;
  auto add = [&](std::string name, std::function<HWND()> build, int w, int h, Opens opens, std::vector<ChildRow> rows) {
    variants.push_back({std::move(name), std::move(build), w, h, opens, std::move(rows)});
  };

  add("SafeToEditWithIdentifier",
      [] { return CreateSafeToEditPanel(OfficeWindow(), badge, L"u-ann42", L"Ann Lee", L"2026-03-01 10:15"); }, 400,
      250, Opens::Above, SafeToEditWithSection());
  // Without an identifier the section goes, whatever the name and time say.
  add("SafeToEditWithoutIdentifier",
      [] { return CreateSafeToEditPanel(OfficeWindow(), badge, L"", L"Ann Lee", L"2026-03-01 10:15"); }, 400, 150,
      Opens::Above, SafeToEditWithoutSection());

  add("ActiveUsersOneViewer", ActiveUsers({}, Viewers(1), true), 400, 360, Opens::Above, OneViewerWithSection());
  add("ActiveUsersTwoViewers", ActiveUsers({}, Viewers(2), true), 400, 415, Opens::Above, TwoViewersWithSection());
  add("ActiveUsersOneEditorThreeViewers", ActiveUsers(kBob, kDanCatEve, true), 400, 556, Opens::Above,
      OneEditorThreeViewersWithSection());
  // Eight members: a plain list of 440, 445 before the section. These
  // panels are too tall to open above a badge 600 pixels down the Office
  // window, so they open below it, with their final height.
  add("ActiveUsersEightWithoutSection", ActiveUsers({}, Viewers(8), false), 400, 635, Opens::Below,
      ViewersList(8, false));
  add("ActiveUsersEightWithSection", ActiveUsers({}, Viewers(8), true), 400, 745, Opens::Below, ViewersList(8, true));
  // Nine: the scrolling list, held at 460.
  add("ActiveUsersNineWithoutSection", ActiveUsers({}, Viewers(9), false), 400, 655, Opens::Below,
      ViewersList(9, false));
  add("ActiveUsersNineWithSection", ActiveUsers({}, Viewers(9), true), 400, 760, Opens::Below, ViewersList(9, true));
  add("ActiveUsersTwelveWithSection", ActiveUsers(kBobAndZoe, Viewers(10), true), 400, 791, Opens::Below,
      TwelveMembersWithSection());

  // Download, by editing, downloading and whether details are known.
  {
    std::vector<ChildRow> rows = {Text(kModified, ControlId::None, 20, 20, 360, 25, kTitleFont)};
    Append(rows, DownloadDetails(400));
    rows.push_back(Button(kDownloadLatest, ControlId::Download, 20, 120, 240, 40));
    add("DownloadDetailsKnown", Download(true, false, false), 400, 175, Opens::Above, rows);
  }
  add("DownloadDetailsNotKnown", Download(false, false, false), 320, 145, Opens::Above,
      {Text(kModified, ControlId::None, 55, 20, 250, 25, kTitleFont),
       Text(kRetrieving, ControlId::None, 65, 45, 200, 25, kWaitItalicFont),
       Button(kDownloadLatest, ControlId::Download, 55, 85, 240, 40)});
  {
    std::vector<ChildRow> rows = {Text(kModified, ControlId::None, 20, 20, 360, 25, kTitleFont)};
    Append(rows, DownloadDetails(400));
    rows.push_back({L"Button", kSaveCopy, ControlId::SaveSeparateCopy, 20, 120, 360, 40, kCheckBox, kBodyFont, 0});
    rows.push_back(Button(kDownloadLatest, ControlId::Download, 20, 160, 240, 40));
    add("DownloadEditingDetailsKnown", Download(true, true, false), 400, 215, Opens::Above, rows);
  }
  add("DownloadEditingDetailsNotKnown", Download(false, true, false), 400, 185, Opens::Above,
      {Text(kModified, ControlId::None, 20, 20, 250, 25, kTitleFont),
       Text(kRetrieving, ControlId::None, 20, 45, 200, 25, kWaitItalicFont),
       {L"Button", kSaveCopy, ControlId::SaveSeparateCopy, 20, 85, 360, 40, kCheckBox, kBodyFont, 0},
       Button(kDownloadLatest, ControlId::Download, 20, 125, 240, 40)});
  {
    std::vector<ChildRow> rows = {Text(kModified, ControlId::None, 20, 20, 360, 25, kTitleFont)};
    Append(rows, DownloadDetails(400));
    rows.push_back(Button(kDownloading, ControlId::Downloading, 20, 120, 200, 40));
    rows.push_back(Marquee(0, 168, 400, 7));
    add("DownloadingEditingDetailsKnown", Download(true, true, true), 400, 175, Opens::Above, rows);
  }
  add("DownloadingEditingDetailsNotKnown", Download(false, true, true), 330, 145, Opens::Above,
      {Text(kModified, ControlId::None, 60, 20, 250, 25, kTitleFont),
       Text(kRetrieving, ControlId::None, 70, 45, 200, 25, kWaitItalicFont),
       Button(kDownloading, ControlId::Downloading, 60, 85, 200, 40), Marquee(0, 138, 330, 7)});
  add("DownloadingDetailsNotKnown", Download(false, false, true), 320, 145, Opens::Above,
      {Text(kModified, ControlId::None, 60, 20, 250, 25, kTitleFont),
       Text(kRetrieving, ControlId::None, 70, 45, 200, 25, kWaitItalicFont),
       Button(kDownloading, ControlId::Downloading, 60, 85, 200, 40), Marquee(0, 138, 320, 7)});

  // The conflict panel's warning icon is an SS_ICON static, which sizes
  // itself to the icon it is given (the system's 32 × 32 warning sign): the
  // 40 × 40 it is created with does not survive STM_SETIMAGE, on Windows as
  // under Wine.
  add("Conflict", [] { return CreateConflictPanel(OfficeWindow(), badge); }, 400, 170, Opens::Above,
      {Text(L"File conflict occurred", ControlId::None, 20, 20, 360, 25, kTitleFont),
       {L"Static", L"", ControlId::None, 20, 50, GetSystemMetrics(SM_CXICON), GetSystemMetrics(SM_CYICON), kIcon,
        kNoFont, 0},
       Text(L"This file currently has a different version on the web compared to your computer.",
            ControlId::Description, 70, 55, 310, 40, kBodyFont),
       Button(L"Resolve conflict", ControlId::ResolveConflict, 20, 110, 170, 40)});
  add("Delete", [] { return CreateDeletePanel(OfficeWindow(), badge); }, 400, 186, Opens::Above,
      {Text(L"This file has been deleted", ControlId::None, 20, 20, 360, 25, kTitleFont),
       Text(L"Please close this file so that we can delete it on your computer. This file will not be available "
            L"anymore.",
            ControlId::Description, 20, 45, 360, 51, kBodyFont),
       {L"QelvoFilewellSync-MSOfficeAddin-LightGreyUI", L"", ControlId::None, 20, 106, 360, 60, kPlainChild, kNoFont, 0},
       Text(L"Note: If you want a copy of this file, go to File -> Save As.", ControlId::Note, 10, 10, 340, 40,
            kBodyFont, 3)});
  add("ErrorReadOnly", [] { return CreateErrorMessagePanel(OfficeWindow(), badge, true); }, 440, 110, Opens::Above,
      {Picture(20, 20, 21, 21),
       Text(L"You can't make changes to this file, because the file has a read-only permission level.",
            ControlId::Description, 51, 20, 369, 40, kBodyFont),
       Link(kPermissionsLink, 51, 70, 369, 20)});
  add("ErrorSaving", [] { return CreateErrorMessagePanel(OfficeWindow(), badge, false); }, 440, 80, Opens::Above,
      {Picture(20, 20, 21, 21),
       Text(L"An error occurred while saving the file. Please ensure you have sufficient privileges and try again.",
            ControlId::Description, 51, 20, 369, 40, kBodyFont)});

  const wchar_t renamedDescription[] =
      L"Click \"Reload\" to reload and sync the renamed file from the web to your computer.";
  add("Renamed", RenameMove(true, false), 400, 365, Opens::Above,
      RenameMoveRows(L"This file has been renamed", renamedDescription, L"Previous file name", L"New file name", true));
  // A rename has its button whatever the close-first flag says.
  add("RenamedCloseFirst", RenameMove(true, true), 400, 365, Opens::Above,
      RenameMoveRows(L"This file has been renamed", renamedDescription, L"Previous file name", L"New file name", true));
  add("Moved", RenameMove(false, false), 400, 365, Opens::Above,
      RenameMoveRows(L"This file has been moved to a new location",
                     L"Click \"Reload\" to reload and sync the file from the new location on the web to your computer.",
                     L"From", L"To", true));
  add("MovedCloseFirst", RenameMove(false, true), 400, 305, Opens::Above,
      RenameMoveRows(L"This file has been moved to a new location",
                     L"Please close this file so that we can sync the file from the new location on the web to your "
                     L"computer.",
                     L"From", L"To", false));

  add("ConfirmConflictSaved", ConfirmLeave(false, true, false, false, false), 440, 130, Opens::Above,
      {Text(L"Filewell Sync will close this file and open the Resolve Conflict window.", ControlId::None, 20, 20, 400,
            40, kBodyFont),
       Button(L"Continue", ControlId::ContinueToResolve, 20, 70, 130, 40)});
  add("ConfirmConflictUnsaved", ConfirmLeave(true, true, false, false, false), 440, 150, Opens::Above,
      {Text(L"Filewell Sync will close this file and open the Resolve Conflict window. Do you want to save your "
            L"changes before closing this file?",
            ControlId::None, 20, 20, 400, 60, kBodyFont),
       Button(L"Save & Continue", ControlId::SaveAndResolve, 20, 90, 170, 40),
       BorderedButton(L"Discard & Continue", ControlId::DiscardAndResolve, 210, 90, 170, 40)});
  add("ConfirmDownloadSaved", ConfirmLeave(false, false, true, false, false), 440, 155, Opens::Above,
      {Text(L"To load the latest version of this file, click \"Reload\".", ControlId::None, 20, 20, 400, 40, kBodyFont),
       Text(kNote, ControlId::None, 20, 60, 200, 25, kBodyItalicFont),
       Button(L"Reload", ControlId::Reload, 20, 95, 120, 40)});
  add("ConfirmDownloadUnsaved", ConfirmLeave(true, false, true, false, false), 440, 175, Opens::Above,
      {Text(L"This file has unsaved changes. Do you want to save your changes as a separate copy before reloading "
            L"this file?",
            ControlId::None, 20, 20, 400, 60, kBodyFont),
       Text(kNote, ControlId::None, 20, 80, 200, 25, kBodyItalicFont),
       Button(L"Save a copy & Reload", ControlId::SaveCopyAndReload, 20, 115, 180, 40),
       BorderedButton(L"Discard & Reload", ControlId::DiscardAndReload, 220, 115, 180, 40)});
  add("ConfirmRenameSaved", ConfirmLeave(false, false, false, true, false), 440, 165, Opens::Above,
      {Text(L"Click \"Continue\" to reload and sync the renamed file from the web to your computer.", ControlId::None,
            20, 20, 400, 40, kBodyFont),
       Text(kNote, ControlId::None, 20, 70, 200, 25, kBodyItalicFont),
       Button(L"Continue", ControlId::ContinueToFollow, 20, 105, 130, 40)});
  add("ConfirmRenameUnsaved", ConfirmLeave(true, false, false, true, false), 440, 185, Opens::Above,
      {Text(L"This file has unsaved changes. Do you want to save your changes before reloading and syncing the "
            L"renamed file from the web to your computer?",
            ControlId::None, 20, 20, 400, 60, kBodyFont),
       Text(kNote, ControlId::None, 20, 90, 200, 25, kBodyItalicFont),
       Button(L"Save & Continue", ControlId::SaveAndFollow, 20, 125, 170, 40),
       BorderedButton(L"Discard & Continue", ControlId::DiscardAndFollow, 210, 125, 170, 40)});
  add("ConfirmMoveSaved", ConfirmLeave(false, false, false, false, true), 440, 165, Opens::Above,
      {Text(L"Click \"Continue\" to reload and sync the file from the new location on the web to your computer.",
            ControlId::None, 20, 20, 400, 40, kBodyFont),
       Text(kNote, ControlId::None, 20, 70, 200, 25, kBodyItalicFont),
       Button(L"Continue", ControlId::ContinueToFollow, 20, 105, 130, 40)});
  add("ConfirmMoveUnsaved", ConfirmLeave(true, false, false, false, true), 440, 185, Opens::Above,
      {Text(L"This file has unsaved changes. Do you want to save your changes before reloading and syncing the file "
            L"from the new location on the web to your computer?",
            ControlId::None, 20, 20, 400, 60, kBodyFont),
       Text(kNote, ControlId::None, 20, 90, 200, 25, kBodyItalicFont),
       Button(L"Save & Continue", ControlId::SaveAndFollow, 20, 125, 170, 40),
       BorderedButton(L"Discard & Continue", ControlId::DiscardAndFollow, 210, 125, 170, 40)});
  return variants;
}

INSTANTIATE_TEST_SUITE_P(Every, PanelVariant, testing::ValuesIn(AllVariants()), VariantName);

// --- Behaviours beyond the tables ---

HWND ChildWithId(HWND parent, ControlId id) { return GetDlgItem(parent, static_cast<int>(id)); }

TEST_F(Panels, KeepsChildrenOfAHiddenPanelFlaggedVisibleButNotShown) {
  const UniqueOverlay panel(CreateConflictPanel(OfficeWindow(), badge));
  ASSERT_TRUE(panel);
  const HWND button = ChildWithId(panel.get(), ControlId::ResolveConflict);
  ASSERT_NE(nullptr, button);
  EXPECT_EQ(static_cast<LONG>(WS_VISIBLE), GetWindowLongW(button, GWL_STYLE) & WS_VISIBLE);
  EXPECT_FALSE(IsWindowVisible(button));
  ShowWindow(panel.get(), SW_SHOWNA);
  EXPECT_TRUE(IsWindowVisible(button));
}

TEST_F(Panels, ClipsEachStatusDotToTheEllipseOfFourFourThirteenThirteen) {
  const UniqueOverlay panel(CreateActiveUsersPanel(OfficeWindow(), badge, L"", L"", L"", kBob, kDanCatEve));
  ASSERT_TRUE(panel);
  int dots = 0;
  for (const ChildRow& row : ChildrenOf(panel.get())) {
    if (row.width != 12 || row.className.find(L"UI") == std::wstring::npos) continue;
    ++dots;
    const UniqueResource<GdiObjectTraits<HRGN>> region(CreateRectRgn(0, 0, 0, 0));
    ASSERT_EQ(COMPLEXREGION, GetWindowRgn(row.window, region.get())) << Describe(row);
    const UniqueResource<GdiObjectTraits<HRGN>> circle(CreateEllipticRgn(4, 4, 13, 13));
    // The same points (EqualRgn would also compare how the rectangles are
    // split, which Wine keeps differently for a window's copy).
    const UniqueResource<GdiObjectTraits<HRGN>> difference(CreateRectRgn(0, 0, 0, 0));
    EXPECT_EQ(NULLREGION, CombineRgn(difference.get(), region.get(), circle.get(), RGN_XOR)) << Describe(row);
    RECT box{};
    EXPECT_EQ(COMPLEXREGION, GetWindowRgnBox(row.window, &box));
    RECT circleBox{};
    GetRgnBox(circle.get(), &circleBox);
    EXPECT_TRUE(EqualRect(&circleBox, &box)) << box.left << "," << box.top << "," << box.right << "," << box.bottom;
  }
  EXPECT_EQ(4, dots);
}

TEST_F(Panels, ShowsTheDefaultAvatarForEveryMemberWithoutAnAvatarFile) {
  const UniqueOverlay panel(CreateActiveUsersPanel(OfficeWindow(), badge, L"", L"", L"", kBob, kDanCatEve));
  ASSERT_TRUE(panel);
  const HBITMAP fallback = SharedImage(kDefaultAvatarImage, RGB(255, 255, 255));
  ASSERT_NE(nullptr, fallback);
  int avatars = 0;
  for (const ChildRow& row : ChildrenOf(panel.get())) {
    if (row.style != kImage) continue;
    ++avatars;
    EXPECT_EQ(fallback, reinterpret_cast<HBITMAP>(SendMessageW(row.window, STM_GETIMAGE, IMAGE_BITMAP, 0)));
  }
  EXPECT_EQ(4, avatars);
}

TEST_F(Panels, ShowsTheErrorIconInTheErrorPanel) {
  const UniqueOverlay panel(CreateErrorMessagePanel(OfficeWindow(), badge, true));
  ASSERT_TRUE(panel);
  const HWND icon = GetWindow(panel.get(), GW_CHILD);
  EXPECT_EQ(SharedImage(kErrorIconImage, RGB(255, 255, 255)), reinterpret_cast<HBITMAP>(SendMessageW(icon, STM_GETIMAGE, IMAGE_BITMAP, 0)));
}

// The sync app's pictures may have transparent corners (a round photo).
// On the badge they are see-through; in a panel's picture control they are
// drawn over the panel's own white, with no grey box around them.
TEST_F(Panels, DrawsAnAvatarsTransparentCornersInThePanelsWhite) {
  const std::wstring avatar = AvatarFolderForTest() + L"\\round";
  CreateDirectoryW(AvatarFolderForTest().c_str(), nullptr);
  ASSERT_TRUE(WritePng(avatar, 40, 40, [](int x, int y) {
    const int dx = 2 * x + 1 - 40;
    const int dy = 2 * y + 1 - 40;
    return dx * dx + dy * dy <= 40 * 40 ? 0xFFC81E1Eu : 0x00000000u;  // a red disc on nothing
  }));
  const UniqueOverlay panel(
      CreateDownloadPanel(OfficeWindow(), badge, L"u1round", L"Ann Lee", L"2026-03-01 10:15", false, false));
  DeleteFileW(avatar.c_str());
  ASSERT_TRUE(panel);
  ShowWindow(panel.get(), SW_SHOWNA);
  PumpMessagesFor(400);
  POINT corner{20, 55};  // the avatar's place in the panel's client area
  ClientToScreen(panel.get(), &corner);
  const Pixels picture = CaptureScreen({corner.x, corner.y, corner.x + 40, corner.y + 40});
  EXPECT_NE(L"", SaveArtefact(picture, L"panel-avatar-corners"));
  const Rgb white{255, 255, 255};
  EXPECT_EQ(white, picture.At(0, 0));
  EXPECT_EQ(white, picture.At(39, 0));
  EXPECT_EQ(white, picture.At(0, 39));
  EXPECT_EQ(white, picture.At(39, 39));
  EXPECT_EQ((Rgb{200, 30, 30}), picture.At(20, 20));
}

TEST_F(Panels, ShowsTheSystemWarningIconInTheConflictPanel) {
  const UniqueOverlay panel(CreateConflictPanel(OfficeWindow(), badge));
  ASSERT_TRUE(panel);
  const HWND icon = ChildrenOf(panel.get()).at(1).window;
  EXPECT_EQ(LoadIconW(nullptr, IDI_WARNING), reinterpret_cast<HICON>(SendMessageW(icon, STM_GETIMAGE, IMAGE_ICON, 0)));
}

TEST_F(Panels, LeavesTheSaveCopyBoxUnticked) {
  const UniqueOverlay panel(CreateDownloadPanel(OfficeWindow(), badge, L"", L"", L"", true, false));
  ASSERT_TRUE(panel);
  EXPECT_EQ(BST_UNCHECKED, SendMessageW(ChildWithId(panel.get(), ControlId::SaveSeparateCopy), BM_GETCHECK, 0, 0));
}

TEST_F(Panels, KeepsTheBodyFontForLaterPanelsOnceAPanelWithALinkIsDestroyed) {
  // The role fonts are made once and shared by every panel: a link that
  // took its font down with it would leave later panels in the system font.
  DestroyWindow(CreateSafeToEditPanel(OfficeWindow(), badge, L"", L"", L""));
  DestroyWindow(CreateErrorMessagePanel(OfficeWindow(), badge, true));
  const UniqueOverlay panel(CreateConflictPanel(OfficeWindow(), badge));
  ASSERT_TRUE(panel);
  const ChildRow description = ChildrenOf(panel.get()).at(2);
  EXPECT_EQ(L"This file currently has a different version on the web compared to your computer.", description.text);
  EXPECT_EQ(Describe({L"Static", description.text, ControlId::Description, 70, 55, 310, 40, kText, kBodyFont, 0}),
            Describe(description));
}

TEST_F(Panels, RoundsEachPaintedButtonWithinItsWholeWindow) {
  // The rounded region is in window coordinates: it must be the window's
  // size, border included, for the bordered second choice as for the first.
  const UniqueOverlay panel(CreateConfirmLeavePanel(OfficeWindow(), badge, true, false, true, false, false));
  ASSERT_TRUE(panel);
  ShowWindow(panel.get(), SW_SHOWNA);
  RedrawWindow(panel.get(), nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW | RDW_ALLCHILDREN);
  for (const int id : {static_cast<int>(ControlId::SaveCopyAndReload), static_cast<int>(ControlId::DiscardAndReload)}) {
    const HWND button = GetDlgItem(panel.get(), id);
    ASSERT_NE(nullptr, button) << id;
    const UniqueResource<GdiObjectTraits<HRGN>> region(CreateRectRgn(0, 0, 0, 0));
    ASSERT_EQ(COMPLEXREGION, GetWindowRgn(button, region.get())) << id;
    const UniqueResource<GdiObjectTraits<HRGN>> rounded(CreateRoundRectRgn(0, 0, 180, 40, 10, 10));
    const UniqueResource<GdiObjectTraits<HRGN>> difference(CreateRectRgn(0, 0, 0, 0));
    EXPECT_EQ(NULLREGION, CombineRgn(difference.get(), region.get(), rounded.get(), RGN_XOR)) << id;
  }
}

TEST_F(Panels, BuildsNoConfirmationWhenNoSituationIsGiven) {
  EXPECT_EQ(nullptr, CreateConfirmLeavePanel(OfficeWindow(), badge, true, false, false, false, false));
}

TEST_F(Panels, ScrollsAListOfNineMembersOverTheirFourHundredNinetyFivePixels) {
  // 9 × 55 = 495 pixels of rows in a list 460 high: the last status line
  // lies below the list's bottom until the list is scrolled.
  const UniqueOverlay panel(CreateActiveUsersPanel(OfficeWindow(), badge, L"", L"", L"", {}, Viewers(9)));
  ASSERT_TRUE(panel);
  const std::vector<ChildRow> rows = ChildrenOf(panel.get());
  const ChildRow& lastStatus = rows.at(kListRow + 4 * 9 - 1);
  EXPECT_EQ(L"Viewing now", lastStatus.text);
  EXPECT_EQ(495, lastStatus.y + lastStatus.height);
}

// --- A step that fails ---

// The system's text for an error, as the log writes it after the dash.
std::string SystemText(DWORD error) {
  wchar_t buffer[512];
  DWORD length = FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, error,
                                MAKELANGID(LANG_NEUTRAL, SUBLANG_DEFAULT), buffer, 512, nullptr);
  while (length > 0 && (buffer[length - 1] == L'\r' || buffer[length - 1] == L'\n' || buffer[length - 1] == L' ')) {
    --length;
  }
  return Utf8(std::wstring(buffer, length));
}

// A window handle that names no window.
const HWND kGone = reinterpret_cast<HWND>(static_cast<INT_PTR>(0x7ff0));

struct FailingStep {
  std::string name;
  std::function<HWND(HWND office, HWND badge)> build;
  std::string officeRectText;
  std::string badgeRectText;
};

class PanelWithoutItsWindows : public Panels, public testing::WithParamInterface<FailingStep> {};

TEST_P(PanelWithoutItsWindows, GivesNoPanelAndOneLineWhenTheOfficeWindowIsGone) {
  ASSERT_FALSE(IsWindow(kGone));
  EXPECT_EQ(nullptr, GetParam().build(kGone, badge));
  EXPECT_EQ(std::vector<std::string>{GetParam().officeRectText + SystemText(ERROR_INVALID_WINDOW_HANDLE)},
            ErrorLines());
}

TEST_P(PanelWithoutItsWindows, GivesNoPanelAndOneLineWhenTheBadgeIsGone) {
  EXPECT_EQ(nullptr, GetParam().build(OfficeWindow(), kGone));
  EXPECT_EQ(std::vector<std::string>{GetParam().badgeRectText + SystemText(ERROR_INVALID_WINDOW_HANDLE)}, ErrorLines());
}

FailingStep Failing(std::string name, std::function<HWND(HWND, HWND)> build, const std::string& what) {
  return {std::move(name), std::move(build), "couldn't get ms office window rect while creating " + what + " - ",
          "couldn't get parent window rect while creating " + what + " - "};
}

INSTANTIATE_TEST_SUITE_P(
    Every, PanelWithoutItsWindows,
    testing::Values(
        Failing("SafeToEdit", [](HWND o, HWND b) { return CreateSafeToEditPanel(o, b, L"", L"", L""); },
                "safe to edit sub overlay UI"),
        Failing("ActiveUsers", [](HWND o, HWND b) { return CreateActiveUsersPanel(o, b, L"", L"", L"", kBob, {}); },
                "active users sub overlay UI"),
        Failing("Download", [](HWND o, HWND b) { return CreateDownloadPanel(o, b, L"", L"", L"", false, false); },
                "download sub overlay UI"),
        Failing("Conflict", [](HWND o, HWND b) { return CreateConflictPanel(o, b); }, "conflict sub overlay UI"),
        Failing("Delete", [](HWND o, HWND b) { return CreateDeletePanel(o, b); }, "delete sub overlay UI"),
        Failing("Error", [](HWND o, HWND b) { return CreateErrorMessagePanel(o, b, true); }, "error msg sub overlay UI"),
        Failing("RenameMove", [](HWND o, HWND b) { return CreateRenameMovePanel(o, b, true, false, L"a", L"b"); },
                "rename/move sub overlay UI"),
        Failing("ConfirmLeave",
                [](HWND o, HWND b) { return CreateConfirmLeavePanel(o, b, false, true, false, false, false); },
                "confirm leave file UI")),
    [](const testing::TestParamInfo<FailingStep>& info) { return info.param.name; });
}  // namespace

// --- What colours the controls are given ---

namespace {
struct Painted {
  COLORREF text;
  COLORREF background;
};

// The colours the panel (or the box holding the control) gives a static
// control at WM_CTLCOLORSTATIC, as Windows asks before drawing it.
Painted ColoursGivenTo(HWND control) {
  const HDC dc = CreateCompatibleDC(nullptr);
  SetTextColor(dc, RGB(1, 2, 3));  // sentinels
  SetBkColor(dc, RGB(4, 5, 6));
  SendMessageW(GetParent(control), WM_CTLCOLORSTATIC, reinterpret_cast<WPARAM>(dc), reinterpret_cast<LPARAM>(control));
  const Painted painted{GetTextColor(dc), GetBkColor(dc)};
  DeleteDC(dc);
  return painted;
}

void ExpectColours(HWND control, COLORREF text, COLORREF background, Caller caller = {}) {
  TRACE_CALLER(caller);
  ASSERT_NE(control, nullptr);
  const Painted painted = ColoursGivenTo(control);
  EXPECT_EQ(painted.text, text);
  EXPECT_EQ(painted.background, background);
}
}  // namespace

TEST_F(Panels, ColoursAnEditingTitleRedAndItsAdviceDarkGrey) {
  const UniqueOverlay panel(CreateActiveUsersPanel(OfficeWindow(), badge, L"", L"", L"", {{L"e1", L"Eve"}}, {}));
  ASSERT_TRUE(panel);
  ExpectColours(ChildWithId(panel.get(), ControlId::EditingTitle), RGB(190, 30, 30), RGB(255, 255, 255));
  ExpectColours(ChildWithId(panel.get(), ControlId::Description), RGB(68, 68, 68), RGB(255, 255, 255));
  ExpectColours(ChildWithId(panel.get(), ControlId::Rule), RGB(200, 200, 200), RGB(255, 255, 255));
}

TEST_F(Panels, ColoursAViewingTitleGreenAndTheMembersNearBlack) {
  const UniqueOverlay panel(CreateActiveUsersPanel(OfficeWindow(), badge, L"", L"", L"", {}, Viewers(1)));
  ASSERT_TRUE(panel);
  ExpectColours(ChildWithId(panel.get(), ControlId::ViewingTitle), RGB(20, 120, 60), RGB(255, 255, 255));
  int members = 0;
  for (const ChildRow& row : ChildrenOf(panel.get())) {
    if (row.id != ControlId::MemberRow) continue;
    ExpectColours(row.window, RGB(30, 30, 30), RGB(255, 255, 255));
    ++members;
  }
  EXPECT_EQ(members, 2);  // the name and "Viewing now"
}

TEST_F(Panels, ColoursTheDeleteNoteDarkOnItsGreyBox) {
  const UniqueOverlay panel(CreateDeletePanel(OfficeWindow(), badge));
  ASSERT_TRUE(panel);
  HWND note = nullptr;
  for (const ChildRow& row : ChildrenOf(panel.get())) {
    if (row.id == ControlId::Note) note = row.window;
  }
  ExpectColours(note, RGB(40, 40, 40), RGB(230, 230, 230));
}

TEST_F(Panels, LeavesPlainTextsAndTheCheckBoxBlackOnWhite) {
  const UniqueOverlay panel(CreateDownloadPanel(OfficeWindow(), badge, L"", L"", L"", true, false));
  ASSERT_TRUE(panel);
  ExpectColours(ChildrenOf(panel.get()).at(0).window, RGB(0, 0, 0), RGB(255, 255, 255));
  ExpectColours(ChildWithId(panel.get(), ControlId::SaveSeparateCopy), RGB(0, 0, 0), RGB(255, 255, 255));
}

TEST_F(Panels, KeepsTheDownloadButtonSquareAndRoundsHide) {
  const UniqueOverlay download(CreateDownloadPanel(OfficeWindow(), badge, L"", L"", L"", false, false));
  const UniqueOverlay safe(CreateSafeToEditPanel(OfficeWindow(), badge, L"", L"", L""));
  ASSERT_TRUE(download);
  ASSERT_TRUE(safe);
  for (HWND panel : {download.get(), safe.get()}) {
    ShowWindow(panel, SW_SHOWNA);
    RedrawWindow(panel, nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW | RDW_ALLCHILDREN);
  }
  const UniqueResource<GdiObjectTraits<HRGN>> region(CreateRectRgn(0, 0, 0, 0));
  EXPECT_EQ(ERROR, GetWindowRgn(ChildWithId(download.get(), ControlId::Download), region.get()));
  EXPECT_EQ(COMPLEXREGION, GetWindowRgn(ChildWithId(safe.get(), ControlId::Hide), region.get()));
}
