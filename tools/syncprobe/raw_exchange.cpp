#include "tools/syncprobe/raw_exchange.h"

#include <vector>

namespace {
constexpr DWORD kChunkBytes = 8192;  // the add-in's read size

DWORD Remaining(ULONGLONG end) {
  const ULONGLONG now = GetTickCount64();
  return now >= end ? 0 : static_cast<DWORD>(end - now);
}

// Waits for overlapped I/O that `started` began, up to `waitMs`; cancels
// it after that. The error (0 for success, WAIT_TIMEOUT when cut off) and
// the bytes moved.
DWORD Complete(HANDLE pipe, OVERLAPPED& overlapped, BOOL started, DWORD waitMs, DWORD& bytes) {
  bytes = 0;
  if (!started) {
    const DWORD error = GetLastError();
    if (error != ERROR_IO_PENDING) {
      if (error == ERROR_MORE_DATA) GetOverlappedResult(pipe, &overlapped, &bytes, FALSE);
      return error;
    }
    if (WaitForSingleObject(overlapped.hEvent, waitMs) != WAIT_OBJECT_0) {
      CancelIoEx(pipe, &overlapped);
      GetOverlappedResult(pipe, &overlapped, &bytes, TRUE);
      return WAIT_TIMEOUT;
    }
  }
  return GetOverlappedResult(pipe, &overlapped, &bytes, FALSE) ? 0 : GetLastError();
}
}  // namespace

RawExchange ExchangeRaw(const std::wstring& pipeName, const std::wstring& request, const ExchangeLimits& limits) {
  RawExchange result;
  const ULONGLONG start = GetTickCount64();
  const ULONGLONG end = start + limits.totalMs;
  auto finish = [&]() -> RawExchange {
    result.elapsedMs = static_cast<DWORD>(GetTickCount64() - start);
    return std::move(result);
  };

  // Opened as the add-in opens it: identification only, so a server that
  // is not the user's sync app cannot act as the user.
  for (;;) {
    result.pipe.reset(CreateFileW(pipeName.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING,
                                  FILE_FLAG_OVERLAPPED | SECURITY_SQOS_PRESENT | SECURITY_IDENTIFICATION, nullptr));
    if (result.pipe) break;
    result.openError = GetLastError();
    if (result.openError != ERROR_PIPE_BUSY) return finish();
    const DWORD left = Remaining(end);
    const DWORD wait = left < limits.busyWaitMs ? left : limits.busyWaitMs;
    if (wait == 0 || !WaitNamedPipeW(pipeName.c_str(), wait)) {
      result.openError = wait == 0 ? ERROR_SEM_TIMEOUT : GetLastError();
      return finish();
    }
  }
  result.openError = 0;

  DWORD flags = 0;
  result.messagePipe = GetNamedPipeInfo(result.pipe.get(), &flags, nullptr, nullptr, nullptr) &&
                       (flags & PIPE_TYPE_MESSAGE) != 0;
  DWORD mode = PIPE_READMODE_MESSAGE;
  result.modeError = SetNamedPipeHandleState(result.pipe.get(), &mode, nullptr, nullptr) ? 0 : GetLastError();
  if (result.modeError != 0) return finish();

  UniqueHandle ioEvent(CreateEventW(nullptr, TRUE, FALSE, nullptr));
  OVERLAPPED overlapped{};
  overlapped.hEvent = ioEvent.get();
  const DWORD requestBytes = static_cast<DWORD>((request.size() + 1) * sizeof(wchar_t));
  DWORD moved = 0;
  result.writeError = Complete(result.pipe.get(), overlapped,
                               WriteFile(result.pipe.get(), request.c_str(), requestBytes, nullptr, &overlapped),
                               Remaining(end), moved);
  if (result.writeError == 0 && moved != requestBytes) result.writeError = ERROR_WRITE_FAULT;
  if (result.writeError != 0) return finish();

  std::vector<char> buffer(kChunkBytes);
  std::string bytes;
  for (;;) {
    overlapped = OVERLAPPED{};
    overlapped.hEvent = ioEvent.get();
    ResetEvent(ioEvent.get());
    const BOOL started = ReadFile(result.pipe.get(), buffer.data(), kChunkBytes, nullptr, &overlapped);
    result.readError = Complete(result.pipe.get(), overlapped, started, Remaining(end), moved);
    ++result.chunks;
    bytes.append(buffer.data(), moved);
    if (result.readError != ERROR_MORE_DATA) break;
  }
  result.message.assign(bytes.size() / sizeof(wchar_t), L'\0');
  if (!result.message.empty()) memcpy(result.message.data(), bytes.data(), result.message.size() * sizeof(wchar_t));
  return finish();
}

bool SecondAnswerArrives(HANDLE pipe, const std::wstring& request, DWORD waitMs, std::wstring& seen) {
  // Anything already waiting is a second message sent with the answer.
  DWORD waiting = 0;
  if (PeekNamedPipe(pipe, nullptr, 0, nullptr, &waiting, nullptr) && waiting > 0) {
    seen = std::to_wstring(waiting) + L" more bytes sent after the answer, unasked";
    return true;
  }
  UniqueHandle ioEvent(CreateEventW(nullptr, TRUE, FALSE, nullptr));
  OVERLAPPED overlapped{};
  overlapped.hEvent = ioEvent.get();
  const DWORD requestBytes = static_cast<DWORD>((request.size() + 1) * sizeof(wchar_t));
  DWORD moved = 0;
  const DWORD writeError =
      Complete(pipe, overlapped, WriteFile(pipe, request.c_str(), requestBytes, nullptr, &overlapped), waitMs, moved);
  if (writeError != 0) {
    seen = L"a second request on the same connection was refused (error " + std::to_wstring(writeError) + L")";
    return false;
  }
  overlapped = OVERLAPPED{};
  overlapped.hEvent = ioEvent.get();
  ResetEvent(ioEvent.get());
  char unit[2];
  const DWORD readError = Complete(pipe, overlapped, ReadFile(pipe, unit, sizeof(unit), nullptr, &overlapped),
                                   waitMs, moved);
  if ((readError == 0 || readError == ERROR_MORE_DATA) && moved > 0) {
    seen = L"a second request written on the same connection was answered";
    return true;
  }
  seen = readError == WAIT_TIMEOUT
             ? L"a second request on the same connection got no answer within " + std::to_wstring(waitMs) + L" ms"
             : L"a second request on the same connection ended it (error " + std::to_wstring(readError) + L")";
  return false;
}
