// The log writer as Office's processes use it: the real file under
// %APPDATA%, the named mutex, rotation at 5 MiB.
#include <gtest/gtest.h>

#include <regex>
#include <thread>

#include "common/office_app.h"
#include "common/unique_resource.h"
#include "log/log_folder.h"
#include "log/thread_names.h"
#include "log/write_log.h"
#include "tests/caller.h"
#include "tests/windows/wine_test_support.h"

namespace {
constexpr size_t kRotationSize = 5242880;

class LogWriter : public testing::Test {
 protected:
  void SetUp() override {
    OfficeApp = OfficeHost::None;
    StartFreshLog();
  }
  void TearDown() override {
    InitLogFolder();
    DeleteLogFiles();
  }
  static void WriteBytes(const std::wstring& path, size_t count, Caller caller = {}) {
    TRACE_CALLER(caller);
    UniqueFileHandle file(CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr));
    ASSERT_TRUE(file);
    std::string filler(count, 'x');
    DWORD written = 0;
    ASSERT_TRUE(WriteFile(file.get(), filler.data(), static_cast<DWORD>(count), &written, nullptr));
  }
  static size_t FileSize(const std::wstring& path) { return ReadFileBytes(path).size(); }
  // Lets the log open its file with a first line, then grows the file from
  // outside (as another Office process would) to exactly `size` bytes.
  static void FillLogTo(size_t size, Caller caller = {}) {
    TRACE_CALLER(caller);
    WriteLog(LogLevel::Info, L"first");
    const size_t current = FileSize(LogFilePath());
    ASSERT_LT(current, size);
    UniqueFileHandle file(CreateFileW(LogFilePath().c_str(), FILE_APPEND_DATA, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                      nullptr, OPEN_EXISTING, 0, nullptr));
    ASSERT_TRUE(file);
    std::string filler(size - current - 1, 'x');
    filler.push_back('\n');
    DWORD written = 0;
    ASSERT_TRUE(WriteFile(file.get(), filler.data(), static_cast<DWORD>(filler.size()), &written, nullptr));
    ASSERT_EQ(FileSize(LogFilePath()), size);
  }
  // The log's messages after the filler line.
  static std::vector<LogLine> LinesAfterFiller() {
    std::vector<LogLine> lines = ReadLog(LogFilePath());
    std::vector<LogLine> after;
    bool seenFiller = false;
    for (const LogLine& line : lines) {
      if (seenFiller) after.push_back(line);
      seenFiller = seenFiller || !line.wellFormed;
    }
    return after;
  }
};
}  // namespace

TEST_F(LogWriter, WritesStampHostPidLevelThreadAndMessage) {
  OfficeApp = OfficeHost::Word;
  NameThread(GetCurrentThreadId(), L"MainThread");
  WriteLog(LogLevel::Info, L"office app connects");
  const auto lines = ReadLines(LogFilePath());
  ASSERT_EQ(lines.size(), 1u);
  const std::regex format("\xEF\xBB\xBF\\[\\d{4}-\\d\\d-\\d\\d \\d\\d:\\d\\d:\\d\\d\\.\\d{3}\\] Word  pid=" +
                          std::to_string(GetCurrentProcessId()) + " I MainThread - office app connects");
  EXPECT_TRUE(std::regex_match(lines[0], format)) << lines[0];
}

TEST_F(LogWriter, EndsEachLineWithOneLineFeed) {
  WriteLog(LogLevel::Error, L"first");
  WriteLog(LogLevel::Warning, L"second");
  const std::string bytes = ReadFileBytes(LogFilePath());
  ASSERT_GE(bytes.size(), 2u);
  EXPECT_EQ(bytes.back(), '\n');
  EXPECT_EQ(bytes.find('\r'), std::string::npos);
  EXPECT_EQ(LogMessages(LogFilePath()), (std::vector<std::string>{"first", "second"}));
}

TEST_F(LogWriter, WritesEachLevelsLetter) {
  WriteLog(LogLevel::Fatal, L"f");
  WriteLog(LogLevel::Error, L"e");
  WriteLog(LogLevel::Warning, L"w");
  WriteLog(LogLevel::Info, L"i");
  const auto lines = ReadLog(LogFilePath());
  ASSERT_EQ(lines.size(), 4u);
  EXPECT_EQ(lines[0].level, "F");
  EXPECT_EQ(lines[1].level, "E");
  EXPECT_EQ(lines[2].level, "W");
  EXPECT_EQ(lines[3].level, "I");
}

TEST_F(LogWriter, WritesAnUnnamedThreadAsThreadNameAndAnUnknownHostAsDashes) {
  std::thread([] { WriteLog(LogLevel::Info, L"from a worker"); }).join();
  const auto lines = ReadLog(LogFilePath());
  ASSERT_EQ(lines.size(), 1u);
  EXPECT_EQ(lines[0].host, "-----");
  EXPECT_EQ(lines[0].thread, "THREAD_NAME");
}

TEST_F(LogWriter, DropsDebugLinesWithoutTouchingTheFile) {
  WriteLog(LogLevel::Debug, L"hinstance available");
  EXPECT_EQ(GetFileAttributesW(LogFilePath().c_str()), INVALID_FILE_ATTRIBUTES);
}

TEST_F(LogWriter, WritesAByteOrderMarkAtEveryOpening) {
  WriteLog(LogLevel::Info, L"one");
  InitLogFolder();  // a new log object opens the file again
  WriteLog(LogLevel::Info, L"two");
  const auto lines = ReadLines(LogFilePath());
  ASSERT_EQ(lines.size(), 2u);
  EXPECT_EQ(lines[0].rfind("\xEF\xBB\xBF[", 0), 0u);
  EXPECT_EQ(lines[1].rfind("\xEF\xBB\xBF[", 0), 0u);
}

TEST_F(LogWriter, WritesUtf8) {
  WriteLog(LogLevel::Info, L"caf\u00e9 \u6587");
  EXPECT_EQ(LogMessages(LogFilePath()), (std::vector<std::string>{"caf\xC3\xA9 \xE6\x96\x87"}));
}

TEST_F(LogWriter, KeepsAFileOfExactlyFiveMebibytes) {
  FillLogTo(kRotationSize);
  WriteLog(LogLevel::Info, L"next line");
  EXPECT_EQ(GetFileAttributesW(RotatedLogFilePath().c_str()), INVALID_FILE_ATTRIBUTES);
  const std::string bytes = ReadFileBytes(LogFilePath());
  EXPECT_GT(bytes.size(), kRotationSize);
  EXPECT_NE(bytes.find(" - next line\n", kRotationSize), std::string::npos);
}

TEST_F(LogWriter, RotatesAFileOneByteLargerBeforeTheNextLine) {
  FillLogTo(kRotationSize + 1);
  WriteLog(LogLevel::Info, L"next line");
  EXPECT_EQ(FileSize(RotatedLogFilePath()), kRotationSize + 1);
  const auto lines = ReadLog(LogFilePath());
  ASSERT_EQ(lines.size(), 2u);
  EXPECT_EQ(lines[0].level, "I");
  EXPECT_EQ(lines[0].message, "log rotation success");
  EXPECT_EQ(lines[1].message, "next line");
  EXPECT_EQ(ReadLines(LogFilePath())[0].rfind("\xEF\xBB\xBF", 0), 0u);
}

TEST_F(LogWriter, ReplacesAnOldBackupWhenRotating) {
  WriteBytes(RotatedLogFilePath(), 10);
  FillLogTo(kRotationSize + 7);
  WriteLog(LogLevel::Info, L"next line");
  EXPECT_EQ(FileSize(RotatedLogFilePath()), kRotationSize + 7);
  EXPECT_EQ(LogMessages(LogFilePath()), (std::vector<std::string>{"log rotation success", "next line"}));
}

TEST_F(LogWriter, ReportsAFailedRenameThenWritesTheLineThenClosesTheFile) {
  FillLogTo(kRotationSize + 1);
  WriteBytes(RotatedLogFilePath(), 10);
  {
    // Another program holds both files without delete sharing.
    UniqueFileHandle holdLog(CreateFileW(LogFilePath().c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                         nullptr, OPEN_EXISTING, 0, nullptr));
    UniqueFileHandle holdBackup(CreateFileW(RotatedLogFilePath().c_str(), GENERIC_READ,
                                            FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0, nullptr));
    ASSERT_TRUE(holdLog);
    ASSERT_TRUE(holdBackup);
    WriteLog(LogLevel::Info, L"first try");
    WriteLog(LogLevel::Info, L"second try");
  }
  const auto lines = LinesAfterFiller();
  ASSERT_EQ(lines.size(), 6u);
  const std::string failure =
      "log rotation fails => Delete old log file errcode = 32, Rename log file errcode = 32";
  EXPECT_EQ(lines[0].level, "E");
  EXPECT_EQ(lines[0].message, failure);
  EXPECT_EQ(lines[1].message, "first try");
  EXPECT_EQ(lines[2].level, "D");
  EXPECT_EQ(lines[2].message, "closes log file handle");
  EXPECT_EQ(lines[3].message, failure);  // the next line tries again
  EXPECT_EQ(lines[4].message, "second try");
  EXPECT_EQ(lines[5].message, "closes log file handle");
  EXPECT_EQ(FileSize(RotatedLogFilePath()), 10u);
}

TEST_F(LogWriter, LeavesTheDeleteCodeEmptyWhenOnlyTheRenameFails) {
  FillLogTo(kRotationSize + 1);
  {
    UniqueFileHandle holdLog(CreateFileW(LogFilePath().c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                         nullptr, OPEN_EXISTING, 0, nullptr));
    WriteLog(LogLevel::Info, L"line");
  }
  ASSERT_FALSE(LinesAfterFiller().empty());
  EXPECT_EQ(LinesAfterFiller()[0].message,
            "log rotation fails => Delete old log file errcode = , Rename log file errcode = 32");
}

TEST_F(LogWriter, CreatesTheNamedLogMutex) {
  WriteLog(LogLevel::Info, L"line");
  UniqueHandle mutex(OpenMutexW(SYNCHRONIZE, FALSE, L"QelvoFilewell-MSOfficeIntegration-logmutex"));
  EXPECT_TRUE(mutex);
}

TEST_F(LogWriter, KeepsEveryLineWholeWhenThreeProcessesWriteAcrossARotation) {
  constexpr int kLinesPerWriter = 16000;  // about 6 MB in all: one rotation
  std::vector<HANDLE> writers;
  std::vector<PROCESS_INFORMATION> processes(3);
  for (int writer = 0; writer < 3; ++writer) {
    std::wstring command = L"\"" + BinFolder() + L"\\log_stress_writer.exe\" " + std::to_wstring(writer) + L" " +
                           std::to_wstring(kLinesPerWriter);
    STARTUPINFOW startup{};
    startup.cb = sizeof(startup);
    ASSERT_TRUE(CreateProcessW(nullptr, command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup,
                               &processes[writer]));
    writers.push_back(processes[writer].hProcess);
  }
  ASSERT_EQ(WaitForMultipleObjects(3, writers.data(), TRUE, 300000), WAIT_OBJECT_0);
  for (auto& process : processes) {
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
  }

  std::vector<LogLine> lines = ReadLog(RotatedLogFilePath());
  const std::vector<LogLine> current = ReadLog(LogFilePath());
  lines.insert(lines.end(), current.begin(), current.end());
  std::vector<int> next(3, 0);
  int rotations = 0;
  const std::regex payload("writer (\\d) line (\\d+) [a-z]{60}");
  for (const LogLine& line : lines) {
    ASSERT_TRUE(line.wellFormed);
    if (line.message == "log rotation success") {
      ++rotations;
      continue;
    }
    if (line.message.rfind("log rotation fails", 0) == 0 || line.message == "closes log file handle") continue;
    std::smatch match;
    ASSERT_TRUE(std::regex_match(line.message, match, payload)) << line.message;
    const int writer = std::stoi(match[1]);
    EXPECT_EQ(std::stoi(match[2]), next[writer]) << "writer " << writer;  // none lost, none out of order
    next[writer] = std::stoi(match[2]) + 1;
  }
  EXPECT_EQ(rotations, 1);
  EXPECT_EQ(next, (std::vector<int>{kLinesPerWriter, kLinesPerWriter, kLinesPerWriter}));
}

// Texts from the sync app reach the log (paths, exception texts): none of
// them may split a line, forge one, or grow the file past rotation alone.
TEST_F(LogWriter, WritesLineEndsAndEscapeCharactersOfAMessageEscapedOnOneLine) {
  WriteLog(LogLevel::Error,
           L"couldn't x - a\r\n[2025-03-07 09:04:05.008] Word  pid=1 I MainThread - forged\x1b[2J");
  EXPECT_EQ(ReadLines(LogFilePath()).size(), 1u);
  EXPECT_EQ(LogMessages(LogFilePath()),
            (std::vector<std::string>{
                "couldn't x - a\\r\\n[2025-03-07 09:04:05.008] Word  pid=1 I MainThread - forged\\x1b[2J"}));
}

TEST_F(LogWriter, CutsAMegabyteMessageToOneShortLineAndDoesNotRotate) {
  WriteLog(LogLevel::Error, std::wstring(1048576, L'm') + L"\n");
  WriteLog(LogLevel::Info, L"next");
  EXPECT_EQ(LogMessages(LogFilePath()),
            (std::vector<std::string>{std::string(2048, 'm') + " [cut: 1048577 characters in all]", "next"}));
  EXPECT_LT(FileSize(LogFilePath()), 2048u + 200u * 2);
  EXPECT_EQ(GetFileAttributesW(RotatedLogFilePath().c_str()), INVALID_FILE_ATTRIBUTES);
}
