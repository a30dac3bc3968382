#include "overlay/layouts/dpi_scaling.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "overlay/layouts/conflict_panel.h"
#include "overlay/layouts/layout_steps.h"
#include "overlay/layouts/status_overlay_layouts.h"
#include "tests/caller.h"

namespace {
// A maximised Office window on a 1920 × 1080 screen, as in the geometry's
// own tests.
constexpr Rect kOffice{100, 50, 1300, 850};
constexpr int kDpis[] = {96, 120, 144, 192};

struct Rectangle {
  int x;
  int y;
  int width;
  int height;
};

void ExpectStepAt(const LayoutStep& step, Rectangle expected, Caller caller = {}) {
  TRACE_CALLER(caller);
  EXPECT_EQ(step.x, expected.x);
  EXPECT_EQ(step.y, expected.y);
  EXPECT_EQ(step.width, expected.width);
  EXPECT_EQ(step.height, expected.height);
}

void ExpectLoadingStripAt(int dpi, int width, int height, const std::vector<Rectangle>& children,
                          Caller caller = {}) {
  TRACE_CALLER(caller);
  const PanelLayout scaled = ScaleLayoutForDpi(LoadingOverlayLayout(), dpi);
  EXPECT_EQ(scaled.width, width);
  EXPECT_EQ(scaled.height, height);
  EXPECT_EQ(scaled.createHeight, height);
  ASSERT_EQ(scaled.steps.size(), children.size());
  for (size_t i = 0; i < children.size(); ++i) ExpectStepAt(scaled.steps[i], children[i], caller);
}
}  // namespace

TEST(ScaleForDpi, LeavesEveryValueAsItIsAtNinetySixDpi) {
  for (int value : {-7, 0, 1, 19, 70, 300, 1100}) EXPECT_EQ(ScaleForDpi(value, 96), value) << value;
}

TEST(ScaleForDpi, ScalesByTheDpiOverNinetySix) {
  EXPECT_EQ(ScaleForDpi(70, 120), 88);  // 87.5
  EXPECT_EQ(ScaleForDpi(70, 144), 105);
  EXPECT_EQ(ScaleForDpi(70, 192), 140);
  EXPECT_EQ(ScaleForDpi(300, 120), 375);
  EXPECT_EQ(ScaleForDpi(300, 144), 450);
  EXPECT_EQ(ScaleForDpi(300, 192), 600);
}

TEST(ScaleForDpi, RoundsToTheNearestPixelWithHalvesAwayFromZero) {
  EXPECT_EQ(ScaleForDpi(21, 120), 26);   // 26.25
  EXPECT_EQ(ScaleForDpi(21, 144), 32);   // 31.5
  EXPECT_EQ(ScaleForDpi(17, 120), 21);   // 21.25
  EXPECT_EQ(ScaleForDpi(19, 120), 24);   // 23.75
  EXPECT_EQ(ScaleForDpi(-1, 144), -2);   // -1.5
  EXPECT_EQ(ScaleForDpi(-3, 120), -4);   // -3.75
  EXPECT_EQ(ScaleForDpi(-21, 120), -26); // -26.25
}

TEST(ScaleForDpi, TakesAnUnusableDpiAsNinetySixOrAtMostNineHundredSixty) {
  EXPECT_EQ(UsableDpi(0), 96);
  EXPECT_EQ(UsableDpi(-144), 96);
  EXPECT_EQ(UsableDpi(72), 96);
  EXPECT_EQ(UsableDpi(144), 144);
  EXPECT_EQ(UsableDpi(960), 960);
  EXPECT_EQ(UsableDpi(100000), 960);
  EXPECT_EQ(ScaleForDpi(70, 0), 70);
  EXPECT_EQ(ScaleForDpi(70, 100000), 700);
}

TEST(ScaleRectForDpi, ScalesEachEdge) {
  EXPECT_EQ(ScaleRectForDpi({4, 4, 13, 13}, 96), (Rect{4, 4, 13, 13}));
  EXPECT_EQ(ScaleRectForDpi({4, 4, 13, 13}, 120), (Rect{5, 5, 16, 16}));  // 16.25
  EXPECT_EQ(ScaleRectForDpi({4, 4, 13, 13}, 144), (Rect{6, 6, 20, 20}));  // 19.5
  EXPECT_EQ(ScaleRectForDpi({4, 4, 13, 13}, 192), (Rect{8, 8, 26, 26}));
}

TEST(ScaleFontForDpi, KeepsEveryFontOfTheTableAtNinetySixDpi) {
  for (FontRole role : kFontRoles) EXPECT_EQ(ScaleFontForDpi(FontSpecOf(role), 96, 16), FontSpecOf(role));
}

TEST(ScaleFontForDpi, ScalesTheHeightAndKeepsWeightAndItalic) {
  EXPECT_EQ(ScaleFontForDpi(FontSpecOf(FontRole::Title), 120, 16), (FontSpec{24, 700, false}));
  EXPECT_EQ(ScaleFontForDpi(FontSpecOf(FontRole::Body), 120, 16), (FontSpec{23, 400, false}));
  EXPECT_EQ(ScaleFontForDpi(FontSpecOf(FontRole::Section), 120, 16), (FontSpec{21, 700, false}));
  EXPECT_EQ(ScaleFontForDpi(FontSpecOf(FontRole::Title), 144, 16), (FontSpec{29, 700, false}));
  EXPECT_EQ(ScaleFontForDpi(FontSpecOf(FontRole::BodyItalic), 144, 16), (FontSpec{27, 400, true}));
  EXPECT_EQ(ScaleFontForDpi(FontSpecOf(FontRole::Section), 144, 16), (FontSpec{26, 700, false}));
  EXPECT_EQ(ScaleFontForDpi(FontSpecOf(FontRole::WaitItalic), 192, 16), (FontSpec{38, 400, true}));
  EXPECT_EQ(ScaleFontForDpi(FontSpecOf(FontRole::OverlayTitle), 192, 16), (FontSpec{36, 700, false}));
}

TEST(ScaleFontForDpi, GivesTheDefaultSizeItsCellHeightScaledAboveNinetySixDpi) {
  EXPECT_EQ(ScaleFontForDpi(FontSpecOf(FontRole::DefaultBold), 120, 16), (FontSpec{20, 700, false}));
  EXPECT_EQ(ScaleFontForDpi(FontSpecOf(FontRole::DefaultBold), 144, 16), (FontSpec{24, 700, false}));
  EXPECT_EQ(ScaleFontForDpi(FontSpecOf(FontRole::DefaultBold), 192, 16), (FontSpec{32, 700, false}));
  EXPECT_EQ(ScaleFontForDpi(FontSpecOf(FontRole::DefaultBold), 144, 13), (FontSpec{20, 700, false}));  // 19.5
}

TEST(ScaleLayoutForDpi, ReturnsTheSameLayoutAtNinetySixDpi) {
  const PanelLayout layout = ConflictPanelLayout();
  const PanelLayout scaled = ScaleLayoutForDpi(layout, 96);
  EXPECT_EQ(scaled.width, layout.width);
  EXPECT_EQ(scaled.height, layout.height);
  EXPECT_EQ(scaled.createHeight, layout.createHeight);
  ASSERT_EQ(scaled.steps.size(), layout.steps.size());
  for (size_t i = 0; i < layout.steps.size(); ++i) EXPECT_EQ(scaled.steps[i], layout.steps[i]) << "step " << i;
}

TEST(ScaleLayoutForDpi, ScalesTheLoadingStripAtEveryDpi) {
  ExpectLoadingStripAt(96, 184, 58, {{12, 10, 32, 32}, {54, 14, 116, 21}, {0, 52, 184, 6}});
  ExpectLoadingStripAt(120, 230, 73, {{15, 13, 40, 40}, {68, 18, 145, 26}, {0, 65, 230, 8}});
  ExpectLoadingStripAt(144, 276, 87, {{18, 15, 48, 48}, {81, 21, 174, 32}, {0, 78, 276, 9}});
  ExpectLoadingStripAt(192, 368, 116, {{24, 20, 64, 64}, {108, 28, 232, 42}, {0, 104, 368, 12}});
}

TEST(ScaleLayoutForDpi, KeepsEverythingButTheRectangles) {
  const PanelLayout layout = ConflictPanelLayout();
  const PanelLayout scaled = ScaleLayoutForDpi(layout, 144);
  EXPECT_EQ(scaled.width, 600);
  EXPECT_EQ(scaled.height, 255);
  EXPECT_EQ(scaled.placement, layout.placement);
  EXPECT_EQ(scaled.className, layout.className);
  EXPECT_EQ(scaled.style, layout.style);
  ASSERT_EQ(scaled.steps.size(), 4u);
  ExpectStepAt(scaled.steps[0], {30, 30, 540, 38});
  ExpectStepAt(scaled.steps[1], {30, 75, 60, 60});
  ExpectStepAt(scaled.steps[2], {105, 83, 465, 60});
  ExpectStepAt(scaled.steps[3], {30, 165, 255, 60});
  for (size_t i = 0; i < scaled.steps.size(); ++i) {
    LayoutStep unscaled = scaled.steps[i];
    unscaled.x = layout.steps[i].x;
    unscaled.y = layout.steps[i].y;
    unscaled.width = layout.steps[i].width;
    unscaled.height = layout.steps[i].height;
    EXPECT_EQ(unscaled, layout.steps[i]) << "step " << i;
  }
}

TEST(BadgeHomePositionAtDpi, MovesTheHomeDistancesWithTheDpi) {
  EXPECT_EQ(BadgeHomePosition(kOffice), (Point{1000, 750}));
  EXPECT_EQ(BadgeHomePosition(kOffice, 96), (Point{1000, 750}));
  EXPECT_EQ(BadgeHomePosition(kOffice, 120), (Point{925, 725}));
  EXPECT_EQ(BadgeHomePosition(kOffice, 144), (Point{850, 700}));
  EXPECT_EQ(BadgeHomePosition(kOffice, 192), (Point{700, 650}));
}

TEST(PlaceSubOverlayAtDpi, PutsTheScaledPanelAgainstTheScaledBadge) {
  const int expectedX[] = {670, 513, 355, 700};
  const int expectedY[] = {580, 512, 445, 310};
  int i = 0;
  for (int dpi : kDpis) {
    const Point home = BadgeHomePosition(kOffice, dpi);
    const int side = ScaleForDpi(70, dpi);
    const Rect badge{home.x, home.y, home.x + side, home.y + side};
    const PanelLayout panel = ScaleLayoutForDpi(ConflictPanelLayout(), dpi);
    EXPECT_EQ(PlaceSubOverlay(kOffice, badge, panel.width, panel.height), (Point{expectedX[i], expectedY[i]}))
        << dpi << " DPI";
    ++i;
  }
}

TEST(PlaceSubOverlayAtDpi, OpensBelowTheBadgeWhenTheScaledPanelWouldRiseAboveTheOfficeWindow) {
  const Rect office{0, 0, 1200, 500};
  const Point home = BadgeHomePosition({0, 0, 1200, 400}, 192);  // {600, 200}
  const Rect badge{home.x, home.y, home.x + 140, home.y + 140};
  const PanelLayout panel = ScaleLayoutForDpi(ConflictPanelLayout(), 192);  // 800 × 340
  EXPECT_EQ(PlaceSubOverlay(office, badge, panel.width, panel.height), (Point{600, 340}));
}

TEST(ScaledImageSide, DrawsAPlainFileAtItsSizeTimesTheDpiOverNinetySix) {
  EXPECT_EQ(ScaledImageSide(70, false, 96), 70);
  EXPECT_EQ(ScaledImageSide(70, false, 120), 88);
  EXPECT_EQ(ScaledImageSide(70, false, 144), 105);
  EXPECT_EQ(ScaledImageSide(70, false, 192), 140);
  EXPECT_EQ(ScaledImageSide(21, false, 144), 32);
}

TEST(ScaledImageSide, DrawsADoubleSizeFileAtHalfItsSizeTimesTheDpiOverNinetySix) {
  EXPECT_EQ(ScaledImageSide(140, true, 120), 88);
  EXPECT_EQ(ScaledImageSide(140, true, 144), 105);
  EXPECT_EQ(ScaledImageSide(140, true, 192), 140);
  EXPECT_EQ(ScaledImageSide(1, true, 120), 1);
}

TEST(DoubleSizeFileName, PutsTheSuffixBeforeTheExtension) {
  EXPECT_EQ(DoubleSizeFileName(L"drive.png"), L"drive@2x.png");
  EXPECT_EQ(DoubleSizeFileName(L"drive-mono-big.png"), L"drive-mono-big@2x.png");
  EXPECT_EQ(DoubleSizeFileName(L"a.b.png"), L"a.b@2x.png");
  EXPECT_EQ(DoubleSizeFileName(L"avatar"), L"avatar@2x");
  EXPECT_EQ(DoubleSizeFileName(L"C:\\x.y\\avatar"), L"C:\\x.y\\avatar@2x");
}

TEST(DoubleSizeFileName, IsLookedForOnlyAboveNinetySixDpi) {
  EXPECT_FALSE(WantsDoubleSizeImage(96));
  EXPECT_FALSE(WantsDoubleSizeImage(0));
  EXPECT_TRUE(WantsDoubleSizeImage(120));
  EXPECT_TRUE(WantsDoubleSizeImage(192));
}
