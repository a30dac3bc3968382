// The cache shared by the UI thread and the update thread: the update
// thread's answers touch only what the sync app reports, the UI thread's
// write-backs only what it changed, a closing document goes in one step,
// and a removed record never comes back.
#include <gtest/gtest.h>

#include <atomic>
#include <cstdio>
#include <random>
#include <thread>
#include <vector>

#include "common/office_app.h"
#include "synclink/answer_apply.h"
#include "overlay/decision/overlay_kind.h"
#include "synclink/file_status_cache.h"
#include "synclink/record_lock.h"
#include "tests/native/captured_log.h"
#include "tests/native/counting_dispatch.h"

namespace {
HWND Window(std::uintptr_t value) { return reinterpret_cast<HWND>(value); }

AnswerFields SyncedAnswer(const std::wstring& path, const std::wstring& id) {
  AnswerFields answer;
  answer.file_path = path;
  answer.is_sync_file = 1;
  answer.file_combo_id = id;
  answer.is_loading_data_from_server = 0;
  return answer;
}

class SharedCache : public testing::Test {
 protected:
  void SetUp() override {
    OfficeApp = OfficeHost::Word;
    cache.AddFile(kPath, Window(0x10), 0, nullptr);
    ClearCapturedLog();
  }
  void TearDown() override {
    SetCapturedLogObserver(nullptr);
    OfficeApp = OfficeHost::None;
  }
  const std::wstring kPath = L"C:\\Users\\ann\\Filewell\\report.docx";
  FileStatusCache cache;
};
}  // namespace

TEST_F(SharedCache, AnAnswerKeepsAnUnsavedStateTheUiThreadStoredWhileTheAnswerWasApplied) {
  // The UI thread stores the unsaved state it read in the middle of the
  // update (the change tag of is_sync_file is logged between reading and
  // writing back).
  SetCapturedLogObserver([&](const CapturedLine& line) {
    if (line.message == L"5") cache.Change(kPath, [](FileStatusRecord& r) { r.isEditing = 1; });
  });
  cache.UpdateFile(kPath, SyncedAnswer(kPath, L"k3"));
  const FileStatusRecord record = *cache.Find(kPath);
  EXPECT_EQ(record.isEditing, 1u);
  EXPECT_EQ(record.sync.is_sync_file, 1u);
  EXPECT_EQ(record.sync.file_combo_id, L"k3");
}

TEST_F(SharedCache, AnAnswerKeepsAUserChoiceMadeWhileTheAnswerWasApplied) {
  SetCapturedLogObserver([&](const CapturedLine& line) {
    if (line.message == L"6") cache.Change(kPath, [](FileStatusRecord& r) { r.choices.Set(UserChoice::retryModify); });
  });
  cache.UpdateFile(kPath, SyncedAnswer(kPath, L"k3"));
  EXPECT_TRUE(cache.Find(kPath)->choices.Has(UserChoice::retryModify));
  EXPECT_NE(cache.BuildRequest(L"", false).find(L"\"retryModify\":true"), std::wstring::npos);
}

TEST_F(SharedCache, AnAnswerThatChangesTheReportClearsTheDrawnMarkAndCountsAVersion) {
  cache.Change(kPath, [](FileStatusRecord& r) { r.overlayUpToDate = 1; });
  cache.UpdateFile(kPath, SyncedAnswer(kPath, L"k3"));
  EXPECT_EQ(cache.Find(kPath)->overlayUpToDate, 0u);
  EXPECT_EQ(cache.Find(kPath)->syncVersion, 1u);
  cache.Change(kPath, [](FileStatusRecord& r) { r.overlayUpToDate = 1; });
  cache.UpdateFile(kPath, SyncedAnswer(kPath, L"k3"));  // nothing new
  EXPECT_EQ(cache.Find(kPath)->overlayUpToDate, 1u);
  EXPECT_EQ(cache.Find(kPath)->syncVersion, 1u);
}

TEST_F(SharedCache, StoringUiChangesWritesOnlyTheFieldsTheCopyChanged) {
  const FileStatusRecord before = *cache.Find(kPath);
  FileStatusRecord after = before;
  after.isEditing = 1;
  after.seenStamp = L"tick 7";
  after.choices.Set(UserChoice::reloadPromptPlain);
  // Meanwhile a window procedure stored a choice and an answer arrived.
  cache.Change(kPath, [](FileStatusRecord& r) { r.choices.Set(UserChoice::downloadRequested); });
  cache.UpdateFile(kPath, SyncedAnswer(kPath, L"k3"));

  ASSERT_TRUE(cache.StoreUiChanges(kPath, before, after));
  const FileStatusRecord stored = *cache.Find(kPath);
  EXPECT_EQ(stored.isEditing, 1u);
  EXPECT_EQ(stored.seenStamp, L"tick 7");
  EXPECT_TRUE(stored.choices.Has(UserChoice::reloadPromptPlain));
  EXPECT_TRUE(stored.choices.Has(UserChoice::downloadRequested));
  EXPECT_EQ(stored.sync.file_combo_id, L"k3");
}

TEST_F(SharedCache, StoringUiChangesClearsAFieldTheCopyCleared) {
  cache.Change(kPath, [](FileStatusRecord& r) {
    r.choices.Set(UserChoice::skipNextUpdate);
    r.choices.Set(UserChoice::uiHide);
  });
  const FileStatusRecord before = *cache.Find(kPath);
  FileStatusRecord after = before;
  after.choices.Set(UserChoice::skipNextUpdate, false);
  after.choices.Set(UserChoice::uiHide, false);
  ASSERT_TRUE(cache.StoreUiChanges(kPath, before, after));
  EXPECT_FALSE(cache.Find(kPath)->choices.Has(UserChoice::skipNextUpdate));
  EXPECT_FALSE(cache.Find(kPath)->choices.Has(UserChoice::uiHide));
}

TEST_F(SharedCache, ADrawingOfAnOlderReportDoesNotMarkTheRecordUpToDate) {
  const FileStatusRecord before = *cache.Find(kPath);
  FileStatusRecord after = before;
  after.isEditing = 1;
  after.overlayUpToDate = 1;
  cache.UpdateFile(kPath, SyncedAnswer(kPath, L"k3"));  // arrives while the UI draws the loading badge
  ASSERT_TRUE(cache.StoreUiChanges(kPath, before, after));
  EXPECT_EQ(cache.Find(kPath)->isEditing, 1u);
  EXPECT_EQ(cache.Find(kPath)->overlayUpToDate, 0u);
}

TEST_F(SharedCache, ADrawingOfTheCurrentReportMarksTheRecordUpToDate) {
  cache.UpdateFile(kPath, SyncedAnswer(kPath, L"k3"));
  const FileStatusRecord before = *cache.Find(kPath);
  FileStatusRecord after = before;
  after.overlayUpToDate = 1;
  ASSERT_TRUE(cache.StoreUiChanges(kPath, before, after));
  EXPECT_EQ(cache.Find(kPath)->overlayUpToDate, 1u);
}

TEST_F(SharedCache, StoringChangesOfARecordThatIsGoneDoesNotBringItBack) {
  const FileStatusRecord before = *cache.Find(kPath);
  FileStatusRecord after = before;
  after.isEditing = 1;
  cache.RemoveFile(kPath);
  EXPECT_FALSE(cache.StoreUiChanges(kPath, before, after));
  EXPECT_FALSE(cache.Change(kPath, [](FileStatusRecord& r) { r.choices.Set(UserChoice::uiHide); }));
  EXPECT_FALSE(cache.Contains(kPath));
}

TEST_F(SharedCache, ClosingARecordBuildsItsClosedRequestAndErasesItInOneStep) {
  CountingDispatch document;
  const std::wstring other = L"C:\\Users\\ann\\Filewell\\budget.xlsx";
  cache.AddFile(other, nullptr, 1, &document);
  cache.Change(other, [](FileStatusRecord& r) { r.sync.file_combo_id = L"b1"; });
  ClearCapturedLog();

  EXPECT_EQ(cache.CloseRecord(other),
            L"{\"files\":[{\"filepath\":\"C:\\Users\\ann\\Filewell\\budget.xlsx\",\"isOpen\":false,"
            L"\"isEditing\":true,\"resolveConflict\":false,\"retryModify\":false,\"retryRenameOrMove\":false,"
            L"\"retryDelete\":false,\"file_combo_id\":\"b1\",\"officeApp\":\"1\"}]}");
  EXPECT_FALSE(cache.Contains(other));
  EXPECT_EQ(document.references, 1);
  EXPECT_EQ(cache.BuildRequest(L"", false).find(L"budget.xlsx"), std::wstring::npos);
  EXPECT_EQ(CapturedMessages(false), std::vector<std::wstring>{L"file info removed from cache - " + other});
}

TEST_F(SharedCache, ClosingARecordThatIsNotThereBuildsNothing) {
  EXPECT_EQ(cache.CloseRecord(L"C:\\nope.docx"), L"");
  EXPECT_TRUE(CapturedMessages(false).empty());
}

TEST_F(SharedCache, PathsComeInKeyOrder) {
  cache.AddFile(L"C:\\b.docx", nullptr, 0, nullptr);
  cache.AddFile(L"C:\\a.docx", nullptr, 0, nullptr);
  EXPECT_EQ(cache.Paths(), (std::vector<std::wstring>{L"C:\\Users\\ann\\Filewell\\report.docx", L"C:\\a.docx",
                                                      L"C:\\b.docx"}));
  EXPECT_EQ(cache.Size(), 3u);
}

// One thread applies answers the way the update thread does while another
// works the records the way the UI thread does. Built with AddressSanitizer
// and, in the tsan preset, ThreadSanitizer, which reports any unguarded
// access.
TEST(SharedCacheStress, AnswersAndUiWorkNeverLoseAUiFieldNorBringBackARemovedRecord) {
  FileStatusCache cache;
  SetCapturedLogObserver(nullptr);
  std::vector<std::wstring> paths;
  for (int i = 0; i < 8; ++i) paths.push_back(L"C:\\Users\\ann\\Filewell\\doc" + std::to_wstring(i) + L".docx");
  const std::wstring removedForGood = paths.back();
  for (const std::wstring& path : paths) cache.AddFile(path, Window(0x10), 0, nullptr);

  // Millions of trace lines: counted, not kept.
  const CapturedLogPause pause;
  std::atomic<int> answersApplied{0};
  std::thread updates([&] {
    for (int n = 0; n < 10000; ++n) {
      std::vector<AnswerObject> objects;
      for (size_t i = 0; i < paths.size(); ++i) {
        objects.push_back({{L"file_path", paths[i]},
                           {L"is_sync_file", n % 2 ? L"true" : L"false"},
                           {L"file_combo_id", L"id" + std::to_wstring(n)},
                           {L"all_viewers_quid", n % 3 ? L"v1|v2" : L""},
                           {L"all_viewers_names", n % 3 ? L"Vi|Va" : L""}});
      }
      ApplyAnswer(cache, objects);
      cache.BuildRequest(L"", false);
      ++answersApplied;
    }
  });

  std::mt19937 random(12345);
  int lostFields = 0;
  int broughtBack = 0;
  int step = 0;
  // At least 2,000 rounds of UI work, and on until every answer is in.
  while (step < 2000 || answersApplied.load() < 10000) {
    ++step;
    const std::wstring& path = paths[random() % (paths.size() - 1)];
    const auto value = static_cast<std::int32_t>(step);
    switch (random() % 5) {
      case 0: {  // a tick: every record copied at once, its changes written back at once
        const std::wstring stamp = L"#" + std::to_wstring(value);
        const std::vector<FileStatusCache::TickEntry> entries = cache.TakeForTick({path}, stamp);
        std::vector<FileStatusRecord> working;
        working.reserve(entries.size());
        std::vector<FileStatusCache::UiChange> changes;
        for (const auto& entry : entries) {
          working.push_back(entry.record);
          working.back().isEditing = static_cast<std::uint32_t>(step % 2);
          working.back().choices.Set(UserChoice::skipNextUpdate);
          changes.push_back({&entry.path, &entry.record, &working.back()});
        }
        cache.StoreUiChangesOfAll(changes);
        const std::optional<FileStatusRecord> stored = cache.Find(path);
        if (stored && (stored->seenStamp != stamp || stored->isEditing != static_cast<std::uint32_t>(step % 2) ||
                       stored->choices.Has(UserChoice::skipNextUpdate) != 1)) {
          ++lostFields;
        }
        break;
      }
      case 1: {  // a click: flags set in place
        cache.Change(path, [&](FileStatusRecord& r) {
          r.choices.Set(UserChoice::uiHide, step % 2);
          r.choices.Set(UserChoice::retryModify);
        });
        const std::optional<FileStatusRecord> stored = cache.Find(path);
        if (stored && (stored->choices.Has(UserChoice::uiHide) != static_cast<std::uint32_t>(step % 2) || stored->choices.Has(UserChoice::retryModify) != 1)) {
          ++lostFields;
        }
        break;
      }
      case 2:  // the choices cleared as a panel state is drawn
        cache.Change(path, [](FileStatusRecord& r) {
          ResetUserActionFlags(r);
          r.choices.Set(UserChoice::skipNextUpdate, false);
        });
        if (const auto stored = cache.Find(path); stored && (stored->choices.Has(UserChoice::retryModify) || stored->choices.Has(UserChoice::skipNextUpdate))) {
          ++lostFields;
        }
        break;
      case 3:  // the document closes
        cache.CloseRecord(path);
        if (cache.Contains(path)) ++broughtBack;
        break;
      default:  // and is opened again
        if (!cache.Contains(path)) cache.AddFile(path, Window(0x10), 1, nullptr);
        break;
    }
    if (step == 1000) cache.CloseRecord(removedForGood);
    if (step > 1000 && cache.Contains(removedForGood)) ++broughtBack;
  }
  updates.join();
  std::printf("%d answers applied while the UI thread took %d steps; %llu log lines\n", answersApplied.load(), step,
              CapturedLineCount());

  EXPECT_EQ(answersApplied.load(), 10000);
  EXPECT_EQ(lostFields, 0);
  EXPECT_EQ(broughtBack, 0);
  EXPECT_FALSE(cache.Contains(removedForGood));
  EXPECT_EQ(cache.BuildRequest(L"", false).find(removedForGood), std::wstring::npos);
}

TEST_F(SharedCache, TheTicksCopyStampsTheOpenDocumentsOnlyAndTakesTheLockOnce) {
  const std::wstring closed = L"C:\\Users\\ann\\Filewell\\a-closed.docx";
  const std::wstring other = L"C:\\Users\\ann\\Filewell\\budget.xlsx";
  cache.AddFile(closed, nullptr, 0, nullptr);
  cache.AddFile(other, nullptr, 1, nullptr);
  const std::uint64_t before = RecordLock::Acquisitions();
  const std::vector<FileStatusCache::TickEntry> entries = cache.TakeForTick({other, kPath}, L"tick 9");
  EXPECT_EQ(RecordLock::Acquisitions() - before, 1u);
  ASSERT_EQ(entries.size(), 3u);
  EXPECT_EQ(entries[0].path, closed);
  EXPECT_EQ(entries[0].record.seenStamp, L"");
  EXPECT_EQ(entries[1].path, other);
  EXPECT_EQ(entries[1].record.seenStamp, L"tick 9");
  EXPECT_EQ(entries[1].record.isEditing, 1u);
  EXPECT_EQ(entries[2].path, kPath);
  EXPECT_EQ(entries[2].record.seenStamp, L"tick 9");
  EXPECT_EQ(cache.Find(kPath)->seenStamp, L"tick 9");
  EXPECT_EQ(cache.Find(closed)->seenStamp, L"");
}

TEST_F(SharedCache, TheTicksWriteBackTakesTheLockOnceAndPassesARecordThatIsGone) {
  const std::wstring other = L"C:\\Users\\ann\\Filewell\\budget.xlsx";
  cache.AddFile(other, nullptr, 0, nullptr);
  const std::vector<FileStatusCache::TickEntry> entries = cache.TakeForTick({other, kPath}, L"tick 9");
  ASSERT_EQ(entries.size(), 2u);
  std::vector<FileStatusRecord> working{entries[0].record, entries[1].record};
  working[0].isEditing = 1;
  working[1].choices.Set(UserChoice::skipNextUpdate);
  working[1].overlayUpToDate = 1;
  cache.RemoveFile(other);
  const std::uint64_t before = RecordLock::Acquisitions();
  cache.StoreUiChangesOfAll({{&entries[0].path, &entries[0].record, &working[0]},
                             {&entries[1].path, &entries[1].record, &working[1]}});
  EXPECT_EQ(RecordLock::Acquisitions() - before, 1u);
  EXPECT_FALSE(cache.Contains(other));
  EXPECT_TRUE(cache.Find(kPath)->choices.Has(UserChoice::skipNextUpdate));
  EXPECT_EQ(cache.Find(kPath)->overlayUpToDate, 1u);
}
