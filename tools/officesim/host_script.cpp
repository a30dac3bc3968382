#include "tools/officesim/host_script.h"

#include <windows.h>

#include <cstdio>
#include <fstream>
#include <sstream>

#include "common/text.h"
#include "tools/officesim/resource_counts.h"
#include "tools/officesim/screen_actions.h"
#include "tools/officesim/sim_document.h"

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

bool WaitForNamedEvent(const std::wstring& name, unsigned long timeoutMs) {
  HANDLE event = CreateEventW(nullptr, TRUE, FALSE, name.c_str());
  if (event == nullptr) return false;
  const ULONGLONG end = GetTickCount64() + timeoutMs;
  bool set = false;
  for (;;) {
    MSG message;
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
      TranslateMessage(&message);
      DispatchMessageW(&message);
    }
    const ULONGLONG now = GetTickCount64();
    if (WaitForSingleObject(event, 0) == WAIT_OBJECT_0) {
      set = true;
      break;
    }
    if (now >= end) break;
    MsgWaitForMultipleObjects(1, &event, FALSE, static_cast<DWORD>(end - now), QS_ALLINPUT);
  }
  CloseHandle(event);
  return set;
}

std::vector<std::wstring> ReadScriptFile(const std::wstring& path) {
  std::vector<std::wstring> lines;
  std::ifstream file(path.c_str());
  std::string line;
  while (std::getline(file, line)) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    lines.push_back(FromUtf8(line));
  }
  return lines;
}

namespace {
std::wstring RestOfLine(std::wistringstream& words) {
  std::wstring rest;
  std::getline(words, rest);
  const size_t first = rest.find_first_not_of(L" \t");
  return first == std::wstring::npos ? std::wstring() : rest.substr(first);
}

bool Fail(const std::wstring& line, const char* why) {
  std::printf("officesim: script line failed (%s): %s\n", why, ToUtf8(line).c_str());
  return false;
}

void WriteSmallFile(const std::wstring& path) {
  HANDLE file = CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (file == INVALID_HANDLE_VALUE) return;
  DWORD written = 0;
  WriteFile(file, "content\n", 8, &written, nullptr);
  CloseHandle(file);
}
}  // namespace

bool RunHostScript(const std::vector<std::wstring>& lines, SimApplication& application) {
  for (const std::wstring& line : lines) {
    if (application.quitRequested()) return true;
    std::wistringstream words(line);
    std::wstring command;
    if (!(words >> command) || command[0] == L'#') continue;
    if (command == L"wait") {
      unsigned long milliseconds = 0;
      words >> milliseconds;
      PumpMessages(milliseconds);
    } else if (command == L"open" || command == L"open-readonly") {
      if (!application.OpenDocument(RestOfLine(words), command == L"open-readonly")) return Fail(line, "no such file");
    } else if (command == L"new") {
      application.NewDocument();
    } else if (command == L"prompt-answer") {
      const std::wstring answer = RestOfLine(words);
      application.SetPromptAnswer(answer == L"save"      ? SimApplication::PromptAnswer::Save
                                  : answer == L"discard" ? SimApplication::PromptAnswer::Discard
                                                         : SimApplication::PromptAnswer::Cancel);
    } else if (command == L"screenshot") {
      if (!SaveScreenshot(RestOfLine(words))) return Fail(line, "screenshot not saved");
    } else if (command == L"click-button") {
      if (!ClickButton(RestOfLine(words))) return Fail(line, "no such button");
    } else if (command == L"click-at") {
      int x = 0;
      int y = 0;
      words >> x >> y;
      if (!ClickAt(x, y)) return Fail(line, "no window of the host there");
    } else if (command == L"wait-for-text") {
      unsigned long timeoutMs = 0;
      words >> timeoutMs;
      if (!WaitForText(RestOfLine(words), timeoutMs)) return Fail(line, "text did not appear in time");
    } else if (command == L"windows") {
      PrintWindows();
    } else if (command == L"report") {
      application.PrintReferences();
    } else if (command == L"slow") {
      unsigned long milliseconds = 0;
      words >> milliseconds;
      SimDocument* document = application.FindDocument(RestOfLine(words));
      if (document == nullptr) return Fail(line, "no such document");
      document->SetSlowCalls([milliseconds] { PumpMessages(milliseconds); });
    } else if (command == L"resources") {
      std::printf("officesim: resources: %s\n", Describe(CurrentResourceCounts()).c_str());
    } else if (command == L"signal") {
      // A named event another process (a test driving a long run) waits on.
      HANDLE event = CreateEventW(nullptr, TRUE, FALSE, RestOfLine(words).c_str());
      if (event == nullptr) return Fail(line, "event not created");
      SetEvent(event);
      CloseHandle(event);
    } else if (command == L"wait-for-event") {
      unsigned long timeoutMs = 0;
      words >> timeoutMs;
      if (!WaitForNamedEvent(RestOfLine(words), timeoutMs)) return Fail(line, "event not set in time");
    } else if (command == L"open-close-many") {
      std::wstring folder;
      int count = 0;
      words >> folder >> count;
      for (int i = 0; i < count; ++i) {
        const std::wstring path = folder + L"\\many" + std::to_wstring(i) + L".docx";
        WriteSmallFile(path);
        SimDocument* document = application.OpenDocument(path, false);
        if (document == nullptr) return Fail(line, "open failed");
        PumpMessages(1);
        application.CloseDocument(document, SimApplication::SaveChoice::Prompt);
      }
    } else {
      SimDocument* document = application.FindDocument(RestOfLine(words));
      if (command != L"activate" && command != L"type" && command != L"save" && command != L"fail-saves" &&
          command != L"close") {
        return Fail(line, "unknown command");
      }
      if (document == nullptr) return Fail(line, "no such document");
      if (command == L"activate") application.ActivateDocument(document);
      if (command == L"type") document->MarkEdited();
      if (command == L"save" && !document->Save()) std::printf("officesim: the save did not happen\n");
      if (command == L"fail-saves") document->SetFailingSaves(true);
      if (command == L"close") application.CloseDocument(document, SimApplication::SaveChoice::Prompt);
    }
  }
  return true;
}
