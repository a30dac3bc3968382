#pragma once
#include <windows.h>

#include <cstdint>
#include <memory>
#include <string>

#include "common/unique_resource.h"
#include "log/write_log.h"

// The log file shared by every Office process of the user. Lines are UTF-8;
// each opening of the file writes a byte-order mark first. Above 5 MiB the
// file becomes the single backup and a new file begins.
class AddinLog {
 public:
  static constexpr std::int64_t kRotationSize = 5242880;

  AddinLog(const std::wstring& folder, const wchar_t* fileName, const wchar_t* rotatedFileName);

  // Writes one line under the named log mutex, rotating first if needed.
  // The process's own writers go one at a time.
  void WriteLine(LogLevel level, const std::wstring& message);

  // Lets go of the file (under the mutex); the next line opens it again.
  void Close();

  const std::wstring& logPath() const { return logPath_; }
  const std::wstring& rotatedPath() const { return rotatedPath_; }

 private:
  int RotateIfNeeded();
  void EnsureOpen();
  void CloseFile();
  void AppendLine(const wchar_t* letter, const std::wstring& message);

  std::wstring logPath_;
  std::wstring rotatedPath_;
  std::wstring pidText_;
  // The process's own writers take turns here before they meet other
  // processes at the named mutex: that one may be missing or time out, and
  // two threads must never share the buffer and the file handle. A kernel
  // mutex, so a thread ended while writing (the update thread, as a last
  // resort at disconnection) hands it on instead of holding it for good.
  UniqueHandle writerLock_{CreateMutexW(nullptr, FALSE, nullptr)};
  std::string buffer_;  // reused for the UTF-8 bytes of each line
  UniqueFileHandle file_;
};

// Replaces the process-wide log object (the old one is destroyed).
void InstallAddinLog(std::unique_ptr<AddinLog> log);
// The process-wide log object, or null before InitLogFolder.
AddinLog* CurrentAddinLog();

// Closes the process-wide log's file, if there is one: for the module's
// unloading, after which nothing of ours would ever close it.
void CloseAddinLogFile();

// The named mutex that serialises all writers of all processes; created on
// first use and kept for the life of the process (null if creation failed).
HANDLE LogMutex();
