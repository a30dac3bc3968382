// The UI tick inside the simulated Word, Excel and PowerPoint: for each
// cached document, which badge and panel it leaves on screen (window
// classes, places, texts, visibility), what it writes back into the record,
// and what it logs. Answers are written into the records as the update
// thread writes them; ticks are run directly.
#include <gtest/gtest.h>

#include "addin/event_sinks.h"
#include "overlay/windows/overlay_window_states.h"
#include "overlay/windows/panels.h"
#include "synclink/record_lock.h"
#include "tests/windows/tick_test_support.h"

namespace {
const std::wstring kMainUi = L"QelvoFilewellSync-MSOfficeAddin-MainUI";
const std::wstring kBlueUi = L"QelvoFilewellSync-MSOfficeAddin-BlueUI";

class CustomUiTick : public testing::Test {
 protected:
  // Opens a document, writes the answer into its record and runs one tick
  // with a fresh log; the document's path.
  std::wstring ShowAfterOneTick(const wchar_t* name, const AnswerFields& answer) {
    const std::wstring path = host_.OpenAnswered(name, answer)->fullName();
    host_.ClearLog();
    Tick();
    return path;
  }
  // One person viewing: the shortest way to a badge with a panel.
  static AnswerFields ViewedAnswer() {
    AnswerFields answer = QuietAnswer();
    AddViewers(answer, L"u-ann", L"Ann Lee");
    return answer;
  }

  // Puts a panel of the test's making where the record's panel was, as
  // the window procedure does when a button asks for a confirmation or an
  // error panel; shown at once, as it does.
  static HWND PutPanel(const std::wstring& path, HWND panel) {
    if (HWND old = PanelOf(path)) DestroyWindow(old);
    ShowWindow(panel, SW_SHOWNA);
    FindWindowState(path)->subOverlayWindow = panel;
    return panel;
  }
  SimDocument* Document(const std::wstring& path) { return host_.app().FindDocument(path); }

  OverlayHost host_{SimHost::Word};
};

// Where a panel of this size opens against a badge at its home: right edges
// aligned, above the badge.
RECT PanelAboveHome(int width, int height) {
  return {kBadgeHome.x + kBadgeSize - width, kBadgeHome.y - height, kBadgeHome.x + kBadgeSize, kBadgeHome.y};
}

// ---------------------------------------------------------------------------
// The decision table, row by row and where rows overlap.

struct DecisionCase {
  const char* name;
  void (*shape)(AnswerFields& answer);
  int kind;
  const char* tag;
  // A status strip instead of the badge (no internet, loading): its class;
  // empty for a badge with a panel.
  std::wstring stripClass;
  // A text that only this state's strip or panel shows.
  std::wstring text;
};

void PrintTo(const DecisionCase& decisionCase, std::ostream* out) { *out << decisionCase.name; }

class DecisionTableRow : public CustomUiTick, public testing::WithParamInterface<DecisionCase> {};

TEST_P(DecisionTableRow, ShowsItsBadgeItsPanelAndLogsItsTag) {
  const DecisionCase& row = GetParam();
  AnswerFields answer = QuietAnswer();
  row.shape(answer);
  const std::wstring path = ShowAfterOneTick(L"decided", answer);

  const FileStatusRecord record = host_.Record(path);
  const OverlayWindowState recordWindows = WindowsOf(path);
  EXPECT_EQ(recordWindows.overlayKind, row.kind);
  EXPECT_EQ(record.overlayUpToDate, 1u);
  EXPECT_EQ(InfoMessages(), std::vector<std::string>{row.tag + Narrow(path)});
  ASSERT_NE(recordWindows.badgeWindow, nullptr);
  EXPECT_TRUE(IsWindowVisible(recordWindows.badgeWindow));
  EXPECT_EQ(OwnerOf(recordWindows.badgeWindow), host_.mainWindow());
  if (!row.stripClass.empty()) {
    EXPECT_EQ(ClassNameOf(recordWindows.badgeWindow), row.stripClass);
    EXPECT_TRUE(HasChildText(recordWindows.badgeWindow, row.text));
    EXPECT_EQ(recordWindows.subOverlayWindow, nullptr);
  } else {
    ExpectBadgeAndPanel(path, row.kind, row.text, true);
  }
}

const DecisionCase kDecisionCases[] = {
    {"Offline", [](AnswerFields& a) { a.is_internet_connected = 0; }, 1, "no internet: ", kMainUi,
     L"No Internet Connection"},
    {"OfflineWhileLoadingADeletedFile",
     [](AnswerFields& a) {
       a.is_internet_connected = 0;
       a.is_loading_data_from_server = 1;
       a.is_delete_present = 1;
     },
     1, "no internet: ", kMainUi, L"No Internet Connection"},
    {"LoadingADeletedFile",
     [](AnswerFields& a) {
       a.is_loading_data_from_server = 1;
       a.is_delete_present = 1;
     },
     2, "loading: ", kBlueUi, L"Qelvo Filewell"},
    {"Deleted", [](AnswerFields& a) { a.is_delete_present = 1; }, 5, "delete: ", L"", L"This file has been deleted"},
    {"DeletedWithAConflictANewVersionARenameAndAnEditor",
     [](AnswerFields& a) {
       a.is_delete_present = 1;
       a.is_conflict_present = 1;
       a.is_download_present = L"Downloaded";
       a.is_rename_present = 1;
       AddEditors(a, L"u-bo", L"Bo Park");
     },
     5, "delete: ", L"", L"This file has been deleted"},
    {"InConflict", [](AnswerFields& a) { a.is_conflict_present = 1; }, 6, "file conflict: ", L"",
     L"File conflict occurred"},
    {"InConflictWithANewVersionARenameAndAnEditor",
     [](AnswerFields& a) {
       a.is_conflict_present = 1;
       a.is_download_present = L"Downloading";
       a.is_move_present = 1;
       AddEditors(a, L"u-bo", L"Bo Park");
     },
     6, "file conflict: ", L"", L"File conflict occurred"},
    {"Downloading", [](AnswerFields& a) { a.is_download_present = L"Downloading"; }, 7, "download: ", L"",
     L"This file has been modified"},
    {"Downloaded", [](AnswerFields& a) { a.is_download_present = L"Downloaded"; }, 7, "download: ", L"",
     L"Download latest version"},
    {"DownloadedWithARenameAndAnEditor",
     [](AnswerFields& a) {
       a.is_download_present = L"Downloaded";
       a.is_rename_present = 1;
       AddEditors(a, L"u-bo", L"Bo Park");
     },
     7, "download: ", L"", L"This file has been modified"},
    {"DownloadFailedWithAnEditor",
     [](AnswerFields& a) {
       a.is_download_present = L"Download Failed";
       AddEditors(a, L"u-bo", L"Bo Park");
     },
     4, "editing, may or may not viewing: ", L"", L"Another user is editing this file"},
    {"Renamed", [](AnswerFields& a) { a.is_rename_present = 1; }, 5, "rename/move: ", L"",
     L"This file has been renamed"},
    {"Moved", [](AnswerFields& a) { a.is_move_present = 1; }, 5, "rename/move: ", L"",
     L"This file has been moved to a new location"},
    {"RenamedWithAnEditorAndAViewer",
     [](AnswerFields& a) {
       a.is_rename_present = 1;
       AddEditors(a, L"u-bo", L"Bo Park");
       AddViewers(a, L"u-ann", L"Ann Lee");
     },
     5, "rename/move: ", L"", L"This file has been renamed"},
    {"EditedByAnother", [](AnswerFields& a) { AddEditors(a, L"u-bo", L"Bo Park"); }, 4,
     "editing, may or may not viewing: ", L"", L"Another user is editing this file"},
    {"EditedByOneAndViewedByAnother",
     [](AnswerFields& a) {
       AddEditors(a, L"u-bo", L"Bo Park");
       AddViewers(a, L"u-ann", L"Ann Lee");
     },
     4, "editing, may or may not viewing: ", L"", L"Editing now"},
    {"ViewedByAnother", [](AnswerFields& a) { AddViewers(a, L"u-ann", L"Ann Lee"); }, 8, "viewing only: ", L"",
     L"Another user is viewing this file"},
    {"ViewedByTwo", [](AnswerFields& a) { AddViewers(a, L"u-ann|u-cy", L"Ann Lee|Cy Ode"); }, 8, "viewing only: ",
     L"", L"Multiple users are viewing this file"},
};

INSTANTIATE_TEST_SUITE_P(FirstMatchWins, DecisionTableRow, testing::ValuesIn(kDecisionCases),
                         [](const testing::TestParamInfo<DecisionCase>& info) { return info.param.name; });


// The conflict confirmation, the reload confirmation and the rename/move
// confirmation, each with and without the save question.
const std::wstring kConflictContinue =
    L"Filewell Sync will close this file and open the Resolve Conflict window.";
const std::wstring kConflictAskSave =
    L"Filewell Sync will close this file and open the Resolve Conflict window. Do you want to save your changes "
    L"before closing this file?";
const std::wstring kReloadPlain = L"To load the latest version of this file, click \"Reload\".";
const std::wstring kReloadAskSave =
    L"This file has unsaved changes. Do you want to save your changes as a separate copy before reloading this "
    L"file?";
const std::wstring kRenameContinue =
    L"Click \"Continue\" to reload and sync the renamed file from the web to your computer.";
const std::wstring kRenameAskSave =
    L"This file has unsaved changes. Do you want to save your changes before reloading and syncing the renamed "
    L"file from the web to your computer?";

TEST_F(CustomUiTick, AFileWhoseViewersLeftShowsTheSafeToEditPanelForOneTick) {
  const std::wstring path = ShowAfterOneTick(L"left", ViewedAnswer());
  Answer(path, QuietAnswer());
  host_.ClearLog();
  Tick();
  ExpectBadgeAndPanel(path, 3, L"No active collaborators", true);
  const RECT panel = PanelAboveHome(400, 150);
  EXPECT_TRUE(RectIs(WindowRectOf(PanelOf(path)), panel.left, panel.top, panel.right, panel.bottom));
  EXPECT_EQ(host_.Record(path).overlayUpToDate, 0u);
  EXPECT_EQ(InfoMessages(), std::vector<std::string>{"safe to edit: " + Narrow(path)});
}

TEST_F(CustomUiTick, TheSafeToEditNoticeIsHiddenOnTheNextTickAndStaysHiddenWhenTheFileIsActiveAgain) {
  const std::wstring path = ShowAfterOneTick(L"notice", ViewedAnswer());
  Answer(path, QuietAnswer());
  Tick();
  host_.ClearLog();
  Tick();
  // Built once more, then both windows hidden for good.
  EXPECT_EQ(InfoMessages(), std::vector<std::string>{"safe to edit: " + Narrow(path)});
  const FileStatusRecord hidden = host_.Record(path);
  const OverlayWindowState hiddenWindows = WindowsOf(path);
  EXPECT_EQ(hiddenWindows.overlayKind, 3);
  EXPECT_EQ(hidden.overlayUpToDate, 1u);
  ASSERT_TRUE(IsWindow(hiddenWindows.badgeWindow));
  ASSERT_TRUE(IsWindow(hiddenWindows.subOverlayWindow));
  EXPECT_FALSE(IsWindowVisible(hiddenWindows.badgeWindow));
  EXPECT_FALSE(IsWindowVisible(hiddenWindows.subOverlayWindow));

  host_.OpenAnswered(L"another", QuietAnswer());
  Tick();
  host_.Activate(Document(path));
  Ticks(2);
  const OverlayWindowState again = WindowsOf(path);
  EXPECT_EQ(again.badgeWindow, hiddenWindows.badgeWindow);
  EXPECT_EQ(again.subOverlayWindow, hiddenWindows.subOverlayWindow);
  EXPECT_FALSE(IsWindowVisible(again.badgeWindow));
  EXPECT_FALSE(IsWindowVisible(again.subOverlayWindow));
  EXPECT_EQ(CountOf(InfoMessages(), "safe to edit: " + Narrow(path)), 1u);
}

TEST_F(CustomUiTick, TheConflictConfirmationIsNotTurnedBackIntoTheConflictPanel) {
  const std::wstring path = ShowAfterOneTick(L"conflicted", [] {
    AnswerFields answer = QuietAnswer();
    answer.is_conflict_present = 1;
    return answer;
  }());
  // "Resolve conflict" pressed on a document without unsaved changes.
  HWND confirmation =
      PutPanel(path, CreateConfirmLeavePanel(host_.mainWindow(), BadgeOf(path), false, true, false, false, false));
  host_.ChangeRecord(path, [](FileStatusRecord& record) { record.choices.Set(UserChoice::resolveConflictClicked); });
  AnswerFields newer = QuietAnswer();
  newer.is_conflict_present = 1;
  newer.last_modified_by = L"Bo Park";
  Answer(path, newer);
  host_.ClearLog();
  Tick();
  EXPECT_EQ(PanelOf(path), confirmation);
  EXPECT_TRUE(IsWindowVisible(confirmation));
  EXPECT_TRUE(HasChildText(confirmation, kConflictContinue));
  const FileStatusRecord record = host_.Record(path);
  const OverlayWindowState recordWindows = WindowsOf(path);
  EXPECT_TRUE(record.choices.Has(UserChoice::resolveConflictClicked));
  EXPECT_FALSE(record.choices.Has(UserChoice::conflictAskShown));
  EXPECT_EQ(recordWindows.overlayKind, 6);
  EXPECT_TRUE(InfoMessages().empty());
}

TEST_F(CustomUiTick, TheConflictConfirmationAsksToSaveOnceTheDocumentHoldsChangesAndStopsAskingOnceSaved) {
  const std::wstring path = ShowAfterOneTick(L"conflicted", [] {
    AnswerFields answer = QuietAnswer();
    answer.is_conflict_present = 1;
    return answer;
  }());
  PutPanel(path, CreateConfirmLeavePanel(host_.mainWindow(), BadgeOf(path), false, true, false, false, false));
  host_.ChangeRecord(path, [](FileStatusRecord& record) { record.choices.Set(UserChoice::resolveConflictClicked); });

  Document(path)->MarkEdited();
  Tick();
  HWND asking = PanelOf(path);
  EXPECT_TRUE(HasChildText(asking, kConflictAskSave));
  EXPECT_TRUE(HasChildText(asking, L"Save & Continue"));
  EXPECT_TRUE(IsWindowVisible(asking));
  EXPECT_TRUE(host_.Record(path).choices.Has(UserChoice::conflictAskShown));
  EXPECT_EQ(host_.Record(path).isEditing, 1u);

  ASSERT_TRUE(Document(path)->Save());
  Tick();
  EXPECT_FALSE(IsWindow(asking));
  EXPECT_TRUE(HasChildText(PanelOf(path), kConflictContinue));
  EXPECT_TRUE(IsWindowVisible(PanelOf(path)));
  EXPECT_FALSE(host_.Record(path).choices.Has(UserChoice::conflictAskShown));
  EXPECT_EQ(WindowsOf(path).overlayKind, 6);
}

TEST_F(CustomUiTick, AConfirmationTheUserClosedIsReformedButStaysClosed) {
  const std::wstring path = ShowAfterOneTick(L"conflicted", [] {
    AnswerFields answer = QuietAnswer();
    answer.is_conflict_present = 1;
    return answer;
  }());
  HWND closed =
      PutPanel(path, CreateConfirmLeavePanel(host_.mainWindow(), BadgeOf(path), false, true, false, false, false));
  host_.ChangeRecord(path, [](FileStatusRecord& record) { record.choices.Set(UserChoice::resolveConflictClicked); });
  ShowWindow(closed, SW_HIDE);
  Document(path)->MarkEdited();
  Tick();
  EXPECT_TRUE(HasChildText(PanelOf(path), kConflictAskSave));
  EXPECT_FALSE(IsWindowVisible(PanelOf(path)));
}

TEST_F(CustomUiTick, DownloadRequestedOnADownloadedFileShowsTheReloadConfirmation) {
  const std::wstring path = ShowAfterOneTick(L"newer", [] {
    AnswerFields answer = QuietAnswer();
    answer.is_download_present = L"Downloaded";
    return answer;
  }());
  // What the download button leaves for the tick.
  host_.ChangeRecord(path, [](FileStatusRecord& record) {
    record.choices.Set(UserChoice::downloadRequested);
    record.overlayUpToDate = 0;
  });
  host_.ClearLog();
  Tick();
  EXPECT_TRUE(HasChildText(PanelOf(path), kReloadPlain));
  EXPECT_TRUE(HasChildText(PanelOf(path), L"Reload"));
  EXPECT_TRUE(IsWindowVisible(PanelOf(path)));
  const FileStatusRecord record = host_.Record(path);
  const OverlayWindowState recordWindows = WindowsOf(path);
  EXPECT_EQ(recordWindows.overlayKind, 7);
  EXPECT_TRUE(record.choices.Has(UserChoice::downloadRequested));
  EXPECT_TRUE(record.choices.Has(UserChoice::reloadPromptPlain));
  EXPECT_FALSE(record.choices.Has(UserChoice::reloadPromptAskSave));
  EXPECT_TRUE(InfoMessages().empty());
}

TEST_F(CustomUiTick, TheReloadConfirmationAsksAboutASeparateCopyOnceTheDocumentHoldsChanges) {
  const std::wstring path = ShowAfterOneTick(L"newer", [] {
    AnswerFields answer = QuietAnswer();
    answer.is_download_present = L"Downloaded";
    return answer;
  }());
  host_.ChangeRecord(path, [](FileStatusRecord& record) {
    record.choices.Set(UserChoice::downloadRequested);
    record.overlayUpToDate = 0;
  });
  Tick();
  Document(path)->MarkEdited();
  Tick();
  EXPECT_TRUE(HasChildText(PanelOf(path), kReloadAskSave));
  EXPECT_TRUE(HasChildText(PanelOf(path), L"Save a copy & Reload"));
  EXPECT_TRUE(IsWindowVisible(PanelOf(path)));
  EXPECT_FALSE(host_.Record(path).choices.Has(UserChoice::reloadPromptPlain));
  EXPECT_TRUE(host_.Record(path).choices.Has(UserChoice::reloadPromptAskSave));
}

TEST_F(CustomUiTick, AUserWhoKeepsASeparateCopyIsNotAskedAboutSavingBeforeTheReload) {
  const std::wstring path = ShowAfterOneTick(L"newer", [] {
    AnswerFields answer = QuietAnswer();
    answer.is_download_present = L"Downloaded";
    return answer;
  }());
  Document(path)->MarkEdited();
  Tick();
  // The download button pressed with "save my changes as a separate copy" ticked.
  host_.ChangeRecord(path, [](FileStatusRecord& record) {
    record.choices.Set(UserChoice::downloadRequested);
    record.choices.Set(UserChoice::saveSeparateCopy);
    record.overlayUpToDate = 0;
  });
  Tick();
  EXPECT_TRUE(HasChildText(PanelOf(path), kReloadPlain));
  EXPECT_TRUE(host_.Record(path).choices.Has(UserChoice::reloadPromptPlain));
  EXPECT_FALSE(host_.Record(path).choices.Has(UserChoice::reloadPromptAskSave));
}

TEST_F(CustomUiTick, TheTickAfterAnErrorPanelOfADownloadLeavesThePanelAndOnlyClearsSkipNextUpdate) {
  const std::wstring path = ShowAfterOneTick(L"newer", [] {
    AnswerFields answer = QuietAnswer();
    answer.is_download_present = L"Downloaded";
    return answer;
  }());
  // A separate copy that could not be saved: the error panel is up.
  HWND error = PutPanel(path, CreateErrorMessagePanel(host_.mainWindow(), BadgeOf(path), false));
  host_.ChangeRecord(path, [](FileStatusRecord& record) {
    record.choices.Set(UserChoice::downloadRequested);
    record.choices.Set(UserChoice::skipNextUpdate);
    record.overlayUpToDate = 0;
  });
  host_.ClearLog();
  Tick();
  EXPECT_EQ(PanelOf(path), error);
  EXPECT_TRUE(IsWindowVisible(error));
  const FileStatusRecord record = host_.Record(path);
  const OverlayWindowState recordWindows = WindowsOf(path);
  EXPECT_FALSE(record.choices.Has(UserChoice::skipNextUpdate));
  EXPECT_TRUE(record.choices.Has(UserChoice::downloadRequested));
  EXPECT_FALSE(record.choices.Has(UserChoice::reloadPromptPlain));
  EXPECT_EQ(recordWindows.overlayKind, 7);
  EXPECT_TRUE(InfoMessages().empty());
}

TEST_F(CustomUiTick, TheTickAfterAnErrorPanelOfARenameLeavesThePanelAndOnlyClearsSkipNextUpdate) {
  const std::wstring path = ShowAfterOneTick(L"renamed", [] {
    AnswerFields answer = QuietAnswer();
    answer.is_rename_present = 1;
    return answer;
  }());
  // Saving before the rename failed on a read-only file.
  HWND error = PutPanel(path, CreateErrorMessagePanel(host_.mainWindow(), BadgeOf(path), true));
  host_.ChangeRecord(path, [](FileStatusRecord& record) {
    record.choices.Set(UserChoice::renameMoveClicked);
    record.choices.Set(UserChoice::skipNextUpdate);
    record.overlayUpToDate = 0;
  });
  host_.ClearLog();
  Tick();
  EXPECT_EQ(PanelOf(path), error);
  EXPECT_TRUE(IsWindowVisible(error));
  const FileStatusRecord record = host_.Record(path);
  const OverlayWindowState recordWindows = WindowsOf(path);
  EXPECT_FALSE(record.choices.Has(UserChoice::skipNextUpdate));
  EXPECT_TRUE(record.choices.Has(UserChoice::renameMoveClicked));
  EXPECT_EQ(recordWindows.overlayKind, 5);
  EXPECT_TRUE(InfoMessages().empty());
}

TEST_F(CustomUiTick, TheRenameConfirmationAsksToSaveOnceTheDocumentHoldsChangesAndStopsAskingOnceSaved) {
  const std::wstring path = ShowAfterOneTick(L"renamed", [] {
    AnswerFields answer = QuietAnswer();
    answer.is_rename_present = 1;
    return answer;
  }());
  // "Reload" pressed on the rename panel of a document without changes.
  PutPanel(path, CreateConfirmLeavePanel(host_.mainWindow(), BadgeOf(path), false, false, false, true, false));
  host_.ChangeRecord(path, [](FileStatusRecord& record) { record.choices.Set(UserChoice::renameMoveClicked); });

  Document(path)->MarkEdited();
  Tick();
  EXPECT_TRUE(HasChildText(PanelOf(path), kRenameAskSave));
  EXPECT_TRUE(IsWindowVisible(PanelOf(path)));
  EXPECT_TRUE(host_.Record(path).choices.Has(UserChoice::renameMoveAskShown));

  ASSERT_TRUE(Document(path)->Save());
  Tick();
  EXPECT_TRUE(HasChildText(PanelOf(path), kRenameContinue));
  EXPECT_TRUE(IsWindowVisible(PanelOf(path)));
  EXPECT_FALSE(host_.Record(path).choices.Has(UserChoice::renameMoveAskShown));
  EXPECT_TRUE(host_.Record(path).choices.Has(UserChoice::renameMoveClicked));
  EXPECT_EQ(WindowsOf(path).overlayKind, 5);
}

// ---------------------------------------------------------------------------
// What the tick keeps, hides and destroys.

TEST_F(CustomUiTick, AQuietFileThatNeverShowedAnythingGetsNoOverlay) {
  const std::wstring path = ShowAfterOneTick(L"quiet", QuietAnswer());
  ExpectNothingShown(path);
  EXPECT_EQ(host_.Record(path).overlayUpToDate, 1u);
  Ticks(3);
  ExpectNothingShown(path);
  EXPECT_TRUE(InfoMessages().empty());
}

TEST_F(CustomUiTick, AChangeOfTheUnsavedStateAloneDoesNotRebuildThePanel) {
  const std::wstring path = ShowAfterOneTick(L"viewed", ViewedAnswer());
  const OverlayWindowState before = WindowsOf(path);
  host_.ClearLog();
  Document(path)->MarkEdited();
  Tick();
  const FileStatusRecord after = host_.Record(path);
  const OverlayWindowState afterWindows = WindowsOf(path);
  EXPECT_EQ(after.isEditing, 1u);
  EXPECT_EQ(afterWindows.badgeWindow, before.badgeWindow);
  EXPECT_EQ(afterWindows.subOverlayWindow, before.subOverlayWindow);
  EXPECT_TRUE(IsWindowVisible(afterWindows.subOverlayWindow));
  EXPECT_EQ(afterWindows.overlayKind, 8);
  EXPECT_TRUE(InfoMessages().empty());
}

TEST_F(CustomUiTick, AFileThatIsNotTheActiveOneKeepsItsWindowsHidden) {
  const std::wstring path = ShowAfterOneTick(L"first", ViewedAnswer());
  const OverlayWindowState shown = WindowsOf(path);
  host_.OpenAnswered(L"second", QuietAnswer());
  Tick();
  const OverlayWindowState hidden = WindowsOf(path);
  EXPECT_EQ(hidden.badgeWindow, shown.badgeWindow);
  EXPECT_EQ(hidden.subOverlayWindow, shown.subOverlayWindow);
  EXPECT_FALSE(IsWindowVisible(hidden.badgeWindow));
  EXPECT_FALSE(IsWindowVisible(hidden.subOverlayWindow));
  EXPECT_EQ(static_cast<OverlayKind>(hidden.overlayKind), OverlayKind::ViewingOnly);
}

TEST_F(CustomUiTick, AFileActiveAgainShowsItsBadgeButLeavesItsPanelClosed) {
  SimDocument* first = host_.OpenAnswered(L"first", ViewedAnswer());
  Tick();
  host_.OpenAnswered(L"second", QuietAnswer());
  Tick();
  host_.Activate(first);
  Tick();
  const OverlayWindowState record = WindowsOf(first->fullName());
  EXPECT_TRUE(IsWindowVisible(record.badgeWindow));
  EXPECT_FALSE(IsWindowVisible(record.subOverlayWindow));
}

TEST_F(CustomUiTick, AMinimisedOfficeWindowHidesTheActiveFilesWindows) {
  const std::wstring path = ShowAfterOneTick(L"viewed", ViewedAnswer());
  ShowWindow(host_.mainWindow(), SW_SHOWMINNOACTIVE);
  ASSERT_TRUE(IsIconic(host_.mainWindow()));
  Answer(path, [] {
    AnswerFields answer = ViewedAnswer();
    answer.last_modified_by = L"Ann Lee";
    return answer;
  }());
  Tick();
  const OverlayWindowState record = WindowsOf(path);
  ASSERT_TRUE(IsWindow(record.badgeWindow));
  EXPECT_FALSE(IsWindowVisible(record.badgeWindow));
  EXPECT_FALSE(IsWindowVisible(record.subOverlayWindow));
}

TEST_F(CustomUiTick, WithoutDataFromTheSyncAppEveryRecordsWindowsAreDestroyedOnEveryTick) {
  const std::wstring first = ShowAfterOneTick(L"first", ViewedAnswer());
  const OverlayWindowState firstShown = WindowsOf(first);
  const std::wstring second = ShowAfterOneTick(L"second", ViewedAnswer());
  const OverlayWindowState secondShown = WindowsOf(second);
  host_.ChangeRecord(first, [](FileStatusRecord& record) { record.choices.Set(UserChoice::downloadRequested); });
  TheFileStatusCache().syncAppHasData = false;
  for (int tick = 0; tick < 2; ++tick) {
    Tick();
    ExpectNothingShown(first);
    ExpectNothingShown(second);
  }
  EXPECT_FALSE(IsWindow(firstShown.badgeWindow));
  EXPECT_FALSE(IsWindow(firstShown.subOverlayWindow));
  EXPECT_FALSE(IsWindow(secondShown.badgeWindow));
  EXPECT_FALSE(IsWindow(secondShown.subOverlayWindow));
  EXPECT_FALSE(host_.Record(first).choices.Has(UserChoice::downloadRequested));
}

TEST_F(CustomUiTick, TheBadgeComesBackOnceTheSyncAppHasDataAgain) {
  const std::wstring path = ShowAfterOneTick(L"viewed", ViewedAnswer());
  TheFileStatusCache().syncAppHasData = false;
  Tick();
  TheFileStatusCache().syncAppHasData = true;
  Tick();
  ExpectBadgeAndPanel(path, 8, L"Another user is viewing this file", true);
}

TEST_F(CustomUiTick, AHiddenFilesWindowsStayDestroyed) {
  const std::wstring path = ShowAfterOneTick(L"viewed", ViewedAnswer());
  const OverlayWindowState shown = WindowsOf(path);
  host_.ChangeRecord(path, [](FileStatusRecord& record) { record.choices.Set(UserChoice::uiHide); });
  Tick();
  ExpectNothingShown(path);
  EXPECT_FALSE(IsWindow(shown.badgeWindow));
  Answer(path, [] {
    AnswerFields answer = ViewedAnswer();
    answer.is_download_present = L"Downloaded";
    return answer;
  }());
  Ticks(2);
  ExpectNothingShown(path);
  EXPECT_TRUE(host_.Record(path).choices.Has(UserChoice::uiHide));
}

TEST_F(CustomUiTick, AFileTheSyncAppNoLongerSyncsLosesItsWindows) {
  const std::wstring path = ShowAfterOneTick(L"unsynced", ViewedAnswer());
  const OverlayWindowState shown = WindowsOf(path);
  AnswerFields answer = ViewedAnswer();
  answer.is_sync_file = 0;
  Answer(path, answer);
  Tick();
  ExpectNothingShown(path);
  EXPECT_FALSE(IsWindow(shown.badgeWindow));
  EXPECT_FALSE(IsWindow(shown.subOverlayWindow));
  EXPECT_EQ(host_.Record(path).overlayUpToDate, 1u);
}

TEST_F(CustomUiTick, TheUnsavedStateTheTickReadsGoesIntoTheNextRequest) {
  const std::wstring path = ShowAfterOneTick(L"edited", QuietAnswer());
  Document(path)->MarkEdited();
  Tick();
  EXPECT_EQ(
      TheFileStatusCache().BuildRequest(L"", false),
      L"{\"files\":[{\"filepath\":\"" + path +
          L"\",\"isOpen\":true,\"isEditing\":true,\"resolveConflict\":false,\"retryModify\":false,"
          L"\"retryRenameOrMove\":false,\"retryDelete\":false,\"file_combo_id\":\"f-1001\",\"officeApp\":\"1\"}]}");
}

TEST_F(CustomUiTick, ADocumentThatCannotSayWhetherItHoldsChangesIsDroppedWithItsWindows) {
  const std::wstring path = ShowAfterOneTick(L"broken", ViewedAnswer());
  const OverlayWindowState shown = WindowsOf(path);
  Document(path)->RemoveMember(L"Saved");
  host_.ClearLog();
  Tick();
  EXPECT_FALSE(TheFileStatusCache().Contains(path));
  EXPECT_FALSE(IsWindow(shown.badgeWindow));
  EXPECT_FALSE(IsWindow(shown.subOverlayWindow));
  EXPECT_EQ(host_.Messages(),
            (std::vector<std::string>{"std exception occurred while checking unsaved changes exists or not - " +
                                          Narrow(path) + ", error=object model call Saved failed with 0x80020003",
                                      "file info removed from cache - " + Narrow(path)}));
}

TEST_F(CustomUiTick, ATickTakesActivationBackFromThePanelToTheOfficeWindow) {
  const std::wstring path = ShowAfterOneTick(L"viewed", ViewedAnswer());
  SetActiveWindow(PanelOf(path));
  ASSERT_EQ(GetActiveWindow(), PanelOf(path));
  Tick();
  EXPECT_EQ(GetActiveWindow(), host_.mainWindow());
}

TEST_F(CustomUiTick, ADownloadedFileWithUnsavedChangesOffersToKeepThemAsASeparateCopy) {
  SimDocument* document = host_.OpenRecorded(L"edited");
  document->MarkEdited();
  AnswerFields answer = QuietAnswer();
  answer.is_download_present = L"Downloaded";
  Answer(document->fullName(), answer);
  Tick();
  const HWND box = ChildWithId(PanelOf(document->fullName()), ControlId::SaveSeparateCopy);
  ASSERT_NE(box, nullptr);
  EXPECT_TRUE(HasChildText(PanelOf(document->fullName()), L"Save my changes as a separate copy"));
  EXPECT_EQ(SendMessageW(box, BM_GETCHECK, 0, 0), BST_UNCHECKED);
}

// A rebuilt panel of the states that would otherwise pop up on every change
// stays closed if the user had closed it; the others show whenever built.
struct RebuildCase {
  const char* name;
  void (*shape)(AnswerFields& answer);
  bool shownAgain;
};

void PrintTo(const RebuildCase& rebuildCase, std::ostream* out) { *out << rebuildCase.name; }

class PanelRebuiltForTheSameKind : public CustomUiTick, public testing::WithParamInterface<RebuildCase> {};

TEST_P(PanelRebuiltForTheSameKind, IsShownAgainOnlyWhereTheStateSaysSo) {
  AnswerFields answer = QuietAnswer();
  GetParam().shape(answer);
  const std::wstring path = ShowAfterOneTick(L"rebuilt", answer);
  const HWND closed = PanelOf(path);
  ShowWindow(closed, SW_HIDE);  // the user clicked the badge
  answer.last_modified_time = L"7/1/2024 10:30 AM";
  Answer(path, answer);
  Tick();
  EXPECT_FALSE(IsWindow(closed));
  ASSERT_NE(PanelOf(path), nullptr);
  EXPECT_EQ(IsWindowVisible(PanelOf(path)) != FALSE, GetParam().shownAgain);
}

TEST_P(PanelRebuiltForTheSameKind, IsShownAgainWhenTheUserHadItOpen) {
  AnswerFields answer = QuietAnswer();
  GetParam().shape(answer);
  const std::wstring path = ShowAfterOneTick(L"rebuilt", answer);
  const HWND open = PanelOf(path);
  answer.last_modified_time = L"7/1/2024 10:30 AM";
  Answer(path, answer);
  Tick();
  EXPECT_FALSE(IsWindow(open));
  EXPECT_TRUE(IsWindowVisible(PanelOf(path)));
}

const RebuildCase kRebuildCases[] = {
    {"Conflict", [](AnswerFields& a) { a.is_conflict_present = 1; }, false},
    {"Download", [](AnswerFields& a) { a.is_download_present = L"Downloading"; }, false},
    {"Delete", [](AnswerFields& a) { a.is_delete_present = 1; }, true},
    {"RenameMove", [](AnswerFields& a) { a.is_move_present = 1; }, true},
    {"Editing", [](AnswerFields& a) { AddEditors(a, L"u-bo", L"Bo Park"); }, true},
    {"ViewingOnly", [](AnswerFields& a) { AddViewers(a, L"u-ann", L"Ann Lee"); }, true},
};

INSTANTIATE_TEST_SUITE_P(EachState, PanelRebuiltForTheSameKind, testing::ValuesIn(kRebuildCases),
                         [](const testing::TestParamInfo<RebuildCase>& info) { return info.param.name; });

// ---------------------------------------------------------------------------
// The active file's badge is kept inside the Office window.

class BadgeHome : public CustomUiTick {
 protected:
  // A viewed file with its badge and panel on screen, then the badge put at
  // (x, y) as a drag would leave it.
  std::wstring ShowWithBadgeAt(int x, int y) {
    const std::wstring path = ShowAfterOneTick(L"dragged", ViewedAnswer());
    MoveWindow(BadgeOf(path), x, y, kBadgeSize, kBadgeSize, TRUE);
    const SharedWindowState windows = FindWindowState(path);
    windows->posX = x;
    windows->posY = y;
    return path;
  }
};

TEST_F(BadgeHome, ABadgePartlyOutsideTheOfficeWindowGoesBackHomeAndItsPanelIsHidden) {
  const std::wstring path = ShowWithBadgeAt(1060, 600);
  Tick();
  const OverlayWindowState record = WindowsOf(path);
  EXPECT_TRUE(RectIs(WindowRectOf(record.badgeWindow), 800, 650, 870, 720));
  EXPECT_EQ(record.posX, 800);
  EXPECT_EQ(record.posY, 650);
  EXPECT_TRUE(IsWindowVisible(record.badgeWindow));
  EXPECT_FALSE(IsWindowVisible(record.subOverlayWindow));
}

TEST_F(BadgeHome, ABadgeWhollyInsideStaysWhereTheUserPutIt) {
  const std::wstring path = ShowWithBadgeAt(300, 200);
  Tick();
  const OverlayWindowState record = WindowsOf(path);
  EXPECT_TRUE(RectIs(WindowRectOf(record.badgeWindow), 300, 200, 370, 270));
  EXPECT_EQ(record.posX, 300);
  EXPECT_EQ(record.posY, 200);
  EXPECT_TRUE(IsWindowVisible(record.subOverlayWindow));
}

TEST_F(BadgeHome, ABadgeTouchingAnEdgeOfTheOfficeWindowCountsAsOutside) {
  const std::wstring path = ShowWithBadgeAt(1100 - kBadgeSize - 1, 750 - kBadgeSize);
  Tick();
  EXPECT_TRUE(RectIs(WindowRectOf(BadgeOf(path)), 800, 650, 870, 720));
}

TEST_F(BadgeHome, ABadgeOnePixelInsideEveryEdgeStays) {
  const std::wstring path = ShowWithBadgeAt(1100 - kBadgeSize - 1, 750 - kBadgeSize - 1);
  Tick();
  EXPECT_TRUE(RectIs(WindowRectOf(BadgeOf(path)), 1029, 679, 1099, 749));
  EXPECT_EQ(WindowsOf(path).posX, 1029);
}

TEST_F(BadgeHome, AnOfficeWindowTooNarrowForTheHomePositionLeavesTheBadgeWhereItIs) {
  const std::wstring path = ShowAfterOneTick(L"narrow", ViewedAnswer());
  PlaceWindow(host_.mainWindow(), {0, 0, 300, 600});  // home x = 0
  Tick();
  EXPECT_TRUE(RectIs(WindowRectOf(BadgeOf(path)), 800, 650, 870, 720));
  EXPECT_EQ(WindowsOf(path).posX, 800);
  EXPECT_TRUE(IsWindowVisible(PanelOf(path)));
  PlaceWindow(host_.mainWindow(), {0, 0, 301, 600});  // home x = 1
  Tick();
  EXPECT_TRUE(RectIs(WindowRectOf(BadgeOf(path)), 1, 500, 71, 570));
}

TEST_F(BadgeHome, AnOfficeWindowTooLowForTheHomePositionLeavesTheBadgeWhereItIs) {
  const std::wstring path = ShowAfterOneTick(L"low", ViewedAnswer());
  PlaceWindow(host_.mainWindow(), {0, 0, 900, 100});  // home y = 0
  Tick();
  EXPECT_TRUE(RectIs(WindowRectOf(BadgeOf(path)), 800, 650, 870, 720));
  EXPECT_EQ(WindowsOf(path).posY, 650);
}

// ---------------------------------------------------------------------------
// The status strips.

TEST_F(CustomUiTick, TheNoInternetStripIsAWhiteStripAtTheBadgesHome) {
  const std::wstring path = ShowAfterOneTick(L"offline", [] {
    AnswerFields answer = QuietAnswer();
    answer.is_internet_connected = 0;
    return answer;
  }());
  const HWND strip = BadgeOf(path);
  EXPECT_EQ(ClassNameOf(strip), kMainUi);
  // 245 wide: the designed 235 plus the ten its title needs in Arial Bold.
  EXPECT_TRUE(RectIs(WindowRectOf(strip), 800, 650, 800 + 245, 650 + 48));
  EXPECT_TRUE(IsWindowVisible(strip));
  EXPECT_EQ(OwnerOf(strip), host_.mainWindow());
  EXPECT_EQ(ChildTexts(strip), (std::vector<std::wstring>{L"", L"No Internet Connection"}));
  EXPECT_EQ(PanelOf(path), nullptr);
  EXPECT_EQ(KindOf(path), 1);
}

TEST_F(CustomUiTick, TheLoadingStripIsABlueStripWithARunningBarAtTheBadgesHome) {
  const std::wstring path = ShowAfterOneTick(L"loading", [] {
    AnswerFields answer = ViewedAnswer();
    answer.is_loading_data_from_server = 1;
    return answer;
  }());
  const HWND strip = BadgeOf(path);
  EXPECT_EQ(ClassNameOf(strip), kBlueUi);
  EXPECT_TRUE(RectIs(WindowRectOf(strip), 800, 650, 800 + 184, 650 + 58));
  EXPECT_TRUE(IsWindowVisible(strip));
  EXPECT_EQ(OwnerOf(strip), host_.mainWindow());
  EXPECT_TRUE(HasChildText(strip, L"Qelvo Filewell"));
  const HWND bar = FindWindowExW(strip, nullptr, L"msctls_progress32", nullptr);
  ASSERT_NE(bar, nullptr);
  EXPECT_TRUE(RectIs(WindowRectOf(bar), 800, 650 + 52, 800 + 184, 650 + 58));
  EXPECT_EQ(PanelOf(path), nullptr);
  EXPECT_EQ(KindOf(path), 2);
  EXPECT_EQ(InfoMessages(), std::vector<std::string>{"loading: " + Narrow(path)});
}

TEST_F(CustomUiTick, AFileWithNothingWorthABadgeGetsNoLoadingStrip) {
  const std::wstring path = ShowAfterOneTick(L"loading", [] {
    AnswerFields answer = QuietAnswer();
    answer.is_loading_data_from_server = 1;
    return answer;
  }());
  ExpectNothingShown(path);
  EXPECT_EQ(host_.Record(path).overlayUpToDate, 1u);
  EXPECT_TRUE(InfoMessages().empty());
}

TEST_F(CustomUiTick, AFileThatShowedABadgeShowsTheLoadingStripInItsPlace) {
  const std::wstring path = ShowAfterOneTick(L"reloading", ViewedAnswer());
  const OverlayWindowState badge = WindowsOf(path);
  AnswerFields loading = QuietAnswer();
  loading.is_loading_data_from_server = 1;
  Answer(path, loading);
  host_.ClearLog();
  Tick();
  EXPECT_FALSE(IsWindow(badge.badgeWindow));
  EXPECT_FALSE(IsWindow(badge.subOverlayWindow));
  EXPECT_EQ(ClassNameOf(BadgeOf(path)), kBlueUi);
  EXPECT_EQ(PanelOf(path), nullptr);
  EXPECT_EQ(KindOf(path), 2);
  EXPECT_EQ(InfoMessages(), std::vector<std::string>{"loading: " + Narrow(path)});
}

TEST_F(CustomUiTick, AStripOfTheSameKindIsKeptWhenTheRecordChanges) {
  AnswerFields offline = QuietAnswer();
  offline.is_internet_connected = 0;
  const std::wstring path = ShowAfterOneTick(L"offline", offline);
  const HWND strip = BadgeOf(path);
  offline.last_modified_by = L"Ann Lee";
  Answer(path, offline);
  host_.ClearLog();
  Tick();
  EXPECT_EQ(BadgeOf(path), strip);
  EXPECT_EQ(host_.Record(path).overlayUpToDate, 1u);
  EXPECT_TRUE(InfoMessages().empty());
}

// ---------------------------------------------------------------------------
// Documents the host no longer has open.

TEST_F(CustomUiTick, ADocumentClosedInTheHostIsDroppedOnTheNextTickWithItsWindows) {
  SimDocument* kept = host_.OpenAnswered(L"kept", QuietAnswer());
  const std::wstring path = ShowAfterOneTick(L"closed", ViewedAnswer());
  const OverlayWindowState shown = WindowsOf(path);
  ASSERT_TRUE(host_.app().CloseDocument(Document(path), SimApplication::SaveChoice::Prompt));
  ASSERT_TRUE(TheFileStatusCache().Contains(path));
  host_.ClearLog();
  Tick();
  EXPECT_EQ(host_.CachedPaths(), std::vector<std::wstring>{kept->fullName()});
  EXPECT_FALSE(IsWindow(shown.badgeWindow));
  EXPECT_FALSE(IsWindow(shown.subOverlayWindow));
  // An ordinary close: logged as one, and reported to the sync app (none
  // runs in these tests, so the pipe cannot be opened).
  EXPECT_EQ(host_.Messages(),
            (std::vector<std::string>{"close file - " + Narrow(path), "file info removed from cache - " + Narrow(path),
                                      "Could not open pipe. errcode=2"}));
  EXPECT_EQ(host_.LevelOf("close file - " + Narrow(path)), "I");
  EXPECT_EQ(host_.LevelOf("file info removed from cache - " + Narrow(path)), "I");
}

TEST_F(CustomUiTick, TheTickRecordsAnActiveDocumentTheEventsMissed) {
  SimDocument* missed = host_.Open(L"missed.docx");
  ASSERT_FALSE(TheFileStatusCache().Contains(missed->fullName()));
  host_.ClearLog();
  Tick();
  ASSERT_TRUE(TheFileStatusCache().Contains(missed->fullName()));
  EXPECT_EQ(host_.Record(missed->fullName()).hostWindow, host_.mainWindow());
  EXPECT_EQ(InfoMessages(), (std::vector<std::string>{"document open/activate/save - " + Narrow(missed->fullName()),
                                                       "file info stored in cache - " + Narrow(missed->fullName())}));
}

TEST_F(CustomUiTick, ANewUnsavedDocumentInFrontHidesTheOtherFilesWindows) {
  const std::wstring path = ShowAfterOneTick(L"viewed", ViewedAnswer());
  host_.app().NewDocument();
  Tick();
  EXPECT_EQ(host_.CachedPaths(), std::vector<std::wstring>{path});
  EXPECT_FALSE(IsWindowVisible(BadgeOf(path)));
  EXPECT_FALSE(IsWindowVisible(PanelOf(path)));
}

TEST_F(CustomUiTick, AnAnswerThatArrivesWhileTheTickDrawsIsDrawnByTheNextTick) {
  SimDocument* document = host_.OpenAnswered(L"raced", ViewedAnswer());
  const std::wstring path = document->fullName();
  AnswerFields newer = ViewedAnswer();
  newer.is_download_present = L"Downloaded";
  // The update thread writes its answer while the tick asks the host
  // whether the document holds changes.
  bool answered = false;
  document->RemoveMember(L"Saved");
  document->AddMember(L"Saved", 0x4, [&](WORD, const std::vector<VARIANT*>&, VARIANT* result) {
    if (!answered) Answer(path, newer);
    answered = true;
    return ReturnBool(result, true);
  });
  Tick();
  ASSERT_TRUE(answered);
  EXPECT_EQ(KindOf(path), 8);
  EXPECT_EQ(host_.Record(path).overlayUpToDate, 0u);
  Tick();
  EXPECT_EQ(KindOf(path), 7);
  EXPECT_TRUE(HasChildText(PanelOf(path), L"This file has been modified"));
  EXPECT_EQ(host_.Record(path).overlayUpToDate, 1u);
}

TEST_F(CustomUiTick, TheTickGoesOnWithTheNextRecordAfterDroppingAClosedOne) {
  SimDocument* closed = host_.OpenAnswered(L"a-closed", QuietAnswer());
  SimDocument* active = host_.OpenAnswered(L"b-active", ViewedAnswer());
  ASSERT_LT(closed->fullName(), active->fullName());  // visited first
  const std::wstring activePath = active->fullName();
  ASSERT_TRUE(host_.app().CloseDocument(closed, SimApplication::SaveChoice::Prompt));
  Tick();
  EXPECT_EQ(host_.CachedPaths(), std::vector<std::wstring>{activePath});
  ExpectBadgeAndPanel(activePath, 8, L"Another user is viewing this file", true);
}

// The update thread holds the cache mutex while it builds its request.
class HeldCacheMutex {
 public:
  HeldCacheMutex() {
    thread_.reset(CreateThread(nullptr, 0, Hold, this, 0, nullptr));
    WaitForSingleObject(held_.get(), 5000);
  }
  ~HeldCacheMutex() {
    SetEvent(release_.get());
    WaitForSingleObject(thread_.get(), 5000);
  }
  // Whether a third party finds the mutex free at this moment.
  static bool FreeForOthers() {
    UniqueHandle probe(CreateThread(nullptr, 0, Probe, nullptr, 0, nullptr));
    WaitForSingleObject(probe.get(), 5000);
    DWORD code = 0;
    GetExitCodeThread(probe.get(), &code);
    return code == 1;
  }

 private:
  static DWORD WINAPI Hold(void* self) {
    auto* me = static_cast<HeldCacheMutex*>(self);
    UniqueHandle mutex(OpenMutexW(SYNCHRONIZE | MUTEX_MODIFY_STATE, FALSE, kName));
    WaitForSingleObject(mutex.get(), 5000);
    SetEvent(me->held_.get());
    WaitForSingleObject(me->release_.get(), 10000);
    ReleaseMutex(mutex.get());
    return 0;
  }
  static DWORD WINAPI Probe(void*) {
    UniqueHandle mutex(OpenMutexW(SYNCHRONIZE | MUTEX_MODIFY_STATE, FALSE, kName));
    if (WaitForSingleObject(mutex.get(), 0) != WAIT_OBJECT_0) return 0;
    ReleaseMutex(mutex.get());
    return 1;
  }
  static constexpr wchar_t kName[] = L"QelvoFilewell-MSOfficeIntegration-cachemutex";
  UniqueHandle held_{CreateEventW(nullptr, TRUE, FALSE, nullptr)};
  UniqueHandle release_{CreateEventW(nullptr, TRUE, FALSE, nullptr)};
  UniqueHandle thread_;
};

TEST_F(CustomUiTick, ATickDoesNotWaitForTheCacheMutexAndLeavesItWithItsHolder) {
  const std::wstring path = host_.OpenAnswered(L"viewed", ViewedAnswer())->fullName();
  Tick();  // the mutex exists from the first tick on
  Answer(path, [] {
    AnswerFields answer = ViewedAnswer();
    answer.is_download_present = L"Downloaded";
    return answer;
  }());
  HeldCacheMutex held;
  ASSERT_FALSE(HeldCacheMutex::FreeForOthers());
  const ULONGLONG start = GetTickCount64();
  Tick();
  EXPECT_LT(GetTickCount64() - start, 1000u);
  EXPECT_EQ(KindOf(path), 7);
  EXPECT_FALSE(HeldCacheMutex::FreeForOthers());
}

TEST_F(CustomUiTick, ATickReleasesTheCacheMutexItTook) {
  host_.OpenAnswered(L"viewed", ViewedAnswer());
  Ticks(2);
  EXPECT_TRUE(HeldCacheMutex::FreeForOthers());
}

// Each taking of the cache's lock is a round trip to the kernel: a tick
// that took it once per record would grow slow with many open documents.
TEST_F(CustomUiTick, ATickTakesTheCacheLockAsOftenWithTenDocumentsAsWithOne) {
  host_.OpenAnswered(L"viewed0", ViewedAnswer());
  Ticks(2);
  std::uint64_t before = RecordLock::Acquisitions();
  Tick();
  const std::uint64_t withOne = RecordLock::Acquisitions() - before;
  for (int i = 1; i < 10; ++i) host_.OpenAnswered(L"viewed" + std::to_wstring(i), ViewedAnswer());
  Ticks(2);
  before = RecordLock::Acquisitions();
  Tick();
  const std::uint64_t withTen = RecordLock::Acquisitions() - before;
  EXPECT_EQ(withTen, withOne);
  EXPECT_LE(withOne, 3u);
}

// ---------------------------------------------------------------------------
// In each host: the overlay over the host's window, and documents the user
// closed behind the add-in's back.

class TickInEveryHost : public testing::TestWithParam<SimHost> {
 protected:
  void SetUp() override { ASSERT_EQ(sinks_.Subscribe(AddinHostOf(GetParam()), &host_.app()), S_OK); }
  void TearDown() override { sinks_.Unsubscribe(AddinHostOf(GetParam()), &host_.app()); }

  // The user edits the document and closes it from the host, answering the
  // host's own prompt with "don't save". The before-close handler saw
  // unsaved changes and kept the record: the user might still have
  // cancelled.
  void CloseWithoutSaving(SimDocument* document, Caller caller = {}) {
    TRACE_CALLER(caller);
    const std::wstring path = document->fullName();
    document->MarkEdited();
    host_.app().SetPromptAnswer(SimApplication::PromptAnswer::Discard);
    ASSERT_TRUE(host_.app().CloseDocument(document, SimApplication::SaveChoice::Prompt));
    ASSERT_EQ(host_.app().FindDocument(path), nullptr);
    ASSERT_TRUE(TheFileStatusCache().Contains(path));
  }
  // The request for one open, unmodified file as the sync app would read it.
  std::wstring RequestFor(const std::wstring& path) const {
    return L"{\"files\":[{\"filepath\":\"" + path +
           L"\",\"isOpen\":true,\"isEditing\":false,\"resolveConflict\":false,\"retryModify\":false,"
           L"\"retryRenameOrMove\":false,\"retryDelete\":false,\"file_combo_id\":\"f-1001\",\"officeApp\":\"" +
           std::to_wstring(static_cast<int>(AddinHostOf(GetParam()))) + L"\"}]}";
  }
  static std::vector<std::string> ErrorMessages() {
    std::vector<std::string> messages;
    for (const LogLine& line : InProcessHost::Log()) {
      if (line.level == "E") messages.push_back(line.message);
    }
    return messages;
  }
  // The close of a document the tick found gone is sent to the sync app;
  // these tests run none.
  static std::string PipeError() { return "Could not open pipe. errcode=2"; }

  OverlayHost host_{GetParam()};
  HostEventSinks sinks_;
};

TEST_P(TickInEveryHost, TheActiveFilesBadgeAndPanelSitOverTheHostsWindow) {
  SimDocument* document = host_.OpenAnswered(L"viewed", [] {
    AnswerFields answer = QuietAnswer();
    AddViewers(answer, L"u-ann", L"Ann Lee");
    return answer;
  }());
  Tick();
  ExpectBadgeAndPanel(document->fullName(), 8, L"Another user is viewing this file", true);
  EXPECT_EQ(host_.Record(document->fullName()).hostWindow, host_.mainWindow());
  EXPECT_EQ(OwnerOf(BadgeOf(document->fullName())), host_.mainWindow());
}

TEST_P(TickInEveryHost, AModifiedDocumentClosedWithoutSavingIsDroppedByTheNextTick) {
  SimDocument* kept = host_.OpenAnswered(L"kept", QuietAnswer());
  SimDocument* closed = host_.OpenAnswered(L"closed", [] {
    AnswerFields answer = QuietAnswer();
    AddViewers(answer, L"u-ann", L"Ann Lee");
    return answer;
  }());
  const std::wstring path = closed->fullName();
  Tick();
  const OverlayWindowState shown = WindowsOf(path);
  ASSERT_NE(shown.badgeWindow, nullptr);
  CloseWithoutSaving(closed);
  host_.ClearLog();
  Tick();
  EXPECT_EQ(host_.CachedPaths(), std::vector<std::wstring>{kept->fullName()});
  EXPECT_FALSE(IsWindow(shown.badgeWindow));
  EXPECT_FALSE(IsWindow(shown.subOverlayWindow));
  // Reported as closed; no sync app runs here to hear it.
  EXPECT_EQ(ErrorMessages(), std::vector<std::string>{PipeError()});
  EXPECT_EQ(TheFileStatusCache().BuildRequest(L"", false), RequestFor(kept->fullName()));
}

TEST_P(TickInEveryHost, WithNoDocumentLeftTheTickStillDropsEveryClosedDocument) {
  SimDocument* first = host_.OpenAnswered(L"first", QuietAnswer());
  SimDocument* second = host_.OpenAnswered(L"second", QuietAnswer());
  const std::wstring firstPath = first->fullName();
  const std::wstring secondPath = second->fullName();
  Tick();
  CloseWithoutSaving(second);
  CloseWithoutSaving(first);
  ASSERT_EQ(host_.app().openDocumentCount(), 0u);
  host_.ClearLog();
  // Word and PowerPoint raise an error for the active document now, Excel
  // answers nothing: the tick goes on either way.
  Tick();
  EXPECT_TRUE(host_.CachedPaths().empty());
  EXPECT_EQ(ErrorMessages(), (std::vector<std::string>{PipeError(), PipeError()}));
  (void)firstPath;
  (void)secondPath;
  EXPECT_EQ(TheFileStatusCache().BuildRequest(L"", false), L"{\"files\":[]}");
}

TEST_P(TickInEveryHost, WithNoDocumentOpenTheTickEndsNormally) {
  host_.ClearLog();
  Ticks(2);
  EXPECT_TRUE(host_.Messages().empty());
  EXPECT_TRUE(host_.CachedPaths().empty());
}

INSTANTIATE_TEST_SUITE_P(EveryHost, TickInEveryHost,
                         testing::Values(SimHost::Word, SimHost::Excel, SimHost::PowerPoint), HostParamName);
}  // namespace
