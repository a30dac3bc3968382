// Our code beside plain baselines measured in the same run, so the figures
// read as ratios that hold on any machine: the answer reader against a
// general JSON parser filling the same maps, and a request or a log line
// against a bare append of the same bytes to a file.
#include <benchmark/benchmark.h>

#include <rapidjson/document.h>
#include <rapidjson/encodings.h>

#include <ctime>
#include <map>
#include <string>
#include <vector>

#include "bench/append_file.h"
#include "bench/realistic_files.h"
#include "common/office_app.h"
#include "common/text.h"
#include "log/log_line.h"
#include "synclink/answer_parser.h"
#include "synclink/file_status_cache.h"

namespace {
constexpr size_t kFiles = 1000;

// Strict JSON needs the paths' backslashes escaped; RapidJSON reads that
// form of the same answer (it gives back the same single backslashes).
std::wstring EscapedForJson(const std::wstring& text) {
  std::wstring escaped;
  escaped.reserve(text.size() + text.size() / 8);
  for (wchar_t unit : text) {
    if (unit == L'\\') escaped += L'\\';
    escaped += unit;
  }
  return escaped;
}

using Json = rapidjson::GenericDocument<rapidjson::UTF32<wchar_t>>;

std::vector<AnswerObject> ParseWithRapidJson(const std::wstring& text) {
  std::vector<AnswerObject> objects;
  Json document;
  document.Parse(text.c_str());
  if (document.HasParseError() || !document.IsObject()) return objects;
  const auto list = document.FindMember(L"resp");
  if (list == document.MemberEnd() || !list->value.IsArray()) return objects;
  for (const auto& object : list->value.GetArray()) {
    if (!object.IsObject()) continue;
    AnswerObject map;
    for (const auto& member : object.GetObject()) {
      if (!member.value.IsString()) continue;
      map[std::wstring(member.name.GetString(), member.name.GetStringLength())] =
          std::wstring(member.value.GetString(), member.value.GetStringLength());
    }
    objects.push_back(std::move(map));
  }
  return objects;
}

void BM_Baseline_ParseAnswer(benchmark::State& state) {
  const std::wstring text = AnswerText(kFiles);
  size_t objects = 0;
  for (auto _ : state) {
    const auto parsed = ParseAnswer(text);
    objects = parsed.size();
    benchmark::DoNotOptimize(parsed.data());
  }
  if (objects != kFiles) state.SkipWithError("the answer was not read whole");
}
BENCHMARK(BM_Baseline_ParseAnswer)->Unit(benchmark::kMicrosecond);

void BM_Baseline_RapidJsonSameAnswer(benchmark::State& state) {
  const std::wstring text = AnswerText(kFiles);
  const std::wstring json = EscapedForJson(text);
  if (ParseWithRapidJson(json) != ParseAnswer(text)) {
    state.SkipWithError("RapidJSON did not give the same maps");
    return;
  }
  for (auto _ : state) benchmark::DoNotOptimize(ParseWithRapidJson(json).data());
}
BENCHMARK(BM_Baseline_RapidJsonSameAnswer)->Unit(benchmark::kMicrosecond);

// The request for 1,000 open files, built; then the same number of bytes
// (two per UTF-16 unit, as sent) appended to a file.
FileStatusCache& CacheOfThousandFiles() {
  static FileStatusCache* cache = [] {
    auto* filled = new FileStatusCache;
    for (size_t i = 0; i < kFiles; ++i) filled->AddFile(DocumentPath(i), nullptr, 0, nullptr);
    return filled;
  }();
  return *cache;
}

void BM_Baseline_BuildRequest(benchmark::State& state) {
  OfficeApp = OfficeHost::Word;
  FileStatusCache& cache = CacheOfThousandFiles();
  for (auto _ : state) {
    const std::wstring request = cache.BuildRequest(L"", false);
    benchmark::DoNotOptimize(request.data());
  }
}
BENCHMARK(BM_Baseline_BuildRequest)->Unit(benchmark::kMicrosecond);

void BM_Baseline_AppendRequestBytes(benchmark::State& state) {
  OfficeApp = OfficeHost::Word;
  const std::string bytes((CacheOfThousandFiles().BuildRequest(L"", false).size() + 1) * 2, 'r');
  ScratchAppendFile file;
  for (auto _ : state) file.Append(bytes.data(), bytes.size());
}
BENCHMARK(BM_Baseline_AppendRequestBytes)->Unit(benchmark::kMicrosecond);

// One log line as the writer makes it (the time stamp, the line, UTF-8,
// one append), against appending the finished bytes.
const std::wstring kMessage = L"file info stored in cache - " + DocumentPath(7);

std::string LogLineBytes() {
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  localtime_r(&now, &local);
  const LocalTimeParts parts{local.tm_year + 1900, local.tm_mon + 1, local.tm_mday, local.tm_hour,
                             local.tm_min,         local.tm_sec,     0};
  std::string bytes = ToUtf8(FormatLogLine(FormatLogTimestamp(parts), OfficeHost::Word, L"11424",
                                           LevelLetter(LogLevel::Info), L"MainThread", kMessage));
  bytes.push_back('\n');
  return bytes;
}

void BM_Baseline_LogLine(benchmark::State& state) {
  ScratchAppendFile file;
  for (auto _ : state) {
    const std::string bytes = LogLineBytes();
    file.Append(bytes.data(), bytes.size());
  }
}
BENCHMARK(BM_Baseline_LogLine);

void BM_Baseline_AppendLogLineBytes(benchmark::State& state) {
  const std::string bytes = LogLineBytes();
  ScratchAppendFile file;
  for (auto _ : state) file.Append(bytes.data(), bytes.size());
}
BENCHMARK(BM_Baseline_AppendLogLineBytes);
}  // namespace
