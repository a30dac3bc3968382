// syncsim: a stand-in for the Filewell Sync app's side of the Office pipe.
// It serves "\\.\pipe\FilewellSync-MSOfficeIntegration-<user>" the way the
// sync app does, answers from a scenario file, records what it was sent,
// and misbehaves on request (busy, slow, cut answers, garbage, silence) so the
// add-in's client can be tested against each failure. See docs/syncsim.md.
#include <windows.h>

#include <cstdio>
#include <string>

#include "common/text.h"
#include "tools/syncsim/answer_mutator.h"
#include "tools/syncsim/options.h"
#include "tools/syncsim/pipe_server.h"
#include "tools/syncsim/request_reader.h"
#include "tools/syncsim/request_recorder.h"
#include "tools/syncsim/scenario.h"

namespace {
bool ReadWholeFile(const std::wstring& path, std::string& bytes) {
  HANDLE file = CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING,
                            0, nullptr);
  if (file == INVALID_HANDLE_VALUE) return false;
  char buffer[65536];
  DWORD read = 0;
  bool ok = true;
  for (;;) {
    if (!ReadFile(file, buffer, sizeof(buffer), &read, nullptr)) {
      ok = false;
      break;
    }
    if (read == 0) break;
    bytes.append(buffer, read);
  }
  CloseHandle(file);
  return ok;
}

}  // namespace

int wmain(int argc, wchar_t** argv) {
  setvbuf(stdout, nullptr, _IONBF, 0);
  SyncSimOptions options;
  std::wstring error;
  if (!ParseSyncSimOptions(argc, argv, options, error)) {
    std::printf("syncsim: %s\n%s", ToUtf8(error).c_str(), kSyncSimUsage);
    return 2;
  }
  if (options.help) {
    std::printf("%s", kSyncSimUsage);
    return 0;
  }

  Scenario scenario;
  std::wstring fixedAnswer;
  const bool hasFixedAnswer = !options.answerFile.empty();
  if (hasFixedAnswer) {
    std::string bytes;
    if (!ReadWholeFile(options.answerFile, bytes)) {
      std::printf("syncsim: cannot read %s\n", ToUtf8(options.answerFile).c_str());
      return 2;
    }
    fixedAnswer = FromUtf8(bytes);
  } else if (!options.scenarioFile.empty()) {
    std::string bytes;
    if (!ReadWholeFile(options.scenarioFile, bytes)) {
      std::printf("syncsim: cannot read %s\n", ToUtf8(options.scenarioFile).c_str());
      return 2;
    }
    if (!scenario.Load(bytes, error)) {
      std::printf("syncsim: %s\n", ToUtf8(error).c_str());
      return 2;
    }
  }
  scenario.SetPadding(options.padUnits);

  AnswerMutator mutator(static_cast<std::uint32_t>(options.mutateSeed));
  if (options.mutate) std::printf("syncsim: mutating answers with seed %lu\n", options.mutateSeed);

  RequestRecorder recorder(options.recordFile, options.recordRawFile);
  PipeServer server(options, [&](const std::wstring& request, long number) {
    std::wstring answer = hasFixedAnswer ? fixedAnswer : scenario.Answer(ReadRequest(request), number);
    if (!options.mutate) return answer;
    std::string what;
    answer = mutator.Mutate(answer, what);
    std::printf("syncsim: answer %ld mutated: %s, %zu units\n", number, what.c_str(), answer.size());
    return answer;
  }, recorder);
  return server.Run();
}
