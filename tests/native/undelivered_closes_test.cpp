// Closes the sync app has not confirmed: kept until an answered request
// carried them, withdrawn when the document opens again, and bounded.
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "common/office_app.h"
#include "synclink/file_status_cache.h"
#include "synclink/undelivered_closes.h"
#include "tests/native/captured_log.h"

namespace {
const std::wstring kReport = L"C:\\Users\\ann\\Filewell\\report.docx";
const std::wstring kNotes = L"C:\\Users\\ann\\Filewell\\notes.docx";

std::wstring Object(const std::wstring& path, bool open) {
  return L"{\"filepath\":\"" + path + L"\",\"isOpen\":" + (open ? L"true" : L"false") +
         L",\"isEditing\":false,\"resolveConflict\":false,\"retryModify\":false,\"retryRenameOrMove\":false,"
         L"\"retryDelete\":false,\"file_combo_id\":\"\",\"officeApp\":\"1\"}";
}

// A close whose own exchange went unanswered: from now on it rides with
// every request.
std::uint64_t KeepUnanswered(UndeliveredCloses& closes, const std::wstring& path, const std::wstring& object) {
  std::vector<std::wstring> forgotten;
  const std::uint64_t id = closes.Keep(path, object, forgotten);
  std::vector<std::wstring> delivered;
  closes.Settle({id}, false, delivered);
  return id;
}

class UndeliveredClosesInCache : public testing::Test {
 protected:
  void SetUp() override {
    OfficeApp = OfficeHost::Word;
    ClearCapturedLog();
  }
  void TearDown() override { OfficeApp = OfficeHost::None; }

  // The update request and the closes it carried.
  std::wstring UpdateRequest(std::vector<std::uint64_t>& carried) { return cache.BuildUpdateRequest(carried); }

  FileStatusCache cache;
};
}  // namespace

TEST(UndeliveredCloses, AreCarriedOldestFirstAfterTheObjectsAlreadyListed) {
  UndeliveredCloses closes;
  const std::uint64_t first = KeepUnanswered(closes, L"a", L"{A}");
  const std::uint64_t second = KeepUnanswered(closes, L"b", L"{B}");
  std::wstring request = L"{\"files\":[{X}";
  std::vector<std::uint64_t> carried;

  closes.AppendTo(request, 1, carried);

  EXPECT_EQ(request, L"{\"files\":[{X},{A},{B}");
  EXPECT_EQ(carried, (std::vector<std::uint64_t>{first, second}));
  EXPECT_GE(closes.AppendedLength(), std::wstring(L",{A},{B}").size());
}

TEST(UndeliveredCloses, StartAListWithoutASeparatorWhenNothingIsListedYet) {
  UndeliveredCloses closes;
  KeepUnanswered(closes, L"a", L"{A}");
  std::wstring request = L"[";
  std::vector<std::uint64_t> carried;
  closes.AppendTo(request, 0, carried);
  EXPECT_EQ(request, L"[{A}");
}

TEST(UndeliveredCloses, AreNotCarriedWhileTheirOwnExchangeIsUnderWay) {
  UndeliveredCloses closes;
  std::vector<std::wstring> forgotten;
  closes.Keep(L"a", L"{A}", forgotten);
  std::wstring request = L"[";
  std::vector<std::uint64_t> carried;

  closes.AppendTo(request, 0, carried);

  EXPECT_EQ(request, L"[");
  EXPECT_TRUE(carried.empty());
  EXPECT_TRUE(closes.Holds(L"a"));
}

TEST(UndeliveredCloses, StayWhenTheExchangeThatCarriedThemWasNotAnswered) {
  UndeliveredCloses closes;
  std::vector<std::wstring> forgotten;
  const std::uint64_t id = closes.Keep(L"a", L"{A}", forgotten);
  std::vector<std::wstring> delivered{L"sentinel"};

  closes.Settle({id}, false, delivered);

  EXPECT_EQ(delivered, std::vector<std::wstring>{L"sentinel"});
  EXPECT_TRUE(closes.Holds(L"a"));
}

TEST(UndeliveredCloses, GoOnlyOnceTheExchangeThatCarriedThemWasAnswered) {
  UndeliveredCloses closes;
  std::vector<std::wstring> forgotten;
  const std::uint64_t a = closes.Keep(L"a", L"{A}", forgotten);
  closes.Keep(L"b", L"{B}", forgotten);  // kept after that request was built
  std::vector<std::wstring> delivered;

  closes.Settle({a}, true, delivered);

  EXPECT_EQ(delivered, std::vector<std::wstring>{L"a"});
  EXPECT_FALSE(closes.Holds(L"a"));
  EXPECT_TRUE(closes.Holds(L"b"));
  EXPECT_EQ(closes.size(), 1u);
}

TEST(UndeliveredCloses, ACloseCarriedEarlierAndReplacedSinceStaysUntilItsOwnDelivery) {
  UndeliveredCloses closes;
  std::vector<std::wstring> forgotten;
  const std::uint64_t old = KeepUnanswered(closes, L"a", L"{A1}");
  KeepUnanswered(closes, L"a", L"{A2}");  // opened and closed again
  std::vector<std::wstring> delivered;

  closes.Settle({old}, true, delivered);

  EXPECT_TRUE(delivered.empty());
  std::wstring request;
  std::vector<std::uint64_t> carried;
  closes.AppendTo(request, 0, carried);
  EXPECT_EQ(request, L"{A2}");
}

TEST(UndeliveredCloses, AreWithdrawnWhenTheDocumentOpensAgain) {
  UndeliveredCloses closes;
  std::vector<std::wstring> forgotten;
  closes.Keep(L"a", L"{A}", forgotten);
  EXPECT_TRUE(closes.Forget(L"a"));
  EXPECT_FALSE(closes.Forget(L"a"));
  EXPECT_EQ(closes.size(), 0u);
}

TEST(UndeliveredCloses, ForgetTheOldestBeyondTheirBound) {
  UndeliveredCloses closes;
  std::vector<std::wstring> forgotten;
  for (size_t i = 0; i < UndeliveredCloses::kMaxCloses; ++i) closes.Keep(std::to_wstring(i), L"{}", forgotten);
  EXPECT_TRUE(forgotten.empty());

  closes.Keep(L"one more", L"{}", forgotten);

  EXPECT_EQ(forgotten, std::vector<std::wstring>{L"0"});
  EXPECT_EQ(closes.size(), UndeliveredCloses::kMaxCloses);
  EXPECT_FALSE(closes.Holds(L"0"));
  EXPECT_TRUE(closes.Holds(L"1"));
  EXPECT_TRUE(closes.Holds(L"one more"));
}

TEST(AnswerConfirmsRequest, OnlyForAnAnswerWithItsFrame) {
  EXPECT_TRUE(AnswerConfirmsRequest(L"{\"resp\":[]}"));
  EXPECT_TRUE(AnswerConfirmsRequest(L"{\"resp\":[{\"file_path\":\"C:\\a\"}]}"));
  EXPECT_FALSE(AnswerConfirmsRequest(L"ERROR"));
  EXPECT_FALSE(AnswerConfirmsRequest(L""));
  EXPECT_FALSE(AnswerConfirmsRequest(L"{\"resp\":[{\"file_pa"));
  EXPECT_FALSE(AnswerConfirmsRequest(L"Internal error 0x80004005"));
}

TEST_F(UndeliveredClosesInCache, TheCloseRequestIsUnchangedAndTheCloseIsKept) {
  cache.AddFile(kReport, nullptr, 0, nullptr);
  std::uint64_t id = 0xdeadbeef;

  EXPECT_EQ(cache.CloseRecord(kReport, &id), L"{\"files\":[" + Object(kReport, false) + L"]}");

  EXPECT_NE(id, 0xdeadbeefu);
  EXPECT_EQ(cache.UndeliveredCloseCount(), 1u);
  // Nor does the update request while the close's own exchange is under way.
  std::vector<std::uint64_t> carried;
  EXPECT_EQ(UpdateRequest(carried), L"{\"files\":[]}");
  EXPECT_TRUE(carried.empty());
  // The UI's requests never carry it; only the update thread's do.
  EXPECT_EQ(cache.BuildRequest(L"", false), L"{\"files\":[]}");
}

TEST_F(UndeliveredClosesInCache, AnAnsweredCloseIsNotCarriedByTheUpdateRequest) {
  cache.AddFile(kReport, nullptr, 0, nullptr);
  std::uint64_t id = 0;
  cache.CloseRecord(kReport, &id);

  EXPECT_EQ(cache.SettleCloses({id}, true), std::vector<std::wstring>{kReport});

  std::vector<std::uint64_t> carried;
  EXPECT_EQ(UpdateRequest(carried), L"{\"files\":[]}");
  EXPECT_TRUE(carried.empty());
  EXPECT_EQ(cache.UndeliveredCloseCount(), 0u);
}

TEST_F(UndeliveredClosesInCache, TheUpdateRequestCarriesAnUnansweredCloseAfterTheOpenFilesUntilAnswered) {
  cache.AddFile(kReport, nullptr, 0, nullptr);
  cache.AddFile(kNotes, nullptr, 0, nullptr);
  std::uint64_t id = 0;
  cache.CloseRecord(kReport, &id);
  EXPECT_TRUE(cache.SettleCloses({id}, false).empty());
  const std::wstring withClose = L"{\"files\":[" + Object(kNotes, true) + L"," + Object(kReport, false) + L"]}";

  std::vector<std::uint64_t> carried;
  EXPECT_EQ(UpdateRequest(carried), withClose);
  EXPECT_TRUE(cache.SettleCloses(carried, false).empty());
  carried.clear();
  EXPECT_EQ(UpdateRequest(carried), withClose);
  EXPECT_EQ(cache.SettleCloses(carried, true), std::vector<std::wstring>{kReport});

  carried.clear();
  EXPECT_EQ(UpdateRequest(carried), L"{\"files\":[" + Object(kNotes, true) + L"]}");
  EXPECT_TRUE(carried.empty());
}

TEST_F(UndeliveredClosesInCache, ADocumentOpenedAgainWithdrawsItsCloseAndSaysSo) {
  cache.AddFile(kReport, nullptr, 0, nullptr);
  cache.CloseRecord(kReport);
  ClearCapturedLog();

  cache.AddFile(kReport, nullptr, 0, nullptr);

  std::vector<std::uint64_t> carried;
  EXPECT_EQ(UpdateRequest(carried), L"{\"files\":[" + Object(kReport, true) + L"]}");
  EXPECT_EQ(cache.UndeliveredCloseCount(), 0u);
  EXPECT_EQ(CapturedMessages(false), (std::vector<std::wstring>{L"undelivered close withdrawn, file open again - " + kReport,
                                                                L"file info stored in cache - " + kReport}));
}

TEST_F(UndeliveredClosesInCache, TheOldestCloseBeyondTheBoundIsDroppedWithAnError) {
  for (size_t i = 0; i <= UndeliveredCloses::kMaxCloses; ++i) {
    const std::wstring path = L"C:\\d" + std::to_wstring(i) + L".docx";
    cache.AddFile(path, nullptr, 0, nullptr);
    cache.CloseRecord(path);
  }
  EXPECT_EQ(cache.UndeliveredCloseCount(), UndeliveredCloses::kMaxCloses);
  const auto& log = CapturedLog();
  size_t dropped = 0;
  for (const CapturedLine& line : log) {
    if (line.message == L"too many undelivered closes, the oldest is dropped - C:\\d0.docx") {
      ++dropped;
      EXPECT_EQ(line.level, LogLevel::Error);
    }
  }
  EXPECT_EQ(dropped, 1u);
}
