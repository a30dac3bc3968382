// The simulated sync app itself: its scenario rules, its instances and its
// stop conditions, seen through the add-in's own pipe client.
#include <gtest/gtest.h>

#include <algorithm>
#include <thread>

#include "common/text.h"
#include "common/unique_resource.h"
#include "synclink/sync_app_pipe.h"
#include "tests/caller.h"
#include "tests/windows/sync_sim_process.h"
#include "tests/windows/wine_test_support.h"

namespace {
std::wstring UsersPipeName() {
  wchar_t user[257];
  DWORD size = 257;
  return L"\\\\.\\pipe\\FilewellSync-MSOfficeIntegration-" + std::wstring(GetUserNameW(user, &size) ? user : L"");
}

std::wstring RequestFor(const std::wstring& path, bool retryModify = false, bool uiHide = false) {
  std::wstring request = L"{\"files\":[{\"filepath\":\"" + path +
                         L"\",\"isOpen\":true,\"isEditing\":false,\"resolveConflict\":false,\"retryModify\":";
  request += retryModify ? L"true" : L"false";
  request += L",\"retryRenameOrMove\":false,\"retryDelete\":false,";
  if (uiHide) request += L"\"uiHide\":true,";
  request += L"\"file_combo_id\":\"\",\"officeApp\":\"1\"}]}";
  return request;
}

class SyncSim : public testing::Test {
 protected:
  void TearDown() override { syncSim_.Stop(); }
  void ServeScenario(const std::wstring& scenario, const std::wstring& moreArguments = L"", Caller caller = {}) {
    TRACE_CALLER(caller);
    const std::wstring path = FreshTempPath(L"syncsim-scenario.txt");
    WriteUtf8File(path, scenario);
    ASSERT_TRUE(syncSim_.Start(L"--scenario " + Quoted(path) + L" " + moreArguments));
  }
  // The add-in's client, given time enough for syncsim's delays: the
  // client's own limits are not under test here.
  static std::wstring Exchange(SyncAppPipe& pipe, const std::wstring& request) {
    return pipe.Exchange([&] { return request; }, ExchangeBounds{10000});
  }
  std::string Exchange(const std::wstring& request) { return Narrow(Exchange(pipe_, request)); }

  SyncSimProcess syncSim_;
  SyncAppPipe pipe_;
};
}  // namespace

TEST_F(SyncSim, ChangesAFileAfterTheGivenNumberOfRequests) {
  ServeScenario(
      L"file C:\\r.docx\nset is_sync_file=true\nset is_download_present=Already Up-to-date\n"
      L"after 2\nset is_download_present=Downloaded\n");
  const std::string before = "{\"resp\":[{\"file_path\":\"C:\\r.docx\",\"is_sync_file\":\"true\","
                             "\"is_download_present\":\"Already Up-to-date\"}]}";
  EXPECT_EQ(Exchange(RequestFor(L"C:\\r.docx")), before);
  EXPECT_EQ(Exchange(RequestFor(L"C:\\r.docx")), before);
  EXPECT_EQ(Exchange(RequestFor(L"C:\\r.docx")),
            "{\"resp\":[{\"file_path\":\"C:\\r.docx\",\"is_sync_file\":\"true\","
            "\"is_download_present\":\"Downloaded\"}]}");
}

TEST_F(SyncSim, ChangesAFileFromTheFirstRequestThatCarriesItsFlagOn) {
  ServeScenario(
      L"file C:\\r.docx\nset is_sync_file=true\n"
      L"when retryModify\nset is_download_present=Downloading\n"
      L"when uiHide\nunset is_sync_file\n");
  EXPECT_EQ(Exchange(RequestFor(L"C:\\r.docx")), "{\"resp\":[{\"file_path\":\"C:\\r.docx\",\"is_sync_file\":\"true\"}]}");
  EXPECT_EQ(Exchange(RequestFor(L"C:\\r.docx", true)),
            "{\"resp\":[{\"file_path\":\"C:\\r.docx\",\"is_sync_file\":\"true\","
            "\"is_download_present\":\"Downloading\"}]}");
  // The sync app remembers what the user asked for.
  EXPECT_EQ(Exchange(RequestFor(L"C:\\r.docx")),
            "{\"resp\":[{\"file_path\":\"C:\\r.docx\",\"is_sync_file\":\"true\","
            "\"is_download_present\":\"Downloading\"}]}");
  EXPECT_EQ(Exchange(RequestFor(L"C:\\r.docx", false, true)),
            "{\"resp\":[{\"file_path\":\"C:\\r.docx\",\"is_download_present\":\"Downloading\"}]}");
}

TEST_F(SyncSim, WritesARawMemberAsItStands) {
  ServeScenario(L"file C:\\r.docx\nraw is_sync_file=true\n");
  EXPECT_EQ(Exchange(RequestFor(L"C:\\r.docx")), "{\"resp\":[{\"file_path\":\"C:\\r.docx\",\"is_sync_file\":true}]}");
}

TEST_F(SyncSim, LeavesOutUnknownFilesUnlessToldToReportThem) {
  ServeScenario(L"file C:\\r.docx\n");
  EXPECT_EQ(Exchange(RequestFor(L"C:\\R.docx")), "{\"resp\":[]}");
  syncSim_.Stop();
  ServeScenario(L"unknown-files report\n");
  EXPECT_EQ(Exchange(RequestFor(L"C:\\R.docx")),
            "{\"resp\":[{\"file_path\":\"C:\\R.docx\",\"is_sync_file\":\"false\"}]}");
}

TEST_F(SyncSim, ServesASecondClientWhileTheFirstWaitsForItsAnswer) {
  ServeScenario(L"file C:\\r.docx\nset is_sync_file=true\n", L"--delay 1500");
  const std::string expected = "{\"resp\":[{\"file_path\":\"C:\\r.docx\",\"is_sync_file\":\"true\"}]}";
  std::string first;
  std::thread other([&] {
    SyncAppPipe pipe;
    first = Narrow(Exchange(pipe, RequestFor(L"C:\\r.docx")));
  });
  EXPECT_EQ(Exchange(RequestFor(L"C:\\r.docx")), expected);
  other.join();
  EXPECT_EQ(first, expected);
}

TEST_F(SyncSim, EndsByItselfAfterTheGivenNumberOfRequests) {
  ServeScenario(L"", L"--max-requests 2");
  EXPECT_EQ(Exchange(RequestFor(L"C:\\r.docx")), "{\"resp\":[]}");
  EXPECT_EQ(Exchange(RequestFor(L"C:\\r.docx")), "{\"resp\":[]}");
  ASSERT_TRUE(syncSim_.WaitForExit(10000));
  EXPECT_EQ(syncSim_.ExitCode(), 0u);
}

TEST_F(SyncSim, RefusesToShareThePipeWithAnotherServer) {
  ServeScenario(L"");
  const ProcessResult second = RunProcess(Quoted(BinFolder() + L"\\syncsim.exe") +
                                          L" --run-ms 5000 --ready-event syncsim-second-ready"
                                          L" --stop-event syncsim-second-stop");
  EXPECT_EQ(second.exitCode, 3u) << second.output;
}

TEST_F(SyncSim, RejectsAScenarioLineItDoesNotKnow) {
  const std::wstring path = FreshTempPath(L"syncsim-bad-scenario.txt");
  WriteUtf8File(path, L"file C:\\r.docx\nsett is_sync_file=true\n");
  const ProcessResult result = RunProcess(Quoted(BinFolder() + L"\\syncsim.exe") + L" --scenario " + Quoted(path));
  EXPECT_EQ(result.exitCode, 2u);
  EXPECT_NE(result.output.find("scenario line 2: unknown directive 'sett'"), std::string::npos) << result.output;
}

TEST_F(SyncSim, NeverAnswersARequestItHasReadAndRecordedUntilItIsStopped) {
  const std::wstring record = FreshTempPath(L"syncsim-unanswered.txt");
  ServeScenario(L"", L"--never-answer --record " + Quoted(record));
  // A client of its own, so that only syncsim's behaviour is under test.
  UniqueFileHandle client(CreateFileW(UsersPipeName().c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr,
                                      OPEN_EXISTING, FILE_FLAG_OVERLAPPED, nullptr));
  ASSERT_TRUE(client) << GetLastError();
  DWORD mode = PIPE_READMODE_MESSAGE;
  ASSERT_TRUE(SetNamedPipeHandleState(client.get(), &mode, nullptr, nullptr));
  UniqueHandle ioEvent(CreateEventW(nullptr, TRUE, FALSE, nullptr));
  const std::wstring request = RequestFor(L"C:\\r.docx");
  OVERLAPPED write{};
  write.hEvent = ioEvent.get();
  DWORD bytes = 0xdeadbeef;
  if (!WriteFile(client.get(), request.c_str(), static_cast<DWORD>((request.size() + 1) * 2), nullptr, &write)) {
    ASSERT_EQ(GetLastError(), static_cast<DWORD>(ERROR_IO_PENDING));
  }
  ASSERT_TRUE(GetOverlappedResult(client.get(), &write, &bytes, TRUE));

  wchar_t buffer[256];
  OVERLAPPED read{};
  read.hEvent = ioEvent.get();
  ASSERT_FALSE(ReadFile(client.get(), buffer, sizeof(buffer), nullptr, &read));
  ASSERT_EQ(GetLastError(), static_cast<DWORD>(ERROR_IO_PENDING));
  // Two seconds of silence, with the request already in the record.
  EXPECT_EQ(WaitForSingleObject(ioEvent.get(), 2000), static_cast<DWORD>(WAIT_TIMEOUT));
  EXPECT_EQ(ReadLines(record), std::vector<std::string>{Narrow(request)});

  // Stopped, it lets the connection go without a word.
  EXPECT_EQ(syncSim_.Stop(), 0u);
  ASSERT_EQ(WaitForSingleObject(ioEvent.get(), 5000), static_cast<DWORD>(WAIT_OBJECT_0));
  bytes = 0xdeadbeef;
  EXPECT_FALSE(GetOverlappedResult(client.get(), &read, &bytes, FALSE));
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_PIPE_NOT_CONNECTED));
  EXPECT_EQ(bytes, 0u);
}

// Fault runs depend on it: the same seed bends the same answers the same way.
TEST_F(SyncSim, BendsItsAnswersTheSameWayForTheSameSeed) {
  const std::wstring scenario = L"file C:\\r.docx\nset is_sync_file=true\nset file_combo_id=k3v9x\n";
  const std::string plain = "{\"resp\":[{\"file_path\":\"C:\\r.docx\",\"is_sync_file\":\"true\",\"file_combo_id\":\"k3v9x\"}]}";
  auto answers = [&](const wchar_t* seed) {
    ServeScenario(scenario, std::wstring(L"--mutate ") + seed);
    std::vector<std::string> texts;
    for (int i = 0; i < 6; ++i) texts.push_back(Exchange(RequestFor(L"C:\\r.docx")));
    syncSim_.Stop();
    return texts;
  };
  const std::vector<std::string> first = answers(L"7");
  EXPECT_EQ(answers(L"7"), first);
  EXPECT_NE(answers(L"8"), first);
  EXPECT_EQ(std::count(first.begin(), first.end(), plain), 0);
}

TEST_F(SyncSim, DiesInTheMiddleOfTheGivenAnswer) {
  ServeScenario(L"", L"--max-requests 2 --die-mid-answer 2");
  EXPECT_EQ(Exchange(RequestFor(L"C:\\r.docx")), "{\"resp\":[]}");
  EXPECT_EQ(Exchange(RequestFor(L"C:\\r.docx")), "ERROR");
  ASSERT_TRUE(syncSim_.WaitForExit(10000));
  EXPECT_EQ(syncSim_.ExitCode(), 9u);
}
