#pragma once
// Helpers shared by the Windows tests: paths inside the test prefix, the
// add-in's log, and child processes.
#include <windows.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

// Folder of the running test executable: the build's bin folder, where the
// DLL and the tools are.
std::wstring BinFolder();
std::wstring AddinDllPath();

// %APPDATA%, and the add-in's log folder and files under it.
std::wstring AppDataFolder();
std::wstring LogFolder();
std::wstring LogFilePath();
std::wstring RotatedLogFilePath();
void DeleteLogFiles();
// A fresh log object in this process over an empty log folder, as a new
// connection of the add-in would have.
void StartFreshLog();

// Registers (true) or unregisters (false) the add-in for the current user
// through its own DllInstall, as "regsvr32 /n /i:user" does; its HRESULT.
HRESULT InstallAddinForUser(bool install);

// The simulated Office installed in the prefix under Office's folder names:
// "WINWORD.EXE", "EXCEL.EXE", "POWERPNT.EXE", "OUTLOOK.EXE".
std::wstring OfficeExecutable(const wchar_t* exeName);

// Lines of a UTF-8 log file, each without its line end; byte-order marks
// are kept where they stand so tests can check them.
std::vector<std::string> ReadLines(const std::wstring& path);
std::string ReadFileBytes(const std::wstring& path);
// Only the message part of each line (after the first " - "), BOMs removed.
std::vector<std::string> LogMessages(const std::wstring& path);

struct ProcessResult {
  DWORD exitCode = 0xdeadbeef;
  std::string output;  // stdout and stderr together
  bool timedOut = false;
};
// Runs a command line, capturing its output, and waits up to timeoutMs.
ProcessResult RunProcess(const std::wstring& commandLine, DWORD timeoutMs = 60000);

std::string Narrow(const std::wstring& text);

// A window's rectangle in screen coordinates; -1 everywhere when the
// window is gone.
RECT WindowRectOf(HWND window);

// One log line taken apart: "[stamp] HOST pid=N L THREAD - message".
struct LogLine {
  std::string stamp, host, pid, level, thread, message;
  bool wellFormed = false;
};
LogLine ParseLogLine(std::string line);  // leading byte-order marks are skipped
std::vector<LogLine> ReadLog(const std::wstring& path);
// Messages of the lines written by one thread, in order.
std::vector<std::string> MessagesOfThread(const std::vector<LogLine>& lines, const std::string& thread);

// True when `expected` appears in `actual` in this order (other lines may
// stand between); otherwise names the first one missing.
testing::AssertionResult ContainsInOrder(const std::vector<std::string>& actual,
                                         const std::vector<std::string>& expected);
