#include "tools/officesim/host_script.h"

#include <windows.h>

#include <cstdio>
#include <fstream>
#include <sstream>

#include "common/text.h"

void PumpMessages(unsigned long milliseconds) {
  const ULONGLONG end = GetTickCount64() + milliseconds;
  for (;;) {
    MSG message;
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
      TranslateMessage(&message);
      DispatchMessageW(&message);
    }
    const ULONGLONG now = GetTickCount64();
    if (now >= end) return;
    MsgWaitForMultipleObjects(0, nullptr, FALSE, static_cast<DWORD>(end - now), QS_ALLINPUT);
  }
}

std::vector<std::wstring> ReadScriptFile(const std::wstring& path) {
  std::vector<std::wstring> lines;
  std::ifstream file(path.c_str());
  std::string line;
  while (std::getline(file, line)) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    std::wstring wide;
    const int length = MultiByteToWideChar(CP_UTF8, 0, line.data(), static_cast<int>(line.size()), nullptr, 0);
    wide.resize(length);
    MultiByteToWideChar(CP_UTF8, 0, line.data(), static_cast<int>(line.size()), wide.data(), length);
    lines.push_back(wide);
  }
  return lines;
}

bool RunHostScript(const std::vector<std::wstring>& lines, SimApplication&) {
  for (const std::wstring& line : lines) {
    std::wistringstream words(line);
    std::wstring command;
    if (!(words >> command) || command[0] == L'#') continue;
    if (command == L"wait") {
      unsigned long milliseconds = 0;
      words >> milliseconds;
      PumpMessages(milliseconds);
    } else {
      std::printf("officesim: unknown script command: %s\n", ToUtf8(line).c_str());
      return false;
    }
  }
  return true;
}
