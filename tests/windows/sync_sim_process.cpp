#include "tests/windows/sync_sim_process.h"

#include "common/text.h"
#include "tests/windows/wine_test_support.h"

testing::AssertionResult SyncSimProcess::Start(const std::wstring& arguments) {
  // A syncsim stopped a moment ago may still hold the pipe while Windows
  // takes its instances down; the new one then refuses to serve (exit code
  // 3). And Wine now and then fails to create a process at all (1359) when
  // many were created in a row. Either way it is simply started again.
  testing::AssertionResult started = StartOnce(arguments);
  for (int attempt = 1; attempt < 5 && !started && (ExitCode() == 3 || createFailed_); ++attempt) {
    Sleep(200);
    started = StartOnce(arguments);
  }
  return started;
}

testing::AssertionResult SyncSimProcess::StartOnce(const std::wstring& arguments) {
  Stop();
  // Created before the child, so its signal cannot be missed.
  readyEvent_.reset(CreateEventW(nullptr, TRUE, FALSE, L"syncsim-ready"));
  stopEvent_.reset(CreateEventW(nullptr, TRUE, FALSE, L"syncsim-stop"));
  if (!readyEvent_ || !stopEvent_) return testing::AssertionFailure() << "events: " << GetLastError();
  ResetEvent(readyEvent_.get());
  ResetEvent(stopEvent_.get());

  // The run limit first: a later --run-ms in `arguments` wins.
  std::wstring commandLine = Quoted(BinFolder() + L"\\syncsim.exe") + L" --run-ms 60000 " + arguments;
  STARTUPINFOW startup{};
  startup.cb = sizeof(startup);
  PROCESS_INFORMATION info{};
  createFailed_ = !CreateProcessW(nullptr, commandLine.data(), nullptr, nullptr, FALSE, CREATE_SUSPENDED, nullptr,
                                  BinFolder().c_str(), &startup, &info);
  if (createFailed_) return testing::AssertionFailure() << "CreateProcessW(syncsim.exe) failed: " << GetLastError();
  process_.reset(info.hProcess);
  job_.reset(CreateJobObjectW(nullptr, nullptr));
  JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits{};
  limits.BasicLimitInformation.LimitFlags = JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE;
  if (!job_ || !SetInformationJobObject(job_.get(), JobObjectExtendedLimitInformation, &limits, sizeof(limits)) ||
      !AssignProcessToJobObject(job_.get(), process_.get())) {
    job_.reset();  // not essential: the run limit still ends it
  }
  ResumeThread(info.hThread);
  CloseHandle(info.hThread);

  const HANDLE waits[] = {readyEvent_.get(), process_.get()};
  const DWORD which = WaitForMultipleObjects(2, waits, FALSE, 20000);
  if (which == WAIT_OBJECT_0) return testing::AssertionSuccess();
  if (which == WAIT_OBJECT_0 + 1) {
    return testing::AssertionFailure() << "syncsim ended before serving, exit code " << ExitCode() << ": "
                                       << Narrow(commandLine);
  }
  Stop();
  return testing::AssertionFailure() << "syncsim did not get ready: " << Narrow(commandLine);
}

DWORD SyncSimProcess::Stop() {
  if (!process_) return 0;
  SetEvent(stopEvent_.get());
  if (WaitForSingleObject(process_.get(), 10000) != WAIT_OBJECT_0) {
    TerminateProcess(process_.get(), 99);
    WaitForSingleObject(process_.get(), 5000);
  }
  const DWORD code = ExitCode();
  process_.reset();
  job_.reset();
  readyEvent_.reset();
  stopEvent_.reset();
  return code;
}

bool SyncSimProcess::WaitForExit(DWORD timeoutMs) {
  return process_ && WaitForSingleObject(process_.get(), timeoutMs) == WAIT_OBJECT_0;
}

DWORD SyncSimProcess::ExitCode() const {
  DWORD code = 0xdeadbeef;
  if (process_) GetExitCodeProcess(process_.get(), &code);
  return code;
}

std::wstring FreshTempPath(const wchar_t* name) {
  wchar_t folder[MAX_PATH];
  const DWORD length = GetTempPathW(MAX_PATH, folder);
  std::wstring path = std::wstring(folder, length) + name;
  DeleteFileW(path.c_str());
  return path;
}

void WriteUtf8File(const std::wstring& path, const std::wstring& text) {
  UniqueFileHandle file(CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr));
  const std::string bytes = ToUtf8(text);
  DWORD written = 0;
  if (file) WriteFile(file.get(), bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr);
}

std::wstring Quoted(const std::wstring& path) { return L"\"" + path + L"\""; }
