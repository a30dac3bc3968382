// The conformance probe against the simulated sync app: every rule passes
// against the app as it should behave, and each misbehaviour makes exactly
// the rule that names it fail, so a sync-app builder is pointed at the
// cause and not at its echoes.
#include <gtest/gtest.h>

#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "common/text.h"
#include "common/unique_resource.h"
#include "synclink/sync_app_pipe.h"
#include "tests/caller.h"
#include "tests/windows/sync_sim_process.h"
#include "tests/windows/wine_test_support.h"

namespace {
const wchar_t kFiles[] = L"--file C:\\probe\\report.docx --file C:\\probe\\budget.xlsx";

// What the sync app should say: both files answered, every member quoted.
const wchar_t kScenario[] =
    L"file C:\\probe\\report.docx\n"
    L"set is_sync_file=true\n"
    L"set file_combo_id=k3v9x\n"
    L"set is_internet_connected=true\n"
    L"set is_loading_data_from_server=false\n"
    L"set is_download_present=Already Up-to-date\n"
    L"set all_viewers_quid=u1|u2\n"
    L"set all_viewers_names=Ann Lee|Bo Chan\n"
    L"file C:\\probe\\budget.xlsx\n"
    L"set is_sync_file=false\n";

const char* const kAllRules[] = {"pipe-open",      "server-user",    "server-session",
                                 "message-mode",   "answer-time",    "answer-delivered",
                                 "leading-unit",   "answer-frame",   "answer-shape",
                                 "quoted-values",  "field-values",   "files-answered",
                                 "one-exchange-per-connection",      "hidden-overlay",
                                 "closed-file"};

struct ProbeRun {
  DWORD exitCode = 0xdeadbeef;
  std::vector<std::string> lines;

  // The rules of the lines that begin with `verdict` ("PASS", "FAIL", "SKIP").
  std::set<std::string> Rules(const std::string& verdict) const {
    std::set<std::string> rules;
    for (const std::string& line : lines) {
      if (line.rfind(verdict + " ", 0) != 0) continue;
      const size_t colon = line.find(':');
      rules.insert(line.substr(verdict.size() + 1, colon - verdict.size() - 1));
    }
    return rules;
  }
  std::string LineOf(const std::string& rule) const {
    for (const std::string& line : lines) {
      if (line.size() > 5 && line.compare(5, rule.size() + 1, rule + ":") == 0) return line;
    }
    return "(no line for " + rule + ")";
  }
  std::string All() const {
    std::string all;
    for (const std::string& line : lines) all += line + "\n";
    return all;
  }
};

// Runs syncprobe.exe with `arguments` and collects its output lines.
ProbeRun RunProbe(const std::wstring& arguments) {
  ProbeRun run;
  const std::wstring outputPath = FreshTempPath(L"syncprobe-output.txt");
  SECURITY_ATTRIBUTES inherit{sizeof(inherit), nullptr, TRUE};
  {
    UniqueFileHandle output(CreateFileW(outputPath.c_str(), GENERIC_WRITE, FILE_SHARE_READ, &inherit, CREATE_ALWAYS,
                                        0, nullptr));
    if (!output) return run;
    std::wstring commandLine = Quoted(BinFolder() + L"\\syncprobe.exe") + L" " + arguments;
    STARTUPINFOW startup{};
    startup.cb = sizeof(startup);
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdOutput = output.get();
    startup.hStdError = output.get();
    startup.hStdInput = GetStdHandle(STD_INPUT_HANDLE);
    PROCESS_INFORMATION info{};
    if (!CreateProcessW(nullptr, commandLine.data(), nullptr, nullptr, TRUE, 0, nullptr, BinFolder().c_str(),
                        &startup, &info)) {
      return run;
    }
    CloseHandle(info.hThread);
    UniqueHandle process(info.hProcess);
    // Far above the probe's own bounds (5 s per exchange): only a hung
    // probe gets here.
    if (WaitForSingleObject(process.get(), 60000) != WAIT_OBJECT_0) TerminateProcess(process.get(), 98);
    GetExitCodeProcess(process.get(), &run.exitCode);
  }
  UniqueFileHandle input(CreateFileW(outputPath.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0,
                                     nullptr));
  std::string bytes(1 << 16, '\0');
  DWORD read = 0;
  if (input && ReadFile(input.get(), bytes.data(), static_cast<DWORD>(bytes.size()), &read, nullptr)) {
    bytes.resize(read);
    std::istringstream stream(bytes);
    for (std::string line; std::getline(stream, line);) {
      if (!line.empty() && line.back() == '\r') line.pop_back();
      run.lines.push_back(line);
    }
  }
  return run;
}

class SyncProbe : public testing::Test {
 protected:
  void TearDown() override { syncSim_.Stop(); }

  void Serve(const std::wstring& scenario, const std::wstring& moreArguments = L"", Caller caller = {}) {
    TRACE_CALLER(caller);
    const std::wstring path = FreshTempPath(L"syncprobe-scenario.txt");
    WriteUtf8File(path, scenario);
    ASSERT_TRUE(syncSim_.Start(L"--scenario " + Quoted(path) + L" " + moreArguments));
  }

  // Exactly `rule` fails: the closing line counts one failure, the exit
  // code says so, and no other rule has a FAIL line.
  void ExpectOnlyFailure(const ProbeRun& run, const std::string& rule, const std::string& seen,
                         Caller caller = {}) {
    TRACE_CALLER(caller);
    EXPECT_EQ(run.exitCode, 1u) << run.All();
    EXPECT_EQ(run.Rules("FAIL"), std::set<std::string>{rule}) << run.All();
    EXPECT_NE(run.LineOf(rule).find(seen), std::string::npos) << run.LineOf(rule);
    ASSERT_FALSE(run.lines.empty());
    EXPECT_EQ(run.lines.back(), std::to_string(run.Rules("PASS").size()) + " passed, 1 failed");
  }

  SyncSimProcess syncSim_;
};
}  // namespace

TEST_F(SyncProbe, PassesEveryRuleAgainstASyncAppThatAnswersAsTheAddinExpects) {
  Serve(kScenario);
  const ProbeRun run = RunProbe(kFiles);
  EXPECT_EQ(run.exitCode, 0u) << run.All();
  std::set<std::string> all(std::begin(kAllRules), std::end(kAllRules));
  EXPECT_EQ(run.Rules("PASS"), all) << run.All();
  ASSERT_FALSE(run.lines.empty());
  EXPECT_EQ(run.lines.back(), "15 passed, 0 failed");
  EXPECT_EQ(run.LineOf("files-answered"),
            "PASS files-answered: an object for each of the 2 file(s) asked about");
  EXPECT_EQ(run.LineOf("leading-unit"), "PASS leading-unit: the answer starts with U+FEFF, which the add-in drops");
}

TEST_F(SyncProbe, SendsWhatTheAnswerSaidAndLeavesNoDocumentOpenInTheSyncAppsView) {
  const std::wstring record = FreshTempPath(L"syncprobe-requests.txt");
  Serve(kScenario, L"--record " + Quoted(record));
  EXPECT_EQ(RunProbe(kFiles).exitCode, 0u);
  syncSim_.Stop();
  UniqueFileHandle file(CreateFileW(record.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr));
  std::string bytes(1 << 16, '\0');
  DWORD read = 0;
  ASSERT_TRUE(file && ReadFile(file.get(), bytes.data(), static_cast<DWORD>(bytes.size()), &read, nullptr));
  bytes.resize(read);
  // The later requests carry what the answer said, as the add-in's do.
  const size_t hide = bytes.find("\"uiHide\":true,\"file_combo_id\":\"k3v9x\"");
  EXPECT_NE(hide, std::string::npos) << bytes;
  // The last request closes the second file, the only one still open.
  const size_t lastLine = bytes.rfind('\n', bytes.size() - 2);
  EXPECT_EQ(bytes.substr(lastLine + 1),
            "{\"files\":[{\"filepath\":\"C:\\probe\\budget.xlsx\",\"isOpen\":false,\"isEditing\":false,"
            "\"resolveConflict\":false,\"retryModify\":false,\"retryRenameOrMove\":false,\"retryDelete\":false,"
            "\"file_combo_id\":\"\",\"officeApp\":\"1\"}]}\n");
}

TEST_F(SyncProbe, PrintsItsUsageForHelpAndDoesNothingElse) {
  const ProbeRun run = RunProbe(L"--help");
  EXPECT_EQ(run.exitCode, 0u);
  ASSERT_FALSE(run.lines.empty());
  EXPECT_EQ(run.lines.front(), "usage: syncprobe.exe [--pipe NAME] [--file PATH]... [--help]");
  EXPECT_TRUE(run.Rules("PASS").empty() && run.Rules("FAIL").empty()) << run.All();
}

TEST_F(SyncProbe, RefusesAnUnknownArgumentWithExitCode2) {
  const ProbeRun run = RunProbe(L"--pipes x");
  EXPECT_EQ(run.exitCode, 2u);
  ASSERT_FALSE(run.lines.empty());
  EXPECT_EQ(run.lines.front(), "syncprobe: unknown argument: --pipes");
}

TEST_F(SyncProbe, FailsOnlyPipeOpenWhenNothingServesThePipe) {
  const ProbeRun run = RunProbe(std::wstring(kFiles) + L" --pipe syncprobe-test-nobody-serves-this");
  ExpectOnlyFailure(run, "pipe-open", "error 2, no such pipe");
}

TEST_F(SyncProbe, FailsOnlyPipeOpenWhenEveryInstanceStaysBusy) {
  Serve(kScenario, L"--busy");
  // The probe holds the sync app to the add-in's own bound on Office's UI thread.
  ExpectOnlyFailure(RunProbe(kFiles), "pipe-open", "within " + std::to_string(kUiExchangeBounds.limitMs) + " ms");
}

TEST_F(SyncProbe, FailsOnlyMessageModeOnABytePipe) {
  Serve(kScenario, L"--byte-mode");
  ExpectOnlyFailure(RunProbe(kFiles), "message-mode", "error 87");
}

TEST_F(SyncProbe, FailsOnlyAnswerTimeWhenTheSyncAppNeverAnswers) {
  Serve(kScenario, L"--never-answer");
  ExpectOnlyFailure(RunProbe(kFiles), "answer-time",
                    "nothing within " + std::to_string(kUiExchangeBounds.limitMs) + " ms");
}

TEST_F(SyncProbe, FailsOnlyAnswerDeliveredWhenTheAnswerIsCutOff) {
  Serve(kScenario, L"--cut-answer --pad 20000");
  ExpectOnlyFailure(RunProbe(kFiles), "answer-delivered", "the read failed");
}

TEST_F(SyncProbe, FailsOnlyAnswerDeliveredWhenTheSyncAppHangsUpWithoutAnswering) {
  Serve(kScenario, L"--hang-up");
  ExpectOnlyFailure(RunProbe(kFiles), "answer-delivered", "the read failed");
}

TEST_F(SyncProbe, FailsOnlyLeadingUnitWithoutTheLeadingByteOrderMark) {
  Serve(kScenario, L"--no-lead");
  ExpectOnlyFailure(RunProbe(kFiles), "leading-unit", "starts with U+007B, not U+FEFF");
}

TEST_F(SyncProbe, FailsOnlyAnswerFrameForAGarbageAnswer) {
  Serve(kScenario, L"--garbage");
  ExpectOnlyFailure(RunProbe(kFiles), "answer-frame", "Internal error 0x80004005");
}

TEST_F(SyncProbe, FailsOnlyAnswerShapeForABlankBetweenTokens) {
  const std::wstring answer = FreshTempPath(L"syncprobe-answer.txt");
  WriteUtf8File(answer,
                L"{\"resp\":[{\"file_path\":\"C:\\probe\\report.docx\", \"is_sync_file\":\"true\"},"
                L"{\"file_path\":\"C:\\probe\\budget.xlsx\"}]}");
  ASSERT_TRUE(syncSim_.Start(L"--answer-file " + Quoted(answer)));
  ExpectOnlyFailure(RunProbe(kFiles), "answer-shape", "expected a quoted key at unit");
}

TEST_F(SyncProbe, FailsOnlyQuotedValuesForAnUnquotedBoolean) {
  Serve(L"file C:\\probe\\report.docx\nset is_sync_file=true\nraw is_conflict_present=false\n"
        L"file C:\\probe\\budget.xlsx\nset is_sync_file=false\n");
  ExpectOnlyFailure(RunProbe(kFiles), "quoted-values", "\"is_conflict_present\":false is not quoted");
}

TEST_F(SyncProbe, FailsOnlyFieldValuesForAFlagThatIsNeitherTrueNorFalse) {
  Serve(L"file C:\\probe\\report.docx\nset is_sync_file=yes\nfile C:\\probe\\budget.xlsx\nset is_sync_file=true\n");
  ExpectOnlyFailure(RunProbe(kFiles), "field-values", "\"is_sync_file\":\"yes\" for C:\\probe\\report.docx");
}

TEST_F(SyncProbe, FailsOnlyFilesAnsweredWhenAFileIsLeftOut) {
  Serve(L"unknown-files omit\nfile C:\\probe\\report.docx\nset is_sync_file=true\n");
  ExpectOnlyFailure(RunProbe(kFiles), "files-answered", "no object for C:\\probe\\budget.xlsx");
}

TEST_F(SyncProbe, FailsOnlyOneExchangePerConnectionWhenASecondRequestIsAnswered) {
  Serve(kScenario, L"--answer-every-request");
  ExpectOnlyFailure(RunProbe(kFiles), "one-exchange-per-connection",
                    "a second request written on the same connection was answered");
}

TEST_F(SyncProbe, FailsOnlyHiddenOverlayWhenTheHideRequestIsNotAnswered) {
  Serve(kScenario, L"--hang-up-on uiHide:true");
  ExpectOnlyFailure(RunProbe(kFiles), "hidden-overlay", "\"uiHide\":true: no whole answer");
}

TEST_F(SyncProbe, FailsOnlyClosedFileWhenTheCloseRequestIsNotAnswered) {
  Serve(kScenario, L"--hang-up-on isOpen:false");
  ExpectOnlyFailure(RunProbe(kFiles), "closed-file", "\"isOpen\":false: no whole answer");
}
