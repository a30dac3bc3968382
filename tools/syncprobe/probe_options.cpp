#include "tools/syncprobe/probe_options.h"

#include "synclink/sync_app_pipe.h"

const char* const kSyncProbeUsage =
    "usage: syncprobe.exe [--pipe NAME] [--file PATH]... [--help]\n"
    "Plays the Office add-in against whatever serves the sync app's pipe and checks,\n"
    "rule by rule, what the add-in relies on. One line per rule (PASS, FAIL, or SKIP\n"
    "when a rule it builds on failed), then \"N passed, N failed\".\n"
    "  --pipe NAME  the pipe: a full \\\\.\\pipe\\... name or the part after \\\\.\\pipe\\\n"
    "               (default: the user's own, FilewellSync-MSOfficeIntegration-<user>)\n"
    "  --file PATH  a document path to ask about; repeat for more (default: two made-up\n"
    "               paths; give paths the sync app knows to check real answers)\n"
    "Exit code: 0 when every rule passed, 1 when one failed, 2 for a bad command line.\n"
    "See docs/syncprobe.md.\n";

bool ParseProbeOptions(int argc, wchar_t** argv, ProbeOptions& options, std::wstring& error) {
  options.pipeName = L"\\\\.\\pipe\\FilewellSync-MSOfficeIntegration-" + WindowsUserName();
  for (int i = 1; i < argc; ++i) {
    const std::wstring argument = argv[i];
    const bool hasValue = i + 1 < argc;
    if (argument == L"--help" || argument == L"-h" || argument == L"/?") {
      options.help = true;
    } else if (argument == L"--pipe" && hasValue) {
      options.pipeName = argv[++i];
      // A bare name is taken as the part after "\\.\pipe\".
      if (options.pipeName.rfind(L"\\\\", 0) != 0) options.pipeName = L"\\\\.\\pipe\\" + options.pipeName;
    } else if (argument == L"--file" && hasValue) {
      options.files.push_back(argv[++i]);
    } else {
      error = (argument == L"--pipe" || argument == L"--file") ? L"missing value after " + argument
                                                                 : L"unknown argument: " + argument;
      return false;
    }
  }
  if (options.files.empty()) {
    const std::wstring folder = L"C:\\Users\\" + WindowsUserName() + L"\\Filewell\\";
    options.files = {folder + L"syncprobe check.docx", folder + L"syncprobe check.xlsx"};
  }
  return true;
}
