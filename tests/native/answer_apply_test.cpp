#include <gtest/gtest.h>

#include "common/text.h"
#include "synclink/answer_apply.h"
#include "synclink/record_update.h"
#include "tests/native/captured_log.h"

namespace {
class ApplyAnswerTest : public testing::Test {
 protected:
  void SetUp() override {
    cache.AddFile(L"C:\\a.docx", reinterpret_cast<HWND>(0x10), 1, nullptr);
    ClearCapturedLog();
  }
  std::vector<std::wstring> DebugTags() {
    std::vector<std::wstring> tags;
    for (const auto& line : CapturedLog()) {
      if (line.level == LogLevel::Debug && line.message.size() <= 4) tags.push_back(line.message);
    }
    return tags;
  }
  // The parser traces keys and values at the same level as the change tags;
  // only what applying the answer logs is kept.
  void Apply(const std::wstring& answer) {
    const auto before = CapturedLog().size();
    const auto objects = ParseAnswer(answer);
    CapturedLog().resize(before);
    ApplyAnswer(cache, objects);
  }
  FileStatusCache cache;
};
}  // namespace

TEST_F(ApplyAnswerTest, WritesAFullAnswerWithItsChangeTagsInOrder) {
  cache.Change(L"C:\\a.docx", [&](FileStatusRecord& r) { r.overlayUpToDate = 1; });
  Apply(L"{\"resp\":[{\"file_path\":\"C:\\a.docx\",\"is_sync_file\":\"true\",\"file_combo_id\":\"k3\","
        L"\"is_internet_connected\":\"false\",\"is_loading_data_from_server\":\"false\","
        L"\"last_modified_by_quid\":\"q1\",\"last_modified_by\":\"Bo\",\"last_modified_time\":\"10:00\","
        L"\"is_download_present\":\"Downloading\",\"is_conflict_present\":\"true\",\"is_rename_present\":\"true\","
        L"\"is_move_present\":\"true\",\"is_folder_move_present\":\"true\",\"src\":\"old\",\"dest\":\"new\","
        L"\"is_delete_present\":\"true\",\"all_viewers_quid\":\"v1|v2\",\"all_viewers_names\":\"Vi|Va\","
        L"\"all_editors_quid\":\"e1\",\"all_editors_names\":\"Ed\"}]}");
  const FileStatusRecord r = *cache.Find(L"C:\\a.docx");
  EXPECT_EQ(DebugTags(), (std::vector<std::wstring>{L"5", L"6", L"7a", L"7b", L"8 a", L"8 b", L"9", L"10 a", L"11",
                                                    L"12", L"13 a", L"13 b", L"14", L"15", L"16", L"17", L"18"}));
  EXPECT_TRUE(cache.syncAppHasData);
  EXPECT_EQ(r.overlayUpToDate, 0u);
  EXPECT_EQ(r.sync.is_sync_file, 1u);
  EXPECT_EQ(r.sync.file_combo_id, L"k3");
  EXPECT_EQ(r.sync.is_internet_connected, 0u);
  EXPECT_EQ(r.sync.downloadState, 0);
  EXPECT_EQ(r.sync.dest, L"new");
  EXPECT_EQ(r.sync.viewersByQuid, (std::map<std::wstring, std::wstring>{{L"v1", L"Vi"}, {L"v2", L"Va"}}));
  EXPECT_EQ(r.sync.editorsByQuid, (std::map<std::wstring, std::wstring>{{L"e1", L"Ed"}}));
  // The thread passes the record's own window and editing state.
  EXPECT_EQ(r.hostWindow, reinterpret_cast<HWND>(0x10));
  EXPECT_EQ(r.isEditing, 1u);
  EXPECT_EQ(CapturedMessages().back(), L"windows cache updated");
}

TEST_F(ApplyAnswerTest, SetsAMissingInternetFlagToConnected) {
  cache.Change(L"C:\\a.docx", [&](FileStatusRecord& r) { r.sync.is_internet_connected = 0; });
  Apply(L"{\"resp\":[{\"file_path\":\"C:\\a.docx\"}]}");
  EXPECT_EQ(cache.Find(L"C:\\a.docx")->sync.is_internet_connected, 1u);
}

TEST_F(ApplyAnswerTest, ChangesTheDownloadStateOnlyOnceForTheSameText) {
  Apply(L"{\"resp\":[{\"file_path\":\"C:\\a.docx\",\"is_download_present\":\"Downloaded\"}]}");
  Apply(L"{\"resp\":[{\"file_path\":\"C:\\a.docx\",\"is_download_present\":\"Downloaded\"}]}");
  size_t tags = 0;
  for (const auto& tag : DebugTags()) tags += tag == L"10 b";
  EXPECT_EQ(tags, 1u);
  EXPECT_EQ(cache.Find(L"C:\\a.docx")->sync.downloadState, 1);
}

TEST_F(ApplyAnswerTest, MovesBetweenEveryDownloadStateAndIgnoresUnknownTexts) {
  const std::pair<const wchar_t*, int> steps[] = {{L"Download Failed", 3}, {L"Downloading", 0},
                                                  {L"Already Up-to-date", 2}, {L"Downloaded", 1},
                                                  {L"whatever", 1}, {L"", 1}, {L"Download Failed", 3}};
  for (const auto& [text, state] : steps) {
    Apply(std::wstring(L"{\"resp\":[{\"file_path\":\"C:\\a.docx\",\"is_download_present\":\"") + text + L"\"}]}");
    EXPECT_EQ(cache.Find(L"C:\\a.docx")->sync.downloadState, state) << text;
  }
  EXPECT_EQ(DebugTags(), (std::vector<std::wstring>{L"10 d", L"10 a", L"10 c", L"10 b", L"10 d"}));
}

TEST_F(ApplyAnswerTest, EmptiesTheViewersWhenTheirListBecomesEmpty) {
  Apply(L"{\"resp\":[{\"file_path\":\"C:\\a.docx\",\"all_viewers_quid\":\"v1\",\"all_viewers_names\":\"Vi\"}]}");
  ClearCapturedLog();
  cache.Change(L"C:\\a.docx", [&](FileStatusRecord& r) { r.overlayUpToDate = 1; });
  Apply(L"{\"resp\":[{\"file_path\":\"C:\\a.docx\",\"all_viewers_quid\":\"\",\"all_viewers_names\":\"\"}]}");
  EXPECT_TRUE(cache.Find(L"C:\\a.docx")->sync.viewersByQuid.empty());
  EXPECT_EQ(DebugTags(), (std::vector<std::wstring>{L"17"}));
  EXPECT_EQ(cache.Find(L"C:\\a.docx")->overlayUpToDate, 0u);
}

TEST_F(ApplyAnswerTest, DropsAnAnswerForAFileNotInTheCache) {
  Apply(L"{\"resp\":[{\"file_path\":\"C:\\other.docx\",\"is_sync_file\":\"true\"}]}");
  EXPECT_FALSE(cache.Contains(L"C:\\other.docx"));
  EXPECT_EQ(cache.Find(L"C:\\a.docx")->sync.is_sync_file, 0u);
  EXPECT_NE(std::find(CapturedMessages().begin(), CapturedMessages().end(), L"no, data doesn't exists"),
            CapturedMessages().end());
}

TEST_F(ApplyAnswerTest, TreatsErrorAsNoDataAndChangesNoRecord) {
  const FileStatusRecord before = *cache.Find(L"C:\\a.docx");
  Apply(L"ERROR");
  EXPECT_FALSE(cache.syncAppHasData);
  const FileStatusRecord after = *cache.Find(L"C:\\a.docx");
  EXPECT_EQ(after.sync.is_loading_data_from_server, before.sync.is_loading_data_from_server);
  EXPECT_EQ(after.sync.downloadState, before.sync.downloadState);
  EXPECT_EQ(DebugTags(), std::vector<std::wstring>{});
}

TEST_F(ApplyAnswerTest, LeavesAnUnchangedRecordMarkedAsDrawn) {
  Apply(L"{\"resp\":[{\"file_path\":\"C:\\a.docx\"}]}");
  cache.Change(L"C:\\a.docx", [&](FileStatusRecord& r) { r.overlayUpToDate = 1; });
  ClearCapturedLog();
  Apply(L"{\"resp\":[{\"file_path\":\"C:\\a.docx\"}]}");
  EXPECT_EQ(cache.Find(L"C:\\a.docx")->overlayUpToDate, 1u);
  EXPECT_TRUE(DebugTags().empty());
}

TEST(PairUsers, PairsIdentifiersAndNamesByPosition) {
  EXPECT_EQ(PairUsers(L"a|b|c", L"Ann|Bo|Cy"),
            (std::map<std::wstring, std::wstring>{{L"a", L"Ann"}, {L"b", L"Bo"}, {L"c", L"Cy"}}));
}

TEST(PairUsers, GivesAnIdentifierWithoutANameAnEmptyName) {
  EXPECT_EQ(PairUsers(L"a|b", L"Ann"), (std::map<std::wstring, std::wstring>{{L"a", L"Ann"}, {L"b", L""}}));
}

TEST_F(ApplyAnswerTest, GoesOnWithTheNextFileWhenARecordIsDroppedWhileTheAnswerIsApplied) {
  cache.AddFile(L"C:\\b.docx", nullptr, 0, nullptr);
  // The UI thread closes a.docx right after the update thread found it.
  bool closed = false;
  SetCapturedLogObserver([&](const CapturedLine& line) {
    if (line.message == L"yes, data exists" && !closed) {
      closed = true;
      cache.RemoveFile(L"C:\\a.docx");
    }
  });
  Apply(L"{\"resp\":[{\"file_path\":\"C:\\a.docx\",\"is_sync_file\":\"true\"},"
        L"{\"file_path\":\"C:\\b.docx\",\"is_sync_file\":\"true\"}]}");
  SetCapturedLogObserver(nullptr);

  EXPECT_FALSE(cache.Contains(L"C:\\a.docx"));
  EXPECT_EQ(cache.Find(L"C:\\b.docx")->sync.is_sync_file, 1u);
  for (const auto& line : CapturedLog()) EXPECT_NE(line.level, LogLevel::Error) << ToUtf8(line.message);
}
