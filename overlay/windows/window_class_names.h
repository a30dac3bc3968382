#pragma once
// The eight overlay window classes, in the order they are registered. The
// builders pass and compare these names by identity, so each is one array
// object shared by every translation unit.
#include <cstdint>

inline constexpr wchar_t kMainUiClass[] = L"QelvoFilewellSync-MSOfficeAddin-MainUI";
inline constexpr wchar_t kGreenUiClass[] = L"QelvoFilewellSync-MSOfficeAddin-GreenUI";
inline constexpr wchar_t kRedUiClass[] = L"QelvoFilewellSync-MSOfficeAddin-RedUI";
inline constexpr wchar_t kBlueUiClass[] = L"QelvoFilewellSync-MSOfficeAddin-BlueUI";
inline constexpr wchar_t kLightGreyUiClass[] = L"QelvoFilewellSync-MSOfficeAddin-LightGreyUI";
inline constexpr wchar_t kVerWhiteScrollUiClass[] = L"QelvoFilewellSync-MSOfficeAddin-VerWhiteScrollUI";
inline constexpr wchar_t kLightGreyHorScrollUiClass[] = L"QelvoFilewellSync-MSOfficeAddin-LightGreyHorScrollUI";
inline constexpr wchar_t kLightBlueHorScrollUiClass[] = L"QelvoFilewellSync-MSOfficeAddin-LightBlueHorScrollUI";

// Which window procedure a class gets.
enum class ClassProcedure { Overlay, VerticalScroll, HorizontalScroll };

// How a class's background is painted: the stock white brush, or a solid
// brush made at registration and kept for the life of the class.
struct OverlayWindowClass {
  const wchar_t* name;
  bool stockWhiteBackground;
  // The solid brush's colour as a COLORREF (0x00BBGGRR); unused with the
  // stock white brush.
  std::uint32_t solidColour;
  ClassProcedure procedure;
};

inline constexpr OverlayWindowClass kOverlayWindowClasses[] = {
    {kMainUiClass, true, 0, ClassProcedure::Overlay},
    {kGreenUiClass, false, 0x0050AA1E, ClassProcedure::Overlay},      // RGB(30, 170, 80)
    {kRedUiClass, false, 0x000000FF, ClassProcedure::Overlay},        // RGB(255, 0, 0)
    {kBlueUiClass, false, 0x00B46E19, ClassProcedure::Overlay},       // RGB(25, 110, 180)
    {kLightGreyUiClass, false, 0x00E6E6E6, ClassProcedure::Overlay},  // RGB(230, 230, 230)
    {kVerWhiteScrollUiClass, true, 0, ClassProcedure::VerticalScroll},
    {kLightGreyHorScrollUiClass, false, 0x00E6E6E6, ClassProcedure::HorizontalScroll},  // RGB(230, 230, 230)
    {kLightBlueHorScrollUiClass, false, 0x00F0E2D3, ClassProcedure::HorizontalScroll},  // RGB(211, 226, 240)
};

// The class of that name (compared by text, so a caller's own copy of a
// name is found too); null for a name that is not ours, which gets the
// overlay procedure and no background brush.
const OverlayWindowClass* FindOverlayWindowClass(const wchar_t* name);
