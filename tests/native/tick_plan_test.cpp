// The tick's plan for the active, visible sync file, made once from plain
// values: which windows go, which badge and panel are built, whether the
// panel is shown, the kind left on the badge, the drawn mark and the log
// tag, with the special rules of the safe-to-edit notice and of panels
// rebuilt for the kind the badge already shows.
#include "overlay/decision/tick_plan.h"

#include <gtest/gtest.h>

#include <string>

namespace {
OverlayFacts Viewed() {
  OverlayFacts f;
  f.viewerCount = 1;
  return f;
}

OnScreen Showing(OverlayKind kind, bool panelVisible) {
  OnScreen screen;
  screen.kind = kind;
  screen.badge = kind != OverlayKind::None;
  screen.panelVisible = panelVisible;
  return screen;
}

std::wstring Tag(const TickPlan& plan) { return plan.logTag ? plan.logTag : L"(none)"; }
}  // namespace

TEST(TickPlan, AFirstViewerBuildsTheViewingBadgeAndShowsItsPanel) {
  const TickPlan plan = PlanTick(OverlayState::ViewingOnly, Viewed(), Showing(OverlayKind::None, false));
  EXPECT_EQ(plan.choices, ChoiceReset::Clear);
  EXPECT_TRUE(plan.destroyPanel);
  EXPECT_FALSE(plan.destroyBadge);
  EXPECT_EQ(plan.buildBadge, BadgeBuild::Main);
  EXPECT_EQ(Tag(plan), L"viewing only: ");
  EXPECT_FALSE(plan.logWithoutBadge);
  EXPECT_TRUE(plan.buildPanel);
  EXPECT_TRUE(plan.showPanel);
  EXPECT_EQ(plan.newKind, OverlayKind::ViewingOnly);
  EXPECT_TRUE(plan.markUpToDate);
  EXPECT_FALSE(plan.hideBoth);
}

TEST(TickPlan, ABadgeOfAnotherKindIsDestroyedAndBuiltAgain) {
  OverlayFacts editing;
  editing.editorCount = 1;
  const TickPlan plan = PlanTick(OverlayState::Editing, editing, Showing(OverlayKind::ViewingOnly, false));
  EXPECT_TRUE(plan.destroyBadge);
  EXPECT_EQ(plan.buildBadge, BadgeBuild::Main);
  EXPECT_EQ(Tag(plan), L"editing, may or may not viewing: ");
  EXPECT_EQ(plan.newKind, OverlayKind::Editing);
}

TEST(TickPlan, ABadgeOfTheSameKindIsKept) {
  const TickPlan plan = PlanTick(OverlayState::ViewingOnly, Viewed(), Showing(OverlayKind::ViewingOnly, false));
  EXPECT_TRUE(plan.destroyPanel);
  EXPECT_FALSE(plan.destroyBadge);
  EXPECT_TRUE(plan.showPanel);  // the active-users panel is always shown when built
}

TEST(TickPlan, AFileThatNeverShowedAnythingGetsNoSafeToEditNoticeAndKeepsItsChoices) {
  const TickPlan plan = PlanTick(OverlayState::SafeToEdit, OverlayFacts{}, Showing(OverlayKind::None, false));
  EXPECT_EQ(plan.choices, ChoiceReset::Keep);
  EXPECT_FALSE(plan.destroyPanel);
  EXPECT_EQ(plan.buildBadge, BadgeBuild::None);
  EXPECT_FALSE(plan.buildPanel);
  EXPECT_FALSE(plan.newKind.has_value());
  EXPECT_TRUE(plan.markUpToDate);
}

TEST(TickPlan, TheSafeToEditNoticeIsShownOnTheFirstTickAndLeftNotUpToDate) {
  const TickPlan plan = PlanTick(OverlayState::SafeToEdit, OverlayFacts{}, Showing(OverlayKind::ViewingOnly, true));
  EXPECT_TRUE(plan.destroyBadge);
  EXPECT_EQ(Tag(plan), L"safe to edit: ");
  EXPECT_TRUE(plan.logWithoutBadge);
  EXPECT_TRUE(plan.buildPanel);
  EXPECT_TRUE(plan.showPanel);
  EXPECT_EQ(plan.newKind, OverlayKind::SafeToEdit);
  EXPECT_FALSE(plan.markUpToDate);
  EXPECT_FALSE(plan.hideBoth);
}

TEST(TickPlan, TheSafeToEditNoticeIsRebuiltHiddenOnTheSecondTickAndMarkedUpToDate) {
  const TickPlan plan = PlanTick(OverlayState::SafeToEdit, OverlayFacts{}, Showing(OverlayKind::SafeToEdit, true));
  EXPECT_FALSE(plan.destroyBadge);
  EXPECT_TRUE(plan.buildPanel);
  EXPECT_TRUE(plan.hideBoth);
  EXPECT_TRUE(plan.markUpToDate);
  EXPECT_EQ(plan.newKind, OverlayKind::SafeToEdit);
}

TEST(TickPlan, AConflictPanelRebuiltForTheSameKindStaysClosedUnlessTheUserHadItOpen) {
  OverlayFacts conflict;
  conflict.is_conflict_present = true;
  EXPECT_FALSE(PlanTick(OverlayState::Conflict, conflict, Showing(OverlayKind::Conflict, false)).showPanel);
  EXPECT_TRUE(PlanTick(OverlayState::Conflict, conflict, Showing(OverlayKind::Conflict, true)).showPanel);
  EXPECT_TRUE(PlanTick(OverlayState::Conflict, conflict, Showing(OverlayKind::ViewingOnly, false)).showPanel);
}

TEST(TickPlan, ADeletePanelAndARenamePanelAreShownWhenBuiltEvenForTheSameKind) {
  OverlayFacts deleted;
  deleted.is_delete_present = true;
  EXPECT_TRUE(PlanTick(OverlayState::Delete, deleted, Showing(OverlayKind::DeletedOrMoved, false)).showPanel);
  OverlayFacts moved;
  moved.is_move_present = true;
  const TickPlan plan = PlanTick(OverlayState::RenameMove, moved, Showing(OverlayKind::DeletedOrMoved, false));
  EXPECT_TRUE(plan.showPanel);
  EXPECT_FALSE(plan.destroyBadge);  // delete and rename/move share the kind and its picture
  EXPECT_EQ(Tag(plan), L"rename/move: ");
}

TEST(TickPlan, AChangeOfTheUnsavedStateAloneOnlyClearsTheChoices) {
  OnScreen screen = Showing(OverlayKind::ViewingOnly, true);
  screen.upToDate = true;
  const TickPlan plan = PlanTick(OverlayState::ViewingOnly, Viewed(), screen);
  EXPECT_EQ(plan.choices, ChoiceReset::Clear);
  EXPECT_FALSE(plan.destroyPanel);
  EXPECT_EQ(plan.buildBadge, BadgeBuild::None);
  EXPECT_FALSE(plan.newKind.has_value());
  EXPECT_FALSE(plan.markUpToDate);
}

TEST(TickPlan, ADownloadStillRunningKeepsTheUsersPress) {
  OverlayFacts downloading;
  downloading.downloadState = 0;
  downloading.downloadRequested = true;
  const TickPlan plan = PlanTick(OverlayState::Download, downloading, Showing(OverlayKind::Download, false));
  EXPECT_EQ(plan.choices, ChoiceReset::ClearKeepingDownloadPress);
  EXPECT_EQ(Tag(plan), L"download: ");
  EXPECT_FALSE(plan.showPanel);
  downloading.downloadState = 1;
  EXPECT_EQ(PlanTick(OverlayState::Download, downloading, Showing(OverlayKind::Download, false)).choices,
            ChoiceReset::Clear);
}

TEST(TickPlan, NoInternetReplacesTheBadgeWithItsStrip) {
  OverlayFacts offline;
  offline.is_internet_connected = false;
  const TickPlan plan = PlanTick(OverlayState::NoInternet, offline, Showing(OverlayKind::ViewingOnly, true));
  EXPECT_EQ(plan.choices, ChoiceReset::Clear);
  EXPECT_TRUE(plan.destroyPanel);
  EXPECT_TRUE(plan.destroyBadge);
  EXPECT_EQ(plan.buildBadge, BadgeBuild::NoInternetStrip);
  EXPECT_EQ(Tag(plan), L"no internet: ");
  EXPECT_FALSE(plan.buildPanel);
  EXPECT_EQ(plan.newKind, OverlayKind::NoInternet);
  EXPECT_TRUE(plan.markUpToDate);
}

TEST(TickPlan, AStripOfTheSameKindIsKept) {
  OverlayFacts offline;
  offline.is_internet_connected = false;
  EXPECT_FALSE(PlanTick(OverlayState::NoInternet, offline, Showing(OverlayKind::NoInternet, false)).destroyBadge);
}

TEST(TickPlan, AFileWithNothingWorthALoadingStripIsOnlyMarkedUpToDate) {
  OverlayFacts loading;
  loading.is_loading_data_from_server = true;
  const TickPlan plan = PlanTick(OverlayState::Loading, loading, Showing(OverlayKind::None, false));
  EXPECT_EQ(plan.choices, ChoiceReset::Clear);
  EXPECT_FALSE(plan.destroyPanel);
  EXPECT_EQ(plan.buildBadge, BadgeBuild::None);
  EXPECT_FALSE(plan.newKind.has_value());
  EXPECT_TRUE(plan.markUpToDate);
  const TickPlan shown = PlanTick(OverlayState::Loading, loading, Showing(OverlayKind::ViewingOnly, true));
  EXPECT_EQ(shown.buildBadge, BadgeBuild::LoadingStrip);
  EXPECT_EQ(Tag(shown), L"loading: ");
  EXPECT_EQ(shown.newKind, OverlayKind::Loading);
}

TEST(TickPlan, TheTickAfterAnErrorPanelOnlyClearsSkipNextUpdate) {
  for (const OverlayState state : {OverlayState::SkipDownloadTick, OverlayState::SkipRenameMoveTick}) {
    const TickPlan plan = PlanTick(state, OverlayFacts{}, Showing(OverlayKind::Download, true));
    EXPECT_TRUE(plan.clearSkipNextUpdate) << state;
    EXPECT_EQ(plan.choices, ChoiceReset::Keep) << state;
    EXPECT_FALSE(plan.destroyPanel) << state;
    EXPECT_FALSE(plan.newKind.has_value()) << state;
    EXPECT_FALSE(plan.markUpToDate) << state;
  }
}
