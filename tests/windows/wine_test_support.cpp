#include "tests/windows/wine_test_support.h"

#include <fstream>
#include <sstream>

#include "common/text.h"
#include "common/unique_resource.h"

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

std::wstring WidenUtf8(const std::string& text) {
  if (text.empty()) return {};
  const int length = MultiByteToWideChar(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), nullptr, 0);
  std::wstring wide(length, L'\0');
  MultiByteToWideChar(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), wide.data(), length);
  return wide;
}
