// The log writer shared by the threads of one process when the named log
// mutex cannot be had: the process's own writers still go one at a time.
// A test program of its own, so the named mutex is refused from the first
// line on (the writer creates it once per process).
#include <gtest/gtest.h>

#include <regex>
#include <set>
#include <thread>

#include "common/office_app.h"
#include "common/unique_resource.h"
#include "log/addin_log.h"
#include "log/log_folder.h"
#include "log/thread_names.h"
#include "log/write_log.h"
#include "tests/windows/wine_test_support.h"

namespace {
constexpr int kLinesPerThread = 10000;

void WriteNumberedLines(int writer) {
  const std::wstring padding(40, L'p');
  for (int i = 0; i < kLinesPerThread; ++i) {
    WriteLog(LogLevel::Info, L"thread " + std::to_wstring(writer) + L" line " + std::to_wstring(i) + L" " + padding);
  }
}
}  // namespace

TEST(LogWriterThreads, TwoThreadsWithoutTheNamedMutexWriteEveryLineWholeAndLoseNone) {
  // An event under the mutex's name: CreateMutexW then fails, and the
  // writer goes on without the named mutex, as when another program took
  // the name.
  UniqueHandle squatter(CreateEventW(nullptr, TRUE, FALSE, L"QelvoFilewell-MSOfficeIntegration-logmutex"));
  ASSERT_TRUE(squatter);
  OfficeApp = OfficeHost::Word;
  StartFreshLog();
  ASSERT_EQ(LogMutex(), nullptr) << "the named mutex was expected to be unavailable";

  std::thread first(WriteNumberedLines, 1);
  std::thread second(WriteNumberedLines, 2);
  first.join();
  second.join();
  InitLogFolder();  // lets go of the file

  const std::vector<std::string> lines = ReadLines(LogFilePath());
  const std::regex whole(
      R"(^(\xEF\xBB\xBF)?\[\d{4}-\d\d-\d\d \d\d:\d\d:\d\d\.\d{3}\] Word  pid=\d+ I THREAD_NAME - thread ([12]) line (\d+) p{40}$)");
  std::set<std::pair<int, int>> seen;
  size_t broken = 0;
  for (const std::string& line : lines) {
    std::smatch match;
    if (!std::regex_match(line, match, whole)) {
      ++broken;
      continue;
    }
    seen.insert({std::stoi(match[2]), std::stoi(match[3])});
  }
  EXPECT_EQ(broken, 0u);
  EXPECT_EQ(lines.size(), 2u * kLinesPerThread);
  EXPECT_EQ(seen.size(), 2u * kLinesPerThread);
  DeleteLogFiles();
}
