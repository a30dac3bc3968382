// One exchange of the add-in's pipe client against a bare round trip on the
// same pipe: a tiny server and a plain client (open, message mode, write,
// read, close) with none of our code, run in turns so that both meet the
// same load. The ratio says what our client adds to what the pipe itself
// costs; under Wine each kernel call is a trip to the wineserver.
//   pipe_bench.exe [--rounds N]
#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <cwchar>
#include <string>
#include <thread>
#include <vector>

#include "bench/realistic_files.h"
#include "common/office_app.h"
#include "synclink/file_status_cache.h"
#include "synclink/sync_app_pipe.h"

namespace {
constexpr DWORD kBufferBytes = 65536;
constexpr int kFiles = 10;

// Serves the pipe for ever: one request, one answer, then waits for the
// client to close. The next instance listens before one is served.
void ServeBare(const std::wstring& name, const std::wstring& answer) {
  auto create = [&] {
    return CreateNamedPipeW(name.c_str(), PIPE_ACCESS_DUPLEX, PIPE_TYPE_MESSAGE | PIPE_READMODE_MESSAGE | PIPE_WAIT,
                            PIPE_UNLIMITED_INSTANCES, kBufferBytes, kBufferBytes, 0, nullptr);
  };
  std::vector<char> buffer(kBufferBytes);
  const std::wstring message = L"\xFEFF" + answer;
  HANDLE next = create();
  while (next != INVALID_HANDLE_VALUE) {
    HANDLE pipe = next;
    if (!ConnectNamedPipe(pipe, nullptr) && GetLastError() != ERROR_PIPE_CONNECTED) {
      CloseHandle(pipe);
      next = create();
      continue;
    }
    next = create();
    DWORD moved = 0;
    while (!ReadFile(pipe, buffer.data(), kBufferBytes, &moved, nullptr) && GetLastError() == ERROR_MORE_DATA) {
    }
    WriteFile(pipe, message.data(), static_cast<DWORD>(message.size() * sizeof(wchar_t)), &moved, nullptr);
    ReadFile(pipe, buffer.data(), 1, &moved, nullptr);  // ends when the client closes
    DisconnectNamedPipe(pipe);
    CloseHandle(pipe);
  }
}

// The plain client: nothing but the calls a round trip needs.
bool BareRoundTrip(const std::wstring& name, const std::wstring& request, std::vector<char>& buffer) {
  HANDLE pipe = CreateFileW(name.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr);
  if (pipe == INVALID_HANDLE_VALUE) return false;
  DWORD mode = PIPE_READMODE_MESSAGE;
  DWORD moved = 0;
  bool ok = SetNamedPipeHandleState(pipe, &mode, nullptr, nullptr) &&
            WriteFile(pipe, request.c_str(), static_cast<DWORD>((request.size() + 1) * sizeof(wchar_t)), &moved,
                      nullptr);
  if (ok) {
    while (!(ok = ReadFile(pipe, buffer.data(), static_cast<DWORD>(buffer.size()), &moved, nullptr)) &&
           GetLastError() == ERROR_MORE_DATA) {
    }
  }
  CloseHandle(pipe);
  return ok;
}

double Microseconds(LARGE_INTEGER from, LARGE_INTEGER to, LARGE_INTEGER frequency) {
  return static_cast<double>(to.QuadPart - from.QuadPart) * 1e6 / static_cast<double>(frequency.QuadPart);
}

double Percentile(std::vector<double> values, double p) {
  std::sort(values.begin(), values.end());
  return values[static_cast<size_t>(p * static_cast<double>(values.size() - 1) + 0.5)];
}
}  // namespace

int wmain(int argc, wchar_t** argv) {
  setvbuf(stdout, nullptr, _IONBF, 0);
  int rounds = 200;
  for (int i = 1; i < argc; ++i) {
    if (std::wstring(argv[i]) == L"--rounds" && i + 1 < argc) {
      rounds = _wtoi(argv[++i]);
    } else {
      std::printf("usage: pipe_bench.exe [--rounds N]\n");
      return std::wstring(argv[i]) == L"--help" ? 0 : 2;
    }
  }
  if (rounds < 1) rounds = 1;

  // The add-in's client talks to the user's own pipe, so the bare server
  // serves that name; nobody else may be serving it.
  const std::wstring name = L"\\\\.\\pipe\\FilewellSync-MSOfficeIntegration-" + WindowsUserName();
  if (WaitNamedPipeW(name.c_str(), 1) || GetLastError() != ERROR_FILE_NOT_FOUND) {
    std::printf("pipe_bench: %ls is served by another process; stop it first\n", name.c_str());
    return 3;
  }
  OfficeApp = OfficeHost::Word;
  FileStatusCache cache;
  for (int i = 0; i < kFiles; ++i) cache.AddFile(DocumentPath(static_cast<size_t>(i)), nullptr, 0, nullptr);
  const std::wstring request = cache.BuildRequest(L"", false);
  const std::wstring answer = AnswerText(kFiles);
  std::thread(ServeBare, name, answer).detach();
  while (!WaitNamedPipeW(name.c_str(), 1)) Sleep(1);

  LARGE_INTEGER frequency;
  QueryPerformanceFrequency(&frequency);
  std::vector<char> buffer(kBufferBytes);
  std::vector<double> bare, ours;
  const int warmUp = rounds < 10 ? 1 : 10;
  for (int round = -warmUp; round < rounds; ++round) {
    LARGE_INTEGER t0, t1, t2;
    QueryPerformanceCounter(&t0);
    const bool bareOk = BareRoundTrip(name, request, buffer);
    QueryPerformanceCounter(&t1);
    const std::wstring got = TheSyncAppPipe().Exchange(request);
    QueryPerformanceCounter(&t2);
    if (!bareOk || got != answer) {
      std::printf("pipe_bench: a round trip failed (bare %s, ours %s)\n", bareOk ? "ok" : "failed",
                  got == answer ? "ok" : "wrong answer");
      return 1;
    }
    if (round < 0) continue;
    bare.push_back(Microseconds(t0, t1, frequency));
    ours.push_back(Microseconds(t1, t2, frequency));
  }
  std::printf("request %zu bytes, answer %zu bytes (%d files), %d rounds each, in turns\n",
              (request.size() + 1) * 2, (answer.size() + 1) * 2, kFiles, rounds);
  std::printf("bare round trip      median %8.1f us  (p10 %8.1f, p90 %8.1f)\n", Percentile(bare, 0.5),
              Percentile(bare, 0.1), Percentile(bare, 0.9));
  std::printf("SyncAppPipe exchange median %8.1f us  (p10 %8.1f, p90 %8.1f)\n", Percentile(ours, 0.5),
              Percentile(ours, 0.1), Percentile(ours, 0.9));
  std::printf("exchange / bare round trip: %.2f\n", Percentile(ours, 0.5) / Percentile(bare, 0.5));
  std::fflush(stdout);
  // The server thread blocks in ConnectNamedPipe; the process ends it.
  ExitProcess(0);
}
