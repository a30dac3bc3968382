#include "overlay/layouts/text_fit.h"

#include <gtest/gtest.h>

#include <vector>

#include "overlay/layouts/control_styles.h"
#include "overlay/layouts/layout_steps.h"
#include "overlay/layouts/safe_to_edit_panel.h"
#include "tests/caller.h"

namespace {
LayoutStep Text(int x, int y, int w, int h, int parent = kPanelParent) {
  LayoutStep step = TextStep(L"text", {x, y, w, h}, ControlId::Description, ColourRole::BodyText, FontRole::Body, L"couldn't create text - ");
  step.parent = parent;
  return step;
}

PanelLayout Panel(int width, int height, std::vector<LayoutStep> steps) {
  PanelLayout layout = AgainstBadgePanel(width, height, L"office - ", L"badge - ", L"window - ", L"creating panel");
  layout.steps = std::move(steps);
  return layout;
}

void ExpectBox(const LayoutStep& step, int x, int y, int w, int h, Caller caller = {}) {
  TRACE_CALLER(caller);
  EXPECT_EQ(x, step.x);
  EXPECT_EQ(y, step.y);
  EXPECT_EQ(w, step.width);
  EXPECT_EQ(h, step.height);
}

TEST(GrowLayoutToFitTexts, KeepsEveryRectangleWhenEveryTextFits) {
  const PanelLayout designed = SafeToEditPanelLayout(L"u-ann42", L"Ann Lee", L"2026-03-01 10:15");
  // Extents smaller than or equal to each box ask for nothing.
  std::vector<TextExtent> extents;
  for (const LayoutStep& step : designed.steps) extents.push_back({step.width, step.height - 1});
  const PanelLayout fitted = GrowLayoutToFitTexts(designed, extents);
  EXPECT_EQ(designed.width, fitted.width);
  EXPECT_EQ(designed.height, fitted.height);
  EXPECT_EQ(designed.createHeight, fitted.createHeight);
  EXPECT_EQ(designed.steps, fitted.steps);
}

TEST(GrowLayoutToFitTexts, WidensALinkAndMovesTheButtonBesideItButNotThePanel) {
  LayoutStep link = LinkStep(L"<a href=\"x\">Learn More</a>", {20, 215, 80, 20}, L"couldn't create link - ");
  LayoutStep hide = ButtonStep(L"Hide", {120, 215, 40, 20}, ControlId::Hide, ButtonLook::Quiet, ButtonShape::Rounded, L"couldn't create button - ");
  const PanelLayout fitted =
      GrowLayoutToFitTexts(Panel(400, 250, {Text(15, 15, 370, 25), link, hide}), {{0, 0}, {81, 17}, {30, 17}});
  ExpectBox(fitted.steps[0], 15, 15, 370, 25);
  ExpectBox(fitted.steps[1], 20, 215, 81, 20);
  ExpectBox(fitted.steps[2], 121, 215, 40, 20);
  EXPECT_EQ(400, fitted.width);
  EXPECT_EQ(250, fitted.height);
}

TEST(GrowLayoutToFitTexts, LengthensADescriptionAndPushesEverythingBelowAndThePanelDown) {
  // Title, description of 40 needing 51, grey box below holding a note.
  const PanelLayout designed = Panel(400, 175, {Text(20, 20, 360, 25), Text(20, 45, 360, 40), Text(20, 95, 360, 60),
                                                Text(10, 10, 340, 40, 2)});
  const PanelLayout fitted = GrowLayoutToFitTexts(designed, {{0, 0}, {338, 51}, {0, 0}, {0, 0}});
  ExpectBox(fitted.steps[0], 20, 20, 360, 25);
  ExpectBox(fitted.steps[1], 20, 45, 360, 51);
  ExpectBox(fitted.steps[2], 20, 106, 360, 60);
  ExpectBox(fitted.steps[3], 10, 10, 340, 40);  // inside the box: moves with it
  EXPECT_EQ(400, fitted.width);
  EXPECT_EQ(186, fitted.height);
  EXPECT_EQ(186, fitted.createHeight);
}

TEST(GrowLayoutToFitTexts, GrowsATextUntilItClearsTheRuleThatStartsInsideIt) {
  // Advice of 50 at 50, the rule at 95 (inside the advice), a heading below.
  LayoutStep rule = TextStep(L"----", {0, 95, 400, 25}, ControlId::Rule, ColourRole::Rule, FontRole::None, L"r - ");
  const PanelLayout designed = Panel(400, 200, {Text(20, 50, 360, 50), rule, Text(20, 125, 360, 25)});
  // Two lines (34) end above the rule: nothing moves.
  const PanelLayout twoLines = GrowLayoutToFitTexts(designed, {{348, 34}, {0, 0}, {0, 0}});
  EXPECT_EQ(designed.steps, twoLines.steps);
  // Three lines (51) would end 6 below the rule's top: the advice grows by
  // 6 and the rule and the heading move down by 6.
  const PanelLayout threeLines = GrowLayoutToFitTexts(designed, {{348, 51}, {0, 0}, {0, 0}});
  ExpectBox(threeLines.steps[0], 20, 50, 360, 56);
  ExpectBox(threeLines.steps[1], 0, 101, 400, 25);
  ExpectBox(threeLines.steps[2], 20, 131, 360, 25);
  EXPECT_EQ(206, threeLines.height);
}

TEST(GrowLayoutToFitTexts, WidensALineUntilItClearsTheControlThatStartsInsideIt) {
  LayoutStep link = LinkStep(L"<a href=\"x\">Learn More</a>", {20, 0, 100, 20}, L"l - ");
  LayoutStep hide = ButtonStep(L"Hide", {110, 0, 40, 20}, ControlId::Hide, ButtonLook::Quiet, ButtonShape::Rounded, L"b - ");
  const PanelLayout fitted = GrowLayoutToFitTexts(Panel(400, 20, {link, hide}), {{95, 17}, {30, 17}});
  ExpectBox(fitted.steps[0], 20, 0, 105, 20);  // 90 clear of "Hide", 95 needed
  ExpectBox(fitted.steps[1], 115, 0, 40, 20);
}

TEST(GrowLayoutToFitTexts, GrowsAParentWhoseChildGrewAndPushesWhatFollowsIt) {
  // A note of 40 needing 51 inside a box of 60 at 95, a button below.
  const PanelLayout designed =
      Panel(400, 220, {Text(20, 95, 360, 60), Text(10, 10, 340, 40, 0), Text(20, 165, 120, 40)});
  const PanelLayout fitted = GrowLayoutToFitTexts(designed, {{0, 0}, {0, 51}, {0, 0}});
  ExpectBox(fitted.steps[0], 20, 95, 360, 71);
  ExpectBox(fitted.steps[1], 10, 10, 340, 51);
  ExpectBox(fitted.steps[2], 20, 176, 120, 40);
  EXPECT_EQ(231, fitted.height);
}

TEST(GrowLayoutToFitTexts, PushesOnceForTwoControlsSideBySideThatBothGrow) {
  const PanelLayout designed = Panel(440, 150, {Text(20, 90, 170, 40), Text(210, 90, 170, 40), Text(20, 140, 100, 5)});
  const PanelLayout fitted = GrowLayoutToFitTexts(designed, {{0, 46}, {0, 44}, {0, 0}});
  ExpectBox(fitted.steps[0], 20, 90, 170, 46);
  ExpectBox(fitted.steps[1], 210, 90, 170, 44);
  ExpectBox(fitted.steps[2], 20, 146, 100, 5);
  EXPECT_EQ(156, fitted.height);
}

TEST(GrowLayoutToFitTexts, AddsUpGrowthsStackedAboveEachOther) {
  const PanelLayout designed = Panel(400, 100, {Text(20, 20, 360, 25), Text(20, 45, 360, 25), Text(20, 70, 360, 25)});
  const PanelLayout fitted = GrowLayoutToFitTexts(designed, {{0, 30}, {0, 27}, {0, 0}});
  ExpectBox(fitted.steps[1], 20, 50, 360, 27);
  ExpectBox(fitted.steps[2], 20, 77, 360, 25);
  EXPECT_EQ(107, fitted.height);
}

TEST(GrowLayoutToFitTexts, WidensThePanelAndItsFullWidthStripsWhenAControlPassesItsRightEdge) {
  LayoutStep title = TextStep(L"No Internet Connection", {54, 16, 167, 21}, ControlId::None, ColourRole::BodyText, FontRole::OverlayTitle, L"t - ");
  LayoutStep strip = ProgressBarStep({0, 52, 240, 6}, L"bar - ");
  const PanelLayout fitted = GrowLayoutToFitTexts(Panel(240, 58, {title, strip}), {{180, 20}, {0, 0}});
  ExpectBox(fitted.steps[0], 54, 16, 180, 21);
  ExpectBox(fitted.steps[1], 0, 52, 240, 6);  // 234 is still inside 240
  EXPECT_EQ(240, fitted.width);
  const PanelLayout wider = GrowLayoutToFitTexts(Panel(240, 58, {title, strip}), {{200, 20}, {0, 0}});
  ExpectBox(wider.steps[0], 54, 16, 200, 21);
  EXPECT_EQ(254, wider.width);  // the content's right edge passed 240 by 14
  ExpectBox(wider.steps[1], 0, 52, 254, 6);
}

TEST(GrowLayoutToFitTexts, MovesAResizeStepWithItsTarget) {
  LayoutStep list = WindowStep(L"List", kStyleChild, {0, 125, 400, 800}, ControlId::List, L"list - ");
  const PanelLayout designed =
      Panel(400, 300, {Text(20, 50, 360, 25), list, Text(20, 15, 305, 20, 1), ResizeChildStep(1, {0, 125, 400, 60}, L"r - ")});
  const PanelLayout fitted = GrowLayoutToFitTexts(designed, {{0, 51}, {0, 0}, {0, 0}, {0, 0}});
  ExpectBox(fitted.steps[1], 0, 151, 400, 800);
  ExpectBox(fitted.steps[3], 0, 151, 400, 60);
  EXPECT_EQ(1, fitted.steps[3].target);
}

TEST(GrowLayoutToFitTexts, LeavesStepsWithoutAnExtentAsTheyAre) {
  const PanelLayout designed = Panel(400, 100, {Text(20, 20, 360, 25), Text(20, 45, 360, 25)});
  const PanelLayout fitted = GrowLayoutToFitTexts(designed, {});
  EXPECT_EQ(designed.steps, fitted.steps);
  EXPECT_EQ(100, fitted.height);
}

TEST(MeasureOf, TellsHowEachKindOfTextIsMeasured) {
  EXPECT_EQ(TextMeasure::Wrapped, MeasureOf(Text(20, 45, 360, 40), 17));
  EXPECT_EQ(TextMeasure::OneLine, MeasureOf(Text(20, 20, 360, 25), 17));  // less than two lines high: a title
  EXPECT_EQ(TextMeasure::OneLine, MeasureOf(ButtonStep(L"Hide", {0, 0, 40, 20}, ControlId::Hide, ButtonLook::Quiet, ButtonShape::Rounded, L"b - "), 17));
  EXPECT_EQ(TextMeasure::OneLine, MeasureOf(LinkStep(L"<a>x</a>", {0, 0, 80, 20}, L"l - "), 17));
  EXPECT_EQ(TextMeasure::OneLine,
            MeasureOf(OwnerDrawnTextStep(L"Qelvo Filewell", {0, 0, 116, 21}, ControlId::LoadingTitle, ColourRole::BodyText, FontRole::OverlayTitle, L"o - "), 17));
  EXPECT_EQ(TextMeasure::CheckBoxLine, MeasureOf(CheckBoxStep(L"Save", {0, 0, 360, 40}, ControlId::SaveSeparateCopy, L"c - "), 17));
  EXPECT_EQ(TextMeasure::LineHeight, MeasureOf(NameStep(L"Ann Lee", {0, 0, 305, 20}, ControlId::None, ColourRole::BodyText, FontRole::Title, L"n - "), 19));
  LayoutStep rule = TextStep(L"______", {0, 85, 400, 20}, ControlId::Rule, ColourRole::Rule, FontRole::None, L"r - ");
  EXPECT_EQ(TextMeasure::None, MeasureOf(rule, 16));
  EXPECT_EQ(TextMeasure::None, MeasureOf(ImageStep(ImageRole::ErrorIcon, {0, 0, 21, 21}, ControlId::None, L"i - "), 16));
  EXPECT_EQ(TextMeasure::None,
            MeasureOf(WindowStep(L"QelvoFilewellSync-MSOfficeAddin-LightBlueHorScrollUI", kStyleHorizontalScrollArea,
                                 L"Budget.xlsx", {20, 225, 360, 60}, ControlId::NewName, FontRole::Body, L"s - "),
                      17));
  EXPECT_EQ(TextMeasure::None, MeasureOf(ResizeChildStep(1, {0, 0, 1, 1}, L"r - "), 17));
}
}  // namespace

namespace {
TEST(ShownLinkText, DropsTheAnchorsMarkup) {
  EXPECT_EQ(L"Learn More", ShownLinkText(L"<a href=\"https://help.example/kb\">Learn More</a>"));
  EXPECT_EQ(L"See Learn more here", ShownLinkText(L"See <a href=\"x\">Learn more</a> here"));
  EXPECT_EQ(L"", ShownLinkText(L""));
}
}  // namespace
