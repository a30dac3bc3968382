// The add-in's own close of a document, against each simulated host: the
// exact object-model calls per mode, a save that fails, and the last
// document's close ending Word and Excel but not PowerPoint.
#include <gtest/gtest.h>

#include "docactions/close_file.h"
#include "tests/caller.h"
#include "tests/windows/in_process_host.h"

namespace {
using Calls = std::vector<std::wstring>;

class CloseFileInHost : public testing::TestWithParam<SimHost> {
 protected:
  void Close(IDispatch* document, CloseMode mode) {
    CloseFile(ComPtr<IDispatch>(document), mode);
  }
  std::wstring Name(const wchar_t* base) const { return base + DocumentExtension(GetParam()); }
  bool IsOpen(SimDocument* document) { return host_.app().FindDocument(document->fullName()) == document; }

  // What each host's Close is called with, per mode.
  Calls ExpectedCalls(CloseMode mode) const {
    switch (GetParam()) {
      case SimHost::Word:
        return mode == CloseMode::SaveThenClose        ? Calls{L"Save()", L"Close(VT_I4 -1, missing, missing)"}
               : mode == CloseMode::CloseWithoutSaving ? Calls{L"Close(VT_I4 0, missing, missing)"}
                                                       : Calls{L"Close(VT_I4 -2, missing, missing)"};
      case SimHost::Excel:
        return mode == CloseMode::SaveThenClose        ? Calls{L"Save()", L"Close(VT_BOOL true, missing, missing)"}
               : mode == CloseMode::CloseWithoutSaving ? Calls{L"Close(VT_BOOL false, missing, missing)"}
                                                       : Calls{L"Close(missing, missing, missing)"};
      default:
        return mode == CloseMode::SaveThenClose ? Calls{L"Save()", L"Close()"} : Calls{L"Close()"};
    }
  }

  void ExpectCloseWithItsArguments(CloseMode mode, bool edited, Caller caller = {}) {
    TRACE_CALLER(caller);
    SimDocument* keep = host_.Open(Name(L"keep"));
    SimDocument* document = host_.Open(Name(L"close-me"));
    if (edited) document->MarkEdited();
    document->AddRef();  // to read its calls after the host let it go
    const long before = document->references();
    Close(document, mode);
    EXPECT_EQ(document->methodCalls(), ExpectedCalls(mode));
    EXPECT_FALSE(IsOpen(document));
    EXPECT_TRUE(IsOpen(keep));
    EXPECT_EQ(document->references(), before - 1);  // only the host's own reference went, with the close
    EXPECT_TRUE(host_.app().methodCalls().empty());  // another document is open: no Quit
    EXPECT_EQ(host_.Messages().at(0), "going to close file");
    EXPECT_EQ(host_.LevelOf("going to close file"), "I");
    document->Release();
  }

  InProcessHost host_{GetParam()};
};

TEST_P(CloseFileInHost, SaveThenCloseSavesFirstAndClosesSavingChanges) {
  ExpectCloseWithItsArguments(CloseMode::SaveThenClose, true);
}

TEST_P(CloseFileInHost, CloseWithoutSavingClosesDiscardingChanges) {
  ExpectCloseWithItsArguments(CloseMode::CloseWithoutSaving, true);
}

TEST_P(CloseFileInHost, CloseLettingTheHostAskClosesASavedDocument) {
  ExpectCloseWithItsArguments(CloseMode::CloseLettingTheHostAsk, false);
}

TEST_P(CloseFileInHost, ASaveThatFailsStopsTheClose) {
  SimDocument* document = host_.Open(Name(L"locked"));
  document->MarkEdited();
  document->SetFailingSaves(true);
  const long before = document->references();
  Close(document, CloseMode::SaveThenClose);
  EXPECT_EQ(document->methodCalls(), Calls{L"Save()"});
  EXPECT_TRUE(IsOpen(document));
  EXPECT_EQ(document->references(), before);
  EXPECT_TRUE(host_.app().methodCalls().empty());
  const std::string stop = GetParam() == SimHost::PowerPoint
                               ? "we didn't close file since file has unsaved changes (during SaveChanges)"
                               : "we didn't close file since file has unsaved changes";
  EXPECT_EQ(host_.Messages(), (std::vector<std::string>{"going to close file", stop}));
  EXPECT_EQ(host_.LevelOf(stop), "E");
}

TEST_P(CloseFileInHost, ClosingTheLastDocumentQuitsWordAndExcelButNotPowerPoint) {
  SimDocument* document = host_.Open(Name(L"last"));
  Close(document, CloseMode::CloseWithoutSaving);
  EXPECT_EQ(host_.app().openDocumentCount(), 0u);
  const Calls quit = GetParam() == SimHost::Word    ? Calls{L"Quit(missing, missing, missing)"}
                     : GetParam() == SimHost::Excel ? Calls{L"Quit()"}
                                                    : Calls{};
  EXPECT_EQ(host_.app().methodCalls(), quit);
  EXPECT_EQ(host_.app().quitRequested(), GetParam() != SimHost::PowerPoint);
}

INSTANTIATE_TEST_SUITE_P(EveryHost, CloseFileInHost, testing::Values(SimHost::Word, SimHost::Excel, SimHost::PowerPoint),
                         HostParamName);

TEST(PowerPointCloseFile, LettingTheHostAskOnAModifiedPresentationOnlyLogs) {
  // PowerPoint's Close cannot ask the user.
  InProcessHost office(SimHost::PowerPoint);
  SimDocument* presentation = office.Open(L"deck.pptx");
  presentation->MarkEdited();
  const long before = presentation->references();
  CloseFile(ComPtr<IDispatch>(presentation), CloseMode::CloseLettingTheHostAsk);
  EXPECT_TRUE(presentation->methodCalls().empty());
  EXPECT_EQ(office.app().openDocumentCount(), 1u);
  EXPECT_EQ(presentation->references(), before);
  const std::string message = "we didn't close file since file has unsaved changes (during PromptToSaveChanges)";
  EXPECT_EQ(office.Messages(), (std::vector<std::string>{"going to close file", message}));
  EXPECT_EQ(office.LevelOf(message), "E");
}

TEST(WordCloseFile, LettingWordAskLeavesTheDocumentOpenWhenTheUserCancels) {
  InProcessHost office(SimHost::Word);
  SimDocument* keep = office.Open(L"keep.docx");
  SimDocument* document = office.Open(L"asked.docx");
  document->MarkEdited();
  office.app().SetPromptAnswer(SimApplication::PromptAnswer::Cancel);
  CloseFile(ComPtr<IDispatch>(document), CloseMode::CloseLettingTheHostAsk);
  EXPECT_EQ(document->methodCalls(), Calls{L"Close(VT_I4 -2, missing, missing)"});
  EXPECT_EQ(office.app().openDocumentCount(), 2u);
  EXPECT_EQ(office.app().FindDocument(keep->fullName()), keep);
}
}  // namespace
