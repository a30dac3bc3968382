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

TEST_F(SharedCache, AnAnswerKeepsAWindowTheUiThreadStoredWhileTheAnswerWasApplied) {
  // The UI thread stores its new badge in the middle of the update (the
  // change tag of is_sync_file is logged between reading and writing back).
  SetCapturedLogObserver([&](const CapturedLine& line) {
    if (line.message == L"5") cache.Change(kPath, [](FileStatusRecord& r) { r.badgeWindow = Window(0xB0); });
  });
  cache.UpdateFile(kPath, SyncedAnswer(kPath, L"k3"));
  const FileStatusRecord record = *cache.Find(kPath);
  EXPECT_EQ(record.badgeWindow, Window(0xB0));
  EXPECT_EQ(record.sync.is_sync_file, 1u);
  EXPECT_EQ(record.sync.file_combo_id, L"k3");
}

TEST_F(SharedCache, AnAnswerKeepsAUserChoiceMadeWhileTheAnswerWasApplied) {
  SetCapturedLogObserver([&](const CapturedLine& line) {
    if (line.message == L"6") cache.Change(kPath, [](FileStatusRecord& r) { r.retryModify = 1; });
  });
  cache.UpdateFile(kPath, SyncedAnswer(kPath, L"k3"));
  EXPECT_EQ(cache.Find(kPath)->retryModify, 1u);
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
  after.subOverlayWindow = Window(0x5B);
  after.overlayKind = static_cast<int>(OverlayKind::SafeToEdit);
  after.posX = 860;
  after.posY = 640;
  // Meanwhile a window procedure stored the badge and an answer arrived.
  cache.Change(kPath, [](FileStatusRecord& r) { r.badgeWindow = Window(0xB0); });
  cache.UpdateFile(kPath, SyncedAnswer(kPath, L"k3"));

  ASSERT_TRUE(cache.StoreUiChanges(kPath, before, after));
  const FileStatusRecord stored = *cache.Find(kPath);
  EXPECT_EQ(stored.subOverlayWindow, Window(0x5B));
  EXPECT_EQ(static_cast<OverlayKind>(stored.overlayKind), OverlayKind::SafeToEdit);
  EXPECT_EQ(stored.posX, 860);
  EXPECT_EQ(stored.posY, 640);
  EXPECT_EQ(stored.badgeWindow, Window(0xB0));
  EXPECT_EQ(stored.sync.file_combo_id, L"k3");
}

TEST_F(SharedCache, StoringUiChangesClearsAFieldTheCopyCleared) {
  cache.Change(kPath, [](FileStatusRecord& r) {
    r.badgeWindow = Window(0xB0);
    r.uiHide = 1;
  });
  const FileStatusRecord before = *cache.Find(kPath);
  FileStatusRecord after = before;
  after.badgeWindow = nullptr;
  after.uiHide = 0;
  ASSERT_TRUE(cache.StoreUiChanges(kPath, before, after));
  EXPECT_EQ(cache.Find(kPath)->badgeWindow, nullptr);
  EXPECT_EQ(cache.Find(kPath)->uiHide, 0u);
}

TEST_F(SharedCache, ADrawingOfAnOlderReportDoesNotMarkTheRecordUpToDate) {
  const FileStatusRecord before = *cache.Find(kPath);
  FileStatusRecord after = before;
  after.overlayKind = static_cast<int>(OverlayKind::Loading);
  after.overlayUpToDate = 1;
  cache.UpdateFile(kPath, SyncedAnswer(kPath, L"k3"));  // arrives while the UI draws the loading badge
  ASSERT_TRUE(cache.StoreUiChanges(kPath, before, after));
  EXPECT_EQ(static_cast<OverlayKind>(cache.Find(kPath)->overlayKind), OverlayKind::Loading);
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
  after.badgeWindow = Window(0xB0);
  cache.RemoveFile(kPath);
  EXPECT_FALSE(cache.StoreUiChanges(kPath, before, after));
  EXPECT_FALSE(cache.Change(kPath, [](FileStatusRecord& r) { r.uiHide = 1; }));
  EXPECT_FALSE(cache.Contains(kPath));
}

TEST_F(SharedCache, ClosingARecordBuildsItsClosedRequestAndErasesItInOneStep) {
  CountingDispatch document;
  const std::wstring other = L"C:\\Users\\ann\\Filewell\\budget.xlsx";
  cache.AddFile(other, nullptr, 1, &document);
  cache.Change(other, [](FileStatusRecord& r) {
    r.overlayKind = static_cast<int>(OverlayKind::Editing);
    r.sync.file_combo_id = L"b1";
  });
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
      case 0: {  // a tick: windows and position stored through a copy
        std::optional<FileStatusRecord> before = cache.Find(path);
        if (!before) break;
        FileStatusRecord after = *before;
        after.badgeWindow = Window(0x1000 + step);
        after.subOverlayWindow = (step % 2) ? Window(0x2000 + step) : nullptr;
        after.posX = value;
        after.posY = -value;
        after.overlayKind = step % 9;
        cache.StoreUiChanges(path, *before, after);
        const std::optional<FileStatusRecord> stored = cache.Find(path);
        if (stored && (stored->badgeWindow != after.badgeWindow || stored->posX != value ||
                       stored->subOverlayWindow != after.subOverlayWindow || stored->overlayKind != step % 9)) {
          ++lostFields;
        }
        break;
      }
      case 1: {  // a click: flags set in place
        cache.Change(path, [&](FileStatusRecord& r) {
          r.uiHide = step % 2;
          r.retryModify = 1;
          r.buttonDown = 1;
        });
        const std::optional<FileStatusRecord> stored = cache.Find(path);
        if (stored && (stored->uiHide != static_cast<std::uint32_t>(step % 2) || stored->retryModify != 1)) {
          ++lostFields;
        }
        break;
      }
      case 2:  // the windows cleared as they are destroyed
        cache.Change(path, [](FileStatusRecord& r) {
          r.badgeWindow = nullptr;
          r.subOverlayWindow = nullptr;
        });
        if (const auto stored = cache.Find(path); stored && (stored->badgeWindow || stored->subOverlayWindow)) {
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
