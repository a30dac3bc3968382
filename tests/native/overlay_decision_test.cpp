#include "overlay/decision/overlay_decision.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

namespace {
OverlayFacts Quiet() { return OverlayFacts{}; }

OverlayFacts Offline() {
  OverlayFacts f;
  f.is_internet_connected = false;
  return f;
}
OverlayFacts Loading() {
  OverlayFacts f;
  f.is_loading_data_from_server = true;
  return f;
}
OverlayFacts Deleted() {
  OverlayFacts f;
  f.is_delete_present = true;
  return f;
}
OverlayFacts InConflict(bool resolveClicked) {
  OverlayFacts f;
  f.is_conflict_present = true;
  f.resolveConflictClicked = resolveClicked;
  return f;
}
OverlayFacts Download(std::uint32_t state, bool requested = false, bool skip = false) {
  OverlayFacts f;
  f.downloadState = state;
  f.downloadRequested = requested;
  f.skipNextUpdate = skip;
  return f;
}
OverlayFacts Renamed(bool clicked = false, bool skip = false) {
  OverlayFacts f;
  f.is_rename_present = true;
  f.renameMoveClicked = clicked;
  f.skipNextUpdate = skip;
  return f;
}
OverlayFacts Moved(bool clicked = false, bool skip = false) {
  OverlayFacts f;
  f.is_move_present = true;
  f.renameMoveClicked = clicked;
  f.skipNextUpdate = skip;
  return f;
}
OverlayFacts WithUsers(std::size_t editors, std::size_t viewers) {
  OverlayFacts f;
  f.editorCount = editors;
  f.viewerCount = viewers;
  return f;
}
}  // namespace

TEST(DecisionTable, HasFourteenRowsInTheirOrder) {
  const auto& rows = DecisionTable();
  ASSERT_EQ(rows.size(), 14u);
  const OverlayState expected[] = {
      OverlayState::NoInternet,    OverlayState::Loading,           OverlayState::Delete,
      OverlayState::Conflict,      OverlayState::ConflictConfirm,   OverlayState::SkipDownloadTick,
      OverlayState::ReloadConfirm, OverlayState::Download,          OverlayState::SkipRenameMoveTick,
      OverlayState::RenameMove,    OverlayState::RenameMoveConfirm, OverlayState::Editing,
      OverlayState::ViewingOnly,   OverlayState::SafeToEdit,
  };
  for (size_t i = 0; i < rows.size(); ++i) EXPECT_EQ(rows[i].state, expected[i]) << "row " << i + 1;
}

TEST(DecisionTable, ReachesEachRowWithFactsThatNoEarlierRowTakes) {
  const OverlayFacts facts[] = {
      Offline(),         Loading(),        Deleted(),
      InConflict(false), InConflict(true), Download(0, false, true),
      Download(1, true), Download(0),      Renamed(false, true),
      Moved(),           Renamed(true),    WithUsers(1, 0),
      WithUsers(0, 1),   Quiet(),
  };
  const auto& rows = DecisionTable();
  ASSERT_EQ(rows.size(), sizeof(facts) / sizeof(facts[0]));
  for (size_t i = 0; i < rows.size(); ++i) {
    SCOPED_TRACE(std::string("row ") + std::to_string(i + 1) + ": " + rows[i].condition);
    for (size_t earlier = 0; earlier < i; ++earlier) EXPECT_FALSE(rows[earlier].applies(facts[i])) << earlier + 1;
    EXPECT_TRUE(rows[i].applies(facts[i]));
    EXPECT_EQ(DecideOverlayState(facts[i]), rows[i].state);
  }
}

TEST(DecisionTable, EndsWithARowThatAlwaysApplies) {
  OverlayFacts everything = Offline();
  everything.is_delete_present = true;
  EXPECT_TRUE(DecisionTable().back().applies(everything));
  EXPECT_TRUE(DecisionTable().back().applies(Quiet()));
}

TEST(DecideOverlayState, ShowsNoInternetBeforeAnythingElse) {
  OverlayFacts f = Offline();
  f.is_loading_data_from_server = true;
  f.is_delete_present = true;
  f.is_conflict_present = true;
  f.downloadState = 0;
  f.editorCount = 3;
  EXPECT_EQ(DecideOverlayState(f), OverlayState::NoInternet);
}

TEST(DecideOverlayState, ShowsLoadingBeforeADeletion) {
  OverlayFacts f = Loading();
  f.is_delete_present = true;
  EXPECT_EQ(DecideOverlayState(f), OverlayState::Loading);
}

TEST(DecideOverlayState, ShowsADeletionBeforeAConflict) {
  OverlayFacts f = Deleted();
  f.is_conflict_present = true;
  EXPECT_EQ(DecideOverlayState(f), OverlayState::Delete);
}

TEST(DecideOverlayState, ShowsAConflictBeforeADownload) {
  OverlayFacts f = InConflict(false);
  f.downloadState = 0;
  EXPECT_EQ(DecideOverlayState(f), OverlayState::Conflict);
}

TEST(DecideOverlayState, ConfirmsAConflictOnceResolveWasClicked) {
  EXPECT_EQ(DecideOverlayState(InConflict(true)), OverlayState::ConflictConfirm);
}

TEST(DecideOverlayState, OnlySkipsATickOfADownloadWhileAnErrorPanelIsUp) {
  EXPECT_EQ(DecideOverlayState(Download(0, false, true)), OverlayState::SkipDownloadTick);
  EXPECT_EQ(DecideOverlayState(Download(1, true, true)), OverlayState::SkipDownloadTick);
}

TEST(DecideOverlayState, ConfirmsTheReloadOfADownloadedFileTheUserAskedFor) {
  EXPECT_EQ(DecideOverlayState(Download(1, true)), OverlayState::ReloadConfirm);
}

TEST(DecideOverlayState, KeepsShowingTheDownloadWhileItIsStillDownloading) {
  EXPECT_EQ(DecideOverlayState(Download(0, true)), OverlayState::Download);
}

TEST(DecideOverlayState, OffersTheDownloadOfADownloadedFileNotYetAskedFor) {
  EXPECT_EQ(DecideOverlayState(Download(1)), OverlayState::Download);
}

TEST(DecideOverlayState, TreatsUpToDateFailedAndUnknownDownloadStatesAsNoDownload) {
  EXPECT_EQ(DecideOverlayState(Download(2, true)), OverlayState::SafeToEdit);
  EXPECT_EQ(DecideOverlayState(Download(3, true)), OverlayState::SafeToEdit);
  EXPECT_EQ(DecideOverlayState(Download(4, true)), OverlayState::SafeToEdit);
  EXPECT_EQ(DecideOverlayState(Download(0xFFFFFFFFu, true)), OverlayState::SafeToEdit);
}

TEST(DecideOverlayState, ShowsADownloadBeforeARename) {
  OverlayFacts f = Renamed();
  f.downloadState = 0;
  EXPECT_EQ(DecideOverlayState(f), OverlayState::Download);
}

TEST(DecideOverlayState, OnlySkipsATickOfARenameOrMoveWhileAnErrorPanelIsUp) {
  EXPECT_EQ(DecideOverlayState(Renamed(false, true)), OverlayState::SkipRenameMoveTick);
  EXPECT_EQ(DecideOverlayState(Moved(true, true)), OverlayState::SkipRenameMoveTick);
}

TEST(DecideOverlayState, ShowsARenameOrAMoveUntilTheButtonIsClicked) {
  EXPECT_EQ(DecideOverlayState(Renamed()), OverlayState::RenameMove);
  EXPECT_EQ(DecideOverlayState(Moved()), OverlayState::RenameMove);
}

TEST(DecideOverlayState, ConfirmsARenameOrAMoveOnceTheButtonIsClicked) {
  EXPECT_EQ(DecideOverlayState(Renamed(true)), OverlayState::RenameMoveConfirm);
  EXPECT_EQ(DecideOverlayState(Moved(true)), OverlayState::RenameMoveConfirm);
}

TEST(DecideOverlayState, ShowsARenameBeforeTheUsersOfTheFile) {
  OverlayFacts f = Moved();
  f.editorCount = 2;
  EXPECT_EQ(DecideOverlayState(f), OverlayState::RenameMove);
}

TEST(DecideOverlayState, ShowsEditorsBeforeViewers) {
  EXPECT_EQ(DecideOverlayState(WithUsers(1, 4)), OverlayState::Editing);
}

TEST(DecideOverlayState, ShowsViewingOnlyWithViewersAndNoEditors) {
  EXPECT_EQ(DecideOverlayState(WithUsers(0, 2)), OverlayState::ViewingOnly);
}

TEST(DecideOverlayState, CallsAQuietFileSafeToEditEvenWithASkipPending) {
  EXPECT_EQ(DecideOverlayState(Quiet()), OverlayState::SafeToEdit);
  OverlayFacts f = Quiet();
  f.skipNextUpdate = true;
  f.downloadRequested = true;
  f.renameMoveClicked = true;
  f.resolveConflictClicked = true;
  EXPECT_EQ(DecideOverlayState(f), OverlayState::SafeToEdit);
}

TEST(KindShownBy, GivesEachBuildingStateItsKind) {
  EXPECT_EQ(KindShownBy(OverlayState::NoInternet), OverlayKind::NoInternet);
  EXPECT_EQ(KindShownBy(OverlayState::Loading), OverlayKind::Loading);
  EXPECT_EQ(KindShownBy(OverlayState::Delete), OverlayKind::DeletedOrMoved);
  EXPECT_EQ(KindShownBy(OverlayState::Conflict), OverlayKind::Conflict);
  EXPECT_EQ(KindShownBy(OverlayState::Download), OverlayKind::Download);
  EXPECT_EQ(KindShownBy(OverlayState::RenameMove), OverlayKind::DeletedOrMoved);
  EXPECT_EQ(KindShownBy(OverlayState::Editing), OverlayKind::Editing);
  EXPECT_EQ(KindShownBy(OverlayState::ViewingOnly), OverlayKind::ViewingOnly);
  EXPECT_EQ(KindShownBy(OverlayState::SafeToEdit), OverlayKind::SafeToEdit);
}

TEST(KindShownBy, LeavesTheKindAloneForConfirmationsAndSkippedTicks) {
  EXPECT_EQ(KindShownBy(OverlayState::ConflictConfirm), std::nullopt);
  EXPECT_EQ(KindShownBy(OverlayState::ReloadConfirm), std::nullopt);
  EXPECT_EQ(KindShownBy(OverlayState::RenameMoveConfirm), std::nullopt);
  EXPECT_EQ(KindShownBy(OverlayState::SkipDownloadTick), std::nullopt);
  EXPECT_EQ(KindShownBy(OverlayState::SkipRenameMoveTick), std::nullopt);
}

TEST(StateLogTag, NamesEachBuildingState) {
  EXPECT_EQ(std::wstring(StateLogTag(OverlayState::NoInternet)), L"no internet: ");
  EXPECT_EQ(std::wstring(StateLogTag(OverlayState::Loading)), L"loading: ");
  EXPECT_EQ(std::wstring(StateLogTag(OverlayState::Delete)), L"delete: ");
  EXPECT_EQ(std::wstring(StateLogTag(OverlayState::Conflict)), L"file conflict: ");
  EXPECT_EQ(std::wstring(StateLogTag(OverlayState::Download)), L"download: ");
  EXPECT_EQ(std::wstring(StateLogTag(OverlayState::RenameMove)), L"rename/move: ");
  EXPECT_EQ(std::wstring(StateLogTag(OverlayState::Editing)), L"editing, may or may not viewing: ");
  EXPECT_EQ(std::wstring(StateLogTag(OverlayState::ViewingOnly)), L"viewing only: ");
  EXPECT_EQ(std::wstring(StateLogTag(OverlayState::SafeToEdit)), L"safe to edit: ");
}

TEST(StateLogTag, IsNullForConfirmationsAndSkippedTicks) {
  EXPECT_EQ(StateLogTag(OverlayState::ConflictConfirm), nullptr);
  EXPECT_EQ(StateLogTag(OverlayState::ReloadConfirm), nullptr);
  EXPECT_EQ(StateLogTag(OverlayState::RenameMoveConfirm), nullptr);
  EXPECT_EQ(StateLogTag(OverlayState::SkipDownloadTick), nullptr);
  EXPECT_EQ(StateLogTag(OverlayState::SkipRenameMoveTick), nullptr);
}

TEST(ShowPanelOnBuild, AlwaysShowsTheDeleteRenameAndUsersPanels) {
  for (OverlayState state :
       {OverlayState::Delete, OverlayState::RenameMove, OverlayState::Editing, OverlayState::ViewingOnly}) {
    SCOPED_TRACE(testing::Message() << state);
    EXPECT_TRUE(ShowPanelOnBuild(state, OverlayKind::None, false));
    EXPECT_TRUE(ShowPanelOnBuild(state, *KindShownBy(state), false));
    EXPECT_TRUE(ShowPanelOnBuild(state, *KindShownBy(state), true));
  }
}

TEST(ShowPanelOnBuild, ShowsARebuiltConflictDownloadOrSafeToEditPanelOnlyOnAChangeOfKindOrIfItWasOpen) {
  const std::pair<OverlayState, OverlayKind> cases[] = {{OverlayState::Conflict, OverlayKind::Conflict},
                                                        {OverlayState::Download, OverlayKind::Download},
                                                        {OverlayState::SafeToEdit, OverlayKind::SafeToEdit}};
  for (const auto& [state, kind] : cases) {
    SCOPED_TRACE(testing::Message() << state);
    EXPECT_TRUE(ShowPanelOnBuild(state, OverlayKind::Editing, false));
    EXPECT_FALSE(ShowPanelOnBuild(state, kind, false));
    EXPECT_TRUE(ShowPanelOnBuild(state, kind, true));
  }
}

TEST(ShowPanelOnBuild, ShowsAConfirmationUnlessItsKindIsUpWithThePanelClosed) {
  const std::pair<OverlayState, OverlayKind> cases[] = {{OverlayState::ConflictConfirm, OverlayKind::Conflict},
                                                        {OverlayState::ReloadConfirm, OverlayKind::Download},
                                                        {OverlayState::RenameMoveConfirm, OverlayKind::DeletedOrMoved}};
  for (const auto& [state, kind] : cases) {
    SCOPED_TRACE(testing::Message() << state);
    EXPECT_TRUE(ShowPanelOnBuild(state, OverlayKind::SafeToEdit, false));
    EXPECT_FALSE(ShowPanelOnBuild(state, kind, false));
    EXPECT_TRUE(ShowPanelOnBuild(state, kind, true));
  }
}

TEST(ShowPanelOnBuild, ShowsNoPanelForTheStatusOverlaysAndSkippedTicks) {
  for (OverlayState state : {OverlayState::NoInternet, OverlayState::Loading, OverlayState::SkipDownloadTick,
                             OverlayState::SkipRenameMoveTick}) {
    SCOPED_TRACE(testing::Message() << state);
    EXPECT_FALSE(ShowPanelOnBuild(state, OverlayKind::None, true));
  }
}

TEST(LoadingWorthShowing, IsNotForAPlainFileThatHasShownNothing) {
  EXPECT_FALSE(LoadingWorthShowing(Loading(), OverlayKind::None));
}

TEST(LoadingWorthShowing, IsNotForAFailedOrUnknownDownloadEither) {
  OverlayFacts f = Loading();
  f.downloadState = 3;
  EXPECT_FALSE(LoadingWorthShowing(f, OverlayKind::None));
  f.downloadState = 77;
  EXPECT_FALSE(LoadingWorthShowing(f, OverlayKind::None));
}

TEST(LoadingWorthShowing, IsForAFileThatAlreadyShowsSomething) {
  EXPECT_TRUE(LoadingWorthShowing(Loading(), OverlayKind::SafeToEdit));
  EXPECT_TRUE(LoadingWorthShowing(Loading(), OverlayKind::Loading));
}

TEST(LoadingWorthShowing, IsForAFileWithAnyNewsComing) {
  EXPECT_TRUE(LoadingWorthShowing(Deleted(), OverlayKind::None));
  EXPECT_TRUE(LoadingWorthShowing(Renamed(), OverlayKind::None));
  EXPECT_TRUE(LoadingWorthShowing(Moved(), OverlayKind::None));
  EXPECT_TRUE(LoadingWorthShowing(InConflict(false), OverlayKind::None));
  EXPECT_TRUE(LoadingWorthShowing(Download(0), OverlayKind::None));
  EXPECT_TRUE(LoadingWorthShowing(Download(1), OverlayKind::None));
  EXPECT_TRUE(LoadingWorthShowing(WithUsers(1, 0), OverlayKind::None));
  EXPECT_TRUE(LoadingWorthShowing(WithUsers(0, 1), OverlayKind::None));
}

TEST(KeepsDownloadPress, HoldsWhileTheRequestedDownloadIsStillRunning) {
  OverlayFacts facts;
  facts.downloadState = 0;
  facts.downloadRequested = true;
  EXPECT_TRUE(KeepsDownloadPress(facts));
}

TEST(KeepsDownloadPress, HoldsNotWithoutAPress) {
  OverlayFacts facts;
  facts.downloadState = 0;
  EXPECT_FALSE(KeepsDownloadPress(facts));
}

TEST(KeepsDownloadPress, HoldsNotOnceTheDownloadFinishedFailedOrIsUnknown) {
  for (std::uint32_t state : {1u, 2u, 3u, 4u, 0xFFFFFFFFu}) {
    OverlayFacts facts;
    facts.downloadState = state;
    facts.downloadRequested = true;
    EXPECT_FALSE(KeepsDownloadPress(facts)) << state;
  }
}
