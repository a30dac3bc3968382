// The sync app hears of a reload, a conflict resolved or a rename followed
// only once it happened: the user's choice travels in the same request as
// the close ("isOpen":false), never in a cycle that runs while Office is
// still saving, copying or closing, and never at all when the save, the
// copy or the close does not happen. "Save a copy & Reload" closes the
// document without a second question in Word, Excel and PowerPoint.
#include <windows.h>

#include <gtest/gtest.h>

#include <algorithm>

#include "common/text.h"
#include "tests/windows/flow_test_support.h"

namespace {
const wchar_t kNewVersionOnTheWeb[] =
    L"set is_download_present=Downloading\n"
    L"after 1\n"
    L"set is_download_present=Downloaded\n";
const wchar_t kConflict[] = L"set is_conflict_present=true\n";

class SyncActionReport : public testing::TestWithParam<SimHost> {
 protected:
  SimHost host() const { return GetParam(); }

  SimDocument* OpenSynced(const wchar_t* base, const std::wstring& story, bool edited, Caller caller = {}) {
    TRACE_CALLER(caller);
    name_ = base + DocumentExtension(host());
    path_ = flow_.PathOf(name_);
    EXPECT_TRUE(flow_.StartSyncApp(SyncedFileScenario(path_) + story));
    SimDocument* document = flow_.Open(name_);
    EXPECT_NE(document, nullptr);
    if (document != nullptr && edited) document->MarkEdited();
    flow_.CycleAndTick();
    return document;
  }
  HWND Panel() const { return OfficeFlow::PanelOf(path_); }
  std::string P() const { return Narrow(path_); }

  // Office takes its time over the document's Save, copy and Close: a whole
  // cycle of the update thread runs meanwhile.
  void CycleWhileOfficeIsBusy(SimDocument* document) {
    document->SetSlowCalls([this] {
      ++busyCycles_;
      flow_.Cycle();
    });
  }

  // No request the sync app received carries a user's choice, except the
  // last when `lastIsTheClose`: then it says the file is closed.
  void ExpectChoiceOnlyWithTheClose(bool lastIsTheClose, Caller caller = {}) {
    TRACE_CALLER(caller);
    const std::vector<std::wstring> requests = flow_.Requests();
    ASSERT_FALSE(requests.empty());
    for (size_t i = 0; i < requests.size(); ++i) {
      const bool chosen = requests[i].find(L"\"retryModify\":true") != std::wstring::npos ||
                          requests[i].find(L"\"resolveConflict\":true") != std::wstring::npos ||
                          requests[i].find(L"\"retryRenameOrMove\":true") != std::wstring::npos;
      const bool closed = requests[i].find(L"\"isOpen\":false") != std::wstring::npos;
      const bool last = i + 1 == requests.size();
      EXPECT_EQ(chosen, lastIsTheClose && last) << "request " << i << ": " << Narrow(requests[i]);
      EXPECT_EQ(closed, lastIsTheClose && last) << "request " << i << ": " << Narrow(requests[i]);
    }
  }

  OfficeFlow flow_{GetParam()};
  std::wstring name_;
  std::wstring path_;
  int busyCycles_ = 0;
};

TEST_P(SyncActionReport, SaveACopyAndReloadClosesWithoutAskingAndTellsTheChoiceWithTheClose) {
  SimDocument* document = OpenSynced(L"report", kNewVersionOnTheWeb, true);
  ASSERT_NE(document, nullptr);
  flow_.Press(Panel(), ControlId::Download);
  flow_.CycleAndTick();
  HWND ask = Panel();
  ASSERT_EQ(ButtonIdsOf(ask), (std::vector<ControlId>{ControlId::SaveCopyAndReload, ControlId::DiscardAndReload}))
      << DescribePanel(ask);

  // Were the host to ask about the document's changes again, the user
  // would keep it open: the copy was the answer already.
  flow_.app().SetPromptAnswer(SimApplication::PromptAnswer::Cancel);
  CycleWhileOfficeIsBusy(document);
  flow_.ClearLog();
  flow_.Press(ask, ControlId::SaveCopyAndReload);

  std::vector<std::wstring> files = FilesIn(flow_.host().folder());
  files.erase(std::remove(files.begin(), files.end(), name_), files.end());
  ASSERT_EQ(files.size(), 1u);
  const std::string copyPath = Narrow(flow_.host().folder()) + "\\" + Narrow(files[0]);
  EXPECT_EQ(Narrow(files[0]).rfind("report (", 0), 0u) << Narrow(files[0]);
  EXPECT_EQ(ReadFileBytes(path_), "content\n");  // the original is left for the sync app to replace
  EXPECT_EQ(flow_.app().FindDocument(path_), nullptr);
  EXPECT_EQ(flow_.app().openDocumentCount(), 0u);
  EXPECT_FALSE(TheFileStatusCache().Contains(path_));
  EXPECT_GE(busyCycles_, 2);  // the copy and the close each took a cycle

  ExpectChoiceOnlyWithTheClose(true);
  RequestFields closed;
  closed.isOpen = false;
  closed.isEditing = true;
  closed.retryModify = true;
  EXPECT_EQ(flow_.RawRequests().back(), MessageBytes(ExpectedRequest(path_, closed, host())));

  std::vector<std::string> expected = {"download with save copy button clicked: " + P(),
                                       "download with save copy in progress: " + P(), "separate copy saving",
                                       "separate copy saved successfully: " + copyPath, "going to close file"};
  // Word's save under the copy's name attaches the document to the copy,
  // so its before-close event names the copy, which the add-in does not
  // know.
  if (host() == SimHost::Word) expected.push_back("close file - file info not available in cache - " + copyPath);
  const std::string closeLine = (host() == SimHost::Word ? "close file - " : "we close this file to sync event - ") + P();
  expected.insert(expected.end(),
                  {closeLine, "file info removed from cache - " + P(), "download with save copy completed"});
  EXPECT_EQ(flow_.Messages(), expected);
}

TEST_P(SyncActionReport, ASlowSaveThatFailsNeverTellsTheSyncAppTheConflictIsResolved) {
  SimDocument* document = OpenSynced(L"shared", kConflict, true);
  ASSERT_NE(document, nullptr);
  document->SetFailingSaves(true);
  flow_.Press(Panel(), ControlId::ResolveConflict);
  HWND confirm = Panel();
  ASSERT_EQ(ButtonIdsOf(confirm), (std::vector<ControlId>{ControlId::SaveAndResolve, ControlId::DiscardAndResolve}))
      << DescribePanel(confirm);

  CycleWhileOfficeIsBusy(document);
  flow_.Press(confirm, ControlId::SaveAndResolve);
  EXPECT_EQ(busyCycles_, 1);
  flow_.Cycle();
  ExpectChoiceOnlyWithTheClose(false);
  EXPECT_EQ(flow_.app().FindDocument(path_), document);
  EXPECT_FALSE(document->saved());
  EXPECT_EQ(InProcessHost::Record(path_).choices.Has(UserChoice::resolveConflict), 0u);
}

TEST_P(SyncActionReport, ASlowCloseTellsTheChoiceOnlyOnceTheDocumentIsClosed) {
  SimDocument* document = OpenSynced(L"shared", kConflict, false);
  ASSERT_NE(document, nullptr);
  flow_.Press(Panel(), ControlId::ResolveConflict);
  HWND confirm = Panel();
  ASSERT_EQ(ButtonIdsOf(confirm), std::vector<ControlId>{ControlId::ContinueToResolve}) << DescribePanel(confirm);

  CycleWhileOfficeIsBusy(document);
  flow_.Press(confirm, ControlId::ContinueToResolve);
  EXPECT_EQ(busyCycles_, 1);
  EXPECT_EQ(flow_.app().FindDocument(path_), nullptr);
  ExpectChoiceOnlyWithTheClose(true);
  // The cycle while Office closed the document still saw it open, without
  // the choice.
  const std::vector<std::wstring> requests = flow_.Requests();
  ASSERT_GE(requests.size(), 2u);
  EXPECT_EQ(requests[requests.size() - 2], ExpectedRequest(path_, {}, host()));
  RequestFields closed;
  closed.isOpen = false;
  closed.resolveConflict = true;
  EXPECT_EQ(requests.back(), ExpectedRequest(path_, closed, host()));
}

TEST_P(SyncActionReport, ACloseAnotherAddinCancelsKeepsTheFileAndTellsNothing) {
  SimDocument* document = OpenSynced(L"report", kNewVersionOnTheWeb, true);
  ASSERT_NE(document, nullptr);
  flow_.Press(Panel(), ControlId::Download);
  flow_.CycleAndTick();
  HWND ask = Panel();
  ASSERT_EQ(ButtonIdsOf(ask), (std::vector<ControlId>{ControlId::SaveCopyAndReload, ControlId::DiscardAndReload}))
      << DescribePanel(ask);

  document->SetCloseCancelledElsewhere(true);
  flow_.Press(ask, ControlId::DiscardAndReload);
  flow_.Cycle();
  ExpectChoiceOnlyWithTheClose(false);
  EXPECT_EQ(flow_.app().FindDocument(path_), document);
  EXPECT_FALSE(document->saved());
  ASSERT_TRUE(TheFileStatusCache().Contains(path_));
  const FileStatusRecord record = InProcessHost::Record(path_);
  EXPECT_FALSE(record.choices.Has(UserChoice::retryModify));
  EXPECT_EQ(record.closingForSyncAction, 0u);
  RequestFields stillOpen;
  stillOpen.isEditing = true;
  EXPECT_EQ(flow_.Requests().back(), ExpectedRequest(path_, stillOpen, host()));
}

// The user closes a modified file from the host and answers its question
// with "don't save". Word and Excel tell add-ins before they ask, so the
// close handler kept the record (the user might have cancelled); the next
// tick finds the document gone. That is an ordinary close, not an error,
// and the sync app hears of it.
TEST_P(SyncActionReport, AModifiedDocumentClosedWithoutSavingIsReportedClosedByTheNextTick) {
  SimDocument* document = OpenSynced(L"readonly", L"", false);
  ASSERT_NE(document, nullptr);
  document->MarkEdited();
  flow_.CycleAndTick();
  flow_.app().SetPromptAnswer(SimApplication::PromptAnswer::Discard);
  ASSERT_TRUE(flow_.app().CloseDocument(document, SimApplication::SaveChoice::Prompt));
  ASSERT_TRUE(TheFileStatusCache().Contains(path_));
  const size_t before = flow_.Requests().size();

  flow_.ClearLog();
  flow_.Tick();
  EXPECT_FALSE(TheFileStatusCache().Contains(path_));
  EXPECT_EQ(flow_.Messages(),
            (std::vector<std::string>{"close file - " + P(), "file info removed from cache - " + P()}));
  EXPECT_EQ(InProcessHost::LevelOf("close file - " + P()), "I");
  const std::vector<std::wstring> requests = flow_.Requests();
  ASSERT_EQ(requests.size(), before + 1);
  RequestFields closed;
  closed.isOpen = false;
  closed.isEditing = true;  // as the last tick found it
  EXPECT_EQ(requests.back(), ExpectedRequest(path_, closed, host()));
}

INSTANTIATE_TEST_SUITE_P(EveryHost, SyncActionReport,
                         testing::Values(SimHost::Word, SimHost::Excel, SimHost::PowerPoint), HostParamName);
}  // namespace
