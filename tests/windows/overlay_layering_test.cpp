// What the user sees: the badge laid onto the Office window with the colour
// key, the loading and no-internet strips, and panels opened against the
// badge, read back from the screen pixel by pixel. Every screenshot is kept
// under build/windows/test-artefacts/ for a person to look at.
#include <windows.h>

#include <gtest/gtest.h>

#include <string>

#include "common/unique_resource.h"
#include "overlay/images/image_file_names.h"
#include "overlay/images/image_loading.h"
#include "overlay/images/layering.h"
#include "overlay/images/overlay_images.h"
#include "overlay/windows/panels.h"
#include "overlay/windows/status_overlays.h"
#include "tests/caller.h"
#include "tests/windows/overlay_test_support.h"
#include "tests/windows/wine_test_support.h"

namespace {
using UniqueOverlay = UniqueResource<OverlayWindowTraits>;

constexpr COLORREF kColourKey = RGB(169, 169, 169);
const Rgb kOffice = RgbOf(kOfficeColour);
constexpr Rgb kWhite{255, 255, 255};
constexpr Rgb kBlack{0, 0, 0};
// WS_BORDER is drawn in the system's window-frame colour (Wine's default
// theme makes it a mid grey, Windows' a dark one).
Rgb Border() { return RgbOf(GetSysColor(COLOR_WINDOWFRAME)); }
constexpr Rgb kStripBlue{25, 110, 180};
constexpr Rgb kDriveGrey{92, 100, 112};

// "drive_tick" of "drive_tick.png", to name a screenshot after its image.
std::wstring Stem(const wchar_t* fileName) {
  const std::wstring name = fileName;
  return name.substr(0, name.rfind(L'.'));
}

std::wstring Installed(const wchar_t* fileName) {
  return AppDataFolder() + L"\\QelvoFilewell\\bin\\images\\" + fileName;
}

// The screen around a window (margin pixels on every side), kept as an
// artefact; coordinates in the picture are the window's own plus margin.
Pixels Screenshot(HWND window, int margin, const std::wstring& name, Caller caller = {}) {
  TRACE_CALLER(caller);
  PumpMessagesFor(400);
  RECT area = WindowRectOf(window);
  InflateRect(&area, margin, margin);
  const Pixels picture = CaptureScreen(area);
  EXPECT_NE(L"", SaveArtefact(picture, name));
  return picture;
}

Pixels ScreenshotOf(const RECT& area, const std::wstring& name, Caller caller = {}) {
  TRACE_CALLER(caller);
  PumpMessagesFor(400);
  const Pixels picture = CaptureScreen(area);
  EXPECT_NE(L"", SaveArtefact(picture, name));
  return picture;
}

// A badge at (x, y) showing the picture of that file.
UniqueOverlay BadgeShowing(const std::wstring& path, POINT at, Caller caller = {}) {
  TRACE_CALLER(caller);
  UniqueOverlay badge(CreateMainOverlay(OfficeWindow(), at.x, at.y));
  EXPECT_TRUE(badge);
  const UniqueHbitmap picture(LoadImageBitmap(path));
  EXPECT_TRUE(picture);
  EXPECT_NE(0, ApplyLayering(badge.get(), picture.get(), kColourKey));
  return badge;
}

class OverlayOnScreen : public testing::Test {
 protected:
  static void SetUpTestSuite() { SetUpOverlayStage(); }
  void SetUp() override {
    // Nothing of an earlier test may stand in front of the Office window.
    SetWindowPos(OfficeWindow(), HWND_TOP, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
    PumpMessagesFor(100);
  }
};

TEST_F(OverlayOnScreen, ShowsTheOfficeWindowsOwnColourAroundTheHomeOfTheBadge) {
  // The stage itself, before anything is laid on it: what the other
  // pictures are compared with.
  const POINT home = BadgeHome();
  const Pixels picture = ScreenshotOf({home.x - 10, home.y - 10, home.x + 80, home.y + 80}, L"office-window-at-badge-home");
  EXPECT_EQ(90 * 90, picture.CountOf(kOffice, 0, 0, 90, 90));
}

class BadgeOnScreen : public OverlayOnScreen, public testing::WithParamInterface<const wchar_t*> {};

TEST_P(BadgeOnScreen, ShowsTheOfficeWindowThroughItsTransparentCorners) {
  const UniqueOverlay badge = BadgeShowing(Installed(GetParam()), BadgeHome());
  const Pixels picture = Screenshot(badge.get(), 10, L"badge-" + Stem(GetParam()));
  // The badge's own corners, at the margin's offset.
  EXPECT_EQ(kOffice, picture.At(10, 10));
  EXPECT_EQ(kOffice, picture.At(10 + 69, 10));
  EXPECT_EQ(kOffice, picture.At(10, 10 + 69));
  EXPECT_EQ(kOffice, picture.At(10 + 69, 10 + 69));
}

TEST_P(BadgeOnScreen, ShowsItsOwnColoursInside) {
  const UniqueOverlay badge = BadgeShowing(Installed(GetParam()), BadgeHome());
  const Pixels picture = Screenshot(badge.get(), 10, L"badge-inside-" + Stem(GetParam()));
  EXPECT_EQ(kWhite, picture.At(10 + 35, 10 + 35));
  EXPECT_EQ(kStripBlue, picture.At(10 + 10, 10 + 35));
}

TEST_P(BadgeOnScreen, ShowsNoPixelOfTheColourKey) {
  const UniqueOverlay badge = BadgeShowing(Installed(GetParam()), BadgeHome());
  const Pixels picture = Screenshot(badge.get(), 0, L"badge-no-key-" + Stem(GetParam()));
  EXPECT_EQ(0, picture.CountOf(RgbOf(kColourKey), 0, 0, 70, 70));
}

TEST_P(BadgeOnScreen, StandsAtTheHomeGivenWithItsPicturesSize) {
  const POINT home = BadgeHome();
  const UniqueOverlay badge = BadgeShowing(Installed(GetParam()), home);
  ExpectWindowRect(badge.get(), home.x, home.y, 70, 70);
}

INSTANTIATE_TEST_SUITE_P(EachBadgeImage, BadgeOnScreen,
                         testing::Values(L"drive_tick.png", L"drive_view.png", L"drive_warn.png", L"drive_error.png",
                                         L"drive_download.png"),
                         [](const testing::TestParamInfo<const wchar_t*>& info) {
                           std::string name;
                           for (const char c : Utf8(info.param)) {
                             if (c == '.') break;
                             if (isalnum(static_cast<unsigned char>(c))) name += c;
                           }
                           return name;
                         });

TEST_F(OverlayOnScreen, ShowsNothingOfABadgeBeforeItsPictureIsLaidOn) {
  const POINT home = BadgeHome();
  const UniqueOverlay badge(CreateMainOverlay(OfficeWindow(), home.x, home.y));
  ASSERT_TRUE(badge);
  const Pixels picture = Screenshot(badge.get(), 0, L"badge-before-layering");
  EXPECT_EQ(70 * 70, picture.CountOf(kOffice, 0, 0, 70, 70));
}

TEST_F(OverlayOnScreen, SeesThroughAnOpaquePixelOfExactlyTheKeyGrey) {
  // Red, with an opaque 20 × 20 square of RGB(169, 169, 169) in the middle.
  const std::wstring path = TestTempFolder() + L"\\opaque-key-grey.png";
  ASSERT_TRUE(WritePng(path, 70, 70, [](int x, int y) -> std::uint32_t {
    const bool square = x >= 25 && x < 45 && y >= 25 && y < 45;
    return square ? 0xFFA9A9A9u : 0xFFC81E1Eu;
  }));
  const UniqueOverlay badge = BadgeShowing(path, BadgeHome());
  const Pixels picture = Screenshot(badge.get(), 10, L"badge-opaque-key-grey");
  EXPECT_EQ(20 * 20, picture.CountOf(kOffice, 10 + 25, 10 + 25, 20, 20));
  EXPECT_EQ(70 * 70 - 20 * 20, picture.CountOf({200, 30, 30}, 10, 10, 70, 70));
}

TEST_F(OverlayOnScreen, ShowsTheLoadingStripBlueWithTheDriveTheTitleAndABarAtTheBottom) {
  const RECT office = WindowRectOf(OfficeWindow());
  const UniqueOverlay strip(
      CreateLoadingOverlay(OfficeWindow(), SharedImage(kDriveMonoBigImage), office.left + 100, office.top + 100));
  ASSERT_TRUE(strip);
  const Pixels picture = Screenshot(strip.get(), 10, L"loading-strip");
  // The Office window around it, the strip's blue at its corners.
  EXPECT_EQ(kOffice, picture.At(5, 5));
  EXPECT_EQ(kStripBlue, picture.At(10, 10));
  EXPECT_EQ(kStripBlue, picture.At(10 + 183, 10));
  // The drive picture at 12, 10: its grey disc and its white ground.
  EXPECT_LT(0, picture.CountOf(kDriveGrey, 10 + 12, 10 + 10, 32, 32));
  EXPECT_LT(0, picture.CountOf(kWhite, 10 + 12, 10 + 10, 32, 32));
  // The title, painted white on blue by the overlay's procedure.
  EXPECT_LT(20, picture.CountOf(kWhite, 10 + 54, 10 + 14, 116, 21));
  EXPECT_LT(20, picture.CountOf(kStripBlue, 10 + 54, 10 + 14, 116, 21));
  // Between the picture and the bar nothing but blue.
  EXPECT_EQ(184 * 10, picture.CountOf(kStripBlue, 10, 10 + 42, 184, 10));
  // The bar's six rows along the bottom edge are not the strip's blue.
  EXPECT_EQ(0, picture.CountOf(kStripBlue, 10, 10 + 52, 184, 6));
}

// The strip is 245 wide, not the designed 235: its title, 177 wide in Arial
// Bold at 18 pixels, widened its 167-pixel box by ten (see the status
// overlays' test), and the strip with it.
TEST_F(OverlayOnScreen, ShowsTheNoInternetStripWhiteInABorderWithTheDriveAndItsText) {
  constexpr int kStripWidth = 245;
  constexpr int kTitleWidth = 177;
  const RECT office = WindowRectOf(OfficeWindow());
  const UniqueOverlay strip(
      CreateNoInternetOverlay(OfficeWindow(), SharedImage(kDriveMonoBigImage), office.left + 100, office.top + 200));
  ASSERT_TRUE(strip);
  const Pixels picture = Screenshot(strip.get(), 10, L"no-internet-strip");
  EXPECT_EQ(kOffice, picture.At(5, 5));
  // A one-pixel border all round, white inside.
  EXPECT_EQ(kStripWidth, picture.CountOf(Border(), 10, 10, kStripWidth, 1));
  EXPECT_EQ(kStripWidth, picture.CountOf(Border(), 10, 10 + 47, kStripWidth, 1));
  EXPECT_EQ(48, picture.CountOf(Border(), 10, 10, 1, 48));
  EXPECT_EQ(48, picture.CountOf(Border(), 10 + kStripWidth - 1, 10, 1, 48));
  EXPECT_EQ(kWhite, picture.At(10 + 1, 10 + 1));
  // The drive picture at 16, 10 of the client area (inside the border).
  EXPECT_EQ(kDriveGrey, picture.At(10 + 1 + 16 + 14, 10 + 1 + 10 + 14));
  // "No Internet Connection": dark text at 54, 16 on white.
  const int dark = picture.CountOf(kBlack, 10 + 1 + 54, 10 + 1 + 16, kTitleWidth, 21);
  EXPECT_LT(50, dark);
  EXPECT_LT(50, picture.CountOf(kWhite, 10 + 1 + 54, 10 + 1 + 16, kTitleWidth, 21));
}

// A panel opened against a badge: the badge at `at`, the conflict panel
// (400 × 170) built against it and shown as the badge's click would.
struct BadgeAndPanel {
  UniqueOverlay badge;
  UniqueOverlay panel;
};
BadgeAndPanel ConflictPanelAgainstBadgeAt(POINT at, Caller caller = {}) {
  TRACE_CALLER(caller);
  BadgeAndPanel both;
  both.badge = BadgeShowing(Installed(L"drive_warn.png"), at);
  both.panel.reset(CreateConflictPanel(OfficeWindow(), both.badge.get()));
  EXPECT_TRUE(both.panel);
  ShowWindow(both.panel.get(), SW_SHOWNA);
  return both;
}

RECT Around(HWND a, HWND b, int margin) {
  RECT first = WindowRectOf(a);
  const RECT second = WindowRectOf(b);
  RECT both{};
  UnionRect(&both, &first, &second);
  InflateRect(&both, margin, margin);
  return both;
}

TEST_F(OverlayOnScreen, OpensAPanelAboveABadgeNearTheBottomRightWithRightEdgesAligned) {
  const BadgeAndPanel shown = ConflictPanelAgainstBadgeAt(BadgeHome());
  const RECT badge = WindowRectOf(shown.badge.get());
  ExpectWindowRect(shown.panel.get(), badge.right - 400, badge.top - 170, 400, 170);
  const RECT area = Around(shown.badge.get(), shown.panel.get(), 10);
  const Pixels picture = ScreenshotOf(area, L"panel-above-badge");
  // The panel's bottom-right border pixel sits just above the badge's
  // top-right pixel; right of the panel is the Office window.
  const int right = badge.right - 1 - area.left;
  const int bottom = badge.top - 1 - area.top;
  EXPECT_EQ(Border(), picture.At(right, bottom));
  EXPECT_EQ(kWhite, picture.At(right - 1, bottom - 1));
  EXPECT_EQ(kOffice, picture.At(right + 1, bottom));
  EXPECT_EQ(kOffice, picture.At(right, bottom + 1));  // the badge's transparent corner
}

TEST_F(OverlayOnScreen, OpensAPanelBelowABadgeNearTheTopOfTheOfficeWindow) {
  const RECT office = WindowRectOf(OfficeWindow());
  const BadgeAndPanel shown = ConflictPanelAgainstBadgeAt({office.left + 600, office.top + 40});
  const RECT badge = WindowRectOf(shown.badge.get());
  ExpectWindowRect(shown.panel.get(), badge.right - 400, badge.bottom, 400, 170);
  const RECT area = Around(shown.badge.get(), shown.panel.get(), 10);
  const Pixels picture = ScreenshotOf(area, L"panel-below-badge");
  // The panel's top-right border pixel just below the badge's bottom-right.
  const int right = badge.right - 1 - area.left;
  const int top = badge.bottom - area.top;
  EXPECT_EQ(Border(), picture.At(right, top));
  EXPECT_EQ(kWhite, picture.At(right - 1, top + 1));
  EXPECT_EQ(kOffice, picture.At(right + 1, top));
}

TEST_F(OverlayOnScreen, AlignsAPanelWithTheLeftEdgeOfABadgeNearTheLeftOfTheOfficeWindow) {
  const RECT office = WindowRectOf(OfficeWindow());
  const BadgeAndPanel shown = ConflictPanelAgainstBadgeAt({office.left + 30, office.bottom - 150});
  const RECT badge = WindowRectOf(shown.badge.get());
  ExpectWindowRect(shown.panel.get(), badge.left, badge.top - 170, 400, 170);
  const RECT area = Around(shown.badge.get(), shown.panel.get(), 10);
  const Pixels picture = ScreenshotOf(area, L"panel-left-aligned");
  // The panel's bottom-left border pixel just above the badge's top-left.
  const int left = badge.left - area.left;
  const int bottom = badge.top - 1 - area.top;
  EXPECT_EQ(Border(), picture.At(left, bottom));
  EXPECT_EQ(kWhite, picture.At(left + 1, bottom - 1));
  EXPECT_EQ(kOffice, picture.At(left - 1, bottom));
}

TEST_F(OverlayOnScreen, ShowsTheBadgeItsPanelAndTheStripsOverTheWholeOfficeWindow) {
  // The scene a user would see, kept whole: the badge at home with its
  // safe-to-edit panel open, the loading and no-internet strips elsewhere.
  const RECT office = WindowRectOf(OfficeWindow());
  const UniqueOverlay badge = BadgeShowing(Installed(L"drive_tick.png"), BadgeHome());
  const UniqueOverlay panel(CreateSafeToEditPanel(OfficeWindow(), badge.get(), L"u-ann42", L"Ann Lee", L"today"));
  ASSERT_TRUE(panel);
  ShowWindow(panel.get(), SW_SHOWNA);
  const UniqueOverlay loading(
      CreateLoadingOverlay(OfficeWindow(), SharedImage(kDriveMonoBigImage), office.left + 100, office.top + 100));
  const UniqueOverlay offline(
      CreateNoInternetOverlay(OfficeWindow(), SharedImage(kDriveMonoBigImage), office.left + 100, office.top + 200));
  const Pixels picture = ScreenshotOf(office, L"office-window-scene");
  const RECT badgeRect = WindowRectOf(badge.get());
  EXPECT_EQ(kOffice, picture.At(badgeRect.left - office.left, badgeRect.bottom - 1 - office.top));
  EXPECT_EQ(kWhite, picture.At(badgeRect.left + 35 - office.left, badgeRect.top + 35 - office.top));
  EXPECT_EQ(kStripBlue, picture.At(100, 100));
  EXPECT_EQ(Border(), picture.At(100, 200));
}
}  // namespace
