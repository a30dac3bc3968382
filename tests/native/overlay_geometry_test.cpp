#include "overlay/layouts/overlay_geometry.h"

#include <gtest/gtest.h>

namespace {
// A maximised Office window on a 1920 × 1080 screen, and one that is not.
constexpr Rect kOffice{100, 50, 1300, 850};
}  // namespace

TEST(Rect, MeasuresWidthAndHeightWithTheRightAndBottomEdgesOutside) {
  EXPECT_EQ(Rect({10, 20, 80, 90}).width(), 70);
  EXPECT_EQ(Rect({10, 20, 80, 90}).height(), 70);
}

TEST(BadgeHomePosition, IsThreeHundredLeftOfTheRightEdgeAndOneHundredAboveTheBottom) {
  EXPECT_EQ(BadgeHomePosition(kOffice), (Point{1000, 750}));
}

TEST(BadgeHomePosition, IsUsableFromTheFirstPixelOn) {
  EXPECT_TRUE(HomePositionUsable({1, 1}));
  EXPECT_TRUE(HomePositionUsable(BadgeHomePosition(kOffice)));
}

TEST(BadgeHomePosition, IsNotUsableInAnOfficeWindowTooNarrowOrTooLow) {
  EXPECT_FALSE(HomePositionUsable(BadgeHomePosition({0, 0, 300, 800})));
  EXPECT_FALSE(HomePositionUsable(BadgeHomePosition({0, 0, 1200, 100})));
  EXPECT_FALSE(HomePositionUsable({0, 5}));
  EXPECT_FALSE(HomePositionUsable({5, 0}));
  EXPECT_FALSE(HomePositionUsable({-40, 700}));
}

TEST(BadgeStaysInside, HoldsForABadgeWhollyInside) {
  EXPECT_TRUE(BadgeStaysInside(kOffice, 1000, 750, 70, 70));
  EXPECT_TRUE(BadgeStaysInside(kOffice, 101, 51, 70, 70));
  EXPECT_TRUE(BadgeStaysInside(kOffice, 1229, 779, 70, 70));
}

TEST(BadgeStaysInside, FailsForABadgeOnAnyEdge) {
  EXPECT_FALSE(BadgeStaysInside(kOffice, 100, 400, 70, 70));   // on the left edge
  EXPECT_FALSE(BadgeStaysInside(kOffice, 1230, 400, 70, 70));  // reaching the right edge
  EXPECT_FALSE(BadgeStaysInside(kOffice, 600, 50, 70, 70));    // on the top edge
  EXPECT_FALSE(BadgeStaysInside(kOffice, 600, 780, 70, 70));   // reaching the bottom edge
}

TEST(BadgeStaysInside, FailsForABadgePartlyOutside) {
  EXPECT_FALSE(BadgeStaysInside(kOffice, 1260, 750, 70, 70));
  EXPECT_FALSE(BadgeStaysInside(kOffice, 60, 750, 70, 70));
  EXPECT_FALSE(BadgeStaysInside(kOffice, 600, 20, 70, 70));
  EXPECT_FALSE(BadgeStaysInside(kOffice, 600, 820, 70, 70));
}

TEST(PlaceSubOverlay, AlignsTheRightEdgesAndOpensAboveTheBadge) {
  const Rect badge{1000, 750, 1070, 820};
  EXPECT_EQ(PlaceSubOverlay(kOffice, badge, 400, 250), (Point{670, 500}));
}

TEST(PlaceSubOverlay, OpensBelowABadgeNearTheTopEdge) {
  const Rect badge{1000, 120, 1070, 190};
  EXPECT_EQ(PlaceSubOverlay(kOffice, badge, 400, 250), (Point{670, 190}));
}

TEST(PlaceSubOverlay, AlignsTheLeftEdgesForABadgeNearTheLeftEdge) {
  const Rect badge{200, 750, 270, 820};
  EXPECT_EQ(PlaceSubOverlay(kOffice, badge, 400, 250), (Point{200, 500}));
}

TEST(PlaceSubOverlay, OpensBelowAndRightOfABadgeInTheTopLeftCorner) {
  const Rect badge{150, 60, 220, 130};
  EXPECT_EQ(PlaceSubOverlay(kOffice, badge, 440, 110), (Point{150, 130}));
}

TEST(PlaceSubOverlay, StaysAboveAndRightAlignedWhenThePanelJustFits) {
  const Rect badge{430, 300, 500, 370};
  EXPECT_EQ(PlaceSubOverlay(kOffice, badge, 400, 250), (Point{100, 50}));
}

TEST(DraggedBadgePosition, CentresTheBadgeOnTheCursor) {
  EXPECT_EQ(DraggedBadgePosition({500, 400}, 70, 70), (Point{465, 365}));
}

TEST(DraggedBadgePosition, TakesIntegerHalvesOfAnOddSize) {
  EXPECT_EQ(DraggedBadgePosition({500, 400}, 71, 69), (Point{465, 366}));
}

TEST(LeavesDragRectangle, HoldsNotForAMoveUpToTheSystemsDragDistanceOnEitherSide) {
  EXPECT_FALSE(LeavesDragRectangle({500, 400}, {500, 400}, 4, 4));
  EXPECT_FALSE(LeavesDragRectangle({500, 400}, {501, 400}, 4, 4));
  EXPECT_FALSE(LeavesDragRectangle({500, 400}, {504, 396}, 4, 4));
  EXPECT_FALSE(LeavesDragRectangle({500, 400}, {496, 404}, 4, 4));
}

TEST(LeavesDragRectangle, HoldsForAMoveOnePixelBeyondItInAnyDirection) {
  EXPECT_TRUE(LeavesDragRectangle({500, 400}, {505, 400}, 4, 4));
  EXPECT_TRUE(LeavesDragRectangle({500, 400}, {495, 400}, 4, 4));
  EXPECT_TRUE(LeavesDragRectangle({500, 400}, {500, 405}, 4, 4));
  EXPECT_TRUE(LeavesDragRectangle({500, 400}, {500, 395}, 4, 4));
}

TEST(LeavesDragRectangle, TakesWidthAndHeightApart) {
  EXPECT_FALSE(LeavesDragRectangle({500, 400}, {510, 402}, 10, 2));
  EXPECT_TRUE(LeavesDragRectangle({500, 400}, {510, 403}, 10, 2));
}
