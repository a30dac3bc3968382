// A fault run through the whole add-in in the simulated Word: the simulated
// sync app serves answers bent at random (a printed seed plays them again)
// and ends itself in the middle of an answer again and again, while the
// test keeps the update thread cycling and keeps asking Word's window
// whether it still answers. Word must keep running, never stop answering
// for long, and hold as many handles, GDI and USER objects, as much memory
// and as many references on its documents at the end as before the run.
//
// The number of answers and of deaths come from QSYNC_FAULT_ANSWERS
// (default 250, which keeps the ctest run near a minute) and QSYNC_FAULT_KILLS
// (default 5); QSYNC_FAULT_SEED fixes
// the seed. scripts/fault-run.sh runs a longer one.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <regex>
#include <thread>

#include "tests/windows/in_process_host.h"
#include "tests/windows/sync_sim_process.h"

namespace {
unsigned long FromEnvironment(const char* name, unsigned long fallback) {
  const char* text = std::getenv(name);
  if (text == nullptr || *text == '\0') return fallback;
  return std::strtoul(text, nullptr, 10);
}

size_t LineCount(const std::wstring& path) { return ReadLines(path).size(); }

// Waits until the record holds at least `count` requests; false on timeout.
bool WaitForRequests(const std::wstring& record, size_t count, DWORD timeoutMs) {
  const ULONGLONG end = GetTickCount64() + timeoutMs;
  while (LineCount(record) < count) {
    if (GetTickCount64() >= end) return false;
    Sleep(50);
  }
  return true;
}

// The lines officesim printed that start with `prefix`.
std::vector<std::string> OutputLines(const std::string& output, const std::string& prefix) {
  std::vector<std::string> lines;
  size_t start = 0;
  while (start < output.size()) {
    size_t end = output.find('\n', start);
    if (end == std::string::npos) end = output.size();
    std::string line = output.substr(start, end - start);
    if (!line.empty() && line.back() == '\r') line.pop_back();
    if (line.rfind(prefix, 0) == 0) lines.push_back(line);
    start = end + 1;
  }
  return lines;
}

unsigned long long Figure(const std::string& line, const std::string& name) {
  const std::regex pattern(name + "=([0-9]+)");
  std::smatch match;
  return std::regex_search(line, match, pattern) ? std::stoull(match[1].str()) : ~0ull;
}

class FaultRun : public testing::Test {
 protected:
  static void SetUpTestSuite() { ASSERT_EQ(InstallAddinForUser(true), S_OK); }
  static void TearDownTestSuite() { EXPECT_EQ(InstallAddinForUser(false), S_OK); }
};
}  // namespace

TEST_F(FaultRun, WordKeepsRunningAndGivesBackWhatItTookThroughHostileAnswersAndDyingSyncApps) {
  const unsigned long answers = FromEnvironment("QSYNC_FAULT_ANSWERS", 250);
  const unsigned long kills = std::max(1ul, FromEnvironment("QSYNC_FAULT_KILLS", 5));
  const unsigned long seed = FromEnvironment("QSYNC_FAULT_SEED", static_cast<unsigned long>(GetTickCount64()));
  const unsigned long perRun = std::max(2ul, answers / kills);
  std::printf("fault run: %lu answers, %lu deaths mid-answer, seed %lu (QSYNC_FAULT_SEED=%lu plays it again)\n",
              perRun * kills, kills, seed, seed);

  InProcessHost scratch(SimHost::Word);  // its folder and a fresh log
  std::vector<std::wstring> documents;
  std::wstring scenario;
  for (const wchar_t* name : {L"plan.docx", L"budget.docx", L"notes.docx"}) {
    documents.push_back(scratch.CreateFileNamed(name));
    scenario += L"file " + documents.back() +
                L"\nset is_sync_file=true\nset file_combo_id=k3v9x\nset is_internet_connected=true\n"
                L"set is_loading_data_from_server=false\nset is_download_present=Already Up-to-date\n"
                L"set all_viewers_quid=u1bo\nset all_viewers_names=Bo Chan\n";
  }
  const std::wstring scenarioFile = scratch.folder() + L"\\scenario.txt";
  WriteUtf8File(scenarioFile, scenario);
  const std::wstring script = scratch.folder() + L"\\script.txt";
  {
    std::ofstream out(script.c_str());
    for (const std::wstring& document : documents) out << "open " << Narrow(document) << "\n";
    // Measured once the add-in has settled on the sync app's word (badge,
    // panel, images, fonts), and again after the run with the same word.
    out << "wait-for-event 120000 qsync-fault-go\nwait 4500\nresources\nreport\nsignal qsync-fault-measured\n"
           "wait-for-event 3600000 qsync-fault-done\nwait 4500\nresources\nreport\n";
  }
  UniqueHandle go(CreateEventW(nullptr, TRUE, FALSE, L"qsync-fault-go"));
  UniqueHandle measured(CreateEventW(nullptr, TRUE, FALSE, L"qsync-fault-measured"));
  UniqueHandle done(CreateEventW(nullptr, TRUE, FALSE, L"qsync-fault-done"));
  ResetEvent(go.get());
  ResetEvent(measured.get());
  ResetEvent(done.get());

  const std::wstring record = FreshTempPath(L"fault-run-requests.txt");
  SyncSimProcess syncApp;
  ASSERT_TRUE(syncApp.Start(L"--scenario " + Quoted(scenarioFile) + L" --record " + Quoted(record)));

  ProcessResult word;
  std::thread wordThread([&] {
    word = RunProcess(Quoted(OfficeExecutable(L"WINWORD.EXE")) + L" --script " + Quoted(script), 3600000);
  });
  // The sync app's word is in for every document before the first count.
  EXPECT_TRUE(WaitForRequests(record, 4, 60000));
  SetEvent(go.get());
  EXPECT_EQ(WaitForSingleObject(measured.get(), 60000), WAIT_OBJECT_0);
  syncApp.Stop();

  // The run: the update thread is asked for a cycle every few milliseconds,
  // and Word's window is asked to answer a message now and then.
  HWND wordWindow = FindWindowW(L"OpusApp", nullptr);
  EXPECT_NE(wordWindow, nullptr);
  UniqueHandle cycleNow(OpenEventW(EVENT_MODIFY_STATE, FALSE, L"immediatelyUpdateEvent"));
  EXPECT_TRUE(cycleNow);
  ULONGLONG slowestAnswerMs = 0;
  ULONGLONG longestRunMs = 0;
  int unexpectedEnds = 0;
  for (unsigned long run = 0; run < kills; ++run) {
    const ULONGLONG start = GetTickCount64();
    ASSERT_TRUE(syncApp.Start(L"--scenario " + Quoted(scenarioFile) + L" --mutate " + std::to_wstring(seed + run) +
                              L" --max-requests " + std::to_wstring(perRun) + L" --die-mid-answer " +
                              std::to_wstring(perRun) + L" --run-ms 3600000"));
    ULONGLONG nextProbe = 0;
    while (!syncApp.WaitForExit(2)) {
      if (cycleNow) SetEvent(cycleNow.get());
      if (wordWindow != nullptr && GetTickCount64() >= nextProbe) {
        const ULONGLONG sent = GetTickCount64();
        DWORD_PTR unused = 0;
        SendMessageTimeoutW(wordWindow, WM_NULL, 0, 0, SMTO_NORMAL, 10000, &unused);
        slowestAnswerMs = std::max(slowestAnswerMs, GetTickCount64() - sent);
        nextProbe = GetTickCount64() + 100;
      }
      if (GetTickCount64() - start > 60000 + perRun * 1000ull) break;  // a stuck run fails below
    }
    longestRunMs = std::max(longestRunMs, GetTickCount64() - start);
    if (syncApp.ExitCode() != 9) ++unexpectedEnds;  // it should have died inside its last answer
    syncApp.Stop();
  }

  // The sync app's plain word again, then the second count.
  ASSERT_TRUE(syncApp.Start(L"--scenario " + Quoted(scenarioFile) + L" --record " + Quoted(record)));
  const size_t before = LineCount(record);
  if (cycleNow) SetEvent(cycleNow.get());
  EXPECT_TRUE(WaitForRequests(record, before + 2, 60000));
  SetEvent(done.get());
  wordThread.join();
  syncApp.Stop();

  std::printf("fault run: slowest answer of Word's window %llu ms, longest run of %lu answers %llu ms\n",
              slowestAnswerMs, perRun, longestRunMs);
  EXPECT_EQ(unexpectedEnds, 0);
  ASSERT_EQ(word.exitCode, 0u) << word.output;
  // Office's own watchdogs start at a second; no wait of ours comes near it.
  EXPECT_LT(slowestAnswerMs, 1000u);

  const std::vector<std::string> counts = OutputLines(word.output, "officesim: resources: ");
  ASSERT_EQ(counts.size(), 2u) << word.output;
  std::printf("fault run: before %s\nfault run: after  %s\n", counts[0].c_str(), counts[1].c_str());
  EXPECT_EQ(Figure(counts[1], "handles"), Figure(counts[0], "handles"));
  EXPECT_EQ(Figure(counts[1], "gdi"), Figure(counts[0], "gdi"));
  EXPECT_EQ(Figure(counts[1], "user"), Figure(counts[0], "user"));
  // Memory: back to where it was, give or take what the heap keeps in hand.
  EXPECT_LT(Figure(counts[1], "private"), Figure(counts[0], "private") + 4u * 1024 * 1024);

  // References on the documents: the same after the run as before it.
  const std::vector<std::string> references = OutputLines(word.output, "officesim: references held by add-ins on ");
  ASSERT_EQ(references.size() % 3, 0u) << word.output;
  ASSERT_GE(references.size(), 6u) << word.output;
  EXPECT_EQ(std::vector<std::string>(references.begin(), references.begin() + 3),
            std::vector<std::string>(references.begin() + 3, references.begin() + 6));
  EXPECT_NE(word.output.find("application references at exit = 1"), std::string::npos) << word.output;
  EXPECT_NE(word.output.find("on its COMAddIn = 0"), std::string::npos) << word.output;

  // Nothing the sync app sent made the add-in meet an exception it did not expect.
  for (const std::string& message : LogMessages(LogFilePath())) {
    EXPECT_EQ(message.find("exception occurred"), std::string::npos) << message;
  }
}
