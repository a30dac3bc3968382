// Any program on the desktop can send a panel WM_COMMAND or WM_NOTIFY. A
// panel acts only on a press from its own visible button with that id, and
// opens a link only from its own SysLink, for one of the add-in's help
// addresses: a forged message changes no record, closes no document,
// sends nothing to the sync app and opens nothing.
#include <windows.h>
#include <commctrl.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "overlay/layouts/help_links.h"
#include "overlay/windows/control_colours.h"
#include "overlay/windows/link_opener.h"
#include "tests/windows/sync_sim_process.h"
#include "tests/windows/tick_test_support.h"
#include "tests/windows/wine_test_support.h"

namespace {
constexpr int kHide = static_cast<int>(ControlId::Hide);
constexpr int kDiscardAndReload = static_cast<int>(ControlId::DiscardAndReload);

const std::wstring kCollaborationArticle =
    L"https://help.qelvo.com/portal/kb/filewell/sync/filewell-sync/articles/"
    L"track-live-user-activity-in-ms-office-files-using-filewell-collaboration-widget";

// What the add-in would have opened in the browser.
std::vector<std::wstring>& Opened() {
  static std::vector<std::wstring> opened;
  return opened;
}
void RecordOpened(const std::wstring& address) { Opened().push_back(address); }

std::vector<std::string> WarningMessages() {
  std::vector<std::string> messages;
  for (const LogLine& line : InProcessHost::Log()) {
    if (line.level == "W") messages.push_back(line.message);
  }
  return messages;
}

// A window that is not the panel's: a top-level "BUTTON" with the hide
// button's id, as another program might make.
struct ForeignButton {
  ForeignButton()
      : window(CreateWindowExW(0, L"BUTTON", L"Hide", WS_POPUP | WS_VISIBLE, 0, 0, 40, 20, nullptr,
                               nullptr, nullptr, nullptr)) {
    SetWindowLongPtrW(window, GWLP_ID, kHide);
  }
  ~ForeignButton() { DestroyWindow(window); }
  HWND window;
};

// The active users panel of one viewer, open over the simulated Word, with
// the simulated sync app recording any request.
class PanelMessages : public testing::Test {
 protected:
  void SetUp() override {
    AnswerFields answer = QuietAnswer();
    AddViewers(answer, L"u-ann", L"Ann Lee");
    document_ = host_.OpenAnswered(L"viewed", answer);
    path_ = document_->fullName();
    Tick();
    panel_ = PanelOf(path_);
    ASSERT_NE(panel_, nullptr);
    ASSERT_TRUE(IsWindowVisible(panel_));
    hide_ = ChildWithId(panel_, ControlId::Hide);
    ASSERT_NE(hide_, nullptr);
    record_ = FreshTempPath(L"syncsim-forged-requests.txt");
    ASSERT_TRUE(syncSim_.Start(L"--record " + Quoted(record_) + L" --run-ms 60000"));
    Opened().clear();
    previousOpener_ = SetHelpLinkOpener(RecordOpened);
    host_.ClearLog();
  }
  void TearDown() override {
    SetHelpLinkOpener(previousOpener_);
    syncSim_.Stop();
  }

  LRESULT Command(int id, HWND from) {
    return SendMessageW(panel_, WM_COMMAND, MAKEWPARAM(id, BN_CLICKED), reinterpret_cast<LPARAM>(from));
  }

  // Nothing happened: both windows stand, the record is as it was, the
  // document is open and the sync app received nothing.
  void ExpectNothingDone() {
    EXPECT_TRUE(IsWindow(panel_));
    EXPECT_EQ(PanelOf(path_), panel_);
    const FileStatusRecord record = host_.Record(path_);
    EXPECT_FALSE(record.choices.Has(UserChoice::uiHide));
    EXPECT_FALSE(record.choices.Has(UserChoice::retryModify));
    EXPECT_FALSE(record.choices.Has(UserChoice::downloadRequested));
    EXPECT_EQ(host_.app().openDocumentCount(), 1u);
    syncSim_.Stop();
    EXPECT_EQ(ReadFileBytes(record_), "");
    EXPECT_EQ(InfoMessages(), std::vector<std::string>{});
  }

  HWND Link() const { return FindWindowExW(panel_, nullptr, L"SysLink", nullptr); }

  // NM_CLICK as a SysLink sends it, on its first link.
  static NMLINK LinkClick(HWND from, UINT_PTR id, const std::wstring& address) {
    NMLINK click{};
    click.hdr.hwndFrom = from;
    click.hdr.idFrom = id;
    click.hdr.code = NM_CLICK;
    click.item.iLink = 0;
    lstrcpynW(click.item.szUrl, address.c_str(), L_MAX_URL_LENGTH);
    return click;
  }
  LRESULT Notify(NMLINK& click) {
    return SendMessageW(panel_, WM_NOTIFY, click.hdr.idFrom, reinterpret_cast<LPARAM>(&click));
  }

  OverlayHost host_{SimHost::Word};
  SimDocument* document_ = nullptr;
  std::wstring path_;
  HWND panel_ = nullptr;
  HWND hide_ = nullptr;
  SyncSimProcess syncSim_;
  std::wstring record_;
  HelpLinkOpener previousOpener_ = nullptr;
};

// --- Button presses ---

TEST_F(PanelMessages, APressFromThePanelsOwnVisibleButtonActs) {
  Command(kHide, hide_);
  EXPECT_FALSE(IsWindow(panel_));
  EXPECT_TRUE(host_.Record(path_).choices.Has(UserChoice::uiHide));
  syncSim_.Stop();
  EXPECT_NE(ReadFileBytes(record_).find("\"uiHide\":true"), std::string::npos);
}

TEST_F(PanelMessages, ACommandWithoutAControlDoesNothing) {
  Command(kHide, nullptr);
  ExpectNothingDone();
  EXPECT_EQ(WarningMessages(),
            std::vector<std::string>{"ignored a command that did not come from the panel's own button: id=3014"});
}

TEST_F(PanelMessages, ACommandFromAnotherProgramsWindowWithTheSameIdDoesNothing) {
  const ForeignButton foreign;
  ASSERT_EQ(GetDlgCtrlID(foreign.window), kHide);
  Command(kHide, foreign.window);
  ExpectNothingDone();
}

TEST_F(PanelMessages, ACommandNamingTheOfficeWindowDoesNothing) {
  Command(kHide, host_.mainWindow());
  ExpectNothingDone();
}

TEST_F(PanelMessages, ACommandFromAHiddenButtonDoesNothing) {
  ShowWindow(hide_, SW_HIDE);
  Command(kHide, hide_);
  ExpectNothingDone();
}

TEST_F(PanelMessages, ACommandFromAButtonOfAHiddenPanelDoesNothing) {
  ShowWindow(panel_, SW_HIDE);
  Command(kHide, hide_);
  ExpectNothingDone();
}

TEST_F(PanelMessages, ACommandWhoseIdIsNotTheButtonsDoesNothing) {
  // The hide button's handle with the id of "discard changes and reload",
  // which this panel does not even have: the user's edits would be lost.
  Command(kDiscardAndReload, hide_);
  ExpectNothingDone();
  EXPECT_EQ(WarningMessages(),
            std::vector<std::string>{"ignored a command that did not come from the panel's own button: id=3005"});
}

TEST_F(PanelMessages, ACommandFromAnotherChildOfThePanelDoesNothing) {
  Command(kHide, Link());
  ExpectNothingDone();
}

TEST_F(PanelMessages, AForgedDiscardAndReloadClosesNoDocument) {
  document_->MarkEdited();
  Command(kDiscardAndReload, nullptr);
  ExpectNothingDone();
  EXPECT_FALSE(document_->saved());
}

// --- Link clicks ---

TEST_F(PanelMessages, AClickOnThePanelsOwnLinkOpensItsHelpArticle) {
  const HWND link = Link();
  ASSERT_NE(link, nullptr);
  NMLINK click = LinkClick(link, static_cast<UINT_PTR>(GetDlgCtrlID(link)), kCollaborationArticle);
  Notify(click);
  EXPECT_EQ(Opened(), std::vector<std::wstring>{kCollaborationArticle});
}

TEST_F(PanelMessages, AMouseClickOnTheLinkItselfOpensItsHelpArticle) {
  const HWND link = Link();
  ASSERT_NE(link, nullptr);
  SendMessageW(link, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(10, 8));
  SendMessageW(link, WM_LBUTTONUP, 0, MAKELPARAM(10, 8));
  EXPECT_EQ(Opened(), std::vector<std::wstring>{kCollaborationArticle});
}

TEST_F(PanelMessages, AClickNamingAnotherWindowOpensNothing) {
  const ForeignButton foreign;
  NMLINK click = LinkClick(foreign.window, kHide, kCollaborationArticle);
  Notify(click);
  NMLINK fromOffice = LinkClick(host_.mainWindow(), 0, kCollaborationArticle);
  Notify(fromOffice);
  NMLINK fromNobody = LinkClick(nullptr, 0, kCollaborationArticle);
  Notify(fromNobody);
  EXPECT_EQ(Opened(), std::vector<std::wstring>{});
  ExpectNothingDone();
  EXPECT_EQ(WarningMessages(),
            std::vector<std::string>(3, "ignored a link click that did not come from the panel's own link"));
}

TEST_F(PanelMessages, AClickFromAnotherChildOfThePanelOpensNothing) {
  NMLINK click = LinkClick(hide_, kHide, kCollaborationArticle);
  Notify(click);
  EXPECT_EQ(Opened(), std::vector<std::wstring>{});
}

TEST_F(PanelMessages, AClickFromTheLinkWithAnotherIdOpensNothing) {
  NMLINK click = LinkClick(Link(), 7, kCollaborationArticle);
  Notify(click);
  EXPECT_EQ(Opened(), std::vector<std::wstring>{});
}

TEST_F(PanelMessages, AClickFromTheOwnLinkForAForeignAddressOpensNothing) {
  const HWND link = Link();
  for (const wchar_t* address : {L"https://evil.example/", L"C:\\Windows\\System32\\calc.exe",
                                 L"https://help.qelvo.com.evil.example/portal/kb/articles/team-folder-roles-and-permissions"}) {
    NMLINK click = LinkClick(link, static_cast<UINT_PTR>(GetDlgCtrlID(link)), address);
    Notify(click);
  }
  EXPECT_EQ(Opened(), std::vector<std::wstring>{});
  ExpectNothingDone();
  EXPECT_EQ(WarningMessages(),
            std::vector<std::string>(
                3, "ignored a link click for an address that is not one of the add-in's help articles"));
}

TEST_F(PanelMessages, AClickWhoseAddressFillsTheWholeBufferOpensNothing) {
  const HWND link = Link();
  NMLINK click = LinkClick(link, static_cast<UINT_PTR>(GetDlgCtrlID(link)), kCollaborationArticle);
  // No NUL anywhere in the address.
  for (wchar_t& c : click.item.szUrl) c = L'x';
  Notify(click);
  EXPECT_EQ(Opened(), std::vector<std::wstring>{});
}

// A genuine click's record, sent from another thread: the pointer would
// mean nothing if it came from another process, so it is not read.
struct CrossThreadNotify {
  HWND panel;
  NMLINK* click;
};
DWORD WINAPI SendFromAnotherThread(void* parameter) {
  const auto* send = static_cast<CrossThreadNotify*>(parameter);
  SendMessageW(send->panel, WM_NOTIFY, send->click->hdr.idFrom, reinterpret_cast<LPARAM>(send->click));
  return 0;
}

TEST_F(PanelMessages, AClickSentFromAnotherThreadOpensNothing) {
  const HWND link = Link();
  NMLINK click = LinkClick(link, static_cast<UINT_PTR>(GetDlgCtrlID(link)), kCollaborationArticle);
  CrossThreadNotify send{panel_, &click};
  HANDLE thread = CreateThread(nullptr, 0, SendFromAnotherThread, &send, 0, nullptr);
  ASSERT_NE(thread, nullptr);
  // The panel's thread handles the sent message while it waits here.
  while (MsgWaitForMultipleObjects(1, &thread, FALSE, 5000, QS_ALLINPUT) == WAIT_OBJECT_0 + 1) PumpMessages();
  EXPECT_EQ(WaitForSingleObject(thread, 0), WAIT_OBJECT_0);
  CloseHandle(thread);
  EXPECT_EQ(Opened(), std::vector<std::wstring>{});
}

// --- Drawing requests ---

// A drawing request for an owner-drawn button, as Windows sends it.
struct CrossThreadDraw {
  HWND panel;
  DRAWITEMSTRUCT* item;
};
DWORD WINAPI DrawFromAnotherThread(void* parameter) {
  const auto* send = static_cast<CrossThreadDraw*>(parameter);
  SendMessageW(send->panel, WM_DRAWITEM, send->item->CtlID, reinterpret_cast<LPARAM>(send->item));
  return 0;
}

// A child of the panel with the hide button's id and look and no region
// yet: a drawing request that is carried out gives it its rounded corners.
class DrawingRequests : public PanelMessages {
 protected:
  void SetUp() override {
    PanelMessages::SetUp();
    probe_ = CreateWindowExW(0, L"STATIC", L"probe", WS_CHILD | WS_VISIBLE, 0, 0, 40, 20, panel_,
                             reinterpret_cast<HMENU>(static_cast<INT_PTR>(kHide)), nullptr, nullptr);
    ASSERT_NE(probe_, nullptr);
    RememberControlLook(probe_, ColourRole::Plain, ButtonLook::Quiet, ButtonShape::Rounded);
    dc_ = GetDC(probe_);
    item_.CtlType = ODT_BUTTON;
    item_.CtlID = kHide;
    item_.hwndItem = probe_;
    item_.hDC = dc_;
    item_.rcItem = RECT{0, 0, 40, 20};
  }
  void TearDown() override {
    ReleaseDC(probe_, dc_);
    PanelMessages::TearDown();
  }
  bool ProbeHasRegion() const {
    HRGN region = CreateRectRgn(0, 0, 0, 0);
    const int kind = GetWindowRgn(probe_, region);
    DeleteObject(region);
    return kind != ERROR;
  }

  HWND probe_ = nullptr;
  HDC dc_ = nullptr;
  DRAWITEMSTRUCT item_{};
};

TEST_F(DrawingRequests, ARequestFromThisThreadIsDrawn) {
  ASSERT_FALSE(ProbeHasRegion());
  SendMessageW(panel_, WM_DRAWITEM, kHide, reinterpret_cast<LPARAM>(&item_));
  EXPECT_TRUE(ProbeHasRegion());
}

TEST_F(DrawingRequests, ARequestSentFromAnotherThreadIsNotRead) {
  ASSERT_FALSE(ProbeHasRegion());
  CrossThreadDraw send{panel_, &item_};
  HANDLE thread = CreateThread(nullptr, 0, DrawFromAnotherThread, &send, 0, nullptr);
  ASSERT_NE(thread, nullptr);
  while (MsgWaitForMultipleObjects(1, &thread, FALSE, 5000, QS_ALLINPUT) == WAIT_OBJECT_0 + 1) PumpMessages();
  EXPECT_EQ(WaitForSingleObject(thread, 0), WAIT_OBJECT_0);
  CloseHandle(thread);
  EXPECT_FALSE(ProbeHasRegion());
}

TEST_F(DrawingRequests, ARequestWithoutItsRecordIsNotRead) {
  EXPECT_EQ(SendMessageW(panel_, WM_DRAWITEM, kHide, 0), FALSE);
  EXPECT_FALSE(ProbeHasRegion());
}
}  // namespace
