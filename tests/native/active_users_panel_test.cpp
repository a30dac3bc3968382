#include "overlay/layouts/active_users_panel.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <string>
#include <vector>

#include "overlay/layouts/layout_steps.h"
#include "overlay/layouts/overlay_geometry.h"
#include "overlay/windows/window_class_names.h"
#include "tests/caller.h"

namespace {
const std::wstring kHyphens111(111, L'-');
const std::wstring kLearnMore =
    L"<a href=\"https://help.qelvo.com/portal/kb/filewell/sync/filewell-sync/articles/"
    L"track-live-user-activity-in-ms-office-files-using-filewell-collaboration-widget\">Learn More</a>";
// The member list is the fifth step; rows name it as their parent.
constexpr int kList = 4;

void ExpectSteps(const std::vector<LayoutStep>& actual, const std::vector<LayoutStep>& expected, Caller caller = {}) {
  TRACE_CALLER(caller);
  for (size_t i = 0; i < std::min(actual.size(), expected.size()); ++i)
    EXPECT_EQ(actual[i], expected[i]) << "step " << i;
  EXPECT_EQ(actual.size(), expected.size());
}

// The four controls of a member row whose top is t, inside the list.
std::vector<LayoutStep> Row(int t, const std::wstring& avatarFile, const std::wstring& name, bool editor) {
  LayoutStep dot = InsideOf(kList, WindowStep(editor ? kRedUiClass : kGreenUiClass, 0x50000000, {75, t + 22, 12, 12},
                                              ControlId::None, L"couldn't create active users color status - "));
  dot.circleRegion = true;
  dot.regionFailureText = L"couldn't create active users color status rgn - ";
  dot.setRegionFailureText = L"couldn't set active users color status rgn to window - ";
  return {
      InsideOf(kList, AvatarStep(true, avatarFile, {20, t, 40, 40}, nullptr)),
      InsideOf(kList, NameStep(name, {75, t, 305, 20}, ControlId::MemberRow, ColourRole::MemberRow, FontRole::Title,
                               L"couldn't create active users live member name - ")),
      dot,
      InsideOf(kList,
               TextStep(editor ? L"Editing now" : L"Viewing now", {95, t + 20, 305, 20}, ControlId::MemberRow,
                        ColourRole::MemberRow, FontRole::Body, L"couldn't create active users live member status - ")),
  };
}

void Append(std::vector<LayoutStep>& steps, const std::vector<LayoutStep>& more) {
  steps.insert(steps.end(), more.begin(), more.end());
}

MemberNames Viewers(int count) {
  MemberNames viewers;
  for (int i = 0; i < count; ++i) viewers[L"v-" + std::to_wstring(10 + i)] = L"Viewer " + std::to_wstring(i);
  return viewers;
}

const LayoutStep* FindResize(const PanelLayout& layout) {
  for (const LayoutStep& step : layout.steps) {
    if (step.kind == StepKind::ResizeChild) return &step;
  }
  return nullptr;
}
}  // namespace

TEST(ActiveUsersPanel, DrawsItsRulesWithOneHundredElevenHyphens) { EXPECT_EQ(kHyphens111.size(), 111u); }

TEST(ActiveUsersPanel, ListsOneEditorInRedThenThreeViewersInGreenWithTheSection) {
  const MemberNames editors = {{L"e-bob", L"Bob Stone"}};
  const MemberNames viewers = {{L"v-dan", L"Dan"}, {L"v-cat", L"Cat"}, {L"v-eve", L"Eve"}};
  const PanelLayout layout = ActiveUsersPanelLayout(L"u-ann42", L"Ann Lee", L"2026-03-01 10:15", editors, viewers);

  std::vector<LayoutStep> expected = {
      TextStep(L"Another user is editing this file", {20, 20, 360, 30}, ControlId::EditingTitle,
               ColourRole::EditingTitle, FontRole::DefaultBold, L"couldn't create active users title - "),
      TextStep(L"Please avoid editing now, as it may create multiple versions. Check with other user for more "
               L"details.",
               {20, 50, 360, 50}, ControlId::Description, ColourRole::BodyText, FontRole::Body,
               L"couldn't create active users description - "),
      TextStep(kHyphens111, {0, 95, 400, 25}, ControlId::Rule, ColourRole::Rule, FontRole::None,
               L"couldn't create active users line1 - "),
      TextStep(L"LIVE MEMBERS ( 4 )", {20, 125, 360, 25}, ControlId::Description, ColourRole::BodyText,
               FontRole::Section, L"couldn't create active users live members header - "),
      WindowStep(kMainUiClass, 0x50000000, {0, 150, 400, 460}, ControlId::List,
                 L"couldn't create active users scroll window - "),
  };
  Append(expected, Row(15, L"bob", L"Bob Stone", true));
  Append(expected, Row(70, L"cat", L"Cat", false));
  Append(expected, Row(125, L"dan", L"Dan", false));
  Append(expected, Row(180, L"eve", L"Eve", false));
  Append(expected,
         {
             ResizeChildStep(kList, {0, 150, 400, 225}, L"couldn't update active users scroll window size - "),
             TextStep(kHyphens111, {0, 375, 400, 25}, ControlId::Rule, ColourRole::Rule, FontRole::None,
                      L"couldn't create active users line2 - "),
             TextStep(L"LAST MODIFIED BY", {20, 405, 360, 25}, ControlId::Description, ColourRole::BodyText,
                      FontRole::Section, L"couldn't create active users last modified by header - "),
             AvatarStep(true, L"ann42", {20, 440, 40, 40}, L"couldn't create active users last modified by avatar - "),
             NameStep(L"Ann Lee", {75, 440, 305, 20}, ControlId::None, ColourRole::Plain, FontRole::Title,
                      L"couldn't create active users lastModifiedBy name - "),
             ModifiedOnStep(L"2026-03-01 10:15", {75, 460, 305, 20}, ControlId::Description, ColourRole::BodyText,
                            FontRole::Body, L"couldn't create active users lastModifiedTime - "),
             TextStep(kHyphens111, {0, 490, 400, 25}, ControlId::Rule, ColourRole::Rule, FontRole::None,
                      L"couldn't create active users line3 - "),
             LinkStep(kLearnMore, {20, 515, 80, 20}, L"couldn't create active users learn more - "),
             ButtonStep(L"Hide", {120, 515, 40, 20}, ControlId::Hide, ButtonLook::Quiet, ButtonShape::Rounded,
                        L"couldn't create active users hide button - "),
         });
  ExpectSteps(layout.steps, expected);
  EXPECT_EQ(layout.width, 400);
  EXPECT_EQ(layout.createHeight, 400);
  EXPECT_EQ(layout.height, 550);
}

TEST(ActiveUsersPanel, ListsOneViewerWithoutTheSectionWhenTheNameIsEmpty) {
  const PanelLayout layout = ActiveUsersPanelLayout(L"u-ann42", L"", L"2026-03-01 10:15", {}, {{L"v-cat", L"Cat"}});

  std::vector<LayoutStep> expected = {
      TextStep(L"Another user is viewing this file", {20, 20, 360, 30}, ControlId::ViewingTitle,
               ColourRole::ViewingTitle, FontRole::DefaultBold, L"couldn't create active users title - "),
      TextStep(L"If they make changes, we'll let you know.", {20, 50, 360, 25}, ControlId::Description,
               ColourRole::BodyText, FontRole::Body, L"couldn't create active users description - "),
      TextStep(kHyphens111, {0, 70, 400, 25}, ControlId::Rule, ColourRole::Rule, FontRole::None,
               L"couldn't create active users line1 - "),
      TextStep(L"LIVE MEMBERS ( 1 )", {20, 100, 360, 25}, ControlId::Description, ColourRole::BodyText,
               FontRole::Section, L"couldn't create active users live members header - "),
      WindowStep(kMainUiClass, 0x50000000, {0, 125, 400, 460}, ControlId::List,
                 L"couldn't create active users scroll window - "),
  };
  Append(expected, Row(15, L"cat", L"Cat", false));
  Append(expected, {
                       ResizeChildStep(kList, {0, 125, 400, 55}, L"couldn't update active users scroll window size - "),
                       TextStep(kHyphens111, {0, 190, 400, 25}, ControlId::Rule, ColourRole::Rule, FontRole::None,
                                L"couldn't create active users line3 - "),
                       LinkStep(kLearnMore, {20, 215, 80, 20}, L"couldn't create active users learn more - "),
                       ButtonStep(L"Hide", {120, 215, 40, 20}, ControlId::Hide, ButtonLook::Quiet, ButtonShape::Rounded,
                                  L"couldn't create active users hide button - "),
                   });
  ExpectSteps(layout.steps, expected);
  EXPECT_EQ(layout.height, 250);
}

TEST(ActiveUsersPanel, TitlesSeveralViewersAsMultipleWithTheShortAdvice) {
  const PanelLayout layout = ActiveUsersPanelLayout(L"", L"", L"", {}, Viewers(2));
  EXPECT_EQ(layout.steps[0].text, L"Multiple users are viewing this file");
  EXPECT_EQ(layout.steps[0].id, ControlId::ViewingTitle);
  EXPECT_EQ(layout.steps[0].colour, ColourRole::ViewingTitle);
  EXPECT_EQ(layout.steps[1].text, L"If they make changes, we'll let you know.");
  EXPECT_EQ(layout.steps[1].height, 25);
}

TEST(ActiveUsersPanel, TitlesSeveralEditorsAsMultipleWithThePluralAdvice) {
  const PanelLayout layout = ActiveUsersPanelLayout(L"", L"", L"", {{L"e-1", L"One"}, {L"e-2", L"Two"}}, Viewers(1));
  EXPECT_EQ(layout.steps[0].text, L"Multiple users are editing this file");
  EXPECT_EQ(layout.steps[0].id, ControlId::EditingTitle);
  EXPECT_EQ(layout.steps[0].colour, ColourRole::EditingTitle);
  EXPECT_EQ(layout.steps[1].text,
            L"Please avoid editing now, as it may create multiple versions. Check with other users for more details.");
  EXPECT_EQ(layout.steps[1].height, 50);
  EXPECT_EQ(layout.steps[3].text, L"LIVE MEMBERS ( 3 )");
}

TEST(ActiveUsersPanel, ShowsEditorsFirstEachInIdentifierOrder) {
  const MemberNames editors = {{L"e-zz", L"Zed"}, {L"e-aa", L"Abe"}};
  const MemberNames viewers = {{L"v-00", L"Ada"}};
  const PanelLayout layout = ActiveUsersPanelLayout(L"", L"", L"", editors, viewers);
  ASSERT_GE(layout.steps.size(), 17u);
  EXPECT_EQ(layout.steps[6].text, L"Abe");
  EXPECT_EQ(layout.steps[7].className, kRedUiClass);
  EXPECT_EQ(layout.steps[10].text, L"Zed");
  EXPECT_EQ(layout.steps[11].className, kRedUiClass);
  EXPECT_EQ(layout.steps[14].text, L"Ada");
  EXPECT_EQ(layout.steps[15].className, kGreenUiClass);
  EXPECT_EQ(layout.steps[16].text, L"Viewing now");
}

TEST(ActiveUsersPanel, GivesEightMembersAPlainListOfFourHundredForty) {
  const PanelLayout layout = ActiveUsersPanelLayout(L"", L"", L"", {}, Viewers(8));
  EXPECT_EQ(layout.steps[kList].className, kMainUiClass);
  EXPECT_EQ(layout.steps[kList].style, 0x50000000u);
  const LayoutStep* resize = FindResize(layout);
  ASSERT_NE(resize, nullptr);
  EXPECT_EQ(*resize, ResizeChildStep(kList, {0, 125, 400, 440}, L"couldn't update active users scroll window size - "));
  EXPECT_EQ(layout.steps.back().y, 125 + 440 + 10 + 25);
  EXPECT_EQ(layout.height, 125 + 440 + 10 + 60);
}

TEST(ActiveUsersPanel, GivesEightMembersAPlainListOfFourHundredFortyFiveWithTheSection) {
  const PanelLayout layout = ActiveUsersPanelLayout(L"u-ann42", L"Ann", L"now", {}, Viewers(8));
  EXPECT_EQ(layout.steps[kList].className, kMainUiClass);
  const LayoutStep* resize = FindResize(layout);
  ASSERT_NE(resize, nullptr);
  EXPECT_EQ(resize->height, 445);
  EXPECT_EQ(layout.height, 125 + 445 + 115 + 60);
}

TEST(ActiveUsersPanel, GivesNineMembersAScrollingListHeldAtFourHundredSixty) {
  const PanelLayout layout = ActiveUsersPanelLayout(L"", L"", L"", {}, Viewers(9));
  EXPECT_EQ(layout.steps[kList], WindowStep(kVerWhiteScrollUiClass, 0x50200000, {0, 125, 400, 460}, ControlId::List,
                                            L"couldn't create active users scroll window - "));
  EXPECT_EQ(layout.steps[kList].className, kVerWhiteScrollUiClass);
  EXPECT_EQ(FindResize(layout), nullptr);
  // The rows reach 495 pixels down the list: content to scroll to.
  const LayoutStep& lastStatus = layout.steps[kList + 9 * 4];
  EXPECT_EQ(lastStatus.text, L"Viewing now");
  EXPECT_EQ(lastStatus.parent, kList);
  EXPECT_EQ(lastStatus.y + lastStatus.height, 495);
  // The last rule follows the list's 460 pixels.
  EXPECT_EQ(layout.steps[kList + 9 * 4 + 1].y, 125 + 460 + 10);
  EXPECT_EQ(layout.height, 125 + 460 + 10 + 60);
}

TEST(ActiveUsersPanel, KeepsNineMembersWithTheSectionScrollingAtFourHundredSixty) {
  const PanelLayout layout = ActiveUsersPanelLayout(L"u-ann42", L"Ann", L"now", {}, Viewers(9));
  EXPECT_EQ(layout.steps[kList].className, kVerWhiteScrollUiClass);
  EXPECT_EQ(FindResize(layout), nullptr);
  const LayoutStep& secondRule = layout.steps[kList + 9 * 4 + 1];
  EXPECT_EQ(std::wstring(secondRule.failureText), L"couldn't create active users line2 - ");
  EXPECT_EQ(secondRule.y, 125 + 460);
  EXPECT_EQ(layout.height, 125 + 460 + 115 + 60);
}

TEST(ActiveUsersPanel, BuildsWithNoMemberAtAllWithEmptyTitleAndAdvice) {
  const PanelLayout layout = ActiveUsersPanelLayout(L"", L"", L"", {}, {});
  ExpectSteps(layout.steps,
              {
                  TextStep(L"", {20, 20, 360, 30}, ControlId::ViewingTitle, ColourRole::ViewingTitle,
                           FontRole::DefaultBold, L"couldn't create active users title - "),
                  TextStep(L"", {20, 50, 360, 25}, ControlId::Description, ColourRole::BodyText, FontRole::Body,
                           L"couldn't create active users description - "),
                  TextStep(kHyphens111, {0, 70, 400, 25}, ControlId::Rule, ColourRole::Rule, FontRole::None,
                           L"couldn't create active users line1 - "),
                  TextStep(L"LIVE MEMBERS ( 0 )", {20, 100, 360, 25}, ControlId::Description, ColourRole::BodyText,
                           FontRole::Section, L"couldn't create active users live members header - "),
                  WindowStep(kMainUiClass, 0x50000000, {0, 125, 400, 460}, ControlId::List,
                             L"couldn't create active users scroll window - "),
                  ResizeChildStep(kList, {0, 125, 400, 0}, L"couldn't update active users scroll window size - "),
                  TextStep(kHyphens111, {0, 135, 400, 25}, ControlId::Rule, ColourRole::Rule, FontRole::None,
                           L"couldn't create active users line3 - "),
                  LinkStep(kLearnMore, {20, 160, 80, 20}, L"couldn't create active users learn more - "),
                  ButtonStep(L"Hide", {120, 160, 40, 20}, ControlId::Hide, ButtonLook::Quiet, ButtonShape::Rounded,
                             L"couldn't create active users hide button - "),
              });
  EXPECT_EQ(layout.height, 195);
}

TEST(ActiveUsersPanel, TriesEachMembersOwnAvatarWithoutStoppingTheBuildOverIt) {
  const PanelLayout layout = ActiveUsersPanelLayout(L"", L"", L"", {{L"e-", L"Short"}}, {});
  const LayoutStep& avatar = layout.steps[kList + 1];
  EXPECT_EQ(avatar.image, ImageRole::Avatar);
  EXPECT_TRUE(avatar.tryUserAvatar);
  EXPECT_EQ(avatar.avatarFile, L"");
  EXPECT_EQ(avatar.failureText, nullptr);
}

TEST(ActiveUsersPanel, TriesTheLastModifiersAvatarEvenWithoutAnIdentifier) {
  const PanelLayout layout = ActiveUsersPanelLayout(L"", L"Ann", L"now", {}, Viewers(1));
  const LayoutStep& avatar = layout.steps[kList + 4 + 1 + 3];
  EXPECT_EQ(std::wstring(avatar.failureText), L"couldn't create active users last modified by avatar - ");
  EXPECT_TRUE(avatar.tryUserAvatar);
  EXPECT_EQ(avatar.avatarFile, L"");
}

TEST(ActiveUsersPanel, IsCreatedFourHundredSquareAndResizedWithItsOwnText) {
  const PanelLayout layout = ActiveUsersPanelLayout(L"", L"", L"", {}, Viewers(3));
  EXPECT_EQ(layout.placement, PanelPlacement::AgainstBadge);
  EXPECT_EQ(layout.className, kMainUiClass);
  EXPECT_EQ(layout.style, 0x80800000u);
  EXPECT_EQ(layout.width, 400);
  EXPECT_EQ(layout.createHeight, 400);
  EXPECT_EQ(layout.height, 125 + 165 + 10 + 60);
  EXPECT_EQ(std::wstring(layout.officeRectFailureText),
            L"couldn't get ms office window rect while creating active users sub overlay UI - ");
  EXPECT_EQ(std::wstring(layout.badgeRectFailureText),
            L"couldn't get parent window rect while creating active users sub overlay UI - ");
  EXPECT_EQ(std::wstring(layout.windowFailureText), L"couldn't create active users sub overlay UI - ");
  EXPECT_EQ(std::wstring(layout.finalResizeFailureText), L"couldn't update active users window size - ");
  EXPECT_EQ(std::wstring(layout.exceptionActivity), L"creating active users sub overlay UI");
}

TEST(ActiveUsersPanel, OpensBelowABadgeNearTheTopWithItsFinalHeight) {
  const PanelLayout layout = ActiveUsersPanelLayout(L"u-ann42", L"Ann", L"now", {}, Viewers(9));
  ASSERT_EQ(layout.height, 760);
  const Rect office{0, 0, 1600, 900};
  const Rect badge{1200, 700, 1270, 770};
  EXPECT_EQ(PlaceSubOverlay(office, badge, layout.width, layout.createHeight), (Point{870, 300}));
  EXPECT_EQ(PlaceSubOverlay(office, badge, layout.width, layout.height), (Point{870, 770}));
}

// --- What an answer with very many members may cost ---

MemberNames Editors(int count) {
  MemberNames editors;
  for (int i = 0; i < count; ++i) editors[L"e-" + std::to_wstring(1000 + i)] = L"Editor " + std::to_wstring(i);
  return editors;
}

// The rows of member rows in the layout: the steps inside the list.
size_t RowsInList(const PanelLayout& layout) {
  size_t inside = 0;
  for (const LayoutStep& step : layout.steps) inside += step.parent == kList ? 1 : 0;
  return inside;
}

TEST(ActiveUsersPanel, ShowsAtMostFiftyMembers) { EXPECT_EQ(kMaxShownMembers, 50u); }

TEST(ActiveUsersPanel, ShowsFiftyMembersWithoutAMoreLine) {
  const PanelLayout layout = ActiveUsersPanelLayout(L"", L"", L"", {}, Viewers(50));
  EXPECT_EQ(RowsInList(layout), 50u * 4);
  EXPECT_EQ(layout.steps[3].text, L"LIVE MEMBERS ( 50 )");
}

TEST(ActiveUsersPanel, ShowsTheFirstFiftyOfFiveThousandThenHowManyMore) {
  const PanelLayout layout = ActiveUsersPanelLayout(L"", L"", L"", {}, Viewers(5000));
  // The heading still counts everyone.
  EXPECT_EQ(layout.steps[3].text, L"LIVE MEMBERS ( 5000 )");
  EXPECT_EQ(RowsInList(layout), 50u * 4 + 1);
  const LayoutStep& more = layout.steps[kList + 50 * 4 + 1];
  EXPECT_EQ(more, InsideOf(kList, TextStep(L"and 4,950 more", {20, 15 + 55 * 50, 360, 20}, ControlId::MemberRow,
                                           ColourRole::MemberRow, FontRole::Body,
                                           L"couldn't create active users more members - ")));
  // The fiftieth row is the fiftieth viewer in the list's order.
  const MemberNames viewers = Viewers(5000);
  auto fiftieth = viewers.begin();
  std::advance(fiftieth, 49);
  EXPECT_EQ(layout.steps[kList + 49 * 4 + 2].text, fiftieth->second);
  // The list scrolls, held at 460 pixels, and the panel ends below it as
  // with nine members.
  EXPECT_EQ(layout.steps[kList].className, kVerWhiteScrollUiClass);
  EXPECT_EQ(FindResize(layout), nullptr);
  EXPECT_EQ(layout.height, 125 + 460 + 10 + 60);
}

TEST(ActiveUsersPanel, FiftyOneMembersAndFiveThousandGiveLayoutsOfTheSameSize) {
  const PanelLayout few = ActiveUsersPanelLayout(L"u-ann42", L"Ann", L"now", Editors(3), Viewers(48));
  const PanelLayout many = ActiveUsersPanelLayout(L"u-ann42", L"Ann", L"now", Editors(3), Viewers(4997));
  EXPECT_EQ(few.steps.size(), many.steps.size());
  EXPECT_EQ(few.height, many.height);
  EXPECT_EQ(few.steps[kList + 50 * 4 + 1].text, L"and 1 more");
  EXPECT_EQ(many.steps[kList + 50 * 4 + 1].text, L"and 4,950 more");
}

TEST(ActiveUsersPanel, ShowsEditorsFirstWhenTheyAloneFillTheList) {
  const PanelLayout layout = ActiveUsersPanelLayout(L"", L"", L"", Editors(60), Viewers(10));
  EXPECT_EQ(layout.steps[0].text, L"Multiple users are editing this file");
  EXPECT_EQ(layout.steps[3].text, L"LIVE MEMBERS ( 70 )");
  for (int row = 0; row < 50; ++row) {
    EXPECT_EQ(layout.steps[kList + row * 4 + 4].text, L"Editing now") << row;
  }
  EXPECT_EQ(layout.steps[kList + 50 * 4 + 1].text, L"and 20 more");
}

TEST(ActiveUsersPanel, FillsTheRestOfTheFiftyWithViewersAfterTheEditors) {
  const PanelLayout layout = ActiveUsersPanelLayout(L"", L"", L"", Editors(30), Viewers(40));
  EXPECT_EQ(layout.steps[kList + 29 * 4 + 4].text, L"Editing now");
  EXPECT_EQ(layout.steps[kList + 29 * 4 + 2].text, L"Editor 29");
  EXPECT_EQ(layout.steps[kList + 30 * 4 + 4].text, L"Viewing now");
  EXPECT_EQ(layout.steps[kList + 30 * 4 + 2].text, L"Viewer 0");
  EXPECT_EQ(layout.steps[kList + 49 * 4 + 2].text, L"Viewer 19");
  EXPECT_EQ(layout.steps[kList + 50 * 4 + 1].text, L"and 20 more");
}

TEST(ActiveUsersPanel, SaysHowManyMoreWithThousandsSeparated) {
  EXPECT_EQ(MoreMembersText(1), L"and 1 more");
  EXPECT_EQ(MoreMembersText(999), L"and 999 more");
  EXPECT_EQ(MoreMembersText(1000), L"and 1,000 more");
  EXPECT_EQ(MoreMembersText(4950), L"and 4,950 more");
  EXPECT_EQ(MoreMembersText(1234567), L"and 1,234,567 more");
}

// --- Names and times from the answer ---

TEST(ActiveUsersPanel, ShowsNamesCleanedAndCappedWithoutAccelerators) {
  const std::wstring hostile = L"Ann\r\n\u202E&Co" + std::wstring(1024 * 1024, L'x');
  const PanelLayout layout =
      ActiveUsersPanelLayout(L"u-ann42", L"Bob\r\nStone", L"10:15\u202E\n", {}, {{L"v-ann", hostile}});
  const LayoutStep& member = layout.steps[kList + 2];
  EXPECT_EQ(member.style, 0x50004080u);
  EXPECT_EQ(member.text, L"Ann&Co" + std::wstring(249, L'x') + L"\u2026");
  const LayoutStep& name = layout.steps[kList + 4 + 1 + 4];
  EXPECT_EQ(name.text, L"BobStone");
  EXPECT_EQ(name.style, 0x50004080u);
  const LayoutStep& time = layout.steps[kList + 4 + 1 + 5];
  EXPECT_EQ(time.text, L"Modified on 10:15");
  EXPECT_EQ(time.style, 0x50000080u);
}
