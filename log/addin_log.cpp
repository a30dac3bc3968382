#include "log/addin_log.h"

#include "common/office_app.h"
#include "common/text.h"
#include "log/log_line.h"
#include "log/thread_names.h"

namespace {
std::unique_ptr<AddinLog>& AddinLogSlot() {
  static auto* slot = new std::unique_ptr<AddinLog>();  // never destroyed: lines may come late in shutdown
  return *slot;
}

// How long a writer waits for another thread of the process to finish its
// line: longer than that thread's own wait for the named mutex. A line
// that still cannot be written is dropped rather than written over
// another thread's.
constexpr DWORD kWriterTurnMs = 12000;

// Holds the process's writer lock for one line, if it could be had.
class WriterTurn {
 public:
  explicit WriterTurn(HANDLE lock) : lock_(lock) {
    const DWORD wait = lock ? WaitForSingleObject(lock, kWriterTurnMs) : WAIT_FAILED;
    // WAIT_ABANDONED: the last writer was ended mid-line; the turn is ours.
    owned_ = wait == WAIT_OBJECT_0 || wait == WAIT_ABANDONED;
  }
  ~WriterTurn() {
    if (owned_) ReleaseMutex(lock_);
  }
  WriterTurn(const WriterTurn&) = delete;
  WriterTurn& operator=(const WriterTurn&) = delete;
  bool owned() const { return owned_; }

 private:
  HANDLE lock_;
  bool owned_ = false;
};

std::wstring CurrentTimestamp() {
  SYSTEMTIME now;
  GetLocalTime(&now);
  return FormatLogTimestamp(
      {now.wYear, now.wMonth, now.wDay, now.wHour, now.wMinute, now.wSecond, now.wMilliseconds});
}
}  // namespace

void InstallAddinLog(std::unique_ptr<AddinLog> log) { AddinLogSlot() = std::move(log); }
AddinLog* CurrentAddinLog() { return AddinLogSlot().get(); }

void CloseAddinLogFile() {
  if (AddinLog* log = CurrentAddinLog()) log->Close();
}

HANDLE LogMutex() {
  static const HANDLE mutex = CreateMutexW(nullptr, FALSE, L"QelvoFilewell" L"-MSOfficeIntegration-logmutex");
  return mutex;
}

AddinLog::AddinLog(const std::wstring& folder, const wchar_t* fileName, const wchar_t* rotatedFileName)
    : logPath_(folder + L"\\" + fileName),
      rotatedPath_(folder + L"\\" + rotatedFileName),
      pidText_(std::to_wstring(GetCurrentProcessId())) {}

void AddinLog::WriteLine(LogLevel level, const std::wstring& message) {
  const WriterTurn turn(writerLock_.get());
  if (!turn.owned()) return;
  const HANDLE mutex = LogMutex();
  // A writer that waited 5 s writes anyway: a lost line is worse than a
  // line out of order, and a hung Office is worse than both.
  if (mutex) WaitForSingleObject(mutex, 5000);
  const int rotated = RotateIfNeeded();
  EnsureOpen();
  AppendLine(LevelLetter(level), message);
  if (rotated == 0) {
    // The rename failed: let go of the file so whoever holds it can rotate.
    AppendLine(L"D", L"closes log file handle");
    CloseFile();
  }
  if (mutex) ReleaseMutex(mutex);
}

void AddinLog::Close() {
  const WriterTurn turn(writerLock_.get());
  if (!turn.owned()) return;
  const HANDLE mutex = LogMutex();
  if (mutex) WaitForSingleObject(mutex, 5000);
  CloseFile();
  if (mutex) ReleaseMutex(mutex);
}

void AddinLog::EnsureOpen() {
  if (file_) return;
  // Appending writes land at the end even while other processes append;
  // no delete sharing, so nobody renames the file under an open writer.
  file_.reset(CreateFileW(logPath_.c_str(), FILE_APPEND_DATA, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                          OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
  if (!file_) return;
  static const char kByteOrderMark[] = "\xEF\xBB\xBF";
  DWORD written = 0;
  WriteFile(file_.get(), kByteOrderMark, 3, &written, nullptr);
}

void AddinLog::CloseFile() { file_.reset(); }

void AddinLog::AppendLine(const wchar_t* letter, const std::wstring& message) {
  if (!file_) return;
  const std::wstring line = FormatLogLine(CurrentTimestamp(), OfficeApp, pidText_, letter,
                                          ThreadName(GetCurrentThreadId()), message);
  buffer_ = ToUtf8(line);
  buffer_.push_back('\n');
  DWORD written = 0;
  WriteFile(file_.get(), buffer_.data(), static_cast<DWORD>(buffer_.size()), &written, nullptr);
}

int AddinLog::RotateIfNeeded() {
  EnsureOpen();
  LARGE_INTEGER size{};
  std::int64_t bytes = -1;
  if (file_ && GetFileSizeEx(file_.get(), &size)) bytes = size.QuadPart;
  if (bytes <= kRotationSize) return 1;

  CloseFile();
  std::wstring deleteError;
  if (!DeleteFileW(rotatedPath_.c_str())) {
    const DWORD error = GetLastError();
    if (error != ERROR_FILE_NOT_FOUND) deleteError = std::to_wstring(error);
  }
  std::wstring renameError;
  if (!MoveFileW(logPath_.c_str(), rotatedPath_.c_str())) renameError = std::to_wstring(GetLastError());
  EnsureOpen();
  if (renameError.empty()) {
    AppendLine(L"I", L"log rotation success");
    return 1;
  }
  AppendLine(L"E", L"log rotation fails => Delete old log file errcode = " + deleteError +
                       L", Rename log file errcode = " + renameError);
  return 0;
}
