#include "overlay/layouts/font_table.h"

#include <gtest/gtest.h>

#include "tests/caller.h"

namespace {
void ExpectFont(FontRole role, int height, int weight, bool italic, Caller caller = {}) {
  TRACE_CALLER(caller);
  const FontSpec wanted = FontSpecOf(role);
  EXPECT_EQ(wanted.height, height);
  EXPECT_EQ(wanted.weight, weight);
  EXPECT_EQ(wanted.italic, italic);
}
}  // namespace

TEST(FontSpecOf, MakesTitlesNineteenHighAndBold) { ExpectFont(FontRole::Title, 19, 700, false); }

TEST(FontSpecOf, MakesTheBodyEighteenHighAndNormal) { ExpectFont(FontRole::Body, 18, 400, false); }

TEST(FontSpecOf, MakesTheWaitingNoteTheBodyInItalics) { ExpectFont(FontRole::BodyItalic, 18, 400, true); }

TEST(FontSpecOf, MakesTheRetrievingLineNineteenHighInItalics) { ExpectFont(FontRole::WaitItalic, 19, 400, true); }

TEST(FontSpecOf, MakesOverlayTitlesEighteenHighAndBold) { ExpectFont(FontRole::OverlayTitle, 18, 700, false); }

TEST(FontSpecOf, MakesSectionHeadingsSeventeenHighAndBold) { ExpectFont(FontRole::Section, 17, 700, false); }

TEST(FontSpecOf, MakesTheDefaultBoldFontBoldAtTheDefaultSize) { ExpectFont(FontRole::DefaultBold, 0, 700, false); }

TEST(FontSpecOf, GivesNoFontForNone) { ExpectFont(FontRole::None, 0, 0, false); }

TEST(FontRoles, ListEveryRoleThatHasAFontOnce) {
  ASSERT_EQ(sizeof(kFontRoles) / sizeof(kFontRoles[0]), 7u);
  EXPECT_EQ(kFontRoles[0], FontRole::Title);
  EXPECT_EQ(kFontRoles[1], FontRole::Body);
  EXPECT_EQ(kFontRoles[2], FontRole::BodyItalic);
  EXPECT_EQ(kFontRoles[3], FontRole::WaitItalic);
  EXPECT_EQ(kFontRoles[4], FontRole::OverlayTitle);
  EXPECT_EQ(kFontRoles[5], FontRole::Section);
  EXPECT_EQ(kFontRoles[6], FontRole::DefaultBold);
}
