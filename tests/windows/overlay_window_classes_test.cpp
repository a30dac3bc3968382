// The eight overlay window classes as Windows keeps them once registered:
// each read back with GetClassInfoExW from the module's own instance.
#include <windows.h>

#include <gtest/gtest.h>

#include <string>

#include "common/module_instance.h"
#include "overlay/windows/overlay_window_proc.h"
#include "overlay/windows/scroll_windows.h"
#include "overlay/windows/window_class_names.h"
#include "overlay/windows/window_classes.h"
#include "tests/caller.h"
#include "tests/windows/overlay_test_support.h"
#include "tools/officesim/resource_counts.h"

namespace {
enum class Background { StockWhite, Solid };

// The classes as the add-in's design lists them: name, background and
// window procedure. Written out here rather than taken from the add-in's
// own table, so a slip in that table shows.
struct ClassExpectation {
  const wchar_t* name;
  Background background;
  COLORREF colour;  // of a solid brush
  WNDPROC procedure;
};

const ClassExpectation kClasses[] = {
    {L"QelvoFilewellSync-MSOfficeAddin-MainUI", Background::StockWhite, 0, OverlayWndProc},
    {L"QelvoFilewellSync-MSOfficeAddin-GreenUI", Background::Solid, RGB(30, 170, 80), OverlayWndProc},
    {L"QelvoFilewellSync-MSOfficeAddin-RedUI", Background::Solid, RGB(255, 0, 0), OverlayWndProc},
    {L"QelvoFilewellSync-MSOfficeAddin-BlueUI", Background::Solid, RGB(25, 110, 180), OverlayWndProc},
    {L"QelvoFilewellSync-MSOfficeAddin-LightGreyUI", Background::Solid, RGB(230, 230, 230), OverlayWndProc},
    {L"QelvoFilewellSync-MSOfficeAddin-VerWhiteScrollUI", Background::StockWhite, 0, VerScrollWndProc},
    {L"QelvoFilewellSync-MSOfficeAddin-LightGreyHorScrollUI", Background::Solid, RGB(230, 230, 230),
     HorScrollWndProc},
    {L"QelvoFilewellSync-MSOfficeAddin-LightBlueHorScrollUI", Background::Solid, RGB(211, 226, 240),
     HorScrollWndProc},
};

WNDCLASSEXW ClassInfo(const wchar_t* name, Caller caller = {}) {
  TRACE_CALLER(caller);
  WNDCLASSEXW info{};
  info.cbSize = sizeof(info);
  info.style = 0xdeadbeef;
  EXPECT_TRUE(GetClassInfoExW(ModuleInstance(), name, &info)) << "error " << GetLastError();
  return info;
}

std::string ShortName(const testing::TestParamInfo<ClassExpectation>& info) {
  const std::wstring name = info.param.name;
  return Utf8(name.substr(name.rfind(L'-') + 1));
}

class OverlayWindowClass : public testing::TestWithParam<ClassExpectation> {
 protected:
  static void SetUpTestSuite() { SetUpOverlayStage(); }
};

TEST_P(OverlayWindowClass, RedrawsWhenResizedInEitherDirection) {
  EXPECT_EQ(static_cast<UINT>(CS_HREDRAW | CS_VREDRAW), ClassInfo(GetParam().name).style);
}

TEST_P(OverlayWindowClass, ShowsTheHandCursor) {
  EXPECT_EQ(LoadCursorW(nullptr, IDC_HAND), ClassInfo(GetParam().name).hCursor);
}

TEST_P(OverlayWindowClass, ShowsTheAddinIconLargeAndSmall) {
  const HICON icon = LoadIconW(ModuleInstance(), MAKEINTRESOURCEW(201));
  ASSERT_NE(nullptr, icon);
  const WNDCLASSEXW info = ClassInfo(GetParam().name);
  EXPECT_EQ(icon, info.hIcon);
  EXPECT_EQ(icon, info.hIconSm);
}

TEST_P(OverlayWindowClass, HasNoExtraBytesAndNoMenu) {
  const WNDCLASSEXW info = ClassInfo(GetParam().name);
  EXPECT_EQ(0, info.cbClsExtra);
  EXPECT_EQ(0, info.cbWndExtra);
  EXPECT_EQ(nullptr, info.lpszMenuName);
}

TEST_P(OverlayWindowClass, BelongsToTheModuleThatRegisteredIt) {
  EXPECT_EQ(ModuleInstance(), ClassInfo(GetParam().name).hInstance);
}

TEST_P(OverlayWindowClass, PaintsItsBackgroundWithItsOwnBrush) {
  const WNDCLASSEXW info = ClassInfo(GetParam().name);
  ASSERT_NE(nullptr, info.hbrBackground);
  if (GetParam().background == Background::StockWhite) {
    EXPECT_EQ(GetStockObject(WHITE_BRUSH), info.hbrBackground);
    return;
  }
  LOGBRUSH brush{0xdeadbeef, 0xdeadbeef, 0xdeadbeef};
  ASSERT_EQ(static_cast<int>(sizeof(brush)), GetObjectW(info.hbrBackground, sizeof(brush), &brush));
  EXPECT_EQ(static_cast<UINT>(BS_SOLID), brush.lbStyle);
  EXPECT_EQ(RgbOf(GetParam().colour), RgbOf(brush.lbColor));
  // Made for the class, not one of the system's stock brushes.
  EXPECT_NE(GetStockObject(WHITE_BRUSH), info.hbrBackground);
}

TEST_P(OverlayWindowClass, RunsItsOwnWindowProcedure) {
  EXPECT_EQ(reinterpret_cast<void*>(GetParam().procedure), reinterpret_cast<void*>(ClassInfo(GetParam().name).lpfnWndProc));
}

INSTANTIATE_TEST_SUITE_P(EachOfTheEight, OverlayWindowClass, testing::ValuesIn(kClasses), ShortName);

class OverlayWindowClassRegistration : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    SetUpOverlayStage();
    CurrentResourceCounts();  // the first reading loads what the counting itself keeps
  }
};

TEST_F(OverlayWindowClassRegistration, GivesAtomZeroForANameRegisteredBefore) {
  SetLastError(0xdeadbeef);
  EXPECT_EQ(0, RegisterOverlayWindowClass(ModuleInstance(), kGreenUiClass));
  EXPECT_EQ(static_cast<DWORD>(ERROR_CLASS_ALREADY_EXISTS), GetLastError());
}

TEST_F(OverlayWindowClassRegistration, LeavesNoBrushBehindWhenANameIsRegisteredTwice) {
  const ResourceCounts before = CurrentResourceCounts();
  for (int i = 0; i < 10; ++i) ASSERT_EQ(0, RegisterOverlayWindowClass(ModuleInstance(), kBlueUiClass));
  EXPECT_EQ(before.gdiObjects, CurrentResourceCounts().gdiObjects);
}

TEST_F(OverlayWindowClassRegistration, KeepsTheFirstRegistrationWhenANameIsRegisteredTwice) {
  const HBRUSH first = ClassInfo(kRedUiClass).hbrBackground;
  ASSERT_EQ(0, RegisterOverlayWindowClass(ModuleInstance(), kRedUiClass));
  const WNDCLASSEXW info = ClassInfo(kRedUiClass);
  EXPECT_EQ(first, info.hbrBackground);
  LOGBRUSH brush{};
  ASSERT_EQ(static_cast<int>(sizeof(brush)), GetObjectW(info.hbrBackground, sizeof(brush), &brush));
  EXPECT_EQ(RgbOf(RGB(255, 0, 0)), RgbOf(brush.lbColor));
}

TEST_F(OverlayWindowClassRegistration, GivesAnUnknownNameTheOverlayProcedureAndNoBackground) {
  constexpr wchar_t kUnknown[] = L"QelvoFilewellSync-MSOfficeAddin-PurpleUI";
  ASSERT_NE(0, RegisterOverlayWindowClass(ModuleInstance(), kUnknown));
  const WNDCLASSEXW info = ClassInfo(kUnknown);
  EXPECT_EQ(reinterpret_cast<void*>(OverlayWndProc), reinterpret_cast<void*>(info.lpfnWndProc));
  EXPECT_EQ(nullptr, info.hbrBackground);
  EXPECT_EQ(static_cast<UINT>(CS_HREDRAW | CS_VREDRAW), info.style);
  EXPECT_EQ(LoadCursorW(nullptr, IDC_HAND), info.hCursor);
}
}  // namespace
