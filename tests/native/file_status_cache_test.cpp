#include <gtest/gtest.h>

#include "overlay/decision/overlay_kind.h"
#include "synclink/file_status_cache.h"
#include "tests/native/captured_log.h"
#include "tests/native/counting_dispatch.h"

namespace {
class Cache : public testing::Test {
 protected:
  void SetUp() override { ClearCapturedLog(); }
  FileStatusCache cache;
};
}  // namespace

TEST_F(Cache, StoresANewFileWithLoadingDefaultsAndLogsIt) {
  HWND window = reinterpret_cast<HWND>(0x1234);
  EXPECT_EQ(cache.AddFile(L"C:\\a.docx", window, 1, nullptr), 1);
  ASSERT_TRUE(cache.Contains(L"C:\\a.docx"));
  const FileStatusRecord record = *cache.Find(L"C:\\a.docx");
  EXPECT_EQ(record.hostWindow, window);
  EXPECT_EQ(record.isEditing, 1u);
  EXPECT_EQ(record.sync.is_sync_file, 0u);
  EXPECT_EQ(record.sync.is_internet_connected, 1u);
  EXPECT_EQ(record.sync.is_loading_data_from_server, 1u);
  EXPECT_EQ(record.sync.downloadState, 2);
  EXPECT_EQ(record.isOpen, 1u);
  EXPECT_EQ(record.overlayUpToDate, 0u);
  EXPECT_EQ(CapturedLog(), (std::vector<CapturedLine>{{LogLevel::Info, L"file info stored in cache - C:\\a.docx"}}));
}

TEST_F(Cache, KeepsTwoPathsThatDifferOnlyInCaseApart) {
  cache.AddFile(L"C:\\Report.docx", nullptr, 0, nullptr);
  cache.AddFile(L"C:\\report.docx", nullptr, 1, nullptr);
  EXPECT_EQ(cache.Size(), 2u);
  EXPECT_EQ(cache.Find(L"C:\\Report.docx")->isEditing, 0u);
  EXPECT_EQ(cache.Find(L"C:\\report.docx")->isEditing, 1u);
}

TEST_F(Cache, RemovingAnUnknownPathLogsAnErrorAndSucceeds) {
  EXPECT_EQ(cache.RemoveFile(L"C:\\nope.docx"), 1);
  EXPECT_EQ(CapturedLog(),
            (std::vector<CapturedLine>{{LogLevel::Error, L"file info not available in cache - C:\\nope.docx"}}));
}

TEST_F(Cache, RemovingAKnownPathLogsIt) {
  cache.AddFile(L"C:\\a.docx", nullptr, 0, nullptr);
  ClearCapturedLog();
  EXPECT_EQ(cache.RemoveFile(L"C:\\a.docx"), 1);
  EXPECT_FALSE(cache.Contains(L"C:\\a.docx"));
  EXPECT_EQ(CapturedLog(), (std::vector<CapturedLine>{{LogLevel::Info, L"file info removed from cache - C:\\a.docx"}}));
}

TEST_F(Cache, HoldsOneReferenceOnTheDocumentAndGivesItBackOnRemoval) {
  CountingDispatch document;
  cache.AddFile(L"C:\\a.docx", nullptr, 0, &document);
  EXPECT_EQ(document.references, 2);
  {
    const FileStatusRecord copy = *cache.Find(L"C:\\a.docx");
    EXPECT_EQ(document.references, 3);
  }
  EXPECT_EQ(document.references, 2);
  cache.RemoveFile(L"C:\\a.docx");
  EXPECT_EQ(document.references, 1);
}

TEST_F(Cache, KeepsTheReferenceBalancedAcrossUpdatesAndRequests) {
  CountingDispatch workbook;
  cache.AddFile(L"C:\\a.xlsx", nullptr, 0, &workbook);
  AnswerFields answer;
  answer.file_path = L"C:\\a.xlsx";
  answer.is_sync_file = 1;
  cache.UpdateFile(L"C:\\a.xlsx", answer);
  cache.BuildRequest(L"", false);
  EXPECT_EQ(workbook.references, 2);
  cache.RemoveFile(L"C:\\a.xlsx");
  EXPECT_EQ(workbook.references, 1);
}

TEST_F(Cache, KeepsARecordsChangesWhileOthersAreAdded) {
  cache.AddFile(L"C:\\m.docx", nullptr, 0, nullptr);
  cache.Change(L"C:\\m.docx", [](FileStatusRecord& r) { r.choices.Set(UserChoice::uiHide); });
  for (int i = 0; i < 100; ++i) cache.AddFile(L"C:\\" + std::to_wstring(i), nullptr, 0, nullptr);
  EXPECT_TRUE(cache.Find(L"C:\\m.docx")->choices.Has(UserChoice::uiHide));
}

TEST_F(Cache, UpdatingAFileThatIsNotThereLogsAndChangesNothing) {
  AnswerFields answer;
  cache.UpdateFile(L"C:\\gone.docx", answer);
  EXPECT_FALSE(cache.Contains(L"C:\\gone.docx"));
  ASSERT_FALSE(CapturedLog().empty());
  EXPECT_EQ(CapturedLog()[0].level, LogLevel::Error);
  EXPECT_EQ(CapturedLog()[0].message.rfind(L"std exception occurred while updating cache data - ", 0), 0u);
}

TEST_F(Cache, DoesNotBringBackARecordRemovedWhileItsAnswerWasApplied) {
  CountingDispatch document;
  cache.AddFile(L"C:\\a.docx", nullptr, 0, &document);
  // The UI thread closes the document between the update's copy and its
  // write-back (the change tag of is_sync_file is logged in between).
  SetCapturedLogObserver([&](const CapturedLine& line) {
    if (line.message == L"5") cache.RemoveFile(L"C:\\a.docx");
  });
  AnswerFields answer;
  answer.file_path = L"C:\\a.docx";
  answer.is_sync_file = 1;
  cache.UpdateFile(L"C:\\a.docx", answer);
  SetCapturedLogObserver(nullptr);

  EXPECT_FALSE(cache.Contains(L"C:\\a.docx"));
  EXPECT_TRUE(cache.Size() == 0);
  EXPECT_EQ(document.references, 1);
  EXPECT_EQ(CapturedMessages(false), (std::vector<std::wstring>{L"file info stored in cache - C:\\a.docx",
                                                                L"file info removed from cache - C:\\a.docx"}));
}
