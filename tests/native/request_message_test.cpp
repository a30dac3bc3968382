#include <gtest/gtest.h>

#include <type_traits>

#include "common/office_app.h"
#include "synclink/file_status_cache.h"
#include "synclink/request_message.h"
#include "tests/native/captured_log.h"

namespace {
class RequestMessage : public testing::Test {
 protected:
  void SetUp() override {
    OfficeApp = OfficeHost::Word;
    ClearCapturedLog();
  }
  FileStatusCache cache;
};
}  // namespace

TEST_F(RequestMessage, OfAnEmptyCacheIsAnEmptyFileList) {
  EXPECT_EQ(cache.BuildRequest(L"", false), L"{\"files\":[]}");
}

TEST_F(RequestMessage, ForAPathNotInTheCacheIsAnEmptyFileList) {
  cache.AddFile(L"C:\\a.docx", nullptr, 0, nullptr);
  EXPECT_EQ(cache.BuildRequest(L"C:\\b.docx", false), L"{\"files\":[]}");
}

TEST_F(RequestMessage, DescribesAnOpenEditedWordFileExactly) {
  cache.AddFile(L"C:\\Users\\ann\\Filewell\\report.docx", nullptr, 1, nullptr);
  EXPECT_EQ(cache.BuildRequest(L"", false),
            L"{\"files\":[{\"filepath\":\"C:\\Users\\ann\\Filewell\\report.docx\",\"isOpen\":true,\"isEditing\":true,"
            L"\"resolveConflict\":false,\"retryModify\":false,\"retryRenameOrMove\":false,\"retryDelete\":false,"
            L"\"file_combo_id\":\"\",\"officeApp\":\"1\"}]}");
}

TEST_F(RequestMessage, SeparatesTwoFilesWithOneCommaInKeyOrder) {
  cache.AddFile(L"C:\\b.xlsx", nullptr, 0, nullptr);
  cache.AddFile(L"C:\\a.xlsx", nullptr, 0, nullptr);
  OfficeApp = OfficeHost::Excel;
  const std::wstring request = cache.BuildRequest(L"", false);
  EXPECT_EQ(request,
            L"{\"files\":[{\"filepath\":\"C:\\a.xlsx\",\"isOpen\":true,\"isEditing\":false,\"resolveConflict\":false,"
            L"\"retryModify\":false,\"retryRenameOrMove\":false,\"retryDelete\":false,\"file_combo_id\":\"\","
            L"\"officeApp\":\"2\"},{\"filepath\":\"C:\\b.xlsx\",\"isOpen\":true,\"isEditing\":false,"
            L"\"resolveConflict\":false,\"retryModify\":false,\"retryRenameOrMove\":false,\"retryDelete\":false,"
            L"\"file_combo_id\":\"\",\"officeApp\":\"2\"}]}");
}

TEST_F(RequestMessage, SendsAQuoteInAPathUnescaped) {
  cache.AddFile(L"C:\\say \"hi\".pptx", nullptr, 0, nullptr);
  OfficeApp = OfficeHost::PowerPoint;
  EXPECT_EQ(cache.BuildRequest(L"", false).substr(0, 41), L"{\"files\":[{\"filepath\":\"C:\\say \"hi\".pptx\",");
}

TEST_F(RequestMessage, CarriesUiHideOnlyWhenAskedBetweenRetryDeleteAndTheId) {
  cache.AddFile(L"C:\\a.docx", nullptr, 0, nullptr);
  cache.Change(L"C:\\a.docx", [&](FileStatusRecord& r) { r.choices.Set(UserChoice::uiHide); });
  cache.Change(L"C:\\a.docx", [&](FileStatusRecord& r) { r.choices.Set(UserChoice::retryDelete); });
  cache.Change(L"C:\\a.docx", [&](FileStatusRecord& r) { r.sync.file_combo_id = L"k3v9x"; });
  EXPECT_EQ(cache.BuildRequest(L"C:\\a.docx", false).find(L"uiHide"), std::wstring::npos);
  EXPECT_EQ(cache.BuildRequest(L"C:\\a.docx", true),
            L"{\"files\":[{\"filepath\":\"C:\\a.docx\",\"isOpen\":true,\"isEditing\":false,\"resolveConflict\":false,"
            L"\"retryModify\":false,\"retryRenameOrMove\":false,\"retryDelete\":true,\"uiHide\":true,"
            L"\"file_combo_id\":\"k3v9x\",\"officeApp\":\"1\"}]}");
}

TEST_F(RequestMessage, WritesEveryChoiceFlagTheUserMade) {
  cache.AddFile(L"C:\\a.docx", nullptr, 0, nullptr);
  cache.Change(L"C:\\a.docx", [](FileStatusRecord& record) {
    record.isOpen = 0;
    record.choices.Set(UserChoice::resolveConflict);
    record.choices.Set(UserChoice::retryModify);
    record.choices.Set(UserChoice::retryRenameOrMove);
  });
  EXPECT_EQ(cache.BuildRequest(L"", false),
            L"{\"files\":[{\"filepath\":\"C:\\a.docx\",\"isOpen\":false,\"isEditing\":false,\"resolveConflict\":true,"
            L"\"retryModify\":true,\"retryRenameOrMove\":true,\"retryDelete\":false,\"file_combo_id\":\"\","
            L"\"officeApp\":\"1\"}]}");
}

TEST(RequestObjectLength, LeavesRoomForTheLongestObjectOfARecord) {
  FileStatusRecord record;  // every user choice false: the longest flags
  record.isOpen = 0;
  record.sync.file_combo_id = L"8f3c2a91-100042";
  const std::wstring path = L"C:\\Users\\ann\\Filewell\\report.docx";
  std::wstring object;
  AppendRequestObject(object, path, record, true, OfficeHost::PowerPoint);
  EXPECT_GE(MaxRequestObjectLength(path, record), object.size());
  EXPECT_LE(MaxRequestObjectLength(path, record), object.size() + 10);
}

TEST(BuildRequest, TakesWhetherToIncludeUiHideAsAYesOrNo) {
  static_assert(std::is_same_v<decltype(&FileStatusCache::BuildRequest),
                               std::wstring (FileStatusCache::*)(const std::wstring&, bool) const>,
                "the request either carries uiHide or it does not");
  FileStatusCache cache;
  EXPECT_EQ(cache.BuildRequest(L"", true), L"{\"files\":[]}");
}
