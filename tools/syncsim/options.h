#pragma once
// What syncsim was asked to do: which pipe to serve, what to answer, how to
// misbehave, what to record and when to stop.
#include <windows.h>

#include <string>

// How the answer of every connection is delivered.
enum class AnswerDelivery {
  Whole,            // one message, then wait for the client to hang up (the real app)
  CutMidAnswer,     // start writing the message, then disconnect at once
  HangUpUnanswered, // read the request, disconnect without writing anything
  Garbage,          // a message that is no answer at all
  NeverAnswer,      // read the request, keep the connection open, write nothing
};

struct SyncSimOptions {
  std::wstring pipeName;  // full "\\.\pipe\..." name
  std::wstring scenarioFile;
  std::wstring answerFile;  // fixed answer text (UTF-8 file), replaces the scenario's
  std::wstring recordFile;  // each request's text, UTF-8, one per line
  std::wstring recordRawFile;  // each request's bytes exactly as received
  std::wstring readyEvent = L"syncsim-ready";
  std::wstring stopEvent = L"syncsim-stop";
  AnswerDelivery delivery = AnswerDelivery::Whole;
  bool byteMode = false;  // a byte-type pipe, which refuses message-read mode
  bool busy = false;      // every instance occupied
  DWORD busyMs = 0;       // with busy: free an instance after this long (0: never)
  DWORD delayMs = 0;      // wait between the request and the answer
  DWORD runMs = 0;        // stop after this long (0: no limit)
  DWORD instances = PIPE_UNLIMITED_INSTANCES;
  long maxRequests = 0;   // stop after this many requests (0: no limit)
  size_t padUnits = 0;    // adds "pad":"xxx..." of this length to every object
  bool mutate = false;          // bend every answer at random (fault runs)
  unsigned long mutateSeed = 0;
  long dieMidAnswer = 0;        // end the process abruptly inside this answer (0: never)
  bool hasLeadUnit = true;
  wchar_t leadUnit = 0xFEFF;  // the unit written before the answer text
};

// Fills `options` from the command line; false with a message in `error`
// for an unknown or incomplete argument.
bool ParseSyncSimOptions(int argc, wchar_t** argv, SyncSimOptions& options, std::wstring& error);

// "\\.\pipe\FilewellSync-MSOfficeIntegration-" + the logon name of this process.
std::wstring DefaultPipeName();

extern const char* const kSyncSimUsage;
