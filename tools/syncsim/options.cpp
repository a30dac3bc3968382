#include "tools/syncsim/options.h"

#include <cwchar>
#include <type_traits>

const char* const kSyncSimUsage =
    "usage: syncsim.exe [--help] [--pipe NAME] [--scenario FILE | --answer-file FILE]\n"
    "                   [--record FILE] [--record-raw FILE]\n"
    "                   [--delay MS] [--busy [--busy-ms MS]] [--instances N]\n"
    "                   [--cut-answer | --hang-up | --garbage | --never-answer]\n"
    "                   [--byte-mode] [--pad UNITS] [--lead HEX | --no-lead]\n"
    "                   [--answer-every-request] [--hang-up-on NAME:VALUE]\n"
    "                   [--mutate SEED] [--die-mid-answer N]\n"
    "                   [--max-requests N] [--run-ms MS]\n"
    "                   [--ready-event NAME] [--stop-event NAME]\n"
    "see docs/syncsim.md\n";

std::wstring DefaultPipeName() {
  wchar_t user[257];
  DWORD size = 257;
  const std::wstring name = GetUserNameW(user, &size) ? std::wstring(user) : std::wstring();
  return L"\\\\.\\pipe\\FilewellSync-MSOfficeIntegration-" + name;
}

namespace {
bool ParseNumber(const wchar_t* text, unsigned long long& value, int base = 10) {
  if (text == nullptr || *text == L'\0') return false;
  wchar_t* end = nullptr;
  value = std::wcstoull(text, &end, base);
  return end != nullptr && *end == L'\0';
}
}  // namespace

bool ParseSyncSimOptions(int argc, wchar_t** argv, SyncSimOptions& options, std::wstring& error) {
  options.pipeName = DefaultPipeName();
  for (int i = 1; i < argc; ++i) {
    const std::wstring argument = argv[i];
    const wchar_t* value = i + 1 < argc ? argv[i + 1] : nullptr;
    auto takeText = [&](std::wstring& target) {
      if (value == nullptr) return false;
      target = value;
      ++i;
      return true;
    };
    auto takeNumber = [&](auto& target) {
      unsigned long long number = 0;
      if (!ParseNumber(value, number)) return false;
      target = static_cast<std::remove_reference_t<decltype(target)>>(number);
      ++i;
      return true;
    };
    bool ok = true;
    if (argument == L"--help") {
      options.help = true;
    } else if (argument == L"--pipe") {
      ok = takeText(options.pipeName);
      // A bare name is taken as the part after "\\.\pipe\".
      if (ok && options.pipeName.rfind(L"\\\\", 0) != 0) options.pipeName = L"\\\\.\\pipe\\" + options.pipeName;
    } else if (argument == L"--scenario") {
      ok = takeText(options.scenarioFile);
    } else if (argument == L"--answer-file") {
      ok = takeText(options.answerFile);
    } else if (argument == L"--record") {
      ok = takeText(options.recordFile);
    } else if (argument == L"--record-raw") {
      ok = takeText(options.recordRawFile);
    } else if (argument == L"--ready-event") {
      ok = takeText(options.readyEvent);
    } else if (argument == L"--stop-event") {
      ok = takeText(options.stopEvent);
    } else if (argument == L"--delay") {
      ok = takeNumber(options.delayMs);
    } else if (argument == L"--busy") {
      options.busy = true;
    } else if (argument == L"--busy-ms") {
      options.busy = true;
      ok = takeNumber(options.busyMs);
    } else if (argument == L"--instances") {
      ok = takeNumber(options.instances) && options.instances >= 1 && options.instances <= 254;
    } else if (argument == L"--cut-answer") {
      options.delivery = AnswerDelivery::CutMidAnswer;
    } else if (argument == L"--hang-up") {
      options.delivery = AnswerDelivery::HangUpUnanswered;
    } else if (argument == L"--garbage") {
      options.delivery = AnswerDelivery::Garbage;
    } else if (argument == L"--never-answer") {
      options.delivery = AnswerDelivery::NeverAnswer;
    } else if (argument == L"--answer-every-request") {
      options.answerEveryRequest = true;
    } else if (argument == L"--hang-up-on") {
      // NAME:VALUE stands for the request member "NAME":VALUE, written
      // without quotes so it survives a command line.
      std::wstring member;
      ok = takeText(member);
      const size_t colon = member.find(L':');
      ok = ok && colon != std::wstring::npos && colon > 0;
      if (ok) options.hangUpOn = L"\"" + member.substr(0, colon) + L"\":" + member.substr(colon + 1);
    } else if (argument == L"--byte-mode") {
      options.byteMode = true;
    } else if (argument == L"--pad") {
      ok = takeNumber(options.padUnits);
    } else if (argument == L"--lead") {
      unsigned long long unit = 0;
      ok = ParseNumber(value, unit, 16) && unit <= 0xFFFF;
      if (ok) {
        options.leadUnit = static_cast<wchar_t>(unit);
        options.hasLeadUnit = true;
        ++i;
      }
    } else if (argument == L"--no-lead") {
      options.hasLeadUnit = false;
    } else if (argument == L"--mutate") {
      options.mutate = true;
      ok = takeNumber(options.mutateSeed);
    } else if (argument == L"--die-mid-answer") {
      ok = takeNumber(options.dieMidAnswer) && options.dieMidAnswer >= 1;
    } else if (argument == L"--max-requests") {
      ok = takeNumber(options.maxRequests);
    } else if (argument == L"--run-ms") {
      ok = takeNumber(options.runMs);
    } else {
      error = L"unknown argument: " + argument;
      return false;
    }
    if (!ok) {
      error = L"missing or bad value after " + argument;
      return false;
    }
  }
  if (!options.scenarioFile.empty() && !options.answerFile.empty()) {
    error = L"--scenario and --answer-file exclude each other";
    return false;
  }
  return true;
}
