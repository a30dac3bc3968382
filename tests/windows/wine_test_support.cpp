#include "tests/windows/wine_test_support.h"

#include <fstream>
#include <sstream>

#include "common/text.h"
#include "common/unique_resource.h"
#include "log/log_folder.h"

std::wstring BinFolder() {
  wchar_t path[MAX_PATH];
  const DWORD length = GetModuleFileNameW(nullptr, path, MAX_PATH);
  std::wstring folder(path, length);
  return folder.substr(0, folder.find_last_of(L'\\'));
}

std::wstring AddinDllPath() { return BinFolder() + L"\\QSyncMSOfficeAddin.dll"; }

std::wstring AppDataFolder() {
  wchar_t path[MAX_PATH];
  const DWORD length = GetEnvironmentVariableW(L"APPDATA", path, MAX_PATH);
  return std::wstring(path, length);
}

std::wstring LogFolder() { return AppDataFolder() + L"\\QelvoFilewell\\logs"; }
std::wstring LogFilePath() { return LogFolder() + L"\\msoffice_addinlog.txt"; }
std::wstring RotatedLogFilePath() { return LogFolder() + L"\\msoffice_addinlog1.txt"; }

void DeleteLogFiles() {
  DeleteFileW(LogFilePath().c_str());
  DeleteFileW(RotatedLogFilePath().c_str());
}

std::wstring OfficeExecutable(const wchar_t* exeName) {
  return std::wstring(L"C:\\Program Files\\Microsoft Office\\root\\Office16\\") + exeName;
}

std::string ReadFileBytes(const std::wstring& path) {
  UniqueFileHandle file(CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                    nullptr, OPEN_EXISTING, 0, nullptr));
  if (!file) return {};
  std::string bytes;
  char buffer[65536];
  DWORD read = 0;
  while (ReadFile(file.get(), buffer, sizeof(buffer), &read, nullptr) && read > 0) bytes.append(buffer, read);
  return bytes;
}

std::vector<std::string> ReadLines(const std::wstring& path) {
  std::vector<std::string> lines;
  std::istringstream stream(ReadFileBytes(path));
  std::string line;
  while (std::getline(stream, line)) lines.push_back(line);
  return lines;
}

std::vector<std::string> LogMessages(const std::wstring& path) {
  std::vector<std::string> messages;
  for (std::string line : ReadLines(path)) {
    while (line.rfind("\xEF\xBB\xBF", 0) == 0) line.erase(0, 3);
    const size_t separator = line.find(" - ");
    messages.push_back(separator == std::string::npos ? line : line.substr(separator + 3));
  }
  return messages;
}

ProcessResult RunProcess(const std::wstring& commandLine, DWORD timeoutMs) {
  ProcessResult result;
  SECURITY_ATTRIBUTES inherit{sizeof(inherit), nullptr, TRUE};
  UniqueHandle readEnd, writeEnd;
  if (!CreatePipe(readEnd.put(), writeEnd.put(), &inherit, 0)) return result;
  SetHandleInformation(readEnd.get(), HANDLE_FLAG_INHERIT, 0);

  STARTUPINFOW startup{};
  startup.cb = sizeof(startup);
  startup.dwFlags = STARTF_USESTDHANDLES;
  startup.hStdOutput = writeEnd.get();
  startup.hStdError = writeEnd.get();
  startup.hStdInput = GetStdHandle(STD_INPUT_HANDLE);
  PROCESS_INFORMATION process{};
  std::wstring mutableLine = commandLine;
  if (!CreateProcessW(nullptr, mutableLine.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup, &process)) {
    result.output = "CreateProcess failed: " + std::to_string(GetLastError());
    return result;
  }
  UniqueHandle processHandle(process.hProcess), threadHandle(process.hThread);
  writeEnd.reset();

  const DWORD start = GetTickCount();
  char buffer[4096];
  for (;;) {
    DWORD available = 0;
    while (PeekNamedPipe(readEnd.get(), nullptr, 0, nullptr, &available, nullptr) && available > 0) {
      DWORD read = 0;
      if (!ReadFile(readEnd.get(), buffer, sizeof(buffer), &read, nullptr) || read == 0) break;
      result.output.append(buffer, read);
    }
    if (WaitForSingleObject(processHandle.get(), 20) == WAIT_OBJECT_0) break;
    if (GetTickCount() - start > timeoutMs) {
      TerminateProcess(processHandle.get(), 1);
      result.timedOut = true;
      break;
    }
  }
  DWORD read = 0;
  while (ReadFile(readEnd.get(), buffer, sizeof(buffer), &read, nullptr) && read > 0) result.output.append(buffer, read);
  GetExitCodeProcess(processHandle.get(), &result.exitCode);
  return result;
}

std::string Narrow(const std::wstring& text) { return ToUtf8(text); }


LogLine ParseLogLine(std::string line) {
  LogLine parsed;
  while (line.rfind("\xEF\xBB\xBF", 0) == 0) line.erase(0, 3);
  // [YYYY-MM-DD HH:MM:SS.mmm] HOST_ pid=N L THREAD - message
  const size_t stampEnd = line.find("] ");
  if (line.empty() || line[0] != '[' || stampEnd == std::string::npos) return parsed;
  parsed.stamp = line.substr(0, stampEnd + 1);
  size_t position = stampEnd + 2;
  if (line.size() < position + 5) return parsed;
  parsed.host = line.substr(position, 5);
  position += 5;
  if (line.compare(position, 5, " pid=") != 0) return parsed;
  position += 5;
  const size_t pidEnd = line.find(' ', position);
  if (pidEnd == std::string::npos) return parsed;
  parsed.pid = line.substr(position, pidEnd - position);
  position = pidEnd + 1;
  if (line.size() < position + 2) return parsed;
  parsed.level = line.substr(position, 1);
  position += 2;
  const size_t threadEnd = line.find(" - ", position);
  if (threadEnd == std::string::npos) return parsed;
  parsed.thread = line.substr(position, threadEnd - position);
  parsed.message = line.substr(threadEnd + 3);
  parsed.wellFormed = true;
  return parsed;
}

std::vector<LogLine> ReadLog(const std::wstring& path) {
  std::vector<LogLine> lines;
  for (const std::string& line : ReadLines(path)) lines.push_back(ParseLogLine(line));
  return lines;
}

std::vector<std::string> MessagesOfThread(const std::vector<LogLine>& lines, const std::string& thread) {
  std::vector<std::string> messages;
  for (const LogLine& line : lines) {
    if (line.thread == thread) messages.push_back(line.message);
  }
  return messages;
}

testing::AssertionResult ContainsInOrder(const std::vector<std::string>& actual,
                                         const std::vector<std::string>& expected) {
  size_t next = 0;
  for (const std::string& line : actual) {
    if (next < expected.size() && line == expected[next]) ++next;
  }
  if (next == expected.size()) return testing::AssertionSuccess();
  std::string all;
  for (const std::string& line : actual) all += "\n  " + line;
  return testing::AssertionFailure() << "missing, in order: \"" << expected[next] << "\"; the lines were:" << all;
}

void StartFreshLog() {
  CreateDirectoryW(LogFolder().c_str(), nullptr);
  InitLogFolder();  // the new log object has its file closed
  DeleteLogFiles();
}

HRESULT InstallAddinForUser(bool install) {
  HMODULE module = LoadLibraryW(AddinDllPath().c_str());
  if (module == nullptr) return HRESULT_FROM_WIN32(GetLastError());
  auto entry = reinterpret_cast<HRESULT(__stdcall*)(BOOL, LPCWSTR)>(
      reinterpret_cast<void*>(GetProcAddress(module, "DllInstall")));
  const HRESULT hr = entry != nullptr ? entry(install ? TRUE : FALSE, L"user") : E_NOINTERFACE;
  FreeLibrary(module);
  return hr;
}

RECT WindowRectOf(HWND window) {
  RECT rect{-1, -1, -1, -1};
  GetWindowRect(window, &rect);
  return rect;
}
