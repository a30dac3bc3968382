// End to end: the add-in loaded by the simulated Word, talking to the
// simulated sync app. Opening a saved document is reported within the
// cycle the open event starts, not at the next period; closing it is
// reported at once and drops its record.
#include <gtest/gtest.h>

#include <fstream>

#include "tests/windows/in_process_host.h"
#include "tests/windows/sync_sim_process.h"

namespace {
class OpenCloseEndToEnd : public testing::Test {
 protected:
  static void SetUpTestSuite() { ASSERT_EQ(InstallAddinForUser(true), S_OK); }
  static void TearDownTestSuite() { EXPECT_EQ(InstallAddinForUser(false), S_OK); }

  static std::string Request(const std::string& path, bool isOpen) {
    return std::string("{\"files\":[{\"filepath\":\"") + path + "\",\"isOpen\":" + (isOpen ? "true" : "false") +
           ",\"isEditing\":false,\"resolveConflict\":false,\"retryModify\":false,\"retryRenameOrMove\":false,"
           "\"retryDelete\":false,\"file_combo_id\":\"\",\"officeApp\":\"1\"}]}";
  }
};

TEST_F(OpenCloseEndToEnd, WordReportsTheOpenWithinTheEventsCycleAndTheCloseAtOnce) {
  InProcessHost scratch(SimHost::Word);  // only for its folder and a fresh log
  const std::wstring document = scratch.CreateFileNamed(L"plan.docx");
  const std::wstring record = FreshTempPath(L"open-close-requests.txt");
  const std::wstring script = scratch.folder() + L"\\script.txt";
  {
    // Well inside one 4000 ms period from the connection: only the open
    // event can make the update thread ask about the file before the close.
    std::ofstream out(script.c_str());
    out << "wait 500\nopen " << Narrow(document) << "\nwait 1000\nclose plan.docx\nwait 200\n";
  }
  SyncSimProcess syncApp;
  ASSERT_TRUE(syncApp.Start(L"--record " + Quoted(record)));
  const ProcessResult run =
      RunProcess(Quoted(OfficeExecutable(L"WINWORD.EXE")) + L" --script " + Quoted(script), 120000);
  syncApp.Stop();
  ASSERT_EQ(run.exitCode, 0u) << run.output;
  EXPECT_NE(run.output.find("application references at exit = 1"), std::string::npos) << run.output;
  // Office hands the add-in its COMAddIn object; nothing of it is kept past the disconnection.
  EXPECT_NE(run.output.find("on its COMAddIn = 0"), std::string::npos) << run.output;

  // The thread's first cycle at start, the open event's cycle, the close,
  // and the last request at disconnection; no periodic cycle in between.
  const std::string path = Narrow(document);
  EXPECT_EQ(ReadLines(record), (std::vector<std::string>{"{\"files\":[]}", Request(path, true), Request(path, false),
                                                         "{\"files\":[]}"}))
      << run.output;
  EXPECT_TRUE(ContainsInOrder(MessagesOfThread(ReadLog(LogFilePath()), "MainThread"),
                              {"document open/activate/save - " + path, "file info stored in cache - " + path,
                               "close file - " + path, "file info removed from cache - " + path}));
}
}  // namespace
