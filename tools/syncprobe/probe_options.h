#pragma once
// The probe's command line: which pipe to play the add-in against and
// which document paths to ask about.
#include <string>
#include <vector>

struct ProbeOptions {
  bool help = false;
  std::wstring pipeName;             // full "\\.\pipe\..." name
  std::vector<std::wstring> files;   // the paths asked about, in request order
};

// Fills `options`; false with a message in `error` for an unknown or
// incomplete argument. Without --pipe the user's own pipe, without --file
// two made-up paths.
bool ParseProbeOptions(int argc, wchar_t** argv, ProbeOptions& options, std::wstring& error);

extern const char* const kSyncProbeUsage;
