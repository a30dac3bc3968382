// The cache's last act at disconnection: one last request for every file,
// as the simulated sync app receives it, then an empty cache.
#include <gtest/gtest.h>

#include "common/office_app.h"
#include "common/text.h"
#include "log/log_folder.h"
#include "synclink/file_status_cache.h"
#include "tests/caller.h"
#include "tests/windows/sync_sim_process.h"
#include "tests/windows/wine_test_support.h"

namespace {
class CacheRemoveAll : public testing::Test {
 protected:
  void SetUp() override {
    OfficeApp = OfficeHost::Excel;
    StartFreshLog();
    textRecord_ = FreshTempPath(L"syncsim-last-requests.txt");
    rawRecord_ = FreshTempPath(L"syncsim-last-requests.bin");
  }
  void TearDown() override {
    syncSim_.Stop();
    TheFileStatusCache().RemoveAll();
    InitLogFolder();
    DeleteLogFiles();
  }
  void StartSyncSim(Caller caller = {}) {
    TRACE_CALLER(caller);
    ASSERT_TRUE(syncSim_.Start(L"--record " + Quoted(textRecord_) + L" --record-raw " + Quoted(rawRecord_)));
  }

  SyncSimProcess syncSim_;
  std::wstring textRecord_;
  std::wstring rawRecord_;
};
}  // namespace

TEST_F(CacheRemoveAll, SendsOneLastRequestForEveryFileInKeyOrderWithoutUiHide) {
  FileStatusCache& cache = TheFileStatusCache();
  cache.AddFile(L"C:\\Users\\ann\\Filewell\\b.xlsx", nullptr, 1, nullptr);
  cache.AddFile(L"C:\\Users\\ann\\Filewell\\a.xlsx", nullptr, 0, nullptr);
  cache.Change(L"C:\\Users\\ann\\Filewell\\b.xlsx", [](FileStatusRecord& b) {
    b.sync.file_combo_id = L"k3v9x";
    b.choices.Set(UserChoice::retryModify);
    b.choices.Set(UserChoice::uiHide);
  });
  StartSyncSim();

  EXPECT_EQ(cache.RemoveAll(), 1);

  const std::string expected =
      "{\"files\":["
      "{\"filepath\":\"C:\\Users\\ann\\Filewell\\a.xlsx\",\"isOpen\":true,\"isEditing\":false,"
      "\"resolveConflict\":false,\"retryModify\":false,\"retryRenameOrMove\":false,\"retryDelete\":false,"
      "\"file_combo_id\":\"\",\"officeApp\":\"2\"},"
      "{\"filepath\":\"C:\\Users\\ann\\Filewell\\b.xlsx\",\"isOpen\":true,\"isEditing\":true,"
      "\"resolveConflict\":false,\"retryModify\":true,\"retryRenameOrMove\":false,\"retryDelete\":false,"
      "\"file_combo_id\":\"k3v9x\",\"officeApp\":\"2\"}]}";
  EXPECT_EQ(ReadFileBytes(textRecord_), expected + "\n");
  EXPECT_EQ(ReadFileBytes(rawRecord_).size(), (expected.size() + 1) * 2);
  EXPECT_TRUE(cache.Size() == 0);
  EXPECT_EQ(LogMessages(LogFilePath()), (std::vector<std::string>{
                                            "file info stored in cache - C:\\Users\\ann\\Filewell\\b.xlsx",
                                            "file info stored in cache - C:\\Users\\ann\\Filewell\\a.xlsx",
                                            "file info removed from cache - C:\\Users\\ann\\Filewell\\a.xlsx",
                                            "file info removed from cache - C:\\Users\\ann\\Filewell\\b.xlsx",
                                            "all file info removed from cache",
                                        }));
}

TEST_F(CacheRemoveAll, SendsAnEmptyFileListWhenTheCacheIsEmpty) {
  StartSyncSim();

  EXPECT_EQ(TheFileStatusCache().RemoveAll(), 1);

  EXPECT_EQ(ReadFileBytes(textRecord_), "{\"files\":[]}\n");
  EXPECT_EQ(ReadFileBytes(rawRecord_), std::string("{\0\"\0f\0i\0l\0e\0s\0\"\0:\0[\0]\0}\0\0\0", 26));
  EXPECT_EQ(LogMessages(LogFilePath()), (std::vector<std::string>{"all file info removed from cache"}));
}

TEST_F(CacheRemoveAll, EmptiesTheCacheEvenWithoutTheSyncApp) {
  TheFileStatusCache().AddFile(L"C:\\Users\\ann\\Filewell\\a.xlsx", nullptr, 0, nullptr);

  EXPECT_EQ(TheFileStatusCache().RemoveAll(), 1);

  EXPECT_TRUE(TheFileStatusCache().Size() == 0);
  EXPECT_EQ(LogMessages(LogFilePath()), (std::vector<std::string>{
                                            "file info stored in cache - C:\\Users\\ann\\Filewell\\a.xlsx",
                                            "file info removed from cache - C:\\Users\\ann\\Filewell\\a.xlsx",
                                            "Could not open pipe. errcode=2",
                                            "all file info removed from cache",
                                        }));
}
