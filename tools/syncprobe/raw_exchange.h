#pragma once
// One exchange with whatever serves the pipe, done the way the add-in does
// it (open, message-read mode, one request with its NUL, one answer) but
// keeping everything raw: how long each step took, each error code, and
// the answer's units with its leading unit, which the add-in drops unseen.
#include <windows.h>

#include <string>

#include "common/unique_resource.h"

struct ExchangeLimits {
  DWORD totalMs;       // everything from the call, as the add-in bounds it
  DWORD busyWaitMs;    // one WaitNamedPipeW, as the add-in waits for a free instance
};

struct RawExchange {
  DWORD openError = 0xdeadbeef;    // 0 once open
  DWORD modeError = 0xdeadbeef;    // 0 once in message-read mode
  bool messagePipe = false;        // GetNamedPipeInfo says PIPE_TYPE_MESSAGE
  DWORD writeError = 0xdeadbeef;   // 0 once the request was written
  DWORD readError = 0xdeadbeef;    // 0 once a whole message was read; WAIT_TIMEOUT past the limit
  DWORD elapsedMs = 0;             // from the call until the answer (or the failure)
  DWORD chunks = 0;                // reads that the answer took
  std::wstring message;            // every unit of the answer message, the leading one included
  UniqueFileHandle pipe;           // left open after the answer, for the checks that follow
};

// Opens `pipeName` and exchanges `request`; the pipe stays open in the
// result (closed when the result goes) so the caller can look further.
RawExchange ExchangeRaw(const std::wstring& pipeName, const std::wstring& request, const ExchangeLimits& limits);

// After an answer: what else comes on the same connection. Writes `request`
// a second time and waits up to `waitMs` for anything to read. True when
// something arrived (described in `seen`).
bool SecondAnswerArrives(HANDLE pipe, const std::wstring& request, DWORD waitMs, std::wstring& seen);
