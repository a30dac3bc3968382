#include "overlay/layouts/scroll_metrics.h"

#include <gtest/gtest.h>

#include <string>

namespace {
ScrollBarState Bar(int minimum, int maximum, int page, int position, int track) {
  return {minimum, maximum, page, position, track};
}

std::wstring Text(const wchar_t* text) { return text == nullptr ? L"(none)" : text; }
}  // namespace

TEST(CapitalWidth, IsHalfAgainTheAverageForAVariablePitchFont) {
  EXPECT_EQ(CapitalWidth(7, 0x21), 10);
  EXPECT_EQ(CapitalWidth(8, 0x01), 12);
}

TEST(CapitalWidth, IsTheAverageForAFixedPitchFont) {
  EXPECT_EQ(CapitalWidth(7, 0x30), 7);
  EXPECT_EQ(CapitalWidth(7, 0x00), 7);
}

TEST(LineHeight, AddsTheExternalLeading) { EXPECT_EQ(LineHeight(16, 2), 18); }

TEST(HorizontalPage, IsTheClientWidthInWholeCharacters) { EXPECT_EQ(HorizontalPage(360, 7), 51); }

TEST(HorizontalPage, IsZeroForAFontWithoutWidth) { EXPECT_EQ(HorizontalPage(360, 0), 0); }

TEST(TextWidth, AddsACapitalForEveryFourthCharacter) {
  EXPECT_EQ(TextWidth(10, 7, 10), 90);
  EXPECT_EQ(TextWidth(3, 7, 10), 21);
  EXPECT_EQ(TextWidth(0, 7, 10), 0);
}

TEST(HorizontalRange, GivesAShortTextAtLeastTwoCharactersOfRoom) {
  EXPECT_EQ(HorizontalRange(0, 7), (ScrollRange{0, 2}));
  EXPECT_EQ(HorizontalRange(TextWidth(2, 7, 10), 7), (ScrollRange{0, 4}));
}

TEST(HorizontalRange, CoversALongTextInCharactersPlusTwo) {
  EXPECT_EQ(HorizontalRange(TextWidth(100, 7, 10), 7), (ScrollRange{0, 137}));
}

TEST(HorizontalTextX, StartsOneCharacterInAtPositionZero) {
  EXPECT_EQ(HorizontalTextX(0, 7), 7);
  EXPECT_EQ(HorizontalTextX(1, 7), 0);
  EXPECT_EQ(HorizontalTextX(5, 7), -28);
}

TEST(HorizontalTextTop, IsTenPixels) { EXPECT_EQ(kHorizontalTextTop, 10); }

TEST(HorizontalScrollRequest, KeepsTheWin32Numbers) {
  EXPECT_EQ(static_cast<int>(HorizontalScrollRequest::LineLeft), 0);
  EXPECT_EQ(static_cast<int>(HorizontalScrollRequest::LineRight), 1);
  EXPECT_EQ(static_cast<int>(HorizontalScrollRequest::PageLeft), 2);
  EXPECT_EQ(static_cast<int>(HorizontalScrollRequest::PageRight), 3);
  EXPECT_EQ(static_cast<int>(HorizontalScrollRequest::ThumbTrack), 5);
}

TEST(RequestedHorizontalPosition, MovesByOneCharacterPerArrow) {
  EXPECT_EQ(RequestedHorizontalPosition(HorizontalScrollRequest::LineLeft, Bar(0, 40, 10, 5, 0)), 4);
  EXPECT_EQ(RequestedHorizontalPosition(HorizontalScrollRequest::LineRight, Bar(0, 40, 10, 5, 0)), 6);
}

TEST(RequestedHorizontalPosition, MovesByAPageBeforeTheSystemClampsIt) {
  EXPECT_EQ(RequestedHorizontalPosition(HorizontalScrollRequest::PageLeft, Bar(0, 40, 10, 5, 0)), -5);
  EXPECT_EQ(RequestedHorizontalPosition(HorizontalScrollRequest::PageRight, Bar(0, 40, 10, 5, 0)), 15);
}

TEST(RequestedHorizontalPosition, FollowsTheThumbWhileItIsDragged) {
  EXPECT_EQ(RequestedHorizontalPosition(HorizontalScrollRequest::ThumbTrack, Bar(0, 40, 10, 5, 23)), 23);
}

TEST(RequestedHorizontalPosition, LeavesThePositionForOtherRequests) {
  for (int request : {4, 6, 7, 8, 99}) {
    EXPECT_EQ(RequestedHorizontalPosition(static_cast<HorizontalScrollRequest>(request), Bar(0, 40, 10, 5, 23)), 5)
        << request;
    EXPECT_EQ(HorizontalRequestLogText(static_cast<HorizontalScrollRequest>(request)), nullptr) << request;
  }
}

TEST(HorizontalRequestLogText, NamesEachRequest) {
  EXPECT_EQ(Text(HorizontalRequestLogText(HorizontalScrollRequest::LineLeft)), L"WM_HSCROLL - SB_LINELEFT");
  EXPECT_EQ(Text(HorizontalRequestLogText(HorizontalScrollRequest::LineRight)), L"WM_HSCROLL - SB_LINERIGHT");
  EXPECT_EQ(Text(HorizontalRequestLogText(HorizontalScrollRequest::PageLeft)), L"WM_HSCROLL - SB_PAGELEFT");
  EXPECT_EQ(Text(HorizontalRequestLogText(HorizontalScrollRequest::PageRight)), L"WM_HSCROLL - SB_PAGERIGHT");
  EXPECT_EQ(Text(HorizontalRequestLogText(HorizontalScrollRequest::ThumbTrack)), L"WM_HSCROLL - SB_THUMBTRACK");
}

TEST(VerticalRange, HasTwentyLinesOfSlackBeyondTheVisibleHeight) {
  EXPECT_EQ(VerticalRange(460, 16), (ScrollRange{0, 48}));
  EXPECT_EQ(VerticalRange(0, 16), (ScrollRange{0, 20}));
}

TEST(VerticalRange, HasOnlyTheSlackForAFontWithoutHeight) { EXPECT_EQ(VerticalRange(460, 0), (ScrollRange{0, 20})); }

TEST(VerticalPage, IsTheClientHeightInWholeLines) { EXPECT_EQ(VerticalPage(460, 16), 28); }

TEST(VerticalScrollRequest, KeepsTheWin32Numbers) {
  EXPECT_EQ(static_cast<int>(VerticalScrollRequest::LineUp), 0);
  EXPECT_EQ(static_cast<int>(VerticalScrollRequest::LineDown), 1);
  EXPECT_EQ(static_cast<int>(VerticalScrollRequest::PageUp), 2);
  EXPECT_EQ(static_cast<int>(VerticalScrollRequest::PageDown), 3);
  EXPECT_EQ(static_cast<int>(VerticalScrollRequest::ThumbTrack), 5);
  EXPECT_EQ(static_cast<int>(VerticalScrollRequest::Top), 6);
  EXPECT_EQ(static_cast<int>(VerticalScrollRequest::Bottom), 7);
}

TEST(RequestedVerticalPosition, MovesByALinePerArrowAndAPagePerClickInTheTrack) {
  const ScrollBarState bar = Bar(0, 48, 28, 10, 0);
  EXPECT_EQ(RequestedVerticalPosition(VerticalScrollRequest::LineUp, bar), 9);
  EXPECT_EQ(RequestedVerticalPosition(VerticalScrollRequest::LineDown, bar), 11);
  EXPECT_EQ(RequestedVerticalPosition(VerticalScrollRequest::PageUp, bar), -18);
  EXPECT_EQ(RequestedVerticalPosition(VerticalScrollRequest::PageDown, bar), 38);
}

TEST(RequestedVerticalPosition, FollowsTheThumbAndJumpsToEitherEnd) {
  const ScrollBarState bar = Bar(3, 48, 28, 10, 17);
  EXPECT_EQ(RequestedVerticalPosition(VerticalScrollRequest::ThumbTrack, bar), 17);
  EXPECT_EQ(RequestedVerticalPosition(VerticalScrollRequest::Top, bar), 3);
  EXPECT_EQ(RequestedVerticalPosition(VerticalScrollRequest::Bottom, bar), 48);
}

TEST(RequestedVerticalPosition, LeavesThePositionForOtherRequests) {
  for (int request : {4, 8, 99}) {
    EXPECT_EQ(RequestedVerticalPosition(static_cast<VerticalScrollRequest>(request), Bar(0, 48, 28, 10, 17)), 10)
        << request;
    EXPECT_EQ(VerticalRequestLogText(static_cast<VerticalScrollRequest>(request)), nullptr) << request;
  }
}

TEST(VerticalRequestLogText, NamesEachRequest) {
  EXPECT_EQ(Text(VerticalRequestLogText(VerticalScrollRequest::LineUp)), L"WM_VSCROLL - SB_LINEUP");
  EXPECT_EQ(Text(VerticalRequestLogText(VerticalScrollRequest::LineDown)), L"WM_VSCROLL - SB_LINEDOWN");
  EXPECT_EQ(Text(VerticalRequestLogText(VerticalScrollRequest::PageUp)), L"WM_VSCROLL - SB_PAGEUP");
  EXPECT_EQ(Text(VerticalRequestLogText(VerticalScrollRequest::PageDown)), L"WM_VSCROLL - SB_PAGEDOWN");
  EXPECT_EQ(Text(VerticalRequestLogText(VerticalScrollRequest::ThumbTrack)), L"WM_VSCROLL - SB_THUMBTRACK");
  EXPECT_EQ(Text(VerticalRequestLogText(VerticalScrollRequest::Top)), L"WM_VSCROLL - SB_TOP");
  EXPECT_EQ(Text(VerticalRequestLogText(VerticalScrollRequest::Bottom)), L"WM_VSCROLL - SB_BOTTOM");
}

TEST(ScrollPixels, MovesTheContentAgainstThePosition) {
  EXPECT_EQ(ScrollPixels(3, 5, 7), -14);
  EXPECT_EQ(ScrollPixels(5, 3, 16), 32);
  EXPECT_EQ(ScrollPixels(4, 4, 7), 0);
}
