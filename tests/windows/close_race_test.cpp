// Documents closed while the update thread keeps asking the sync app about
// every open file: once the sync app has heard that a file closed, no later
// request says it is open again.
#include <gtest/gtest.h>

#include <atomic>
#include <map>
#include <regex>
#include <string>
#include <thread>

#include "addin/event_sinks.h"
#include "synclink/update_cycle.h"
#include "tests/windows/in_process_host.h"
#include "tests/windows/sync_sim_process.h"

namespace {
constexpr int kDocuments = 60;

// Each file object of a recorded request: its path and whether it said the
// file is open.
std::vector<std::pair<std::string, bool>> FilesIn(const std::string& request) {
  static const std::regex object(R"re(\{"filepath":"([^"]*)","isOpen":(true|false),)re");
  std::vector<std::pair<std::string, bool>> files;
  for (auto it = std::sregex_iterator(request.begin(), request.end(), object); it != std::sregex_iterator(); ++it) {
    files.emplace_back((*it)[1].str(), (*it)[2].str() == "true");
  }
  return files;
}
}  // namespace

TEST(CloseRace, AFileTheSyncAppHeardClosedIsNeverReportedOpenAgain) {
  InProcessHost host(SimHost::Word);
  HostEventSinks sinks;
  ASSERT_EQ(sinks.Subscribe(OfficeHost::Word, &host.app()), S_OK);
  const std::wstring requests = FreshTempPath(L"close-race-requests.txt");
  SyncSimProcess syncApp;
  ASSERT_TRUE(syncApp.Start(L"--record " + Quoted(requests)));

  // The update thread's cycles back to back, as fast as the sync app
  // answers, while the UI thread opens and closes documents.
  std::atomic<bool> stop{false};
  std::atomic<int> cycles{0};
  std::thread updates([&] {
    while (!stop) {
      RunUpdateCycle({2000, nullptr});
      ++cycles;
    }
  });
  for (int i = 0; i < kDocuments; ++i) {
    SimDocument* document = host.Open(L"race" + std::to_wstring(i) + L".docx");
    ASSERT_NE(document, nullptr);
    Sleep(static_cast<DWORD>(i % 7));
    host.app().CloseDocument(document, SimApplication::SaveChoice::Prompt);
  }
  Sleep(50);
  stop = true;
  updates.join();
  sinks.Unsubscribe(OfficeHost::Word, &host.app());
  syncApp.Stop();

  std::map<std::string, size_t> closedAt;  // the request that reported each file closed
  size_t openAfterClosed = 0;
  size_t closesHeard = 0;
  const std::vector<std::string> lines = ReadLines(requests);
  for (size_t i = 0; i < lines.size(); ++i) {
    for (const auto& [path, open] : FilesIn(lines[i])) {
      if (!open) {
        closedAt.emplace(path, i);
        ++closesHeard;
      } else if (closedAt.count(path) != 0) {
        ++openAfterClosed;
        ADD_FAILURE() << path << " reported open in request " << i << " after closed in " << closedAt[path];
      }
    }
  }
  std::printf("%d update cycles, %zu requests, %zu closes heard\n", cycles.load(), lines.size(), closesHeard);
  EXPECT_EQ(openAfterClosed, 0u);
  EXPECT_EQ(closesHeard, static_cast<size_t>(kDocuments));
  EXPECT_GT(cycles.load(), kDocuments / 2) << "the cycles did not race the closes";
  EXPECT_TRUE(host.CachedPaths().empty());
}
