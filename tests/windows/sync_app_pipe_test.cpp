// The pipe client against the simulated sync app: what goes over the pipe,
// how the answer is put together from its chunks, and how each way the sync
// app can fail is logged and answered with "ERROR".
#include <gtest/gtest.h>

#include "common/office_app.h"
#include "common/text.h"
#include "log/log_folder.h"
#include "synclink/answer_parser.h"
#include "synclink/file_status_cache.h"
#include "synclink/sync_app_pipe.h"
#include "tests/caller.h"
#include "tests/windows/sync_sim_process.h"
#include "tests/windows/wine_test_support.h"

namespace {
constexpr size_t kChunkUnits = SyncAppPipe::kChunkBytes / sizeof(wchar_t);

std::wstring LogonName() {
  wchar_t name[257];
  DWORD size = 257;
  return GetUserNameW(name, &size) ? std::wstring(name) : std::wstring();
}

// The request for one file, as the cache writes it.
const std::wstring kOneFileRequest =
    L"{\"files\":[{\"filepath\":\"C:\\Users\\ann\\Filewell\\report.docx\",\"isOpen\":true,\"isEditing\":false,"
    L"\"resolveConflict\":false,\"retryModify\":false,\"retryRenameOrMove\":false,\"retryDelete\":false,"
    L"\"file_combo_id\":\"\",\"officeApp\":\"1\"}]}";

// An answer text of exactly `units` units that passes the frame check, its
// filler counting 0-9 so a lost or doubled unit anywhere shows.
std::wstring AnswerOfLength(size_t units) {
  const std::wstring head = L"{\"resp\":[{\"file_path\":\"";
  const std::wstring tail = L"\"}]}";
  std::wstring text = head;
  for (size_t i = 0; text.size() + tail.size() < units; ++i) text += static_cast<wchar_t>(L'0' + i % 10);
  return text + tail;
}

// Equality of long texts without printing them whole.
testing::AssertionResult SameText(const std::wstring& actual, const std::wstring& expected) {
  if (actual == expected) return testing::AssertionSuccess();
  size_t at = 0;
  while (at < actual.size() && at < expected.size() && actual[at] == expected[at]) ++at;
  return testing::AssertionFailure() << "lengths " << actual.size() << " and " << expected.size()
                                     << ", first difference at unit " << at << ": \""
                                     << Narrow(actual.substr(at, 40)) << "\" instead of \""
                                     << Narrow(expected.substr(at, 40)) << "\"";
}

class SyncAppPipeTest : public testing::Test {
 protected:
  void SetUp() override {
    OfficeApp = OfficeHost::Word;
    StartFreshLog();
  }
  void TearDown() override {
    syncSim_.Stop();
    InitLogFolder();
    DeleteLogFiles();
  }
  // The Info and Error lines of the log (Debug lines never reach the file).
  static std::vector<std::string> Logged() { return LogMessages(LogFilePath()); }

  // Starts syncsim answering with exactly `answer` after its leading unit.
  void ServeFixedAnswer(const std::wstring& answer, const std::wstring& moreArguments = L"", Caller caller = {}) {
    TRACE_CALLER(caller);
    const std::wstring path = FreshTempPath(L"syncsim-answer.txt");
    WriteUtf8File(path, answer);
    ASSERT_TRUE(syncSim_.Start(L"--answer-file " + Quoted(path) + L" " + moreArguments));
  }
  void ServeScenario(const std::wstring& scenario, const std::wstring& moreArguments = L"", Caller caller = {}) {
    TRACE_CALLER(caller);
    const std::wstring path = FreshTempPath(L"syncsim-scenario.txt");
    WriteUtf8File(path, scenario);
    ASSERT_TRUE(syncSim_.Start(L"--scenario " + Quoted(path) + L" " + moreArguments));
  }

  SyncSimProcess syncSim_;
  SyncAppPipe pipe_;
};
}  // namespace

TEST_F(SyncAppPipeTest, NamesThePipeAfterTheWindowsUser) {
  pipe_.Exchange(kOneFileRequest);
  EXPECT_EQ(Narrow(pipe_.pipeName()), "\\\\.\\pipe\\FilewellSync-MSOfficeIntegration-" + Narrow(LogonName()));
  EXPECT_EQ(Narrow(WindowsUserName()), Narrow(LogonName()));
}

TEST_F(SyncAppPipeTest, WithoutTheSyncAppEachExchangeLogsFileNotFoundAndReturnsError) {
  EXPECT_EQ(Narrow(pipe_.Exchange(kOneFileRequest)), "ERROR");
  EXPECT_EQ(Narrow(pipe_.Exchange(kOneFileRequest)), "ERROR");
  EXPECT_EQ(Logged(), (std::vector<std::string>{"Could not open pipe. errcode=2", "Could not open pipe. errcode=2"}));
}

TEST_F(SyncAppPipeTest, AsksWindowsForTheUserNameOnlyOnceEvenWhenTheFirstExchangeFails) {
  EXPECT_EQ(Narrow(pipe_.Exchange(kOneFileRequest)), "ERROR");
  EXPECT_EQ(Narrow(pipe_.Exchange(kOneFileRequest)), "ERROR");
  SyncAppPipe another;
  EXPECT_EQ(Narrow(another.Exchange(kOneFileRequest)), "ERROR");
  EXPECT_EQ(SyncAppPipe::UserNameQueries(), 1);
}

TEST_F(SyncAppPipeTest, SendsTheCacheRequestTextFollowedByOneNulUnit) {
  FileStatusCache cache;
  cache.AddFile(L"C:\\Users\\ann\\Filewell\\b\u00e9ta \"draft\".docx", nullptr, 1, nullptr);
  cache.AddFile(L"C:\\Users\\ann\\Filewell\\alpha.xlsx", nullptr, 0, nullptr);
  const std::wstring request = cache.BuildRequest(L"", 0);
  const std::wstring textRecord = FreshTempPath(L"syncsim-requests.txt");
  const std::wstring rawRecord = FreshTempPath(L"syncsim-requests.bin");
  ServeScenario(L"", L"--record " + Quoted(textRecord) + L" --record-raw " + Quoted(rawRecord));

  EXPECT_EQ(Narrow(pipe_.Exchange(request)), "{\"resp\":[]}");

  const std::string raw = ReadFileBytes(rawRecord);
  EXPECT_EQ(raw.size(), (request.size() + 1) * 2);
  std::string expected(reinterpret_cast<const char*>(request.c_str()), (request.size() + 1) * sizeof(wchar_t));
  EXPECT_EQ(raw, expected);
  EXPECT_EQ(ReadFileBytes(textRecord), ToUtf8(request) + "\n");
}

TEST_F(SyncAppPipeTest, ReturnsTheKnownFilesInRequestOrderWithoutTheLeadingUnit) {
  ServeScenario(
      L"file C:\\b.docx\nset is_sync_file=true\nset file_combo_id=k3v9x\n"
      L"file C:\\a.docx\nset is_sync_file=false\n");
  const std::wstring request =
      L"{\"files\":["
      L"{\"filepath\":\"C:\\b.docx\",\"isOpen\":true,\"isEditing\":false,\"resolveConflict\":false,"
      L"\"retryModify\":false,\"retryRenameOrMove\":false,\"retryDelete\":false,\"file_combo_id\":\"\","
      L"\"officeApp\":\"1\"},"
      L"{\"filepath\":\"C:\\unknown.docx\",\"isOpen\":true,\"isEditing\":false,\"resolveConflict\":false,"
      L"\"retryModify\":false,\"retryRenameOrMove\":false,\"retryDelete\":false,\"file_combo_id\":\"\","
      L"\"officeApp\":\"1\"},"
      L"{\"filepath\":\"C:\\a.docx\",\"isOpen\":true,\"isEditing\":false,\"resolveConflict\":false,"
      L"\"retryModify\":false,\"retryRenameOrMove\":false,\"retryDelete\":false,\"file_combo_id\":\"\","
      L"\"officeApp\":\"1\"}]}";

  const std::wstring answer = pipe_.Exchange(request);

  EXPECT_EQ(Narrow(answer),
            "{\"resp\":[{\"file_path\":\"C:\\b.docx\",\"is_sync_file\":\"true\",\"file_combo_id\":\"k3v9x\"},"
            "{\"file_path\":\"C:\\a.docx\",\"is_sync_file\":\"false\"}]}");
  const auto objects = ParseAnswer(answer);
  ASSERT_EQ(objects.size(), 2u);
  EXPECT_EQ(Narrow(objects[0].at(L"file_path")), "C:\\b.docx");
  EXPECT_EQ(Narrow(objects[1].at(L"file_path")), "C:\\a.docx");
  EXPECT_TRUE(Logged().empty());
}

TEST_F(SyncAppPipeTest, DropsTheFirstUnitEvenWhenItIsNul) {
  const std::wstring answer = AnswerOfLength(100);
  ServeFixedAnswer(answer, L"--lead 0");
  EXPECT_TRUE(SameText(pipe_.Exchange(kOneFileRequest), answer));
}

TEST_F(SyncAppPipeTest, JoinsAnAnswerOfSeveralChunksDroppingOnlyTheFirstUnitOfTheFirst) {
  // Four chunks, the last one partly filled.
  const std::wstring answer = AnswerOfLength(3 * kChunkUnits + 1000);
  ServeFixedAnswer(answer);
  EXPECT_TRUE(SameText(pipe_.Exchange(kOneFileRequest), answer));
  EXPECT_TRUE(Logged().empty());
}

TEST_F(SyncAppPipeTest, AppendsAFirstChunkThatFillsTheWholeBufferUpToItsEnd) {
  // With its leading unit the message is exactly one full chunk: no NUL
  // inside the buffer.
  const std::wstring answer = AnswerOfLength(kChunkUnits - 1);
  ServeFixedAnswer(answer);
  EXPECT_TRUE(SameText(pipe_.Exchange(kOneFileRequest), answer));
}

TEST_F(SyncAppPipeTest, AppendsLaterChunksThatFillTheWholeBufferUpToTheirEnd) {
  const std::wstring answer = AnswerOfLength(3 * kChunkUnits - 1);
  ServeFixedAnswer(answer);
  EXPECT_TRUE(SameText(pipe_.Exchange(kOneFileRequest), answer));
}

TEST_F(SyncAppPipeTest, ReceivesAnAnswerLargerThanOneMegabyteWhole) {
  constexpr size_t kPadUnits = 600000;
  ServeScenario(L"file C:\\Users\\ann\\Filewell\\report.docx\nset is_sync_file=true\n",
                L"--pad " + std::to_wstring(kPadUnits));
  const std::wstring expected = L"{\"resp\":[{\"file_path\":\"C:\\Users\\ann\\Filewell\\report.docx\","
                                L"\"is_sync_file\":\"true\",\"pad\":\"" +
                                std::wstring(kPadUnits, L'x') + L"\"}]}";
  ASSERT_GT(expected.size() * sizeof(wchar_t), 1024u * 1024u);

  const std::wstring answer = pipe_.Exchange(kOneFileRequest);

  EXPECT_TRUE(SameText(answer, expected));
  EXPECT_EQ(ParseAnswer(answer).size(), 1u);
}

TEST_F(SyncAppPipeTest, WaitsForASlowAnswer) {
  const std::wstring answer = AnswerOfLength(300);
  ServeFixedAnswer(answer, L"--delay 1500");
  EXPECT_TRUE(SameText(pipe_.Exchange(kOneFileRequest), answer));
  EXPECT_TRUE(Logged().empty());
}

TEST_F(SyncAppPipeTest, GivesUpOnAPipeThatStaysBusyWithTheWaitTimeout) {
  ServeScenario(L"", L"--busy");
  EXPECT_EQ(Narrow(pipe_.Exchange(kOneFileRequest)), "ERROR");
  EXPECT_EQ(Logged(), (std::vector<std::string>{"Wait time over, could not open pipe. errcode=121"}));
}

TEST_F(SyncAppPipeTest, KeepsTryingWhileTheSyncAppFreesAnInstanceInTime) {
  const std::wstring answer = AnswerOfLength(200);
  ServeFixedAnswer(answer, L"--busy-ms 1000");
  EXPECT_TRUE(SameText(pipe_.Exchange(kOneFileRequest), answer));
  EXPECT_TRUE(Logged().empty());
}

TEST_F(SyncAppPipeTest, LogsAReadFailureWhenTheSyncAppHangsUpMidAnswer) {
  ServeFixedAnswer(AnswerOfLength(5 * kChunkUnits), L"--cut-answer");
  EXPECT_EQ(Narrow(pipe_.Exchange(kOneFileRequest)), "ERROR");
  EXPECT_EQ(Logged(), (std::vector<std::string>{"read msg failed. errcode=233"}));
}

TEST_F(SyncAppPipeTest, LogsAReadFailureWhenTheSyncAppHangsUpWithoutAnswering) {
  ServeScenario(L"", L"--hang-up");
  EXPECT_EQ(Narrow(pipe_.Exchange(kOneFileRequest)), "ERROR");
  EXPECT_EQ(Logged(), (std::vector<std::string>{"read msg failed. errcode=233"}));
}

TEST_F(SyncAppPipeTest, HandsGarbageToTheAnswerReaderWhichRejectsIt) {
  ServeScenario(L"", L"--garbage");
  const std::wstring answer = pipe_.Exchange(kOneFileRequest);
  EXPECT_EQ(Narrow(answer), "Internal error 0x80004005");
  EXPECT_TRUE(ParseAnswer(answer).empty());
  EXPECT_TRUE(Logged().empty());
}

TEST_F(SyncAppPipeTest, LogsARefusedMessageReadModeAndReturnsError) {
  ServeScenario(L"", L"--byte-mode");
  EXPECT_EQ(Narrow(pipe_.Exchange(kOneFileRequest)), "ERROR");
  EXPECT_EQ(Logged(), (std::vector<std::string>{"setting msg-read mode failed. errcode=87"}));
}

TEST_F(SyncAppPipeTest, UsesTheSamePipeAgainAfterAFailure) {
  ServeScenario(L"", L"--hang-up --max-requests 1");
  EXPECT_EQ(Narrow(pipe_.Exchange(kOneFileRequest)), "ERROR");
  syncSim_.Stop();
  const std::wstring answer = AnswerOfLength(50);
  ServeFixedAnswer(answer);
  EXPECT_TRUE(SameText(pipe_.Exchange(kOneFileRequest), answer));
}
