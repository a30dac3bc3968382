// The document routines that put a host's saved documents into the cache
// and wake the update thread, called as the sinks call them.
#include <gtest/gtest.h>

#include "addin/document_handlers.h"
#include "common/dispatch.h"
#include "tests/windows/in_process_host.h"

namespace {
const char* LogWord(SimHost host) {
  return host == SimHost::Excel ? "workbook" : host == SimHost::PowerPoint ? "presentation" : "document";
}

class DocumentRoutine : public testing::TestWithParam<SimHost> {
 protected:
  // The running host's routine, given one new reference as a sink gives it.
  std::wstring Record(IDispatch* document) {
    return RecordDocument(ComPtr<IDispatch>(document));
  }
  std::wstring Name(const wchar_t* base) const { return base + DocumentExtension(GetParam()); }

  InProcessHost host_{GetParam()};
};

TEST_P(DocumentRoutine, ANeverSavedDocumentCreatesNoRecordAndSetsNoEvent) {
  SimDocument* fresh = host_.app().NewDocument();
  ASSERT_EQ(fresh->fullName(), fresh->name());
  const long referencesBefore = fresh->references();
  EXPECT_EQ(Record(fresh), fresh->name());
  EXPECT_TRUE(host_.CachedPaths().empty());
  EXPECT_FALSE(host_.EventIsSet());
  EXPECT_TRUE(host_.Messages().empty());  // its line is a Debug line, which the log drops
  EXPECT_EQ(fresh->references(), referencesBefore);
}

TEST_P(DocumentRoutine, ASavedDocumentGetsARecordWithLoadingDefaultsAndSetsTheEvent) {
  SimDocument* document = host_.Open(Name(L"report"));
  const long referencesBefore = document->references();
  EXPECT_EQ(Record(document), document->fullName());
  ASSERT_EQ(host_.CachedPaths(), std::vector<std::wstring>{document->fullName()});
  EXPECT_TRUE(host_.EventIsSet());
  // The record keeps one reference; the one the routine was given is back.
  EXPECT_EQ(document->references(), referencesBefore + 1);
  const FileStatusRecord record = host_.Record(document->fullName());
  EXPECT_EQ(record.document.get(), static_cast<IDispatch*>(document));
  EXPECT_EQ(record.isEditing, 0u);
  EXPECT_EQ(record.isOpen, 1u);
  EXPECT_EQ(record.sync.is_loading_data_from_server, 1u);
  const std::string path = Narrow(document->fullName());
  EXPECT_EQ(host_.Messages(), (std::vector<std::string>{std::string(LogWord(GetParam())) +
                                                             " open/activate/save - " + path,
                                                         "file info stored in cache - " + path}));
  EXPECT_EQ(host_.LevelOf("file info stored in cache - " + path), "I");
}

TEST_P(DocumentRoutine, ADocumentWithUnsavedChangesIsRecordedAsEditing) {
  SimDocument* document = host_.Open(Name(L"draft"));
  document->MarkEdited();
  Record(document);
  EXPECT_EQ(host_.Record(document->fullName()).isEditing, 1u);
}

TEST_P(DocumentRoutine, ActivatingACachedDocumentChangesNothingEvenIfEdited) {
  SimDocument* document = host_.Open(Name(L"report"));
  Record(document);
  host_.ResetEvent();
  const std::vector<std::string> linesBefore = host_.Messages();
  const long referencesBefore = document->references();
  document->MarkEdited();
  EXPECT_EQ(Record(document), document->fullName());
  EXPECT_EQ(host_.Record(document->fullName()).isEditing, 0u);
  EXPECT_FALSE(host_.EventIsSet());
  EXPECT_EQ(host_.Messages(), linesBefore);
  EXPECT_EQ(document->references(), referencesBefore);
}

TEST_P(DocumentRoutine, TwoDocumentsGiveTwoRecordsAndTwoSettingsOfTheEventInOrder) {
  SimDocument* first = host_.Open(Name(L"alpha"));
  SimDocument* second = host_.Open(Name(L"beta"));
  Record(first);
  EXPECT_TRUE(host_.EventIsSet());
  EXPECT_EQ(host_.CachedPaths(), std::vector<std::wstring>{first->fullName()});
  host_.ResetEvent();
  Record(second);
  EXPECT_TRUE(host_.EventIsSet());
  EXPECT_EQ(host_.CachedPaths(), (std::vector<std::wstring>{first->fullName(), second->fullName()}));
  const std::string word = LogWord(GetParam());
  const std::string a = Narrow(first->fullName()), b = Narrow(second->fullName());
  EXPECT_EQ(host_.Messages(),
            (std::vector<std::string>{word + " open/activate/save - " + a, "file info stored in cache - " + a,
                                      word + " open/activate/save - " + b, "file info stored in cache - " + b}));
}

TEST_P(DocumentRoutine, PathsThatDifferOnlyInCaseMakeSeparateRecords) {
  const std::wstring path = host_.CreateFileNamed(Name(L"Budget"));
  std::wstring lower = path;
  for (wchar_t& c : lower) c = static_cast<wchar_t>(towlower(c));
  ASSERT_NE(lower, path);
  SimDocument* upper = host_.OpenPath(path);
  SimDocument* other = host_.OpenPath(lower);
  Record(upper);
  Record(other);
  EXPECT_EQ(host_.CachedPaths().size(), 2u);
  EXPECT_TRUE(TheFileStatusCache().Contains(path));
  EXPECT_TRUE(TheFileStatusCache().Contains(lower));
}

TEST_P(DocumentRoutine, RecordsTheHostsWindowHandle) {
  SimDocument* document = host_.Open(Name(L"window"));
  HWND expected = host_.mainWindow();
  UniqueWindowForTest documentWindow;
  if (GetParam() == SimHost::Word) {
    // Word's Application has no window handle; the document's own window has.
    documentWindow.reset(CreatePlainWindow());
    ASSERT_NE(documentWindow.get(), nullptr);
    document->SetWindowHandle(documentWindow.get());
    expected = documentWindow.get();
  }
  Record(document);
  EXPECT_EQ(host_.Record(document->fullName()).hostWindow, expected);
}

INSTANTIATE_TEST_SUITE_P(EveryHost, DocumentRoutine, testing::Values(SimHost::Word, SimHost::Excel, SimHost::PowerPoint),
                         HostParamName);

// The simulated hosts answer as Office does when no document is open.
TEST(SimulatedHost, WordAndPowerPointRaiseForTheActiveDocumentWhileExcelAnswersNothing) {
  const struct {
    SimHost host;
    const wchar_t* member;
    HRESULT expected;
  } cases[] = {{SimHost::Word, L"ActiveDocument", DISP_E_EXCEPTION},
               {SimHost::Excel, L"ActiveWorkbook", S_OK},
               {SimHost::PowerPoint, L"ActivePresentation", DISP_E_EXCEPTION}};
  for (const auto& c : cases) {
    InProcessHost office(c.host);
    DispatchName member(c.member);
    VARIANT result;
    VariantInit(&result);
    EXPECT_EQ(InvokeByName(&office.app(), member, DISPATCH_PROPERTYGET, {}, &result), c.expected) << HostName(c.host);
    if (c.expected == S_OK) {
      EXPECT_EQ(result.vt, VT_DISPATCH);
      EXPECT_EQ(result.pdispVal, nullptr);
    }
    VariantClear(&result);
  }
}

TEST(SimulatedHost, WordsApplicationHasNoWindowHandle) {
  InProcessHost office(SimHost::Word);
  DispatchName hwnd(L"Hwnd");
  VARIANT result;
  VariantInit(&result);
  EXPECT_EQ(InvokeByName(&office.app(), hwnd, DISPATCH_PROPERTYGET, {}, &result), DISP_E_UNKNOWNNAME);
}
}  // namespace
