// The pipe client against the simulated sync app: what goes over the pipe,
// how the answer is put together from its chunks, and how each way the sync
// app can fail is logged and answered with "ERROR".
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <thread>

#include "common/office_app.h"
#include "common/text.h"
#include "common/unique_resource.h"
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
  EXPECT_EQ(WindowsUserNameQueries(), 1);
}

TEST_F(SyncAppPipeTest, SendsTheCacheRequestTextFollowedByOneNulUnit) {
  FileStatusCache cache;
  cache.AddFile(L"C:\\Users\\ann\\Filewell\\b\u00e9ta \"draft\".docx", nullptr, 1, nullptr);
  cache.AddFile(L"C:\\Users\\ann\\Filewell\\alpha.xlsx", nullptr, 0, nullptr);
  const std::wstring request = cache.BuildRequest(L"", false);
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
  EXPECT_TRUE(SameText(pipe_.Exchange([] { return kOneFileRequest; }, ExchangeBounds{5000}), answer));
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
  EXPECT_TRUE(SameText(pipe_.Exchange([] { return kOneFileRequest; }, ExchangeBounds{5000}), answer));
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

namespace {
// Milliseconds since `start`.
ULONGLONG Since(ULONGLONG start) { return GetTickCount64() - start; }

// Polls until the condition holds or the time is up; true when it held.
bool WaitUntil(const std::function<bool()>& condition, DWORD timeoutMs) {
  const ULONGLONG end = GetTickCount64() + timeoutMs;
  for (;;) {
    if (condition()) return true;
    if (GetTickCount64() >= end) return false;
    Sleep(10);
  }
}

// Signals the event after a while, from another thread.
class DelayedSignal {
 public:
  DelayedSignal(HANDLE event, DWORD afterMs) : thread_([event, afterMs] {
    Sleep(afterMs);
    SetEvent(event);
  }) {}
  ~DelayedSignal() { thread_.join(); }

 private:
  std::thread thread_;
};

// One instance of the user's pipe whose server end never reads: a request
// larger than the pipe's buffer cannot be written whole.
class ServerThatNeverReads {
 public:
  ServerThatNeverReads()
      : instance_(CreateNamedPipeW((L"\\\\.\\pipe\\FilewellSync-MSOfficeIntegration-" + LogonName()).c_str(),
                                   PIPE_ACCESS_DUPLEX, PIPE_TYPE_MESSAGE | PIPE_READMODE_MESSAGE | PIPE_WAIT, 1, 4096,
                                   4096, 0, nullptr)) {}
  bool serving() const { return static_cast<bool>(instance_); }

 private:
  UniqueFileHandle instance_;
};
}  // namespace

TEST_F(SyncAppPipeTest, GivesUpOnAnAnswerThatDoesNotComeWithinItsLimit) {
  const std::wstring record = FreshTempPath(L"syncsim-unanswered.txt");
  ServeScenario(L"", L"--never-answer --record " + Quoted(record));
  const ULONGLONG start = GetTickCount64();

  const std::wstring answer = pipe_.Exchange([] { return kOneFileRequest; }, ExchangeBounds{300});

  const ULONGLONG took = Since(start);
  EXPECT_EQ(Narrow(answer), "ERROR");
  EXPECT_GE(took, 290u);
  EXPECT_LT(took, 1300u);
  EXPECT_EQ(Logged(), (std::vector<std::string>{"read msg failed. errcode=995"}));
  EXPECT_EQ(ReadLines(record), std::vector<std::string>{Narrow(kOneFileRequest)});
}

TEST_F(SyncAppPipeTest, KeepsOfficeWaitingLessThanASecondForAnAnswerThatNeverComes) {
  ServeScenario(L"", L"--never-answer");
  const ULONGLONG start = GetTickCount64();

  const std::wstring answer = pipe_.Exchange(kOneFileRequest);

  const ULONGLONG took = Since(start);
  EXPECT_EQ(Narrow(answer), "ERROR");
  EXPECT_GE(took, kUiExchangeBounds.limitMs - 10);
  EXPECT_LT(took, 1000u);
  EXPECT_EQ(Logged(), (std::vector<std::string>{"read msg failed. errcode=995"}));
}

TEST_F(SyncAppPipeTest, AnExchangeThatGivesWayEndsAtOnceWhenOneOfTheUiThreadWantsThePipe) {
  const std::wstring record = FreshTempPath(L"syncsim-give-way.txt");
  ServeScenario(L"", L"--never-answer --record " + Quoted(record));
  // The update thread's exchange, stuck on the silent sync app.
  ExchangeEnd firstEnd = static_cast<ExchangeEnd>(0xdead);
  std::wstring firstAnswer = L"sentinel";
  std::thread first([&] {
    firstAnswer = pipe_.Exchange([] { return std::wstring(L"{\"files\":[]}"); }, {30000, nullptr, true}, &firstEnd);
  });
  ASSERT_TRUE(WaitUntil([&] { return ReadLines(record).size() == 1; }, 10000));
  ExchangeEnd end = static_cast<ExchangeEnd>(0xdead);
  ULONGLONG builtAfter = 0;
  const ULONGLONG start = GetTickCount64();

  const std::wstring answer = pipe_.Exchange(
      [&] {
        builtAfter = Since(start);
        return kOneFileRequest;
      },
      kUiExchangeBounds, &end);

  const ULONGLONG took = Since(start);
  first.join();
  EXPECT_EQ(firstEnd, ExchangeEnd::GaveWay);
  EXPECT_EQ(Narrow(firstAnswer), "ERROR");
  // Its turn came right after the grace, and its request went out.
  EXPECT_GE(builtAfter, SyncAppPipe::kGiveWayGraceMs - 10);
  EXPECT_LT(builtAfter, 500u);
  EXPECT_EQ(end, ExchangeEnd::TimedOut);
  EXPECT_EQ(Narrow(answer), "ERROR");
  EXPECT_LT(took, 1000u);
  EXPECT_EQ(ReadLines(record), (std::vector<std::string>{"{\"files\":[]}", Narrow(kOneFileRequest)}));
}

TEST_F(SyncAppPipeTest, SaysTheExchangeWasAnsweredOrFailedByTheSyncApp) {
  ServeScenario(L"");
  ExchangeEnd end = static_cast<ExchangeEnd>(0xdead);
  EXPECT_EQ(Narrow(pipe_.Exchange([] { return kOneFileRequest; }, kUiExchangeBounds, &end)), "{\"resp\":[]}");
  EXPECT_EQ(end, ExchangeEnd::Answered);
  syncSim_.Stop();
  end = static_cast<ExchangeEnd>(0xdead);
  EXPECT_EQ(Narrow(pipe_.Exchange([] { return kOneFileRequest; }, kUiExchangeBounds, &end)), "ERROR");
  EXPECT_EQ(end, ExchangeEnd::Failed);
}

TEST_F(SyncAppPipeTest, EndsAtOnceWhenItsStopEventIsSignalledWhileItWaitsForTheAnswer) {
  ServeScenario(L"", L"--never-answer");
  UniqueHandle stop(CreateEventW(nullptr, TRUE, FALSE, nullptr));
  const ULONGLONG start = GetTickCount64();
  std::wstring answer;
  {
    const DelayedSignal signal(stop.get(), 300);
    answer = pipe_.Exchange([] { return kOneFileRequest; }, ExchangeBounds{30000, stop.get()});
  }
  const ULONGLONG took = Since(start);
  EXPECT_EQ(Narrow(answer), "ERROR");
  EXPECT_LT(took, 1300u);
  EXPECT_EQ(Logged(), (std::vector<std::string>{"read msg failed. errcode=995"}));
}

TEST_F(SyncAppPipeTest, NeitherBuildsNorSendsARequestOnceItsStopEventIsSignalled) {
  const std::wstring record = FreshTempPath(L"syncsim-stopped.txt");
  ServeScenario(L"", L"--record " + Quoted(record));
  UniqueHandle stop(CreateEventW(nullptr, TRUE, TRUE, nullptr));
  bool built = false;

  const std::wstring answer = pipe_.Exchange(
      [&] {
        built = true;
        return kOneFileRequest;
      },
      ExchangeBounds{30000, stop.get()});

  EXPECT_EQ(Narrow(answer), "ERROR");
  EXPECT_FALSE(built);
  EXPECT_TRUE(Logged().empty());
  syncSim_.Stop();
  EXPECT_TRUE(ReadLines(record).empty());
}

TEST_F(SyncAppPipeTest, GivesUpWaitingForItsTurnWithTheWaitTimeoutTryingNothingOnThePipe) {
  const std::wstring record = FreshTempPath(L"syncsim-turns.txt");
  ServeScenario(L"", L"--never-answer --record " + Quoted(record));
  // The update thread's exchange, stuck on the silent sync app.
  UniqueHandle stopFirst(CreateEventW(nullptr, TRUE, FALSE, nullptr));
  std::thread first([&] { pipe_.Exchange([] { return std::wstring(L"{\"files\":[]}"); }, {30000, stopFirst.get()}); });
  ASSERT_TRUE(WaitUntil([&] { return ReadLines(record).size() == 1; }, 10000));
  bool built = false;
  const ULONGLONG start = GetTickCount64();

  const std::wstring answer = pipe_.Exchange(
      [&] {
        built = true;
        return kOneFileRequest;
      },
      ExchangeBounds{500});

  const ULONGLONG took = Since(start);
  SetEvent(stopFirst.get());
  first.join();
  EXPECT_EQ(Narrow(answer), "ERROR");
  EXPECT_GE(took, 490u);
  EXPECT_LT(took, 1500u);
  EXPECT_FALSE(built);
  EXPECT_EQ(ReadLines(record), std::vector<std::string>{"{\"files\":[]}"});
  EXPECT_EQ(Logged(), (std::vector<std::string>{"Wait time over, could not open pipe. errcode=258",
                                                "read msg failed. errcode=995"}));
}

TEST_F(SyncAppPipeTest, BuildsTheRequestOnlyOnceItsTurnHasCome) {
  const std::wstring record = FreshTempPath(L"syncsim-order.txt");
  ServeScenario(L"", L"--delay 1000 --record " + Quoted(record));
  const std::wstring firstRequest = L"{\"files\":[]}";
  const ULONGLONG firstStart = GetTickCount64();
  std::wstring firstAnswer;
  std::thread first([&] { firstAnswer = pipe_.Exchange([&] { return firstRequest; }, ExchangeBounds{5000}); });
  ASSERT_TRUE(WaitUntil([&] { return ReadLines(record).size() == 1; }, 10000));
  ULONGLONG builtAt = 0;

  const std::wstring answer = pipe_.Exchange(
      [&] {
        builtAt = GetTickCount64();
        return kOneFileRequest;
      },
      ExchangeBounds{5000});

  first.join();
  EXPECT_EQ(Narrow(firstAnswer), "{\"resp\":[]}");
  EXPECT_EQ(Narrow(answer), "{\"resp\":[]}");
  // The first exchange held the pipe until its answer, a second after its request.
  EXPECT_GE(builtAt - firstStart, 950u);
  EXPECT_EQ(ReadLines(record), (std::vector<std::string>{Narrow(firstRequest), Narrow(kOneFileRequest)}));
}

TEST_F(SyncAppPipeTest, JoinsTheChunksOfALongAnswerThatComesWhileItWaits) {
  // The first read is pending when the answer arrives and ends with more
  // data to come.
  const std::wstring answer = AnswerOfLength(3 * kChunkUnits + 1000);
  ServeFixedAnswer(answer, L"--delay 500");
  EXPECT_TRUE(SameText(pipe_.Exchange(kOneFileRequest), answer));
  EXPECT_TRUE(Logged().empty());
}

TEST_F(SyncAppPipeTest, GivesUpOnABusyPipeWhenItsOwnLimitComesFirst) {
  ServeScenario(L"", L"--busy");
  const ULONGLONG start = GetTickCount64();

  const std::wstring answer = pipe_.Exchange([] { return kOneFileRequest; }, ExchangeBounds{700});

  const ULONGLONG took = Since(start);
  EXPECT_EQ(Narrow(answer), "ERROR");
  EXPECT_GE(took, 690u);
  EXPECT_LT(took, 1700u);
  EXPECT_EQ(Logged(), (std::vector<std::string>{"Wait time over, could not open pipe. errcode=121"}));
}

TEST_F(SyncAppPipeTest, StopsWaitingForABusyPipeSoonAfterItsStopEvent) {
  ServeScenario(L"", L"--busy");
  UniqueHandle stop(CreateEventW(nullptr, TRUE, FALSE, nullptr));
  const ULONGLONG start = GetTickCount64();
  std::wstring answer;
  {
    const DelayedSignal signal(stop.get(), 300);
    answer = pipe_.Exchange([] { return kOneFileRequest; }, ExchangeBounds{30000, stop.get()});
  }
  const ULONGLONG took = Since(start);
  EXPECT_EQ(Narrow(answer), "ERROR");
  EXPECT_LT(took, 300u + 2 * SyncAppPipe::kBusyWaitSliceMs + 500u);
  EXPECT_EQ(Logged(), (std::vector<std::string>{"Wait time over, could not open pipe. errcode=995"}));
}

TEST_F(SyncAppPipeTest, GivesUpOnARequestTheSyncAppDoesNotTake) {
  const ServerThatNeverReads server;
  ASSERT_TRUE(server.serving()) << GetLastError();
  // Far more than the pipe's buffers hold.
  const std::wstring request = L"{\"files\":[" + std::wstring(200000, L' ') + L"]}";
  const ULONGLONG start = GetTickCount64();

  const std::wstring answer = pipe_.Exchange([&] { return request; }, ExchangeBounds{300});

  const ULONGLONG took = Since(start);
  EXPECT_EQ(Narrow(answer), "ERROR");
  EXPECT_GE(took, 290u);
  EXPECT_LT(took, 1300u);
  EXPECT_EQ(Logged(), (std::vector<std::string>{"send msg failed. errcode=995"}));
}

TEST_F(SyncAppPipeTest, TakesOverThePipeFromAnExchangeWhoseThreadWasEndedInsideIt) {
  const std::wstring record = FreshTempPath(L"syncsim-ended.txt");
  const std::wstring answer = AnswerOfLength(300);
  ServeFixedAnswer(answer, L"--delay 1500 --record " + Quoted(record));
  struct Context {
    SyncAppPipe* pipe;
  } context{&pipe_};
  UniqueHandle ended(CreateThread(
      nullptr, 0,
      [](LPVOID parameter) -> DWORD {
        static_cast<Context*>(parameter)->pipe->Exchange([] { return std::wstring(L"{\"files\":[]}"); },
                                                         ExchangeBounds{30000});
        return 0;
      },
      &context, 0, nullptr));
  ASSERT_TRUE(ended);
  ASSERT_TRUE(WaitUntil([&] { return ReadLines(record).size() == 1; }, 10000));
  Sleep(200);  // its read is pending now
  ASSERT_TRUE(TerminateThread(ended.get(), 1));
  ASSERT_EQ(WaitForSingleObject(ended.get(), 5000), static_cast<DWORD>(WAIT_OBJECT_0));

  // Time enough for the slow answer: the point is the pipe taken over.
  EXPECT_TRUE(SameText(pipe_.Exchange([] { return kOneFileRequest; }, ExchangeBounds{5000}), answer));
  EXPECT_EQ(ReadLines(record), (std::vector<std::string>{"{\"files\":[]}", Narrow(kOneFileRequest)}));
  EXPECT_TRUE(Logged().empty());
}

TEST_F(SyncAppPipeTest, ClosesTheConnectionOfAnExchangeEndedInsideItWhenItGoes) {
  // A server of our own that takes the request and never answers.
  UniqueFileHandle server(CreateNamedPipeW((L"\\\\.\\pipe\\FilewellSync-MSOfficeIntegration-" + LogonName()).c_str(),
                                           PIPE_ACCESS_DUPLEX, PIPE_TYPE_MESSAGE | PIPE_READMODE_MESSAGE | PIPE_WAIT, 1,
                                           4096, 4096, 0, nullptr));
  ASSERT_TRUE(server) << GetLastError();
  auto pipe = std::make_unique<SyncAppPipe>();
  UniqueHandle ended(CreateThread(
      nullptr, 0,
      [](LPVOID parameter) -> DWORD {
        static_cast<SyncAppPipe*>(parameter)->Exchange([] { return std::wstring(L"{\"files\":[]}"); },
                                                       ExchangeBounds{30000});
        return 0;
      },
      pipe.get(), 0, nullptr));
  ASSERT_TRUE(ended);
  ASSERT_TRUE(ConnectNamedPipe(server.get(), nullptr) || GetLastError() == ERROR_PIPE_CONNECTED);
  wchar_t request[64] = {};
  DWORD read = 0xdeadbeef;
  ASSERT_TRUE(ReadFile(server.get(), request, sizeof request, &read, nullptr)) << GetLastError();
  EXPECT_EQ(std::wstring(request), L"{\"files\":[]}");
  Sleep(200);  // its read of the answer is pending now
  ASSERT_TRUE(TerminateThread(ended.get(), 1));
  ASSERT_EQ(WaitForSingleObject(ended.get(), 5000), static_cast<DWORD>(WAIT_OBJECT_0));
  DWORD available = 0xdeadbeef;
  ASSERT_TRUE(PeekNamedPipe(server.get(), nullptr, 0, nullptr, &available, nullptr)) << GetLastError();

  pipe.reset();

  EXPECT_FALSE(PeekNamedPipe(server.get(), nullptr, 0, nullptr, &available, nullptr));
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_BROKEN_PIPE));
}
