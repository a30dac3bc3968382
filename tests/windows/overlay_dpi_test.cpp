// The overlay on a screen at another DPI, read back as Windows reports it:
// the badge, the status strips and a panel at their scaled rectangles and
// font heights, pictures drawn at the scaled size (or from their
// double-size twin), and the overlay built again when the Office window's
// DPI changes. The same program runs in the usual prefix (96 DPI) and in
// prefixes at 144 and 192 DPI (LogPixels); QSYNC_TEST_DPI says which.
#include <windows.h>
#include <commctrl.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <string>
#include <vector>

#include "common/text.h"
#include "common/unique_resource.h"
#include "overlay/images/image_file_names.h"
#include "overlay/images/image_loading.h"
#include "overlay/images/overlay_images.h"
#include "overlay/windows/panels.h"
#include "overlay/windows/status_overlays.h"
#include "overlay/windows/window_dpi.h"
#include "tests/caller.h"
#include "tests/windows/overlay_test_support.h"
#include "tests/windows/tick_test_support.h"
#include "tests/windows/wine_test_support.h"

namespace {
using UniqueOverlay = UniqueResource<OverlayWindowTraits>;

// The DPI the prefix was made with.
int PrefixDpi() {
  const char* text = std::getenv("QSYNC_TEST_DPI");
  return text != nullptr ? std::atoi(text) : 96;
}

// The numbers each DPI must give, written out rather than computed, so a
// wrong rule cannot agree with itself.
struct AtDpi {
  int dpi;
  POINT badgeHome;  // in kOfficeRect {100, 50, 1100, 750}
  int badge;        // the badge's side
  // "No Internet Connection" in bold Arial widths needs more than the
  // designed 167 (× dpi / 96): its title, and the strip with it, grow to the
  // text's measured width (177, 267 and 359 at 96, 144 and 192 DPI; text
  // widths do not scale exactly with the font's height).
  SIZE noInternet;
  RECT noInternetImage;  // x, y, width, height
  RECT noInternetTitle;
  int overlayTitleFont;
  SIZE loading;
  RECT loadingImage;
  RECT loadingTitle;
  RECT loadingBar;
  SIZE conflict;
  RECT conflictTitle;
  RECT conflictDescription;
  RECT conflictButton;
  int titleFont;
  int bodyFont;
  // A 400-wide panel's left edge against the badge at home: right edges
  // aligned, or left edges where that would leave the Office window.
  int panelLeft;
  // Region boxes (GetWindowRgnBox) leave out the ellipse's last column and
  // row: the status dot's circle, and a conflict button's rounded shape.
  RECT dotRegion;
  // The rules (a line of hyphens, id 1005) have no font of their own at 96
  // DPI; elsewhere the default size scaled (16 at 96 DPI), so they still
  // reach across the panel. 0: none.
  int ruleFont;
  SIZE plainPicture;   // a 20 × 10 file with no twin
  SIZE twinPicture;    // a 20 × 10 file beside a 40 × 20 twin
  bool twinChosen;
};

const AtDpi kAt96{96,         {800, 650},        70,  {245, 48},          {16, 10, 28, 28},   {54, 16, 177, 21},
                  18,         {184, 58},         {12, 10, 32, 32},    {54, 14, 116, 21},  {0, 52, 184, 6},
                  {400, 170}, {20, 20, 360, 25}, {70, 55, 310, 40},   {20, 110, 170, 40}, 19,
                  18,         470,               {4, 4, 12, 12},    0,  {20, 10},            {20, 10},           false};
const AtDpi kAt144{144,        {650, 600},        105, {369, 72},          {24, 15, 42, 42},   {81, 24, 267, 32},
                   27,         {276, 87},         {18, 15, 48, 48},    {81, 21, 174, 32},  {0, 78, 276, 9},
                   {600, 255}, {30, 30, 540, 38}, {105, 83, 465, 60},  {30, 165, 255, 60}, 29,
                   27,         155,               {6, 6, 19, 19},    24, {30, 15},            {30, 15},           true};
const AtDpi kAt192{192,        {500, 550},        140, {495, 96},          {32, 20, 56, 56},   {108, 32, 359, 42},
                   36,         {368, 116},        {24, 20, 64, 64},    {108, 28, 232, 42}, {0, 104, 368, 12},
                   {800, 340}, {40, 40, 720, 50}, {140, 110, 620, 80}, {40, 220, 340, 80}, 38,
                   36,         500,               {8, 8, 25, 25},    32, {40, 20},            {40, 20},           true};

const AtDpi& Expected() {
  switch (PrefixDpi()) {
    case 144: return kAt144;
    case 192: return kAt192;
    default: return kAt96;
  }
}

// Office is per-monitor DPI aware; so is this stand-in for it.
void BecomePerMonitorAware() {
  using SetContext = BOOL(WINAPI*)(HANDLE);
  const auto set = reinterpret_cast<SetContext>(
      reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"user32.dll"), "SetProcessDpiAwarenessContext")));
  if (set != nullptr && (set(reinterpret_cast<HANDLE>(-4)) || set(reinterpret_cast<HANDLE>(-3)))) return;
  SetProcessDPIAware();
}

void ExpectChildAt(const ChildRow& row, const RECT& box, int fontHeight, Caller caller = {}) {
  TRACE_CALLER(caller);
  EXPECT_EQ(row.x, box.left) << Describe(row);
  EXPECT_EQ(row.y, box.top) << Describe(row);
  EXPECT_EQ(row.width, box.right) << Describe(row);
  EXPECT_EQ(row.height, box.bottom) << Describe(row);
  if (fontHeight != 0) {
    EXPECT_EQ(row.font.height, fontHeight) << Describe(row);
  }
}

SIZE ClientSizeOf(HWND window) {
  RECT client{};
  GetClientRect(window, &client);
  return {client.right, client.bottom};
}

class OverlayAtDpi : public testing::Test {
 protected:
  static void SetUpTestSuite() { BecomePerMonitorAware(); }
  void SetUp() override { host_.ClearLog(); }
  HWND Office() { return host_.mainWindow(); }
  // A screenshot of the area, kept among the test artefacts.
  // The part on the 1280 × 800 screen: at 192 DPI a panel can reach past it.
  static void Keep(RECT area, const std::string& what) {
    PumpMessagesFor(200);
    area.right = std::min<LONG>(area.right, GetSystemMetrics(SM_CXSCREEN));
    area.bottom = std::min<LONG>(area.bottom, GetSystemMetrics(SM_CYSCREEN));
    SaveArtefact(CaptureScreen(area), L"dpi-" + std::to_wstring(PrefixDpi()) + L"-" + Widen(what.c_str()));
  }
  OverlayHost host_{SimHost::Word};
};
}  // namespace

TEST_F(OverlayAtDpi, ReadsThePrefixDpiFromTheOfficeWindow) {
  EXPECT_EQ(DpiOfWindow(Office()), Expected().dpi);
}

TEST_F(OverlayAtDpi, PutsTheBadgeAtItsScaledHomeAndSizeWithItsPanelAgainstIt) {
  const AtDpi& at = Expected();
  AnswerFields answer = QuietAnswer();
  AddViewers(answer, L"u-ann", L"Ann Lee");
  const std::wstring path = host_.OpenAnswered(L"scaled", answer)->fullName();
  Tick();
  PumpMessages();
  const HWND badge = BadgeOf(path);
  ASSERT_NE(badge, nullptr);
  EXPECT_TRUE(RectIs(WindowRectOf(badge), at.badgeHome.x, at.badgeHome.y, at.badgeHome.x + at.badge,
                     at.badgeHome.y + at.badge));
  const HWND panel = PanelOf(path);
  ASSERT_NE(panel, nullptr);
  const RECT place = WindowRectOf(panel);
  EXPECT_EQ(place.left, at.panelLeft);
  EXPECT_EQ(place.right - place.left, at.conflict.cx);  // 400 wide, like the conflict panel
  EXPECT_EQ(place.bottom, at.badgeHome.y);
  Keep({place.left - 10, place.top - 10, place.right + 10, at.badgeHome.y + at.badge + 10},
       "viewing-only");
}

TEST_F(OverlayAtDpi, DrawsTheBadgePictureAtTheScaledSize) {
  SIZE size = SizeOf(SharedImage(kDriveTickImage, kOverlayColourKey, DpiOfWindow(Office())));
  EXPECT_EQ(size.cx, Expected().badge);
  EXPECT_EQ(size.cy, Expected().badge);
  const UniqueOverlay badge(CreateMainOverlay(Office(), 300, 200));
  ASSERT_TRUE(badge);
  EXPECT_TRUE(RectIs(WindowRectOf(badge.get()), 300, 200, 300 + Expected().badge, 200 + Expected().badge));
}

TEST_F(OverlayAtDpi, BuildsTheNoInternetStripAtTheScaledRectangles) {
  const AtDpi& at = Expected();
  HBITMAP drive = SharedImage(kDriveMonoBigImage, RGB(255, 255, 255), at.dpi);
  const UniqueOverlay strip(CreateNoInternetOverlay(Office(), drive, 300, 200));
  ASSERT_TRUE(strip);
  EXPECT_TRUE(RectIs(WindowRectOf(strip.get()), 300, 200, 300 + at.noInternet.cx, 200 + at.noInternet.cy));
  const std::vector<ChildRow> rows = ChildrenOf(strip.get());
  ASSERT_EQ(rows.size(), 2u);
  ExpectChildAt(rows[0], at.noInternetImage, 0);
  ExpectChildAt(rows[1], at.noInternetTitle, at.overlayTitleFont);
  EXPECT_EQ(rows[1].font.weight, 700);
  Keep({290, 190, 310 + at.noInternet.cx, 210 + at.noInternet.cy}, "no-internet");
}

TEST_F(OverlayAtDpi, BuildsTheLoadingStripAtTheScaledRectangles) {
  const AtDpi& at = Expected();
  HBITMAP drive = SharedImage(kDriveMonoBigImage, RGB(25, 110, 180), at.dpi);
  const UniqueOverlay strip(CreateLoadingOverlay(Office(), drive, 300, 200));
  ASSERT_TRUE(strip);
  EXPECT_TRUE(RectIs(WindowRectOf(strip.get()), 300, 200, 300 + at.loading.cx, 200 + at.loading.cy));
  const std::vector<ChildRow> rows = ChildrenOf(strip.get());
  ASSERT_EQ(rows.size(), 3u);
  ExpectChildAt(rows[0], at.loadingImage, 0);
  ExpectChildAt(rows[1], at.loadingTitle, at.overlayTitleFont);
  ExpectChildAt(rows[2], at.loadingBar, 0);
  const SIZE bar = ClientSizeOf(rows[2].window);
  EXPECT_EQ(bar.cx, at.loadingBar.right);
  Keep({290, 190, 310 + at.loading.cx, 210 + at.loading.cy}, "loading");
}

TEST_F(OverlayAtDpi, BuildsTheConflictPanelAtTheScaledRectanglesAndFonts) {
  const AtDpi& at = Expected();
  const UniqueOverlay badge(CreateMainOverlay(Office(), at.badgeHome.x, at.badgeHome.y));
  ASSERT_TRUE(badge);
  const UniqueOverlay panel(CreateConflictPanel(Office(), badge.get()));
  ASSERT_TRUE(panel);
  const RECT place = WindowRectOf(panel.get());
  EXPECT_TRUE(RectIs(place, at.panelLeft, at.badgeHome.y - at.conflict.cy, at.panelLeft + at.conflict.cx,
                     at.badgeHome.y));
  const std::vector<ChildRow> rows = ChildrenOf(panel.get());
  ASSERT_EQ(rows.size(), 4u);
  ExpectChildAt(rows[0], at.conflictTitle, at.titleFont);
  ExpectChildAt(rows[2], at.conflictDescription, at.bodyFont);
  ExpectChildAt(rows[3], at.conflictButton, at.bodyFont);
  // The button's rounded region spans the whole scaled button.
  ShowWindow(panel.get(), SW_SHOWNA);
  PumpMessagesFor(100);
  RECT region{-1, -1, -1, -1};
  ASSERT_NE(GetWindowRgnBox(rows[3].window, &region), ERROR);
  EXPECT_TRUE(RectIs(region, 0, 0, at.conflictButton.right - 1, at.conflictButton.bottom - 1));
  Keep({place.left - 10, place.top - 10, place.right + 10, place.bottom + 10}, "conflict");
}

TEST_F(OverlayAtDpi, ClipsAMembersStatusDotToTheScaledCircle) {
  const AtDpi& at = Expected();
  const UniqueOverlay badge(CreateMainOverlay(Office(), at.badgeHome.x, at.badgeHome.y));
  ASSERT_TRUE(badge);
  const UniqueOverlay panel(CreateActiveUsersPanel(Office(), badge.get(), L"", L"", L"", {{L"e-bob", L"Bob Stone"}}, {}));
  ASSERT_TRUE(panel);
  HWND dot = nullptr;
  for (const ChildRow& row : ChildrenOf(panel.get())) {
    if (row.className == L"QelvoFilewellSync-MSOfficeAddin-RedUI") dot = row.window;
  }
  ASSERT_NE(dot, nullptr);
  RECT box{-1, -1, -1, -1};
  ASSERT_NE(GetWindowRgnBox(dot, &box), ERROR);
  EXPECT_TRUE(RectIs(box, at.dotRegion.left, at.dotRegion.top, at.dotRegion.right, at.dotRegion.bottom));
}

TEST_F(OverlayAtDpi, DrawsAPictureAtItsScaledSizeOrFromItsDoubleSizeTwin) {
  const AtDpi& at = Expected();
  const std::wstring folder = TestTempFolder();
  const std::wstring plain = folder + L"\\dpi-plain.png";
  const std::wstring paired = folder + L"\\dpi-paired.png";
  // Red at the plain size, blue at double size: the colour tells which was drawn.
  ASSERT_TRUE(WritePng(plain, 20, 10, [](int, int) { return 0xFFFF0000u; }));
  ASSERT_TRUE(WritePng(paired, 20, 10, [](int, int) { return 0xFFFF0000u; }));
  ASSERT_TRUE(WritePng(folder + L"\\dpi-paired@2x.png", 40, 20, [](int, int) { return 0xFF0000FFu; }));

  HBITMAP fromPlain = LoadImageBitmap(plain, kOverlayColourKey, at.dpi);
  HBITMAP fromPair = LoadImageBitmap(paired, kOverlayColourKey, at.dpi);
  ASSERT_NE(fromPlain, nullptr);
  ASSERT_NE(fromPair, nullptr);
  EXPECT_EQ(SizeOf(fromPlain).cx, at.plainPicture.cx);
  EXPECT_EQ(SizeOf(fromPlain).cy, at.plainPicture.cy);
  EXPECT_EQ(SizeOf(fromPair).cx, at.twinPicture.cx);
  EXPECT_EQ(SizeOf(fromPair).cy, at.twinPicture.cy);
  const Pixels plainPixels = PixelsOf(fromPlain);
  const Pixels pairPixels = PixelsOf(fromPair);
  EXPECT_EQ(plainPixels.At(plainPixels.width / 2, plainPixels.height / 2), (Rgb{255, 0, 0}));
  EXPECT_EQ(pairPixels.At(pairPixels.width / 2, pairPixels.height / 2),
            at.twinChosen ? (Rgb{0, 0, 255}) : (Rgb{255, 0, 0}));
  DeleteObject(fromPlain);
  DeleteObject(fromPair);
}

TEST_F(OverlayAtDpi, RefusesAnOversizedDoubleSizeTwinAndSaysWhy) {
  if (Expected().dpi == 96) GTEST_SKIP() << "no twin is looked for at 96 DPI";
  const std::wstring folder = TestTempFolder();
  const std::wstring paired = folder + L"\\dpi-huge.png";
  ASSERT_TRUE(WritePng(paired, 20, 10, [](int, int) { return 0xFFFF0000u; }));
  ASSERT_TRUE(WritePng(folder + L"\\dpi-huge@2x.png", 1100, 20, [](int, int) { return 0xFF0000FFu; }));
  StartFreshLog();
  EXPECT_EQ(LoadImageBitmap(paired, kOverlayColourKey, Expected().dpi), nullptr);
  const std::vector<std::string> errors = ErrorLines();
  ASSERT_EQ(errors.size(), 1u);
  EXPECT_NE(errors[0].find("dpi-huge@2x.png"), std::string::npos) << errors[0];
}

TEST_F(OverlayAtDpi, BuildsTheOverlayAgainWhenTheOfficeWindowDpiChanged) {
  const AtDpi& at = Expected();
  AnswerFields answer = QuietAnswer();
  AddViewers(answer, L"u-ann", L"Ann Lee");
  const std::wstring path = host_.OpenAnswered(L"moved", answer)->fullName();
  Tick();
  const HWND before = BadgeOf(path);
  ASSERT_NE(before, nullptr);
  Tick();
  EXPECT_EQ(BadgeOf(path), before) << "a tick at the same DPI keeps the badge";

  // As if the badge had been built on the monitor the Office window came from.
  const int other = at.dpi == 96 ? 144 : 96;
  RememberBuiltDpi(before, other);
  host_.ClearLog();
  Tick();
  PumpMessages();
  const HWND after = BadgeOf(path);
  ASSERT_NE(after, nullptr);
  EXPECT_FALSE(IsWindow(before));
  EXPECT_TRUE(RectIs(WindowRectOf(after), at.badgeHome.x, at.badgeHome.y, at.badgeHome.x + at.badge,
                     at.badgeHome.y + at.badge));
  EXPECT_EQ(BuiltDpiOf(after), at.dpi);
  EXPECT_NE(PanelOf(path), nullptr);
  EXPECT_EQ(CountOf(InfoMessages(), "office window dpi changed from " + std::to_string(other) + " to " +
                                        std::to_string(at.dpi) + ", rebuilding overlay: " + Narrow(path)),
            1u);
}

TEST_F(OverlayAtDpi, GivesTheRulesAFontThatFollowsTheDpi) {
  const AtDpi& at = Expected();
  const UniqueOverlay badge(CreateMainOverlay(Office(), at.badgeHome.x, at.badgeHome.y));
  ASSERT_TRUE(badge);
  const UniqueOverlay panel(CreateActiveUsersPanel(Office(), badge.get(), L"", L"", L"", {{L"e-bob", L"Bob Stone"}}, {}));
  ASSERT_TRUE(panel);
  int rules = 0;
  for (const ChildRow& row : ChildrenOf(panel.get())) {
    if (row.id != ControlId::Rule) continue;
    ++rules;
    EXPECT_EQ(row.font.set, at.ruleFont != 0) << Describe(row);
    if (at.ruleFont != 0) {
      EXPECT_EQ(row.font.height, at.ruleFont) << Describe(row);
    }
  }
  EXPECT_EQ(rules, 2);
}
