#include "synclink/sync_app_pipe.h"

#include <atomic>

#include "log/exception_barrier.h"
#include "log/write_log.h"

namespace {
std::atomic<int> g_userNameQueries{0};

std::wstring ErrorText(const wchar_t* what) { return what + std::to_wstring(GetLastError()); }
}  // namespace

const std::wstring& WindowsUserName() {
  static const std::wstring name = [] {
    ++g_userNameQueries;
    wchar_t buffer[257];
    DWORD size = 257;
    return GetUserNameW(buffer, &size) ? std::wstring(buffer) : std::wstring();
  }();
  return name;
}

int SyncAppPipe::UserNameQueries() { return g_userNameQueries.load(); }

SyncAppPipe& TheSyncAppPipe() {
  static auto* pipe = new SyncAppPipe();  // outlives the update thread
  return *pipe;
}

namespace {
// Owns the exchange lock for one exchange.
class ExchangeTurn {
 public:
  explicit ExchangeTurn(HANDLE lock) : lock_(lock), wait_(lock ? WaitForSingleObject(lock, INFINITE) : WAIT_FAILED) {}
  ~ExchangeTurn() {
    if (owned()) ReleaseMutex(lock_);
  }
  ExchangeTurn(const ExchangeTurn&) = delete;
  ExchangeTurn& operator=(const ExchangeTurn&) = delete;
  // The thread of the previous exchange was ended inside it.
  bool abandoned() const { return wait_ == WAIT_ABANDONED; }

 private:
  bool owned() const { return wait_ == WAIT_OBJECT_0 || wait_ == WAIT_ABANDONED; }
  HANDLE lock_;
  DWORD wait_;
};
}  // namespace

std::wstring SyncAppPipe::Exchange(const std::wstring& request) {
  const ExchangeTurn turn(exchangeLock_.get());
  // Its connection is still open: closing it frees the sync app's instance.
  if (turn.abandoned()) Close();
  const std::wstring answer =
      Guarded(L"communicating with sync app", std::wstring(L"ERROR"), [&] { return ExchangeLocked(request); });
  if (answer == L"ERROR") Close();  // also after an exception
  return answer;
}

std::wstring SyncAppPipe::ExchangeLocked(const std::wstring& request) {
  WriteLog(LogLevel::Debug, L"ipc: " + pipeName_);
  if (pipeName_.empty()) {
    const std::wstring& userName = WindowsUserName();
    WriteLog(LogLevel::Debug, L"username: " + userName);
    pipeName_ = L"\\\\.\\pipe\\FilewellSync-MSOfficeIntegration-" + userName;
  }
  if (!Open()) return L"ERROR";
  WriteLog(LogLevel::Debug, L"pipe connected");

  lastResult_ = SetNamedPipeHandleState(pipeHandle_, &readMode_, nullptr, nullptr);
  if (!lastResult_) {
    WriteLog(LogLevel::Error, ErrorText(L"setting msg-read mode failed. errcode="));
    return L"ERROR";
  }
  WriteLog(LogLevel::Debug, L"set msg-read mode");

  // The request's units and its terminating NUL.
  bytesToWrite_ = static_cast<DWORD>((lstrlenW(request.c_str()) + 1) * sizeof(wchar_t));
  WriteLog(LogLevel::Debug, L"sending msg" + std::to_wstring(bytesToWrite_));
  lastResult_ = WriteFile(pipeHandle_, request.c_str(), bytesToWrite_, &bytesWritten_, nullptr);
  if (!lastResult_) {
    WriteLog(LogLevel::Error, ErrorText(L"send msg failed. errcode="));
    return L"ERROR";
  }
  WriteLog(LogLevel::Debug, L"sent msg" + std::to_wstring(bytesWritten_));

  std::wstring answer;
  if (!ReadAnswer(answer)) {
    WriteLog(LogLevel::Error, ErrorText(L"read msg failed. errcode="));
    return L"ERROR";
  }
  WriteLog(LogLevel::Debug, L"read msg completely = " + answer);
  Close();
  return answer;
}

bool SyncAppPipe::Open() {
  for (;;) {
    WriteLog(LogLevel::Debug, L"Tring to open pipe: " + pipeName_);
    pipeHandle_ = CreateFileW(pipeName_.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    if (pipeHandle_ != INVALID_HANDLE_VALUE) return true;
    pipeHandle_ = nullptr;
    if (GetLastError() != ERROR_PIPE_BUSY) {
      WriteLog(LogLevel::Error, ErrorText(L"Could not open pipe. errcode="));
      return false;
    }
    // Every instance is busy: wait for one to be free, as long as the sync
    // app keeps freeing one within five seconds.
    if (!WaitNamedPipeW(pipeName_.c_str(), 5000)) {
      WriteLog(LogLevel::Error, ErrorText(L"Wait time over, could not open pipe. errcode="));
      return false;
    }
  }
}

bool SyncAppPipe::ReadAnswer(std::wstring& answer) {
  WriteLog(LogLevel::Debug, L"reading msg");
  bool firstChunk = true;
  for (;;) {
    lastResult_ = ReadFile(pipeHandle_, readBuffer_, kChunkBytes, &bytesRead_, nullptr);
    if (!lastResult_ && GetLastError() != ERROR_MORE_DATA) return false;
    WriteLog(LogLevel::Debug, L"read msg" + std::to_wstring(bytesRead_));
    const wchar_t* text = readBuffer_;
    if (firstChunk) {
      // The first unit of every answer is not part of the text, whatever it
      // holds (the sync app writes U+FEFF there).
      ++text;
      firstChunk = false;
    }
    answer += text;  // up to the first NUL; the spare unit ends a full chunk
    ZeroMemory(readBuffer_, sizeof(readBuffer_));
    if (lastResult_) return true;
  }
}

void SyncAppPipe::Close() {
  if (pipeHandle_ == nullptr) return;
  if (CloseHandle(pipeHandle_)) {
    WriteLog(LogLevel::Debug, L"closed pipe");
  } else {
    WriteLog(LogLevel::Error, ErrorText(L"close pipe failed. errcode="));
  }
  pipeHandle_ = nullptr;
}
