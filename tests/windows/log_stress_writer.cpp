// A child process for the log tests: writes N numbered lines through the
// add-in's log writer, as one Office process among several would.
#include <windows.h>

#include <cstdlib>
#include <string>

#include "log/log_folder.h"
#include "log/write_log.h"

int main(int argc, char** argv) {
  if (argc < 3) return 2;
  const std::wstring writer = std::to_wstring(std::atoi(argv[1]));
  const int count = std::atoi(argv[2]);
  InitLogFolder();
  const std::wstring padding(60, L'q');
  for (int i = 0; i < count; ++i) {
    WriteLog(LogLevel::Info, L"writer " + writer + L" line " + std::to_wstring(i) + L" " + padding);
  }
  return 0;
}
