#include "overlay/windows/window_class_names.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/caller.h"

namespace {
void ExpectClass(size_t index, const wchar_t* name, bool stockWhite, std::uint32_t colour, ClassProcedure procedure,
                 Caller caller = {}) {
  TRACE_CALLER(caller);
  const OverlayWindowClass& windowClass = kOverlayWindowClasses[index];
  EXPECT_EQ(windowClass.name, name);  // the shared object, not a copy
  EXPECT_EQ(windowClass.stockWhiteBackground, stockWhite);
  EXPECT_EQ(windowClass.solidColour, colour);
  EXPECT_EQ(windowClass.procedure, procedure);
}
}  // namespace

TEST(OverlayWindowClassNames, AreTheEightProductNames) {
  EXPECT_EQ(std::wstring(kMainUiClass), L"QelvoFilewellSync-MSOfficeAddin-MainUI");
  EXPECT_EQ(std::wstring(kGreenUiClass), L"QelvoFilewellSync-MSOfficeAddin-GreenUI");
  EXPECT_EQ(std::wstring(kRedUiClass), L"QelvoFilewellSync-MSOfficeAddin-RedUI");
  EXPECT_EQ(std::wstring(kBlueUiClass), L"QelvoFilewellSync-MSOfficeAddin-BlueUI");
  EXPECT_EQ(std::wstring(kLightGreyUiClass), L"QelvoFilewellSync-MSOfficeAddin-LightGreyUI");
  EXPECT_EQ(std::wstring(kVerWhiteScrollUiClass), L"QelvoFilewellSync-MSOfficeAddin-VerWhiteScrollUI");
  EXPECT_EQ(std::wstring(kLightGreyHorScrollUiClass), L"QelvoFilewellSync-MSOfficeAddin-LightGreyHorScrollUI");
  EXPECT_EQ(std::wstring(kLightBlueHorScrollUiClass), L"QelvoFilewellSync-MSOfficeAddin-LightBlueHorScrollUI");
}

TEST(OverlayWindowClasses, ComeInRegistrationOrderWithTheirBrushesAndProcedures) {
  ASSERT_EQ(sizeof(kOverlayWindowClasses) / sizeof(kOverlayWindowClasses[0]), 8u);
  ExpectClass(0, kMainUiClass, true, 0, ClassProcedure::Overlay);
  ExpectClass(1, kGreenUiClass, false, 0x0050AA1E, ClassProcedure::Overlay);
  ExpectClass(2, kRedUiClass, false, 0x000000FF, ClassProcedure::Overlay);
  ExpectClass(3, kBlueUiClass, false, 0x00B46E19, ClassProcedure::Overlay);
  ExpectClass(4, kLightGreyUiClass, false, 0x00E6E6E6, ClassProcedure::Overlay);
  ExpectClass(5, kVerWhiteScrollUiClass, true, 0, ClassProcedure::VerticalScroll);
  ExpectClass(6, kLightGreyHorScrollUiClass, false, 0x00E6E6E6, ClassProcedure::HorizontalScroll);
  ExpectClass(7, kLightBlueHorScrollUiClass, false, 0x00F0E2D3, ClassProcedure::HorizontalScroll);
}

TEST(FindOverlayWindowClass, FindsAClassByItsSharedName) {
  EXPECT_EQ(FindOverlayWindowClass(kRedUiClass), &kOverlayWindowClasses[2]);
}

TEST(FindOverlayWindowClass, FindsAClassByACopyOfItsName) {
  const std::wstring copy = L"QelvoFilewellSync-MSOfficeAddin-LightBlueHorScrollUI";
  EXPECT_EQ(FindOverlayWindowClass(copy.c_str()), &kOverlayWindowClasses[7]);
}

TEST(FindOverlayWindowClass, FindsNothingForANameThatIsNotOurs) {
  EXPECT_EQ(FindOverlayWindowClass(L"QelvoFilewellSync-MSOfficeAddin-PurpleUI"), nullptr);
  EXPECT_EQ(FindOverlayWindowClass(L"STATIC"), nullptr);
  EXPECT_EQ(FindOverlayWindowClass(nullptr), nullptr);
}
