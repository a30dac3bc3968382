// Every way through the badge's panels, end to end, in Word, Excel and
// PowerPoint: the sync app reports what happened to the file on the web,
// the UI tick shows it, the user presses the panel's buttons, and the
// document actions close, save, copy or keep the document. Each test checks
// what the sync app received (the bytes of the requests that carry the
// user's choice), what became of the document in the host and on disk,
// and the add-in's log.
#include <windows.h>
#include <commctrl.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <regex>

#include "common/text.h"
#include "overlay/windows/overlay_window_states.h"
#include "tests/windows/flow_test_support.h"

namespace {
// The sync app's side of each story, after the lines of a synced file.
// A newer version on the web that the sync app is fetching, and has once it
// was asked a second time.
const wchar_t kNewVersionOnTheWeb[] =
    L"set is_download_present=Downloading\n"
    L"after 1\n"
    L"set is_download_present=Downloaded\n"
    L"when retryModify\n"
    L"set is_download_present=Already Up-to-date\n";
const wchar_t kConflict[] =
    L"set is_conflict_present=true\n"
    L"when resolveConflict\n"
    L"set is_conflict_present=false\n";
const wchar_t kDeleted[] = L"set is_delete_present=true\n";
const wchar_t kViewedByBo[] =
    L"set all_viewers_quid=u1bo\n"
    L"set all_viewers_names=Bo Chan\n";

std::wstring Renamed(const std::wstring& previous, const std::wstring& next) {
  return L"set is_rename_present=true\nset src=" + previous + L"\nset dest=" + next +
         L"\nwhen retryRenameOrMove\nset is_rename_present=false\n";
}
std::wstring Moved(const std::wstring& from, const std::wstring& to, bool closeFirst) {
  return L"set is_move_present=true\nset src=" + from + L"\nset dest=" + to + L"\n" +
         (closeFirst ? L"set is_folder_move_present=true\n" : L"") +
         L"when retryRenameOrMove\nset is_move_present=false\n";
}

const char kOriginalContent[] = "content\n";
const char kSavedOnce[] = "saved 1 times\n";

class PanelFlow : public testing::TestWithParam<SimHost> {
 protected:
  SimHost host() const { return GetParam(); }
  bool hostQuitsWithItsLastDocument() const { return host() != SimHost::PowerPoint; }
  std::wstring Named(const wchar_t* base) const { return base + DocumentExtension(host()); }

  // The user opens a synced file whose story the sync app tells; the sync
  // app is asked once and the tick shows what it said.
  SimDocument* OpenSynced(const wchar_t* base, const std::wstring& story, bool edited, Caller caller = {}) {
    TRACE_CALLER(caller);
    name_ = Named(base);
    path_ = flow_.PathOf(name_);
    EXPECT_TRUE(flow_.StartSyncApp(SyncedFileScenario(path_) + story));
    SimDocument* document = flow_.Open(name_);
    EXPECT_NE(document, nullptr);
    if (document != nullptr && edited) document->MarkEdited();
    flow_.CycleAndTick();
    return document;
  }

  HWND Panel() const { return OfficeFlow::PanelOf(path_); }
  HWND Badge() const { return OfficeFlow::BadgeOf(path_); }
  FileStatusRecord Record() const { return InProcessHost::Record(path_); }
  // The kind the file's badge shows (-1 without an overlay state).
  int KindShown() const {
    const SharedWindowState state = FindWindowState(path_);
    return state ? state->overlayKind : -1;
  }
  std::string P() const { return Narrow(path_); }
  std::string OnDisk() const { return ReadFileBytes(path_); }

  // The panel on screen shows this text in one of its controls.
  static bool Shows(HWND panel, const std::wstring& text) {
    for (const PanelChild& child : PanelChildrenOf(panel)) {
      if (child.text == text) return true;
    }
    return false;
  }
  static std::wstring TextOf(HWND panel, ControlId id) { return WindowTextOf(GetDlgItem(panel, static_cast<int>(id))); }

  // The panel that is on screen now, with these buttons.
  void ExpectPanelOnScreen(HWND panel, const std::vector<ControlId>& buttons, Caller caller = {}) {
    TRACE_CALLER(caller);
    ASSERT_NE(panel, nullptr);
    EXPECT_TRUE(IsWindowVisible(panel)) << DescribePanel(panel);
    EXPECT_TRUE(IsWindowVisible(Badge()));
    EXPECT_EQ(ButtonIdsOf(panel), buttons) << DescribePanel(panel);
  }

  // The last request the sync app received, byte for byte.
  void ExpectLastRequest(const RequestFields& fields, Caller caller = {}) {
    TRACE_CALLER(caller);
    const std::vector<std::string> raw = flow_.RawRequests();
    ASSERT_FALSE(raw.empty());
    const std::wstring expected = ExpectedRequest(path_, fields, host());
    EXPECT_EQ(raw.back(), MessageBytes(expected)) << "received: " << Narrow(flow_.Requests().back())
                                                  << "\nexpected: " << Narrow(expected);
  }

  // The add-in closed the document: the host no longer has it, the cache
  // forgot it and no window of it is left.
  void ExpectClosedAndForgotten(HWND panel, HWND badge, Caller caller = {}) {
    TRACE_CALLER(caller);
    EXPECT_FALSE(IsOpenInHost(flow_, path_));
    EXPECT_FALSE(TheFileStatusCache().Contains(path_));
    EXPECT_FALSE(IsWindow(panel));
    EXPECT_FALSE(IsWindow(badge));
  }

  // The document is still open with the user's unsaved changes in it, and
  // still known to the add-in.
  void ExpectStillOpenWithTheUsersChanges(SimDocument* document, Caller caller = {}) {
    TRACE_CALLER(caller);
    EXPECT_EQ(flow_.app().FindDocument(path_), document);
    EXPECT_FALSE(document->saved());
    EXPECT_TRUE(TheFileStatusCache().Contains(path_));
    EXPECT_EQ(OnDisk(), kOriginalContent);
  }

  OfficeFlow flow_{GetParam()};
  std::wstring name_;
  std::wstring path_;
};

// --- Download ---------------------------------------------------------------

TEST_P(PanelFlow, DownloadWithoutUnsavedChangesReloadsTheNewVersion) {
  SimDocument* document = OpenSynced(L"report", kNewVersionOnTheWeb, false);
  ASSERT_NE(document, nullptr);
  HWND offer = Panel();
  ExpectPanelOnScreen(offer, {ControlId::Download});
  EXPECT_TRUE(Shows(offer, L"This file has been modified"));
  EXPECT_TRUE(Shows(offer, L"Bo Chan"));
  EXPECT_TRUE(Shows(offer, L"Modified on 2026-11-23 09:41"));
  EXPECT_EQ(TextOf(offer, ControlId::Download), L"Download latest version");
  EXPECT_EQ(GetDlgItem(offer, static_cast<int>(ControlId::SaveSeparateCopy)), nullptr);
  EXPECT_EQ(KindShown(), 7);
  EXPECT_TRUE(ContainsInOrder(flow_.Messages(), {"download: " + P()}));

  flow_.ClearLog();
  flow_.Press(offer, ControlId::Download);
  HWND downloading = Panel();
  EXPECT_FALSE(IsWindow(offer));
  ExpectPanelOnScreen(downloading, {ControlId::Downloading});
  EXPECT_EQ(TextOf(downloading, ControlId::Downloading), L"Downloading...");
  // The marquee runs along the bottom edge: 7 high, the panel's width, its
  // top 7 above the panel's height.
  HWND bar = ChildOfClass(downloading, L"msctls_progress32");
  ASSERT_NE(bar, nullptr) << DescribePanel(downloading);
  EXPECT_NE(GetWindowLongPtrW(bar, GWL_STYLE) & PBS_MARQUEE, 0);
  RECT barRect{};
  GetWindowRect(bar, &barRect);
  MapWindowPoints(nullptr, downloading, reinterpret_cast<POINT*>(&barRect), 2);
  const SIZE panelSize = WindowSizeOf(downloading);
  EXPECT_EQ(barRect.left, 0);
  EXPECT_EQ(barRect.top, panelSize.cy - 7);
  EXPECT_EQ(barRect.right - barRect.left, panelSize.cx);
  EXPECT_EQ(barRect.bottom - barRect.top, 7);
  EXPECT_TRUE(Record().choices.Has(UserChoice::downloadRequested));
  EXPECT_EQ(flow_.Messages(),
            (std::vector<std::string>{"download button clicked: " + P(),
                                      "download - user not editing - so save separate copy checkbox not available: " +
                                          P()}));

  flow_.CycleAndTick();  // the sync app has it now
  HWND reload = Panel();
  EXPECT_FALSE(IsWindow(downloading));
  ExpectPanelOnScreen(reload, {ControlId::Reload});
  EXPECT_EQ(TextOf(reload, ControlId::Reload), L"Reload");
  EXPECT_TRUE(Shows(reload, L"To load the latest version of this file, click \"Reload\"."));
  EXPECT_EQ(WindowSizeOf(reload).cy, 155);

  HWND badge = Badge();
  flow_.ClearLog();
  flow_.Press(reload, ControlId::Reload);
  ExpectClosedAndForgotten(reload, badge);
  EXPECT_EQ(OnDisk(), kOriginalContent);
  EXPECT_EQ(flow_.app().quitRequested(), hostQuitsWithItsLastDocument());
  EXPECT_EQ(flow_.Messages(), (std::vector<std::string>{"download reload button clicked: " + P(),
                                                         "download reload file in progress: " + P(),
                                                         "going to close file", "close file - " + P(),
                                                         "file info removed from cache - " + P(),
                                                         "download reload completed"}));
  // Two cycles, then the close, which tells the sync app the user wants the
  // web version.
  RequestFields first;
  first.fileComboId = L"";
  RequestFields closed;
  closed.isOpen = false;
  closed.retryModify = true;
  EXPECT_EQ(flow_.Requests(), (std::vector<std::wstring>{ExpectedRequest(path_, first, host()),
                                                          ExpectedRequest(path_, {}, host()),
                                                          ExpectedRequest(path_, closed, host())}));
  ExpectLastRequest(closed);
}

TEST_P(PanelFlow, DownloadWithUnsavedChangesKeepsThemInASeparateCopyNextToTheDocument) {
  SimDocument* document = OpenSynced(L"report", kNewVersionOnTheWeb, true);
  ASSERT_NE(document, nullptr);
  HWND offer = Panel();
  ExpectPanelOnScreen(offer, {ControlId::SaveSeparateCopy, ControlId::Download});
  EXPECT_EQ(TextOf(offer, ControlId::SaveSeparateCopy), L"Save my changes as a separate copy");
  EXPECT_EQ(WindowSizeOf(offer).cy, 215);

  flow_.ClearLog();
  flow_.Check(offer, ControlId::SaveSeparateCopy);
  flow_.Press(offer, ControlId::Download);
  EXPECT_EQ(flow_.Messages(), (std::vector<std::string>{"download button clicked: " + P(),
                                                         "download - save separate copy checkbox checked: " + P()}));
  EXPECT_TRUE(Record().choices.Has(UserChoice::saveSeparateCopy));
  ExpectPanelOnScreen(Panel(), {ControlId::Downloading});

  // The user chose the copy already: the confirmation only says "Reload".
  flow_.CycleAndTick();
  HWND reload = Panel();
  ExpectPanelOnScreen(reload, {ControlId::Reload});
  flow_.ClearLog();
  flow_.Press(reload, ControlId::Reload);
  HWND ask = Panel();
  ExpectPanelOnScreen(ask, {ControlId::SaveCopyAndReload, ControlId::DiscardAndReload});
  EXPECT_EQ(TextOf(ask, ControlId::SaveCopyAndReload), L"Save a copy & Reload");
  EXPECT_EQ(TextOf(ask, ControlId::DiscardAndReload), L"Discard & Reload");
  EXPECT_EQ(flow_.Messages(), (std::vector<std::string>{"download reload button clicked: " + P(),
                                                         "download ask save copy or not UI shown: " + P()}));
  ExpectStillOpenWithTheUsersChanges(document);

  // The user takes a moment over it; the question stays.
  flow_.CycleAndTick();
  EXPECT_EQ(Panel(), ask);
  ExpectPanelOnScreen(Panel(), {ControlId::SaveCopyAndReload, ControlId::DiscardAndReload});
  ask = Panel();

  // Were the host to ask about the changes a second time, this user would
  // keep the document open: the copy was the answer already.
  flow_.app().SetPromptAnswer(SimApplication::PromptAnswer::Cancel);
  HWND badge = Badge();
  flow_.ClearLog();
  const std::string before = CopyStampNow();
  flow_.Press(ask, ControlId::SaveCopyAndReload);
  const std::string after = CopyStampNow();

  std::vector<std::wstring> files = FilesIn(flow_.host().folder());
  ASSERT_EQ(files.size(), 2u);
  files.erase(std::remove(files.begin(), files.end(), name_), files.end());
  ASSERT_EQ(files.size(), 1u);
  const std::string copy = Narrow(files[0]);
  wchar_t user[257] = {};
  DWORD userLength = 257;
  ASSERT_TRUE(GetUserNameW(user, &userLength));
  const std::regex shape("report \\(" + Narrow(user) +
                         R"( (\d{4}-\d{2}-\d{2} \d{2}\.\d{2}\.\d{2}\.\d{3})\))" +
                         Narrow(DocumentExtension(host())).replace(0, 1, "\\."));
  std::smatch stamp;
  ASSERT_TRUE(std::regex_match(copy, stamp, shape)) << copy;
  EXPECT_LE(before, stamp[1].str());
  EXPECT_GE(after, stamp[1].str());
  const std::string copyPath = Narrow(flow_.host().folder()) + "\\" + copy;

  // The copy holds the changes: the document closes without a second
  // question in every host, and the close tells the sync app the user wants
  // the web version.
  RequestFields closed;
  closed.isOpen = false;
  closed.isEditing = true;
  closed.retryModify = true;
  ExpectLastRequest(closed);
  EXPECT_EQ(flow_.Requests().size(), 4u);
  EXPECT_FALSE(TheFileStatusCache().Contains(path_));
  EXPECT_FALSE(IsWindow(ask));
  EXPECT_FALSE(IsWindow(badge));
  EXPECT_EQ(OnDisk(), kOriginalContent);
  EXPECT_FALSE(IsOpenInHost(flow_, path_));
  EXPECT_EQ(flow_.app().openDocumentCount(), 0u);
  EXPECT_EQ(flow_.app().quitRequested(), hostQuitsWithItsLastDocument());
  std::vector<std::string> expected = {"download with save copy button clicked: " + P(),
                                       "download with save copy in progress: " + P(), "separate copy saving",
                                       "separate copy saved successfully: " + copyPath, "going to close file"};
  // Word saves the copy under its new name: the document it closes is the
  // copy, which the add-in does not know.
  if (host() == SimHost::Word) expected.push_back("close file - file info not available in cache - " + copyPath);
  expected.push_back((host() == SimHost::Word ? "close file - " : "we close this file to sync event - ") + P());
  expected.push_back("file info removed from cache - " + P());
  expected.push_back("download with save copy completed");
  EXPECT_EQ(flow_.Messages(), expected);
  (void)document;
}

TEST_P(PanelFlow, DownloadWithUnsavedChangesLetsThemGoWhenTheUserDiscardsThem) {
  SimDocument* document = OpenSynced(L"report", kNewVersionOnTheWeb, true);
  ASSERT_NE(document, nullptr);
  flow_.ClearLog();
  flow_.Press(Panel(), ControlId::Download);
  EXPECT_EQ(flow_.Messages(), (std::vector<std::string>{"download button clicked: " + P(),
                                                         "download - save separate copy checkbox not checked: " + P()}));
  EXPECT_FALSE(Record().choices.Has(UserChoice::saveSeparateCopy));

  flow_.CycleAndTick();
  HWND ask = Panel();
  ExpectPanelOnScreen(ask, {ControlId::SaveCopyAndReload, ControlId::DiscardAndReload});
  EXPECT_TRUE(Shows(ask, L"This file has unsaved changes. Do you want to save your changes as a separate copy before "
                         L"reloading this file?"));
  EXPECT_EQ(WindowSizeOf(ask).cy, 175);

  HWND badge = Badge();
  flow_.ClearLog();
  flow_.Press(ask, ControlId::DiscardAndReload);
  ExpectClosedAndForgotten(ask, badge);
  EXPECT_EQ(OnDisk(), kOriginalContent);
  EXPECT_EQ(FilesIn(flow_.host().folder()), std::vector<std::wstring>{name_});
  EXPECT_EQ(flow_.Messages(), (std::vector<std::string>{"download with discard changes button clicked: " + P(),
                                                         "download with discard changes in progress: " + P(),
                                                         "going to close file",
                                                         "we close this file to sync event - " + P(),
                                                         "file info removed from cache - " + P()}));
  RequestFields closed;
  closed.isOpen = false;
  closed.isEditing = true;
  closed.retryModify = true;
  ExpectLastRequest(closed);
}

// The sync app may take several cycles to fetch the new version: the
// user's press, and the choice of the check box with it, hold until it
// reports the download finished.
TEST_P(PanelFlow, ADownloadPressIsRememberedWhileTheSyncAppIsStillDownloading) {
  const wchar_t kSlowDownload[] =
      L"set is_download_present=Downloading\n"
      L"after 4\n"
      L"set is_download_present=Downloaded\n";
  SimDocument* document = OpenSynced(L"report", kSlowDownload, true);
  ASSERT_NE(document, nullptr);
  HWND offer = Panel();
  ExpectPanelOnScreen(offer, {ControlId::SaveSeparateCopy, ControlId::Download});
  flow_.Check(offer, ControlId::SaveSeparateCopy);
  flow_.Press(offer, ControlId::Download);
  ExpectPanelOnScreen(Panel(), {ControlId::Downloading});

  for (int cycle = 0; cycle < 3; ++cycle) {
    flow_.CycleAndTick();
    SCOPED_TRACE("cycle " + std::to_string(cycle + 2) + ", still downloading");
    ExpectPanelOnScreen(Panel(), {ControlId::Downloading});
    EXPECT_EQ(TextOf(Panel(), ControlId::Downloading), L"Downloading...");
    EXPECT_TRUE(Record().choices.Has(UserChoice::downloadRequested));
    EXPECT_TRUE(Record().choices.Has(UserChoice::saveSeparateCopy));
  }

  // Downloaded: the user chose the separate copy already, so the
  // confirmation only says "Reload".
  flow_.CycleAndTick();
  HWND reload = Panel();
  ExpectPanelOnScreen(reload, {ControlId::Reload});
  EXPECT_TRUE(Shows(reload, L"To load the latest version of this file, click \"Reload\"."));
  EXPECT_TRUE(Record().choices.Has(UserChoice::reloadPromptPlain));
  ExpectStillOpenWithTheUsersChanges(document);
}

TEST_P(PanelFlow, AnUntickedBoxIsRememberedWhileTheSyncAppIsStillDownloading) {
  const wchar_t kSlowDownload[] =
      L"set is_download_present=Downloading\n"
      L"after 4\n"
      L"set is_download_present=Downloaded\n";
  SimDocument* document = OpenSynced(L"report", kSlowDownload, true);
  ASSERT_NE(document, nullptr);
  flow_.Press(Panel(), ControlId::Download);
  for (int cycle = 0; cycle < 3; ++cycle) flow_.CycleAndTick();
  ExpectPanelOnScreen(Panel(), {ControlId::Downloading});

  // The user did not keep a copy: the confirmation asks about the changes.
  flow_.CycleAndTick();
  ExpectPanelOnScreen(Panel(), {ControlId::SaveCopyAndReload, ControlId::DiscardAndReload});
  EXPECT_TRUE(Record().choices.Has(UserChoice::reloadPromptAskSave));
  ExpectStillOpenWithTheUsersChanges(document);
}

// --- Conflict ---------------------------------------------------------------

TEST_P(PanelFlow, ConflictResolvedWithContinueClosesTheFileForTheResolveWindow) {
  SimDocument* document = OpenSynced(L"shared", kConflict, false);
  ASSERT_NE(document, nullptr);
  HWND conflict = Panel();
  ExpectPanelOnScreen(conflict, {ControlId::ResolveConflict});
  EXPECT_TRUE(Shows(conflict, L"File conflict occurred"));
  EXPECT_EQ(TextOf(conflict, ControlId::ResolveConflict), L"Resolve conflict");
  EXPECT_EQ(KindShown(), 6);

  flow_.ClearLog();
  flow_.Press(conflict, ControlId::ResolveConflict);
  HWND confirm = Panel();
  ExpectPanelOnScreen(confirm, {ControlId::ContinueToResolve});
  EXPECT_TRUE(Shows(confirm, L"Filewell Sync will close this file and open the Resolve Conflict window."));
  EXPECT_EQ(WindowSizeOf(confirm).cy, 130);
  EXPECT_EQ(flow_.Messages(), (std::vector<std::string>{"resolve conflict button clicked: " + P(),
                                                         "resolve conflict - Continue UI shown: " + P()}));

  HWND badge = Badge();
  flow_.ClearLog();
  flow_.Press(confirm, ControlId::ContinueToResolve);
  ExpectClosedAndForgotten(confirm, badge);
  EXPECT_EQ(OnDisk(), kOriginalContent);
  EXPECT_EQ(flow_.Messages(),
            (std::vector<std::string>{"resolve conflict continue button clicked: " + P(),
                                      "need to open resolve conflict window: " + P(), "going to close file",
                                      "close file - " + P(), "file info removed from cache - " + P(),
                                      "resolve conflict continue completed"}));
  RequestFields closed;
  closed.isOpen = false;
  closed.resolveConflict = true;
  ExpectLastRequest(closed);
}

TEST_P(PanelFlow, ConflictResolvedWithSaveSavesTheDocumentThenClosesIt) {
  SimDocument* document = OpenSynced(L"shared", kConflict, true);
  ASSERT_NE(document, nullptr);
  flow_.ClearLog();
  flow_.Press(Panel(), ControlId::ResolveConflict);
  HWND confirm = Panel();
  ExpectPanelOnScreen(confirm, {ControlId::SaveAndResolve, ControlId::DiscardAndResolve});
  EXPECT_EQ(TextOf(confirm, ControlId::SaveAndResolve), L"Save & Continue");
  EXPECT_EQ(TextOf(confirm, ControlId::DiscardAndResolve), L"Discard & Continue");
  EXPECT_TRUE(Shows(confirm, L"Filewell Sync will close this file and open the Resolve Conflict window. Do you want "
                             L"to save your changes before closing this file?"));
  EXPECT_EQ(flow_.Messages(),
            (std::vector<std::string>{"resolve conflict button clicked: " + P(),
                                      "resolve conflict - ask whether to save changes or not UI shown: " + P()}));

  HWND badge = Badge();
  flow_.ClearLog();
  flow_.Press(confirm, ControlId::SaveAndResolve);
  ExpectClosedAndForgotten(confirm, badge);
  EXPECT_EQ(OnDisk(), kSavedOnce);
  EXPECT_EQ(flow_.Messages(), (std::vector<std::string>{"resolve conflict save button clicked: " + P(),
                                                         "going to close file", "close file - " + P(),
                                                         "file info removed from cache - " + P(),
                                                         "resolve conflict save/discard completed"}));
  RequestFields closed;
  closed.isOpen = false;
  closed.isEditing = true;  // as the last tick found it
  closed.resolveConflict = true;
  ExpectLastRequest(closed);
}

TEST_P(PanelFlow, ConflictResolvedWithDiscardClosesWithoutSaving) {
  SimDocument* document = OpenSynced(L"shared", kConflict, true);
  ASSERT_NE(document, nullptr);
  flow_.Press(Panel(), ControlId::ResolveConflict);
  HWND confirm = Panel();
  ExpectPanelOnScreen(confirm, {ControlId::SaveAndResolve, ControlId::DiscardAndResolve});

  HWND badge = Badge();
  flow_.ClearLog();
  flow_.Press(confirm, ControlId::DiscardAndResolve);
  ExpectClosedAndForgotten(confirm, badge);
  EXPECT_EQ(OnDisk(), kOriginalContent);
  EXPECT_EQ(flow_.Messages(), (std::vector<std::string>{"resolve conflict discard button clicked: " + P(),
                                                         "going to close file",
                                                         "we close this file to sync event - " + P(),
                                                         "file info removed from cache - " + P(),
                                                         "resolve conflict save/discard completed"}));
  RequestFields closed;
  closed.isOpen = false;
  closed.isEditing = true;
  closed.resolveConflict = true;
  ExpectLastRequest(closed);
}

// --- Rename and move --------------------------------------------------------

TEST_P(PanelFlow, RenameFollowedWithReloadClosesTheFile) {
  SimDocument* document = OpenSynced(L"draft", Renamed(Named(L"draft"), Named(L"final")), false);
  ASSERT_NE(document, nullptr);
  HWND renamed = Panel();
  ExpectPanelOnScreen(renamed, {ControlId::FollowRenameOrMove});
  EXPECT_TRUE(Shows(renamed, L"This file has been renamed"));
  EXPECT_TRUE(Shows(renamed, L"Previous file name"));
  EXPECT_EQ(TextOf(renamed, ControlId::PreviousName), Named(L"draft"));
  EXPECT_EQ(TextOf(renamed, ControlId::NewName), Named(L"final"));
  EXPECT_EQ(TextOf(renamed, ControlId::FollowRenameOrMove), L"Reload");
  EXPECT_EQ(WindowSizeOf(renamed).cy, 365);
  EXPECT_EQ(KindShown(), 5);

  flow_.ClearLog();
  flow_.Press(renamed, ControlId::FollowRenameOrMove);
  HWND confirm = Panel();
  ExpectPanelOnScreen(confirm, {ControlId::ContinueToFollow});
  EXPECT_EQ(TextOf(confirm, ControlId::ContinueToFollow), L"Continue");
  EXPECT_TRUE(Shows(confirm, L"Click \"Continue\" to reload and sync the renamed file from the web to your computer."));
  EXPECT_TRUE(Shows(confirm, L"This may take some time..."));
  EXPECT_EQ(flow_.Messages(), (std::vector<std::string>{"rename/move button clicked: " + P(),
                                                         "rename/move - Continue UI shown: " + P()}));

  HWND badge = Badge();
  flow_.ClearLog();
  flow_.Press(confirm, ControlId::ContinueToFollow);
  ExpectClosedAndForgotten(confirm, badge);
  EXPECT_EQ(OnDisk(), kOriginalContent);
  EXPECT_EQ(flow_.Messages(), (std::vector<std::string>{"rename/move continue button clicked: " + P(),
                                                         "retry rename/move: " + P(), "going to close file",
                                                         "close file - " + P(), "file info removed from cache - " + P(),
                                                         "rename/move continue completed"}));
  RequestFields closed;
  closed.isOpen = false;
  closed.retryRenameOrMove = true;
  ExpectLastRequest(closed);
}

TEST_P(PanelFlow, MoveWithUnsavedChangesSavedSavesTheDocumentThenClosesIt) {
  SimDocument* document =
      OpenSynced(L"plan", Moved(L"C:\\Filewell\\Drafts", L"C:\\Filewell\\Projects\\2026", false), true);
  ASSERT_NE(document, nullptr);
  HWND moved = Panel();
  ExpectPanelOnScreen(moved, {ControlId::FollowRenameOrMove});
  EXPECT_TRUE(Shows(moved, L"This file has been moved to a new location"));
  EXPECT_TRUE(Shows(moved, L"From"));
  EXPECT_TRUE(Shows(moved, L"To"));
  EXPECT_EQ(TextOf(moved, ControlId::PreviousName), L"C:\\Filewell\\Drafts");
  EXPECT_EQ(TextOf(moved, ControlId::NewName), L"C:\\Filewell\\Projects\\2026");

  flow_.ClearLog();
  flow_.Press(moved, ControlId::FollowRenameOrMove);
  HWND confirm = Panel();
  ExpectPanelOnScreen(confirm, {ControlId::SaveAndFollow, ControlId::DiscardAndFollow});
  EXPECT_TRUE(Shows(confirm, L"This file has unsaved changes. Do you want to save your changes before reloading and "
                             L"syncing the file from the new location on the web to your computer?"));
  EXPECT_EQ(WindowSizeOf(confirm).cy, 185);
  EXPECT_EQ(flow_.Messages(),
            (std::vector<std::string>{"rename/move button clicked: " + P(),
                                      "rename/move - ask whether to save changes or not UI shown: " + P()}));

  HWND badge = Badge();
  flow_.ClearLog();
  flow_.Press(confirm, ControlId::SaveAndFollow);
  ExpectClosedAndForgotten(confirm, badge);
  EXPECT_EQ(OnDisk(), kSavedOnce);
  EXPECT_EQ(flow_.Messages(), (std::vector<std::string>{"rename/move save button clicked: " + P(),
                                                         "going to close file", "close file - " + P(),
                                                         "file info removed from cache - " + P(),
                                                         "rename/move save/discard completed"}));
  RequestFields closed;
  closed.isOpen = false;
  closed.isEditing = true;
  closed.retryRenameOrMove = true;
  ExpectLastRequest(closed);
}

TEST_P(PanelFlow, RenameWithUnsavedChangesDiscardedClosesWithoutSaving) {
  SimDocument* document = OpenSynced(L"draft", Renamed(Named(L"draft"), Named(L"final")), true);
  ASSERT_NE(document, nullptr);
  flow_.Press(Panel(), ControlId::FollowRenameOrMove);
  HWND confirm = Panel();
  ExpectPanelOnScreen(confirm, {ControlId::SaveAndFollow, ControlId::DiscardAndFollow});
  EXPECT_TRUE(Shows(confirm, L"This file has unsaved changes. Do you want to save your changes before reloading and "
                             L"syncing the renamed file from the web to your computer?"));

  HWND badge = Badge();
  flow_.ClearLog();
  flow_.Press(confirm, ControlId::DiscardAndFollow);
  ExpectClosedAndForgotten(confirm, badge);
  EXPECT_EQ(OnDisk(), kOriginalContent);
  EXPECT_EQ(flow_.Messages(), (std::vector<std::string>{"rename/move discard button clicked: " + P(),
                                                         "going to close file",
                                                         "we close this file to sync event - " + P(),
                                                         "file info removed from cache - " + P(),
                                                         "rename/move save/discard completed"}));
  RequestFields closed;
  closed.isOpen = false;
  closed.isEditing = true;
  closed.retryRenameOrMove = true;
  ExpectLastRequest(closed);
}

TEST_P(PanelFlow, AMoveThatMustCloseFirstAsksTheUserToCloseTheFile) {
  SimDocument* document =
      OpenSynced(L"plan", Moved(L"C:\\Filewell\\Drafts", L"C:\\Filewell\\Projects\\2026", true), false);
  ASSERT_NE(document, nullptr);
  HWND moved = Panel();
  ExpectPanelOnScreen(moved, {});
  EXPECT_TRUE(Shows(moved, L"This file has been moved to a new location"));
  EXPECT_TRUE(Shows(moved, L"Please close this file so that we can sync the file from the new location on the web to "
                           L"your computer."));
  EXPECT_EQ(WindowSizeOf(moved).cy, 305);

  HWND badge = Badge();
  flow_.ClearLog();
  ASSERT_TRUE(flow_.app().CloseDocument(document, SimApplication::SaveChoice::Prompt));
  ExpectClosedAndForgotten(moved, badge);
  EXPECT_EQ(flow_.Messages(),
            (std::vector<std::string>{"close file - " + P(), "file info removed from cache - " + P()}));
  RequestFields closed;
  closed.isOpen = false;
  ExpectLastRequest(closed);
}

// --- Delete -----------------------------------------------------------------

TEST_P(PanelFlow, ADeletedFileAsksTheUserToCloseItAndItsCloseIsReported) {
  SimDocument* document = OpenSynced(L"old", kDeleted, false);
  ASSERT_NE(document, nullptr);
  HWND deleted = Panel();
  ExpectPanelOnScreen(deleted, {});
  EXPECT_TRUE(Shows(deleted, L"This file has been deleted"));
  EXPECT_TRUE(Shows(deleted, L"Please close this file so that we can delete it on your computer. This file will not "
                             L"be available anymore."));
  // The designed 175, plus the 11 its three-line description needs in Arial.
  EXPECT_EQ(WindowSizeOf(deleted).cy, 186);
  EXPECT_EQ(KindShown(), 5);
  EXPECT_TRUE(ContainsInOrder(flow_.Messages(), {"delete: " + P()}));

  HWND badge = Badge();
  flow_.ClearLog();
  ASSERT_TRUE(flow_.app().CloseDocument(document, SimApplication::SaveChoice::Prompt));
  ExpectClosedAndForgotten(deleted, badge);
  EXPECT_EQ(flow_.Messages(),
            (std::vector<std::string>{"close file - " + P(), "file info removed from cache - " + P()}));
  RequestFields closed;
  closed.isOpen = false;
  ExpectLastRequest(closed);
}

// --- Hide -------------------------------------------------------------------

TEST_P(PanelFlow, HideTakesBothWindowsAwayAndTellsTheSyncAppAtOnce) {
  SimDocument* document = OpenSynced(L"notes", kViewedByBo, false);
  ASSERT_NE(document, nullptr);
  HWND viewers = Panel();
  ExpectPanelOnScreen(viewers, {ControlId::Hide});
  EXPECT_EQ(KindShown(), 8);
  HWND badge = Badge();

  flow_.ClearLog();
  flow_.Press(viewers, ControlId::Hide);
  EXPECT_FALSE(IsWindow(viewers));
  EXPECT_FALSE(IsWindow(badge));
  EXPECT_TRUE(Record().choices.Has(UserChoice::uiHide));
  EXPECT_EQ(KindShown(), 0);
  EXPECT_EQ(flow_.Messages(), std::vector<std::string>{"user clicked hide option: " + P()});
  RequestFields hidden;
  hidden.withUiHide = true;
  hidden.uiHide = true;
  ExpectLastRequest(hidden);

  // It stays hidden.
  flow_.CycleAndTick();
  EXPECT_EQ(Panel(), nullptr);
  EXPECT_EQ(Badge(), nullptr);
  EXPECT_EQ(flow_.app().FindDocument(path_), document);
}

// --- The error panels -------------------------------------------------------

TEST_P(PanelFlow, SavingAReadOnlyDocumentShowsWhyAndClosesNothing) {
  name_ = Named(L"locked");
  path_ = flow_.PathOf(name_);
  ASSERT_TRUE(flow_.StartSyncApp(SyncedFileScenario(path_) + Renamed(name_, Named(L"final"))));
  SimDocument* document = flow_.Open(name_, true);
  ASSERT_NE(document, nullptr);
  document->MarkEdited();
  flow_.CycleAndTick();
  flow_.Press(Panel(), ControlId::FollowRenameOrMove);
  HWND confirm = Panel();
  ExpectPanelOnScreen(confirm, {ControlId::SaveAndFollow, ControlId::DiscardAndFollow});

  flow_.ClearLog();
  flow_.Press(confirm, ControlId::SaveAndFollow);
  HWND error = Panel();
  EXPECT_FALSE(IsWindow(confirm));
  ExpectPanelOnScreen(error, {});
  EXPECT_EQ(WindowSizeOf(error).cx, 440);
  EXPECT_EQ(WindowSizeOf(error).cy, 110);
  EXPECT_TRUE(Shows(error, L"You can't make changes to this file, because the file has a read-only permission level."));
  HWND link = ChildOfClass(error, L"SysLink");
  ASSERT_NE(link, nullptr);
  EXPECT_NE(WindowTextOf(link).find(L"/portal/kb/articles/team-folder-roles-and-permissions\">Learn more</a>"),
            std::wstring::npos)
      << Narrow(WindowTextOf(link));
  EXPECT_EQ(flow_.Messages(), (std::vector<std::string>{"rename/move save button clicked: " + P(),
                                                         "read-only file: " + P(),
                                                         "rename/move save/discard completed"}));
  ExpectStillOpenWithTheUsersChanges(document);
  EXPECT_TRUE(Record().choices.Has(UserChoice::skipNextUpdate));
  // Nothing was sent besides the first cycle's request, and the next cycle
  // does not say the user accepted the rename: the file is still open here.
  EXPECT_EQ(flow_.Requests().size(), 1u);
  flow_.Cycle();
  RequestFields stillOpen;
  stillOpen.isEditing = true;
  ExpectLastRequest(stillOpen);

  // The user's own close of the modified file is the user's, not ours: the
  // host asks about the changes, and the user keeps the file open.
  flow_.app().SetPromptAnswer(SimApplication::PromptAnswer::Cancel);
  flow_.ClearLog();
  EXPECT_FALSE(flow_.app().CloseDocument(document, SimApplication::SaveChoice::Prompt));
  ExpectStillOpenWithTheUsersChanges(document);
  if (host() != SimHost::PowerPoint) {  // PowerPoint tells add-ins only once it closes
    EXPECT_EQ(flow_.Messages(),
              std::vector<std::string>{"user tried to close file, but has unsaved changes - " + P()});
  }
}

TEST_P(PanelFlow, ASaveThatFailsShowsTheSaveErrorAndClosesNothing) {
  SimDocument* document = OpenSynced(L"plan", Moved(L"C:\\Filewell\\Drafts", L"C:\\Filewell\\Projects", false), true);
  ASSERT_NE(document, nullptr);
  document->SetFailingSaves(true);
  flow_.Press(Panel(), ControlId::FollowRenameOrMove);
  HWND confirm = Panel();
  ExpectPanelOnScreen(confirm, {ControlId::SaveAndFollow, ControlId::DiscardAndFollow});

  flow_.ClearLog();
  flow_.Press(confirm, ControlId::SaveAndFollow);
  HWND error = Panel();
  EXPECT_FALSE(IsWindow(confirm));
  ExpectPanelOnScreen(error, {});
  EXPECT_EQ(WindowSizeOf(error).cx, 440);
  EXPECT_EQ(WindowSizeOf(error).cy, 80);
  EXPECT_TRUE(Shows(error, L"An error occurred while saving the file. Please ensure you have sufficient privileges and "
                           L"try again."));
  EXPECT_EQ(ChildOfClass(error, L"SysLink"), nullptr);
  const char* notClosed = host() == SimHost::PowerPoint
                              ? "we didn't close file since file has unsaved changes (during SaveChanges)"
                              : "we didn't close file since file has unsaved changes";
  EXPECT_EQ(flow_.Messages(), (std::vector<std::string>{"rename/move save button clicked: " + P(),
                                                         "going to close file", notClosed,
                                                         "rename/move save/discard completed"}));
  ExpectStillOpenWithTheUsersChanges(document);
  EXPECT_TRUE(Record().choices.Has(UserChoice::skipNextUpdate));
  EXPECT_EQ(flow_.Requests().size(), 1u);
  flow_.Cycle();
  RequestFields stillOpen;
  stillOpen.isEditing = true;
  ExpectLastRequest(stillOpen);
}

TEST_P(PanelFlow, AConflictSaveThatFailsKeepsTheDocumentOpenAndTheConflictUnresolved) {
  SimDocument* document = OpenSynced(L"shared", kConflict, true);
  ASSERT_NE(document, nullptr);
  document->SetFailingSaves(true);
  flow_.Press(Panel(), ControlId::ResolveConflict);
  HWND confirm = Panel();
  ExpectPanelOnScreen(confirm, {ControlId::SaveAndResolve, ControlId::DiscardAndResolve});

  flow_.ClearLog();
  flow_.Press(confirm, ControlId::SaveAndResolve);
  const char* notClosed = host() == SimHost::PowerPoint
                              ? "we didn't close file since file has unsaved changes (during SaveChanges)"
                              : "we didn't close file since file has unsaved changes";
  EXPECT_EQ(flow_.Messages(), (std::vector<std::string>{"resolve conflict save button clicked: " + P(),
                                                         "going to close file", notClosed,
                                                         "resolve conflict save/discard completed"}));
  ExpectStillOpenWithTheUsersChanges(document);
  EXPECT_FALSE(Record().choices.Has(UserChoice::resolveConflict));
  HWND error = Panel();
  ExpectPanelOnScreen(error, {});
  EXPECT_TRUE(Shows(error, L"An error occurred while saving the file. Please ensure you have sufficient privileges "
                           L"and try again."));

  // The sync app is not told to resolve a conflict of a file that is still
  // open with unsaved changes; the user is asked again.
  flow_.CycleAndTick();
  RequestFields stillOpen;
  stillOpen.isEditing = true;
  ExpectLastRequest(stillOpen);
  ExpectPanelOnScreen(Panel(), {ControlId::SaveAndResolve, ControlId::DiscardAndResolve});
  ExpectStillOpenWithTheUsersChanges(document);
}

TEST_P(PanelFlow, ASeparateCopyThatCannotBeMadeShowsTheSaveErrorAndClosesNothing) {
  SimDocument* document = OpenSynced(L"report", kNewVersionOnTheWeb, true);
  ASSERT_NE(document, nullptr);
  document->SetFailingSaveCopies(true);
  flow_.Press(Panel(), ControlId::Download);
  flow_.CycleAndTick();
  HWND ask = Panel();
  ExpectPanelOnScreen(ask, {ControlId::SaveCopyAndReload, ControlId::DiscardAndReload});

  flow_.ClearLog();
  flow_.Press(ask, ControlId::SaveCopyAndReload);
  HWND error = Panel();
  EXPECT_FALSE(IsWindow(ask));
  ExpectPanelOnScreen(error, {});
  EXPECT_EQ(WindowSizeOf(error).cy, 80);
  EXPECT_TRUE(Shows(error, L"An error occurred while saving the file. Please ensure you have sufficient privileges and "
                           L"try again."));
  const std::vector<std::string> messages = flow_.Messages();
  ASSERT_EQ(messages.size(), 4u);
  EXPECT_EQ(messages[0], "download with save copy button clicked: " + P());
  EXPECT_EQ(messages[1], "download with save copy in progress: " + P());
  EXPECT_EQ(messages[2], "separate copy saving");
  EXPECT_EQ(messages[3].rfind("couldn't save separate copy: " + Narrow(flow_.host().folder()) + "\\report (", 0), 0u)
      << messages[3];
  ExpectStillOpenWithTheUsersChanges(document);
  EXPECT_EQ(FilesIn(flow_.host().folder()), std::vector<std::wstring>{name_});
  EXPECT_FALSE(Record().choices.Has(UserChoice::retryModify));
  EXPECT_TRUE(Record().choices.Has(UserChoice::skipNextUpdate));
  EXPECT_EQ(flow_.Requests().size(), 2u);
}

// --- The tick after an error panel ------------------------------------------

TEST_P(PanelFlow, TheTickAfterTheSaveErrorLeavesItOnceAndTheNextAsksAgain) {
  SimDocument* document = OpenSynced(L"plan", Moved(L"C:\\Filewell\\Drafts", L"C:\\Filewell\\Projects", false), true);
  ASSERT_NE(document, nullptr);
  document->SetFailingSaves(true);
  flow_.Press(Panel(), ControlId::FollowRenameOrMove);
  flow_.Press(Panel(), ControlId::SaveAndFollow);
  HWND error = Panel();
  ASSERT_EQ(WindowSizeOf(error).cy, 80);

  flow_.CycleAndTick();
  EXPECT_EQ(Panel(), error);
  ExpectPanelOnScreen(error, {});
  EXPECT_FALSE(Record().choices.Has(UserChoice::skipNextUpdate));

  flow_.CycleAndTick();
  HWND again = Panel();
  EXPECT_FALSE(IsWindow(error));
  ExpectPanelOnScreen(again, {ControlId::SaveAndFollow, ControlId::DiscardAndFollow});
  ExpectStillOpenWithTheUsersChanges(document);
}

TEST_P(PanelFlow, TheTickAfterTheCopyErrorLeavesItOnceAndTheNextAsksAgain) {
  SimDocument* document = OpenSynced(L"report", kNewVersionOnTheWeb, true);
  ASSERT_NE(document, nullptr);
  document->SetFailingSaveCopies(true);
  flow_.Press(Panel(), ControlId::Download);
  flow_.CycleAndTick();
  flow_.Press(Panel(), ControlId::SaveCopyAndReload);
  HWND error = Panel();
  ASSERT_EQ(WindowSizeOf(error).cy, 80);

  flow_.CycleAndTick();
  EXPECT_EQ(Panel(), error);
  ExpectPanelOnScreen(error, {});

  flow_.CycleAndTick();
  HWND again = Panel();
  EXPECT_FALSE(IsWindow(error));
  ExpectPanelOnScreen(again, {ControlId::SaveCopyAndReload, ControlId::DiscardAndReload});
  ExpectStillOpenWithTheUsersChanges(document);
}

// --- A close or save that does not happen ----------------------------------
// The user is never left with nothing: within one tick the badge is back
// with the panel the state calls for, and the action can be tried again.

TEST_P(PanelFlow, AReloadTheHostRefusesBringsTheBadgeAndTheReloadConfirmationBack) {
  SimDocument* document = OpenSynced(L"report", kNewVersionOnTheWeb, false);
  ASSERT_NE(document, nullptr);
  flow_.Press(Panel(), ControlId::Download);
  flow_.CycleAndTick();
  HWND reload = Panel();
  ExpectPanelOnScreen(reload, {ControlId::Reload});

  document->SetRefusingClose(true);
  flow_.Press(reload, ControlId::Reload);
  EXPECT_EQ(flow_.app().FindDocument(path_), document);
  EXPECT_TRUE(TheFileStatusCache().Contains(path_));
  flow_.Tick();
  ExpectPanelOnScreen(Panel(), {ControlId::Reload});
  EXPECT_EQ(KindShown(), 7);
  EXPECT_FALSE(Record().choices.Has(UserChoice::retryModify));

  // Tried again, the close happens.
  document->SetRefusingClose(false);
  HWND badge = Badge();
  HWND again = Panel();
  flow_.Press(again, ControlId::Reload);
  ExpectClosedAndForgotten(again, badge);
  RequestFields closed;
  closed.isOpen = false;
  closed.retryModify = true;
  ExpectLastRequest(closed);
}

TEST_P(PanelFlow, AReloadRefusedWhileTheUserTypedAsksAboutTheChanges) {
  SimDocument* document = OpenSynced(L"report", kNewVersionOnTheWeb, false);
  ASSERT_NE(document, nullptr);
  flow_.Press(Panel(), ControlId::Download);
  flow_.CycleAndTick();
  document->SetRefusingClose(true);
  flow_.Press(Panel(), ControlId::Reload);
  document->MarkEdited();
  flow_.Tick();
  ExpectPanelOnScreen(Panel(), {ControlId::SaveCopyAndReload, ControlId::DiscardAndReload});
  ExpectStillOpenWithTheUsersChanges(document);
}

TEST_P(PanelFlow, ASeparateCopyThatFailsForAUserWhoTickedTheBoxCanBeTriedAgain) {
  SimDocument* document = OpenSynced(L"report", kNewVersionOnTheWeb, true);
  ASSERT_NE(document, nullptr);
  flow_.Check(Panel(), ControlId::SaveSeparateCopy);
  flow_.Press(Panel(), ControlId::Download);
  flow_.CycleAndTick();
  flow_.Press(Panel(), ControlId::Reload);
  HWND ask = Panel();
  ExpectPanelOnScreen(ask, {ControlId::SaveCopyAndReload, ControlId::DiscardAndReload});
  document->SetFailingSaveCopies(true);
  flow_.Press(ask, ControlId::SaveCopyAndReload);
  HWND error = Panel();
  ExpectPanelOnScreen(error, {});
  EXPECT_TRUE(Shows(error, L"An error occurred while saving the file. Please ensure you have sufficient privileges and "
                           L"try again."));

  flow_.CycleAndTick();  // the error stays for one tick
  EXPECT_EQ(Panel(), error);
  flow_.CycleAndTick();
  EXPECT_FALSE(IsWindow(error));
  ExpectPanelOnScreen(Panel(), {ControlId::Reload});
  document->SetFailingSaveCopies(false);
  flow_.Press(Panel(), ControlId::Reload);
  ExpectPanelOnScreen(Panel(), {ControlId::SaveCopyAndReload, ControlId::DiscardAndReload});
  ExpectStillOpenWithTheUsersChanges(document);
}

// The save worked; only the close was refused. Nothing says the save
// failed: the confirmation comes back, now without the save question.
TEST_P(PanelFlow, AConflictSavedButNotClosedOffersContinueAgainWithoutASaveError) {
  SimDocument* document = OpenSynced(L"shared", kConflict, true);
  ASSERT_NE(document, nullptr);
  flow_.Press(Panel(), ControlId::ResolveConflict);
  document->SetRefusingClose(true);
  flow_.Press(Panel(), ControlId::SaveAndResolve);
  EXPECT_EQ(OnDisk(), kSavedOnce);
  EXPECT_EQ(flow_.app().FindDocument(path_), document);
  EXPECT_FALSE(Shows(Panel(), L"An error occurred while saving the file. Please ensure you have sufficient privileges "
                              L"and try again."));
  flow_.Tick();
  ExpectPanelOnScreen(Panel(), {ControlId::ContinueToResolve});
  EXPECT_FALSE(Record().choices.Has(UserChoice::resolveConflict));

  document->SetRefusingClose(false);
  HWND badge = Badge();
  HWND again = Panel();
  flow_.Press(again, ControlId::ContinueToResolve);
  ExpectClosedAndForgotten(again, badge);
}

TEST_P(PanelFlow, ARenameSavedButNotClosedOffersContinueAgainWithoutASaveError) {
  SimDocument* document = OpenSynced(L"draft", Renamed(Named(L"draft"), Named(L"final")), true);
  ASSERT_NE(document, nullptr);
  flow_.Press(Panel(), ControlId::FollowRenameOrMove);
  document->SetRefusingClose(true);
  flow_.Press(Panel(), ControlId::SaveAndFollow);
  EXPECT_EQ(OnDisk(), kSavedOnce);
  EXPECT_EQ(flow_.app().FindDocument(path_), document);
  EXPECT_FALSE(Shows(Panel(), L"An error occurred while saving the file. Please ensure you have sufficient privileges "
                              L"and try again."));
  flow_.Tick();
  ExpectPanelOnScreen(Panel(), {ControlId::ContinueToFollow});
  EXPECT_FALSE(Record().choices.Has(UserChoice::retryRenameOrMove));

  document->SetRefusingClose(false);
  HWND badge = Badge();
  HWND again = Panel();
  flow_.Press(again, ControlId::ContinueToFollow);
  ExpectClosedAndForgotten(again, badge);
}

TEST_P(PanelFlow, ARenameDiscardTheHostRefusesAsksAgainWithoutASaveError) {
  SimDocument* document = OpenSynced(L"draft", Renamed(Named(L"draft"), Named(L"final")), true);
  ASSERT_NE(document, nullptr);
  flow_.Press(Panel(), ControlId::FollowRenameOrMove);
  document->SetRefusingClose(true);
  flow_.Press(Panel(), ControlId::DiscardAndFollow);
  EXPECT_FALSE(Shows(Panel(), L"An error occurred while saving the file. Please ensure you have sufficient privileges "
                              L"and try again."));
  flow_.Tick();
  ExpectPanelOnScreen(Panel(), {ControlId::SaveAndFollow, ControlId::DiscardAndFollow});
  ExpectStillOpenWithTheUsersChanges(document);
}

// The actions that leave their confirmation up while they close: after a
// refused close it is still there, and pressing again closes.
TEST_P(PanelFlow, ACloseTheHostRefusesLeavesTheConfirmationToTryAgain) {
  const struct {
    const wchar_t* base;
    std::wstring story;
    bool edited;
    ControlId ask;  // the button that brings up the confirmation
    std::vector<ControlId> buttons;
    ControlId action;
  } cases[] = {
      {L"report",
       kNewVersionOnTheWeb,
       true,
       ControlId::Download,
       {ControlId::SaveCopyAndReload, ControlId::DiscardAndReload},
       ControlId::DiscardAndReload},
      {L"shared",
       kConflict,
       false,
       ControlId::ResolveConflict,
       {ControlId::ContinueToResolve},
       ControlId::ContinueToResolve},
      {L"shared",
       kConflict,
       true,
       ControlId::ResolveConflict,
       {ControlId::SaveAndResolve, ControlId::DiscardAndResolve},
       ControlId::DiscardAndResolve},
      {L"draft",
       Renamed(Named(L"draft"), Named(L"final")),
       false,
       ControlId::FollowRenameOrMove,
       {ControlId::ContinueToFollow},
       ControlId::ContinueToFollow},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(static_cast<int>(c.action));
    SimDocument* document = OpenSynced(c.base, c.story, c.edited);
    ASSERT_NE(document, nullptr);
    flow_.Press(Panel(), c.ask);
    if (c.action == ControlId::DiscardAndReload) {  // the download must finish before the reload
      flow_.CycleAndTick();
      ExpectPanelOnScreen(Panel(), {ControlId::SaveCopyAndReload, ControlId::DiscardAndReload});
    }
    ExpectPanelOnScreen(Panel(), c.buttons);
    document->SetRefusingClose(true);
    flow_.Press(Panel(), c.action);
    EXPECT_EQ(flow_.app().FindDocument(path_), document);
    flow_.Tick();
    ExpectPanelOnScreen(Panel(), c.buttons);
    document->SetRefusingClose(false);
    HWND badge = Badge();
    HWND again = Panel();
    flow_.Press(again, c.action);
    ExpectClosedAndForgotten(again, badge);
  }
}

// --- The confirmations follow the unsaved state -----------------------------

TEST_P(PanelFlow, TheConflictConfirmationAsksAboutChangesOnceThereAreSome) {
  SimDocument* document = OpenSynced(L"shared", kConflict, false);
  ASSERT_NE(document, nullptr);
  flow_.Press(Panel(), ControlId::ResolveConflict);
  ExpectPanelOnScreen(Panel(), {ControlId::ContinueToResolve});

  document->MarkEdited();
  flow_.Tick();
  ExpectPanelOnScreen(Panel(), {ControlId::SaveAndResolve, ControlId::DiscardAndResolve});
  EXPECT_TRUE(Record().choices.Has(UserChoice::conflictAskShown));

  ASSERT_TRUE(document->Save());
  flow_.Tick();
  ExpectPanelOnScreen(Panel(), {ControlId::ContinueToResolve});
  EXPECT_FALSE(Record().choices.Has(UserChoice::conflictAskShown));
}

// "Continue" was offered while there were no unsaved changes. Changes typed
// before the next tick would otherwise meet the host's save question only
// after its before-close event had told the sync app the file was going:
// the user is asked about them instead, and nothing closes.
TEST_P(PanelFlow, ContinueOnAConflictAsksAboutChangesTypedSinceItWasOffered) {
  SimDocument* document = OpenSynced(L"shared", kConflict, false);
  ASSERT_NE(document, nullptr);
  flow_.Press(Panel(), ControlId::ResolveConflict);
  HWND confirm = Panel();
  ExpectPanelOnScreen(confirm, {ControlId::ContinueToResolve});
  const size_t requestsBefore = flow_.Requests().size();

  document->MarkEdited();
  flow_.ClearLog();
  flow_.Press(confirm, ControlId::ContinueToResolve);
  ExpectPanelOnScreen(Panel(), {ControlId::SaveAndResolve, ControlId::DiscardAndResolve});
  EXPECT_TRUE(Record().choices.Has(UserChoice::conflictAskShown));
  EXPECT_FALSE(Record().choices.Has(UserChoice::resolveConflict));
  EXPECT_EQ(flow_.Messages(), std::vector<std::string>{"resolve conflict continue button clicked: " + P()});
  ExpectStillOpenWithTheUsersChanges(document);
  EXPECT_EQ(flow_.Requests().size(), requestsBefore);
}

TEST_P(PanelFlow, ContinueOnARenameAsksAboutChangesTypedSinceItWasOffered) {
  SimDocument* document = OpenSynced(L"draft", Renamed(Named(L"draft"), Named(L"final")), false);
  ASSERT_NE(document, nullptr);
  flow_.Press(Panel(), ControlId::FollowRenameOrMove);
  HWND confirm = Panel();
  ExpectPanelOnScreen(confirm, {ControlId::ContinueToFollow});
  const size_t requestsBefore = flow_.Requests().size();

  document->MarkEdited();
  flow_.ClearLog();
  flow_.Press(confirm, ControlId::ContinueToFollow);
  ExpectPanelOnScreen(Panel(), {ControlId::SaveAndFollow, ControlId::DiscardAndFollow});
  EXPECT_TRUE(Record().choices.Has(UserChoice::renameMoveAskShown));
  EXPECT_FALSE(Record().choices.Has(UserChoice::retryRenameOrMove));
  EXPECT_EQ(flow_.Messages(), std::vector<std::string>{"rename/move continue button clicked: " + P()});
  ExpectStillOpenWithTheUsersChanges(document);
  EXPECT_EQ(flow_.Requests().size(), requestsBefore);
}

TEST_P(PanelFlow, TheRenameConfirmationAsksAboutChangesOnceThereAreSome) {
  SimDocument* document = OpenSynced(L"draft", Renamed(Named(L"draft"), Named(L"final")), false);
  ASSERT_NE(document, nullptr);
  flow_.Press(Panel(), ControlId::FollowRenameOrMove);
  ExpectPanelOnScreen(Panel(), {ControlId::ContinueToFollow});

  document->MarkEdited();
  flow_.Tick();
  ExpectPanelOnScreen(Panel(), {ControlId::SaveAndFollow, ControlId::DiscardAndFollow});
  EXPECT_TRUE(Record().choices.Has(UserChoice::renameMoveAskShown));

  ASSERT_TRUE(document->Save());
  flow_.Tick();
  ExpectPanelOnScreen(Panel(), {ControlId::ContinueToFollow});
  EXPECT_FALSE(Record().choices.Has(UserChoice::renameMoveAskShown));
}

TEST_P(PanelFlow, TheReloadConfirmationAsksAboutChangesOnceThereAreSome) {
  SimDocument* document = OpenSynced(L"report", kNewVersionOnTheWeb, false);
  ASSERT_NE(document, nullptr);
  flow_.Press(Panel(), ControlId::Download);
  flow_.CycleAndTick();
  ExpectPanelOnScreen(Panel(), {ControlId::Reload});

  document->MarkEdited();
  flow_.Tick();
  ExpectPanelOnScreen(Panel(), {ControlId::SaveCopyAndReload, ControlId::DiscardAndReload});
  EXPECT_TRUE(Record().choices.Has(UserChoice::reloadPromptAskSave));

  ASSERT_TRUE(document->Save());
  flow_.Tick();
  ExpectPanelOnScreen(Panel(), {ControlId::Reload});
  EXPECT_TRUE(Record().choices.Has(UserChoice::reloadPromptPlain));
}

INSTANTIATE_TEST_SUITE_P(EveryHost, PanelFlow, testing::Values(SimHost::Word, SimHost::Excel, SimHost::PowerPoint),
                         HostParamName);
}  // namespace
