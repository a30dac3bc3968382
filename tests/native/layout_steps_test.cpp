#include "overlay/layouts/layout_steps.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "overlay/windows/window_class_names.h"
#include "tests/caller.h"

namespace {
// The parts every maker sets the same way.
void ExpectCreate(const LayoutStep& step, const wchar_t* className, std::uint32_t style, int x, int y, int width,
                  int height, ControlId id, ColourRole colour, FontRole font, const wchar_t* failureText,
                  Caller caller = {}) {
  TRACE_CALLER(caller);
  EXPECT_EQ(step.kind, StepKind::Create);
  EXPECT_EQ(std::wstring(step.className), className);
  EXPECT_EQ(step.style, style);
  EXPECT_EQ(step.exStyle, 0u);
  EXPECT_EQ(step.x, x);
  EXPECT_EQ(step.y, y);
  EXPECT_EQ(step.width, width);
  EXPECT_EQ(step.height, height);
  EXPECT_EQ(step.id, id);
  EXPECT_EQ(step.colour, colour);
  EXPECT_EQ(step.font, font);
  EXPECT_EQ(step.parent, kPanelParent);
  EXPECT_EQ(step.target, -1);
  EXPECT_EQ(std::wstring(step.failureText), failureText);
  EXPECT_FALSE(step.circleRegion);
  EXPECT_EQ(step.regionFailureText, nullptr);
  EXPECT_EQ(step.setRegionFailureText, nullptr);
}
}  // namespace

TEST(LayoutSteps, MakeATextLineAWordWrappedStatic) {
  const LayoutStep step =
      TextStep(L"Hello", {1, 2, 3, 4}, ControlId::Description, ColourRole::BodyText, FontRole::Body, L"couldn't t - ");
  ExpectCreate(step, L"STATIC", 0x50000000, 1, 2, 3, 4, ControlId::Description, ColourRole::BodyText, FontRole::Body,
               L"couldn't t - ");
  EXPECT_EQ(step.text, L"Hello");
  EXPECT_EQ(step.image, ImageRole::None);
  EXPECT_FALSE(step.startMarquee);
}

TEST(LayoutSteps, MakeAnEllipsisTextAStaticWithEndEllipsis) {
  const LayoutStep step = EllipsisTextStep(L"Ann", {75, 145, 305, 20}, ControlId::None, ColourRole::Plain,
                                           FontRole::Title, L"couldn't e - ");
  ExpectCreate(step, L"STATIC", 0x50004000, 75, 145, 305, 20, ControlId::None, ColourRole::Plain, FontRole::Title,
               L"couldn't e - ");
  EXPECT_EQ(step.text, L"Ann");
}

TEST(LayoutSteps, MakeANameAnEllipsisStaticWithoutPrefixesAndCleanItsText) {
  const LayoutStep step = NameStep(L"A&B\r\n\u202Ec", {75, 145, 305, 20}, ControlId::MemberRow, ColourRole::MemberRow,
                                   FontRole::Title, L"couldn't n - ");
  ExpectCreate(step, L"STATIC", 0x50004080, 75, 145, 305, 20, ControlId::MemberRow, ColourRole::MemberRow,
               FontRole::Title, L"couldn't n - ");
  EXPECT_EQ(step.text, L"A&Bc");
}

TEST(LayoutSteps, MakeATimeAPlainStaticWithoutPrefixesAfterModifiedOn) {
  const LayoutStep step = ModifiedOnStep(L"1 & 2\t", {75, 165, 305, 20}, ControlId::Description, ColourRole::BodyText,
                                         FontRole::Body, L"couldn't m - ");
  ExpectCreate(step, L"STATIC", 0x50000080, 75, 165, 305, 20, ControlId::Description, ColourRole::BodyText,
               FontRole::Body, L"couldn't m - ");
  EXPECT_EQ(step.text, L"Modified on 1 & 2");
}

TEST(LayoutSteps, MakeAnOwnerDrawnTextAnOwnerDrawnStatic) {
  const LayoutStep step = OwnerDrawnTextStep(L"Q", {5, 6, 7, 8}, ControlId::LoadingTitle, ColourRole::LoadingStrip,
                                             FontRole::OverlayTitle, L"couldn't o- ");
  ExpectCreate(step, L"STATIC", 0x5000000D, 5, 6, 7, 8, ControlId::LoadingTitle, ColourRole::LoadingStrip,
               FontRole::OverlayTitle, L"couldn't o- ");
}

TEST(LayoutSteps, MakeAnImageABitmapStaticWithoutTextOrFont) {
  const LayoutStep step = ImageStep(ImageRole::ErrorIcon, {20, 20, 21, 21}, ControlId::None, L"couldn't i - ");
  ExpectCreate(step, L"STATIC", 0x5000004E, 20, 20, 21, 21, ControlId::None, ColourRole::Plain, FontRole::None,
               L"couldn't i - ");
  EXPECT_EQ(step.image, ImageRole::ErrorIcon);
  EXPECT_EQ(step.text, L"");
  EXPECT_FALSE(step.tryUserAvatar);
}

TEST(LayoutSteps, MakeAnAvatarABitmapStaticThatNamesTheUsersFile) {
  const LayoutStep step = AvatarStep(true, L"8f3a", {20, 145, 40, 40}, L"couldn't a - ");
  ExpectCreate(step, L"STATIC", 0x5000004E, 20, 145, 40, 40, ControlId::None, ColourRole::Plain, FontRole::None,
               L"couldn't a - ");
  EXPECT_EQ(step.image, ImageRole::Avatar);
  EXPECT_TRUE(step.tryUserAvatar);
  EXPECT_EQ(step.avatarFile, L"8f3a");
}

TEST(LayoutSteps, MakeAnIconAnIconStatic) {
  const LayoutStep step = IconStep(ImageRole::WarningIcon, {20, 50, 40, 40}, ControlId::None, L"couldn't w - ");
  ExpectCreate(step, L"STATIC", 0x50000003, 20, 50, 40, 40, ControlId::None, ColourRole::Plain, FontRole::None,
               L"couldn't w - ");
  EXPECT_EQ(step.image, ImageRole::WarningIcon);
}

TEST(LayoutSteps, MakeAButtonAnOwnerDrawnButtonInTheBodyFont) {
  const LayoutStep step = ButtonStep(L"Hide", {120, 115, 40, 20}, ControlId::Hide, ButtonLook::Quiet,
                                     ButtonShape::Rounded, L"couldn't b - ");
  ExpectCreate(step, L"BUTTON", 0x5000000B, 120, 115, 40, 20, ControlId::Hide, ColourRole::Plain, FontRole::Body,
               L"couldn't b - ");
  EXPECT_EQ(step.text, L"Hide");
  EXPECT_EQ(step.buttonLook, ButtonLook::Quiet);
  EXPECT_EQ(step.buttonShape, ButtonShape::Rounded);
}

TEST(LayoutSteps, MakeABorderedButtonWithWsBorder) {
  const LayoutStep step = BorderedButtonStep(L"No", {1, 2, 3, 4}, ControlId::DiscardAndResolve,
                                             ButtonLook::SecondChoice, ButtonShape::Rounded, L"couldn't n - ");
  ExpectCreate(step, L"BUTTON", 0x5080000B, 1, 2, 3, 4, ControlId::DiscardAndResolve, ColourRole::Plain, FontRole::Body,
               L"couldn't n - ");
  EXPECT_EQ(step.buttonLook, ButtonLook::SecondChoice);
}

TEST(LayoutSteps, MakeACheckBoxAnAutoCheckBoxInTheBodyFont) {
  const LayoutStep step = CheckBoxStep(L"Save", {20, 120, 360, 40}, ControlId::SaveSeparateCopy, L"couldn't c - ");
  ExpectCreate(step, L"BUTTON", 0x50000003, 20, 120, 360, 40, ControlId::SaveSeparateCopy, ColourRole::Plain,
               FontRole::Body, L"couldn't c - ");
  EXPECT_EQ(step.buttonLook, ButtonLook::None);
}

TEST(LayoutSteps, MakeALinkATabStopSysLinkWithIdZeroInTheBodyFont) {
  const LayoutStep step = LinkStep(L"<a href=\"x\">y</a>", {20, 115, 80, 20}, L"couldn't l - ");
  ExpectCreate(step, L"SysLink", 0x50010000, 20, 115, 80, 20, ControlId::None, ColourRole::Plain, FontRole::Body,
               L"couldn't l - ");
  EXPECT_EQ(step.text, L"<a href=\"x\">y</a>");
}

TEST(LayoutSteps, MakeAProgressBarAMarqueeBarThatStartsAtOnce) {
  const LayoutStep step = ProgressBarStep({0, 52, 184, 6}, L"couldn't p - ");
  ExpectCreate(step, L"msctls_progress32", 0x50000008, 0, 52, 184, 6, ControlId::None, ColourRole::Plain,
               FontRole::None, L"couldn't p - ");
  EXPECT_TRUE(step.startMarquee);
}

TEST(LayoutSteps, MakeAWindowOfTheGivenSharedClassAndStyle) {
  const LayoutStep step =
      WindowStep(kLightGreyUiClass, 0x50000000, {20, 95, 360, 60}, ControlId::None, L"couldn't w - ");
  ExpectCreate(step, L"QelvoFilewellSync-MSOfficeAddin-LightGreyUI", 0x50000000, 20, 95, 360, 60, ControlId::None,
               ColourRole::Plain, FontRole::None, L"couldn't w - ");
  EXPECT_EQ(step.className, kLightGreyUiClass);
  EXPECT_EQ(step.text, L"");
}

TEST(LayoutSteps, MakeAWindowThatCarriesAText) {
  const LayoutStep step = WindowStep(kLightBlueHorScrollUiClass, 0x50100000, L"C:\\new.docx", {20, 225, 360, 60},
                                     ControlId::NewName, FontRole::Body, L"couldn't s - ");
  ExpectCreate(step, kLightBlueHorScrollUiClass, 0x50100000, 20, 225, 360, 60, ControlId::NewName, ColourRole::Plain,
               FontRole::Body, L"couldn't s - ");
  EXPECT_EQ(step.text, L"C:\\new.docx");
}

TEST(LayoutSteps, MakeAResizeThatNamesItsTarget) {
  const LayoutStep step = ResizeChildStep(4, {0, 150, 400, 225}, L"couldn't r - ");
  EXPECT_EQ(step.kind, StepKind::ResizeChild);
  EXPECT_EQ(step.target, 4);
  EXPECT_EQ(step.className, nullptr);
  EXPECT_EQ(step.x, 0);
  EXPECT_EQ(step.y, 150);
  EXPECT_EQ(step.width, 400);
  EXPECT_EQ(step.height, 225);
  EXPECT_EQ(std::wstring(step.failureText), L"couldn't r - ");
}

TEST(LayoutSteps, PutAStepInsideAnEarlierOne) {
  EXPECT_EQ(
      InsideOf(2, TextStep(L"n", {10, 10, 340, 40}, ControlId::Note, ColourRole::Note, FontRole::Body, L"f")).parent,
      2);
}

TEST(LayoutStepEquality, ComparesFailureTextsByContent) {
  const std::wstring copy = L"couldn't t - ";
  EXPECT_EQ(TextStep(L"a", {1, 2, 3, 4}, ControlId::None, ColourRole::Plain, FontRole::Body, L"couldn't t - "),
            TextStep(L"a", {1, 2, 3, 4}, ControlId::None, ColourRole::Plain, FontRole::Body, copy.c_str()));
}

TEST(LayoutStepEquality, TellsStepsApartByAnyField) {
  const LayoutStep base = TextStep(L"a", {1, 2, 3, 4}, ControlId::None, ColourRole::Plain, FontRole::Body, L"f");
  LayoutStep other = base;
  other.y = 3;
  EXPECT_NE(base, other);
  other = base;
  other.parent = 0;
  EXPECT_NE(base, other);
  other = base;
  other.regionFailureText = L"f";
  EXPECT_NE(base, other);
  other = base;
  other.failureText = nullptr;
  EXPECT_NE(base, other);
}

TEST(LayoutStepPrinting, ShowsClassStyleTextAndRectangle) {
  std::ostringstream out;
  out << TextStep(L"Hide", {120, 115, 40, 20}, ControlId::Hide, ColourRole::Plain, FontRole::Body, L"couldn't h - ");
  EXPECT_EQ(out.str(),
            "{create \"STATIC\" style 0x50000000 ex 0x0 text \"Hide\" at 120,115 40x20 id 3014 font Body image None "
            "parent -1 target -1 fails \"couldn't h - \"}");
}

TEST(AgainstBadgePanel, IsAWhiteBorderedPopupCreatedAtItsFinalSize) {
  const PanelLayout layout = AgainstBadgePanel(400, 170, L"o - ", L"b - ", L"w - ", L"creating x");
  EXPECT_EQ(layout.placement, PanelPlacement::AgainstBadge);
  EXPECT_EQ(layout.className, kMainUiClass);
  EXPECT_EQ(layout.style, 0x80800000u);
  EXPECT_EQ(layout.exStyle, 0u);
  EXPECT_EQ(layout.width, 400);
  EXPECT_EQ(layout.height, 170);
  EXPECT_EQ(layout.createHeight, 170);
  EXPECT_EQ(std::wstring(layout.officeRectFailureText), L"o - ");
  EXPECT_EQ(std::wstring(layout.badgeRectFailureText), L"b - ");
  EXPECT_EQ(std::wstring(layout.windowFailureText), L"w - ");
  EXPECT_EQ(layout.finalResizeFailureText, nullptr);
  EXPECT_EQ(std::wstring(layout.exceptionActivity), L"creating x");
  EXPECT_TRUE(layout.steps.empty());
  EXPECT_TRUE(layout.IsBuildable());
}

TEST(PanelLayout, IsNotBuildableWithoutASize) { EXPECT_FALSE(PanelLayout{}.IsBuildable()); }

TEST(StatusDotCircle, IsTheNinePixelCircleInsideTheTwelvePixelDot) {
  EXPECT_EQ(kStatusDotCircle, (Rect{4, 4, 13, 13}));
}

TEST(Marquee, StepsEveryThirtyMillisecondsAndLogsAFailureToStart) {
  EXPECT_EQ(kMarqueeStepMilliseconds, 30);
  EXPECT_EQ(std::wstring(kMarqueeFailureText), L"couldn't set indeterminate progress bar");
}
