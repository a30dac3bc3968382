// syncprobe: a conformance probe for whoever builds the sync app's side of
// the Office pipe. It plays the add-in (its own request builder and answer
// reader) against whatever serves the pipe and says, rule by rule, whether
// the add-in would get what it relies on. See docs/syncprobe.md.
#include <windows.h>

#include <cstdio>

#include "common/text.h"
#include "tools/syncprobe/probe_options.h"
#include "tools/syncprobe/probe_run.h"

int wmain(int argc, wchar_t** argv) {
  setvbuf(stdout, nullptr, _IONBF, 0);
  ProbeOptions options;
  std::wstring error;
  if (!ParseProbeOptions(argc, argv, options, error)) {
    std::printf("syncprobe: %s\n%s", ToUtf8(error).c_str(), kSyncProbeUsage);
    return 2;
  }
  if (options.help) {
    std::printf("%s", kSyncProbeUsage);
    return 0;
  }
  return RunProbe(options);
}
