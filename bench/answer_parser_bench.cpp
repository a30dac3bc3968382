// How fast the answer scanner reads the sync app's answer, by size. Bytes
// are counted as they travel on the pipe (two per UTF-16 unit), so the
// figure compares directly with the pipe's throughput.
#include <benchmark/benchmark.h>

#include <string>

#include "bench/realistic_files.h"
#include "synclink/answer_parser.h"

namespace {
void ReportPipeBytes(benchmark::State& state, const std::wstring& text) {
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(text.size()) * 2);
}

void BM_ParseAnswer(benchmark::State& state) {
  const auto count = static_cast<size_t>(state.range(0));
  const std::wstring text = AnswerText(count);
  size_t objects = 0;
  for (auto _ : state) {
    const auto parsed = ParseAnswer(text);
    objects = parsed.size();
    benchmark::DoNotOptimize(parsed.data());
  }
  if (objects != count) state.SkipWithError("the answer was not read whole");
  ReportPipeBytes(state, text);
}
BENCHMARK(BM_ParseAnswer)->Arg(10)->Arg(1000)->Arg(10000)->Unit(benchmark::kMicrosecond);

// Answers no sync app writes, shaped to make a scanner that re-reads or
// copies the rest of the text per member or per object grow quadratically.
// Lone quotes: every quote is both the opening and the closing mark.
void BM_ParseAnswerOfLoneQuotes(benchmark::State& state) {
  std::wstring text = L"{\"resp\":[{";
  for (int64_t i = 0; i < state.range(0); ++i) text += L"\":\",";
  text += L"}]}";
  for (auto _ : state) benchmark::DoNotOptimize(ParseAnswer(text).data());
  ReportPipeBytes(state, text);
}
BENCHMARK(BM_ParseAnswerOfLoneQuotes)->Arg(1000)->Arg(10000)->Unit(benchmark::kMicrosecond);

// Left-over braces: many "}" (from values holding braces) before a long
// last object.
void BM_ParseAnswerOfLeftOverBraces(benchmark::State& state) {
  std::wstring text = L"{\"resp\":[{\"src\":\"a";
  for (int64_t i = 0; i < state.range(0); ++i) text += L"}x";
  text += L"\"},{";
  for (int64_t i = 0; i < state.range(0); ++i) text += L"\"k" + std::to_wstring(i) + L"\":\"v\",";
  text += L"\"file_path\":\"a\"}]}";
  for (auto _ : state) benchmark::DoNotOptimize(ParseAnswer(text).data());
  ReportPipeBytes(state, text);
}
BENCHMARK(BM_ParseAnswerOfLeftOverBraces)->Arg(1000)->Arg(10000)->Unit(benchmark::kMicrosecond);
}  // namespace
