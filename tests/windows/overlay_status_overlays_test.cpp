// The badge, the no-internet strip and the loading strip as Windows reports
// them once built: class, styles, place, owner, visibility, and every child
// read back against the tables of the overlay's design.
#include <windows.h>
#include <commctrl.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "common/unique_resource.h"
#include "overlay/images/image_file_names.h"
#include "overlay/images/overlay_images.h"
#include "overlay/windows/status_overlays.h"
#include "tests/caller.h"
#include "tests/windows/overlay_test_support.h"
#include "tests/windows/wine_test_support.h"

namespace {
using UniqueOverlay = UniqueResource<OverlayWindowTraits>;

std::wstring ClassOf(HWND window) {
  wchar_t name[256] = {};
  GetClassNameW(window, name, 256);
  return name;
}

DWORD StyleOf(HWND window) { return static_cast<DWORD>(GetWindowLongW(window, GWL_STYLE)); }
DWORD ExStyleOf(HWND window) { return static_cast<DWORD>(GetWindowLongW(window, GWL_EXSTYLE)); }

HBITMAP ImageOf(HWND control) {
  return reinterpret_cast<HBITMAP>(SendMessageW(control, STM_GETIMAGE, IMAGE_BITMAP, 0));
}

// Top-level windows always read back with WS_CLIPSIBLINGS, which Windows
// adds to every window that is not a child, whatever it was created with.
constexpr DWORD kAddedToTopLevel = WS_CLIPSIBLINGS;

class StatusOverlays : public testing::Test {
 protected:
  static void SetUpTestSuite() { SetUpOverlayStage(); }
  void SetUp() override {
    StartFreshLog();
    const RECT office = WindowRectOf(OfficeWindow());
    at_ = {office.left + 120, office.top + 150};
    drive_ = SharedImage(kDriveMonoBigImage);
    ASSERT_NE(nullptr, drive_);
  }
  POINT at_{};
  HBITMAP drive_ = nullptr;
};

// --- The badge ---

TEST_F(StatusOverlays, BuildsTheBadgeAsAMainUiWindow) {
  const UniqueOverlay badge(CreateMainOverlay(OfficeWindow(), at_.x, at_.y));
  ASSERT_TRUE(badge);
  EXPECT_EQ(L"QelvoFilewellSync-MSOfficeAddin-MainUI", ClassOf(badge.get()));
}

TEST_F(StatusOverlays, BuildsTheBadgeLayered) {
  const UniqueOverlay badge(CreateMainOverlay(OfficeWindow(), at_.x, at_.y));
  ASSERT_TRUE(badge);
  EXPECT_EQ(static_cast<DWORD>(WS_EX_LAYERED), ExStyleOf(badge.get()));
}

TEST_F(StatusOverlays, BuildsTheBadgeAsAVisiblePopUp) {
  const UniqueOverlay badge(CreateMainOverlay(OfficeWindow(), at_.x, at_.y));
  ASSERT_TRUE(badge);
  EXPECT_EQ(WS_POPUP | WS_VISIBLE | kAddedToTopLevel, StyleOf(badge.get()));
  EXPECT_TRUE(IsWindowVisible(badge.get()));
}

TEST_F(StatusOverlays, PutsTheBadgeAtTheGivenPointSeventyBySeventy) {
  const UniqueOverlay badge(CreateMainOverlay(OfficeWindow(), at_.x, at_.y));
  ASSERT_TRUE(badge);
  ExpectWindowRect(badge.get(), at_.x, at_.y, 70, 70);
}

TEST_F(StatusOverlays, LetsTheOfficeWindowOwnTheBadge) {
  const UniqueOverlay badge(CreateMainOverlay(OfficeWindow(), at_.x, at_.y));
  ASSERT_TRUE(badge);
  EXPECT_EQ(OfficeWindow(), GetWindow(badge.get(), GW_OWNER));
  // Owned, not a child: its parent is the desktop.
  EXPECT_EQ(GetDesktopWindow(), GetAncestor(badge.get(), GA_PARENT));
}

TEST_F(StatusOverlays, BuildsTheBadgeWithoutChildren) {
  const UniqueOverlay badge(CreateMainOverlay(OfficeWindow(), at_.x, at_.y));
  ASSERT_TRUE(badge);
  EXPECT_EQ(nullptr, GetWindow(badge.get(), GW_CHILD));
}

TEST_F(StatusOverlays, ShowsTheBadgeWithoutTakingActivationFromOffice) {
  SetActiveWindow(OfficeWindow());
  ASSERT_EQ(OfficeWindow(), GetActiveWindow());
  const UniqueOverlay badge(CreateMainOverlay(OfficeWindow(), at_.x, at_.y));
  ASSERT_TRUE(badge);
  EXPECT_EQ(OfficeWindow(), GetActiveWindow());
}

// --- The no-internet strip ---

// "No Internet Connection" in the bold title font is 177 wide (Arial Bold's
// advance widths rounded at 16 pixels per em: N 12, o 10, space 4, I 4,
// n 10, t 5, e 9, r 6, C 12, c 9, i 4), ten more than the 167 of its box:
// the title widens to 177 and the strip, keeping its right margin, to 245.
constexpr int kNoInternetTitleWidth = 177;
constexpr int kNoInternetStripWidth = 245;

TEST_F(StatusOverlays, BuildsTheNoInternetStripAsAVisibleBorderedPopUpOwnedByOffice) {
  const UniqueOverlay strip(CreateNoInternetOverlay(OfficeWindow(), drive_, at_.x, at_.y));
  ASSERT_TRUE(strip);
  EXPECT_EQ(L"QelvoFilewellSync-MSOfficeAddin-MainUI", ClassOf(strip.get()));
  EXPECT_EQ(WS_POPUP | WS_BORDER | WS_VISIBLE | kAddedToTopLevel, StyleOf(strip.get()));
  EXPECT_EQ(0u, ExStyleOf(strip.get()));
  EXPECT_EQ(OfficeWindow(), GetWindow(strip.get(), GW_OWNER));
  EXPECT_TRUE(IsWindowVisible(strip.get()));
  ExpectWindowRect(strip.get(), at_.x, at_.y, kNoInternetStripWidth, 48);
}

TEST_F(StatusOverlays, FillsTheNoInternetStripWithTheDriveAndItsTitle) {
  const UniqueOverlay strip(CreateNoInternetOverlay(OfficeWindow(), drive_, at_.x, at_.y));
  ASSERT_TRUE(strip);
  ExpectChildren(strip.get(), {
                                  {L"Static", L"", ControlId::None, 16, 10, 28, 28, 0x5000004E, kNoFont},
                                  {L"Static", L"No Internet Connection", ControlId::None, 54, 16, kNoInternetTitleWidth, 21, 0x50000000,
                                   kOverlayTitleFont},
                              });
}

TEST_F(StatusOverlays, ShowsTheCallersDriveBitmapInTheNoInternetStrip) {
  const UniqueOverlay strip(CreateNoInternetOverlay(OfficeWindow(), drive_, at_.x, at_.y));
  ASSERT_TRUE(strip);
  EXPECT_EQ(drive_, ImageOf(GetWindow(strip.get(), GW_CHILD)));
}

TEST_F(StatusOverlays, BuildsAndShowsTheNoInternetStripWithAnEmptyPictureWhenTheBitmapIsMissing) {
  const UniqueOverlay strip(CreateNoInternetOverlay(OfficeWindow(), nullptr, at_.x, at_.y));
  ASSERT_TRUE(strip);
  EXPECT_TRUE(IsWindowVisible(strip.get()));
  EXPECT_EQ(nullptr, ImageOf(GetWindow(strip.get(), GW_CHILD)));
  ASSERT_EQ(2u, ChildrenOf(strip.get()).size());
  EXPECT_EQ(L"No Internet Connection", ChildrenOf(strip.get())[1].text);
}

// --- The loading strip ---

TEST_F(StatusOverlays, BuildsTheLoadingStripAsAVisibleBluePopUpOwnedByOffice) {
  const UniqueOverlay strip(CreateLoadingOverlay(OfficeWindow(), drive_, at_.x, at_.y));
  ASSERT_TRUE(strip);
  EXPECT_EQ(L"QelvoFilewellSync-MSOfficeAddin-BlueUI", ClassOf(strip.get()));
  EXPECT_EQ(WS_POPUP | WS_VISIBLE | kAddedToTopLevel, StyleOf(strip.get()));
  EXPECT_EQ(0u, ExStyleOf(strip.get()));
  EXPECT_EQ(OfficeWindow(), GetWindow(strip.get(), GW_OWNER));
  EXPECT_TRUE(IsWindowVisible(strip.get()));
  ExpectWindowRect(strip.get(), at_.x, at_.y, 184, 58);
}

TEST_F(StatusOverlays, FillsTheLoadingStripWithTheDriveTheOwnerDrawnTitleAndAMarqueeBar) {
  const UniqueOverlay strip(CreateLoadingOverlay(OfficeWindow(), drive_, at_.x, at_.y));
  ASSERT_TRUE(strip);
  ExpectChildren(strip.get(), {
                                  {L"Static", L"", ControlId::None, 12, 10, 32, 32, 0x5000004E, kNoFont},
                                  {L"Static", L"Qelvo Filewell", ControlId::LoadingTitle, 54, 14, 116, 21, 0x5000000D,
                                   kOverlayTitleFont},
                                  {L"msctls_progress32", L"", ControlId::None, 0, 52, 184, 6, 0x50000008, kNoFont},
                              });
}

TEST_F(StatusOverlays, GivesTheLoadingStripsPictureTheStripsBlueAndNoId) {
  const UniqueOverlay strip(CreateLoadingOverlay(OfficeWindow(), drive_, at_.x, at_.y));
  ASSERT_TRUE(strip);
  const HWND picture = GetWindow(strip.get(), GW_CHILD);
  ASSERT_NE(picture, nullptr);
  EXPECT_EQ(GetDlgCtrlID(picture), 0);
  const HDC dc = CreateCompatibleDC(nullptr);
  SetBkColor(dc, RGB(4, 5, 6));  // a sentinel
  SendMessageW(strip.get(), WM_CTLCOLORSTATIC, reinterpret_cast<WPARAM>(dc), reinterpret_cast<LPARAM>(picture));
  EXPECT_EQ(GetBkColor(dc), RGB(25, 110, 180));
  DeleteDC(dc);
}

TEST_F(StatusOverlays, ShowsTheCallersDriveBitmapInTheLoadingStrip) {
  const UniqueOverlay strip(CreateLoadingOverlay(OfficeWindow(), drive_, at_.x, at_.y));
  ASSERT_TRUE(strip);
  EXPECT_EQ(drive_, ImageOf(GetWindow(strip.get(), GW_CHILD)));
}

TEST_F(StatusOverlays, BuildsAndShowsTheLoadingStripWithAnEmptyPictureWhenTheBitmapIsMissing) {
  const UniqueOverlay strip(CreateLoadingOverlay(OfficeWindow(), nullptr, at_.x, at_.y));
  ASSERT_TRUE(strip);
  EXPECT_TRUE(IsWindowVisible(strip.get()));
  EXPECT_EQ(nullptr, ImageOf(GetWindow(strip.get(), GW_CHILD)));
  EXPECT_EQ(3u, ChildrenOf(strip.get()).size());
}

TEST_F(StatusOverlays, StartsTheLoadingStripsMarqueeWithoutAnErrorLine) {
  const UniqueOverlay strip(CreateLoadingOverlay(OfficeWindow(), drive_, at_.x, at_.y));
  ASSERT_TRUE(strip);
  EXPECT_EQ(std::vector<std::string>{}, ErrorLines());
}

TEST_F(StatusOverlays, RunsTheLoadingStripsBarWhileNobodyTouchesIt) {
  const UniqueOverlay strip(CreateLoadingOverlay(OfficeWindow(), drive_, at_.x, at_.y));
  ASSERT_TRUE(strip);
  PumpMessagesFor(300);
  const RECT bar{at_.x, at_.y + 52, at_.x + 184, at_.y + 58};
  const Pixels first = CaptureScreen(bar);
  PumpMessagesFor(500);
  const Pixels later = CaptureScreen(bar);
  SaveArtefact(first, L"loading-bar-first");
  SaveArtefact(later, L"loading-bar-later");
  EXPECT_TRUE(first.rgb != later.rgb) << "the marquee did not move in half a second";
}

TEST_F(StatusOverlays, ShowsTheLoadingStripWithoutTakingActivationFromOffice) {
  SetActiveWindow(OfficeWindow());
  ASSERT_EQ(OfficeWindow(), GetActiveWindow());
  const UniqueOverlay strip(CreateLoadingOverlay(OfficeWindow(), drive_, at_.x, at_.y));
  ASSERT_TRUE(strip);
  EXPECT_EQ(OfficeWindow(), GetActiveWindow());
}

// --- A creation that fails ---

std::string SystemText(DWORD error) {
  wchar_t buffer[512];
  DWORD length = FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, error,
                                MAKELANGID(LANG_NEUTRAL, SUBLANG_DEFAULT), buffer, 512, nullptr);
  while (length > 0 && (buffer[length - 1] == L'\r' || buffer[length - 1] == L'\n' || buffer[length - 1] == L' ')) {
    --length;
  }
  return Utf8(std::wstring(buffer, length));
}

// An owner that names no window: Windows refuses to create the overlay.
const HWND kGone = reinterpret_cast<HWND>(static_cast<INT_PTR>(0x7ff0));

TEST_F(StatusOverlays, GivesNoBadgeAndOneLineWhenTheWindowCannotBeCreated) {
  ASSERT_FALSE(IsWindow(kGone));
  EXPECT_EQ(nullptr, CreateMainOverlay(kGone, at_.x, at_.y));
  EXPECT_EQ(std::vector<std::string>{"couldn't create main overlay UI - " + SystemText(ERROR_INVALID_WINDOW_HANDLE)},
            ErrorLines());
}

TEST_F(StatusOverlays, GivesNoNoInternetStripAndOneLineWhenTheWindowCannotBeCreated) {
  EXPECT_EQ(nullptr, CreateNoInternetOverlay(kGone, drive_, at_.x, at_.y));
  EXPECT_EQ(std::vector<std::string>{"couldn't create no internet main overlay UI - " +
                                     SystemText(ERROR_INVALID_WINDOW_HANDLE)},
            ErrorLines());
}

TEST_F(StatusOverlays, GivesNoLoadingStripAndOneLineWhenTheWindowCannotBeCreated) {
  EXPECT_EQ(nullptr, CreateLoadingOverlay(kGone, drive_, at_.x, at_.y));
  EXPECT_EQ(
      std::vector<std::string>{"couldn't create loading main overlay UI - " + SystemText(ERROR_INVALID_WINDOW_HANDLE)},
      ErrorLines());
}
}  // namespace
