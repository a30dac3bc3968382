// Where the keyboard goes when the tick takes overlay windows down. Word
// gives every document its own top-level window, and activating one of them
// brings that document to the front: the user's next keystrokes go into
// it. A panel that is taken down gives the activation back to its document
// only when it held it itself; otherwise the activation stays where the
// user put it (another document, an Office dialog).
#include <gtest/gtest.h>

#include "addin/document_handlers.h"
#include "tests/windows/tick_test_support.h"

namespace {
AnswerFields ViewedAnswer() {
  AnswerFields answer = QuietAnswer();
  AddViewers(answer, L"u-ann", L"Ann Lee");
  return answer;
}

HWND CreateDocumentWindow(const wchar_t* title) {
  HWND window = CreateWindowExW(0, L"STATIC", title, WS_OVERLAPPEDWINDOW, 0, 0, 10, 10, nullptr, nullptr, nullptr,
                                nullptr);
  PlaceWindow(window, kOfficeRect);
  return window;
}

// Two Word documents, each in its own window. The one whose path sorts
// last was shown first, with its badge and panel; the user then switched to
// the other one and is typing into it, so the first one's windows are
// hidden. Its path sorting after the active one's means no later step of
// the same tick could repair a stolen activation.
class TwoWordDocuments : public testing::Test {
 protected:
  void SetUp() override {
    backgroundWindow_.reset(CreateDocumentWindow(L"b-background.docx - Word"));
    typingWindow_.reset(CreateDocumentWindow(L"a-typing.docx - Word"));
    ASSERT_NE(backgroundWindow_.get(), nullptr);
    ASSERT_NE(typingWindow_.get(), nullptr);

    SimDocument* background = Open(L"b-background", backgroundWindow_.get());
    ASSERT_NE(background, nullptr);
    background_ = background->fullName();
    Tick();
    ASSERT_TRUE(IsWindowVisible(PanelOf(background_)));

    SimDocument* typing = Open(L"a-typing", typingWindow_.get());
    ASSERT_NE(typing, nullptr);
    typing_ = typing->fullName();
    ASSERT_LT(typing_, background_);
    host_.Activate(typing);
    SetForegroundWindow(typingWindow_.get());
    SetActiveWindow(typingWindow_.get());
    SetFocus(typingWindow_.get());
    Tick();
    backgroundPanel_ = PanelOf(background_);
    ASSERT_NE(backgroundPanel_, nullptr);
    ASSERT_FALSE(IsWindowVisible(backgroundPanel_));
    ASSERT_EQ(GetActiveWindow(), typingWindow_.get());
    ASSERT_EQ(GetForegroundWindow(), typingWindow_.get());
  }

  SimDocument* Open(const wchar_t* baseName, HWND window) {
    SimDocument* document = host_.Open(std::wstring(baseName) + L".docx");
    if (document == nullptr) return nullptr;
    document->SetWindowHandle(window);
    RecordDocument(ComPtr<IDispatch>(document));
    Answer(document->fullName(), ViewedAnswer());
    host_.Activate(document);
    return document;
  }

  void ExpectTheTypingDocumentStaysInFront(Caller caller = {}) {
    TRACE_CALLER(caller);
    EXPECT_FALSE(IsWindow(backgroundPanel_));
    EXPECT_EQ(GetActiveWindow(), typingWindow_.get());
    EXPECT_EQ(GetForegroundWindow(), typingWindow_.get());
    EXPECT_EQ(GetFocus(), typingWindow_.get());
  }

  OverlayHost host_{SimHost::Word};
  UniqueWindowForTest backgroundWindow_;
  UniqueWindowForTest typingWindow_;
  std::wstring background_;
  std::wstring typing_;
  HWND backgroundPanel_ = nullptr;
};

TEST_F(TwoWordDocuments, AFailedExchangeTakesTheOtherDocumentsPanelDownWithoutBringingItToTheFront) {
  TheFileStatusCache().syncAppHasData = false;
  Tick();
  ExpectTheTypingDocumentStaysInFront();
}

TEST_F(TwoWordDocuments, HidingTheOtherDocumentsOverlayLeavesTheTypingDocumentInFront) {
  host_.ChangeRecord(background_, [](FileStatusRecord& record) { record.choices.Set(UserChoice::uiHide); });
  Tick();
  ExpectNothingShown(background_);
  ExpectTheTypingDocumentStaysInFront();
}

TEST_F(TwoWordDocuments, AnOtherDocumentNoLongerSyncedLosesItsPanelWithoutComingToTheFront) {
  AnswerFields answer = ViewedAnswer();
  answer.is_sync_file = 0;
  Answer(background_, answer);
  Tick();
  ExpectNothingShown(background_);
  ExpectTheTypingDocumentStaysInFront();
}

class ActivationOfTheActiveDocument : public testing::Test {
 protected:
  void SetUp() override {
    path_ = host_.OpenAnswered(L"viewed", ViewedAnswer())->fullName();
    Tick();
    panel_ = PanelOf(path_);
    ASSERT_NE(panel_, nullptr);
  }

  OverlayHost host_{SimHost::Word};
  std::wstring path_;
  HWND panel_ = nullptr;
};

// Office's own modeless dialogs (Find and Replace, the Styles pane floating)
// are owned pop-ups of its window; rebuilding the badge's panel must not
// pull the keyboard away from them.
TEST_F(ActivationOfTheActiveDocument, RebuildingThePanelLeavesAnOfficeDialogActive) {
  UniqueWindowForTest dialog(CreateWindowExW(0, L"STATIC", L"Find and Replace", WS_POPUP | WS_CAPTION, 200, 200, 300,
                                             150, host_.mainWindow(), nullptr, nullptr, nullptr));
  ASSERT_NE(dialog.get(), nullptr);
  ShowWindow(dialog.get(), SW_SHOW);
  SetActiveWindow(dialog.get());
  ASSERT_EQ(GetActiveWindow(), dialog.get());
  AnswerFields editing = QuietAnswer();
  AddEditors(editing, L"u-bo", L"Bo Chan");
  Answer(path_, editing);
  Tick();
  EXPECT_FALSE(IsWindow(panel_));
  ExpectBadgeAndPanel(path_, 4, L"Another user is editing this file", true);
  EXPECT_EQ(GetActiveWindow(), dialog.get());
}

TEST_F(ActivationOfTheActiveDocument, APanelThatHeldTheActivationGivesItBackToItsDocumentWhenTakenDown) {
  SetActiveWindow(panel_);
  ASSERT_EQ(GetActiveWindow(), panel_);
  TheFileStatusCache().syncAppHasData = false;
  Tick();
  EXPECT_FALSE(IsWindow(panel_));
  EXPECT_EQ(GetActiveWindow(), host_.mainWindow());
}

TEST_F(ActivationOfTheActiveDocument, ABadgeWhosePanelHeldTheActivationGivesItBackToItsDocumentWhenTakenDown) {
  SetActiveWindow(panel_);
  ASSERT_EQ(GetActiveWindow(), panel_);
  host_.ChangeRecord(path_, [](FileStatusRecord& record) { record.choices.Set(UserChoice::uiHide); });
  Tick();
  ExpectNothingShown(path_);
  EXPECT_EQ(GetActiveWindow(), host_.mainWindow());
}
}  // namespace
