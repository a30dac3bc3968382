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
  bool help = false;      // print the usage and do nothing else
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
  long dieMidAnswer = 0;  // the process ends while writing this request's answer (0: never)
  size_t padUnits = 0;    // adds "pad":"xxx..." of this length to every object
  // Answers every request the client writes on one connection, instead of
  // one request per connection as the real app does.
  bool answerEveryRequest = false;
  // Hangs up unanswered on a request that carries this member text
  // (e.g. "uiHide":true), and only on those.
  std::wstring hangUpOn;
  bool mutate = false;          // bend every answer at random (fault runs)
  unsigned long mutateSeed = 0;
  bool hasLeadUnit = true;
  wchar_t leadUnit = 0xFEFF;  // the unit written before the answer text
};

// Fills `options` from the command line; false with a message in `error`
// for an unknown or incomplete argument.
bool ParseSyncSimOptions(int argc, wchar_t** argv, SyncSimOptions& options, std::wstring& error);

// "\\.\pipe\FilewellSync-MSOfficeIntegration-" + the logon name of this process.
std::wstring DefaultPipeName();

extern const char* const kSyncSimUsage;
