#pragma once
// The simulated sync app (syncsim.exe) as a background child of a test:
// started on the user's own pipe, waited for until it serves, and always
// stopped again, so no test can hang on it.
#include <windows.h>

#include <gtest/gtest.h>

#include <string>

#include "common/unique_resource.h"

class SyncSimProcess {
 public:
  SyncSimProcess() = default;
  SyncSimProcess(const SyncSimProcess&) = delete;
  SyncSimProcess& operator=(const SyncSimProcess&) = delete;
  ~SyncSimProcess() { Stop(); }

  // Starts syncsim with `arguments` (it stops by itself after a minute at
  // the latest) and waits until its pipe exists.
  testing::AssertionResult Start(const std::wstring& arguments);
  // Asks it to stop, waits up to ten seconds, then ends it; its exit code.
  DWORD Stop();
  // Waits for it to end by itself (--max-requests); false on timeout.
  bool WaitForExit(DWORD timeoutMs);
  DWORD ExitCode() const;

 private:
  testing::AssertionResult StartOnce(const std::wstring& arguments);

  UniqueHandle job_;  // ends syncsim with the test process, even when the test crashes
  UniqueHandle process_;
  UniqueHandle readyEvent_;
  bool createFailed_ = false;
  UniqueHandle stopEvent_;
};

// A fresh path in the temporary folder (any old file of that name deleted).
std::wstring FreshTempPath(const wchar_t* name);
// Writes `text` as UTF-8, exactly (no byte-order mark, no line end added).
void WriteUtf8File(const std::wstring& path, const std::wstring& text);
// "\"path\"" for a command line.
std::wstring Quoted(const std::wstring& path);
