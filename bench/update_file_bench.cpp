// The cost of writing one answer object into its record, the update
// thread's work per open file and cycle: the record is copied, compared
// field by field and written back whole.
#include <benchmark/benchmark.h>

#include <string>
#include <vector>

#include "bench/counting_log.h"
#include "bench/realistic_files.h"
#include "synclink/answer_apply.h"
#include "synclink/answer_parser.h"
#include "synclink/file_status_cache.h"

namespace {
constexpr size_t kRecords = 1000;

AnswerFields FieldsFor(size_t i, int variant) {
  const auto objects = ParseAnswer(L"{\"resp\":[" + AnswerObjectText(i, variant) + L"]}");
  return CollectAnswerFields(objects.at(0));
}

// Calls UpdateFile on every record in turn; with `alternate`, each call
// brings the other variant, so most fields change on every call.
void RunUpdates(benchmark::State& state, bool alternate) {
  FileStatusCache cache;
  std::vector<AnswerFields> variants[2];
  for (size_t i = 0; i < kRecords; ++i) {
    cache.AddFile(DocumentPath(i), nullptr, 0, nullptr);
    variants[0].push_back(FieldsFor(i, 0));
    variants[1].push_back(FieldsFor(i, 1));
    cache.UpdateFile(variants[0][i].file_path, variants[0][i]);
  }
  const std::uint64_t linesBefore = LogLinesWritten();
  size_t i = 0;
  int variant = 0;
  for (auto _ : state) {
    if (i == kRecords) {
      i = 0;
      if (alternate) variant = 1 - variant;
    }
    const AnswerFields& fields = variants[alternate ? 1 - variant : 0][i];
    cache.UpdateFile(fields.file_path, fields);
    ++i;
  }
  state.SetItemsProcessed(static_cast<int64_t>(state.iterations()));
  // The trace lines per call tell how many fields changed (plus the one
  // "windows cache updated").
  state.counters["log_lines_per_call"] =
      static_cast<double>(LogLinesWritten() - linesBefore) / static_cast<double>(state.iterations());
}

void BM_UpdateFileChangingManyFields(benchmark::State& state) { RunUpdates(state, true); }
BENCHMARK(BM_UpdateFileChangingManyFields);

void BM_UpdateFileChangingNothing(benchmark::State& state) { RunUpdates(state, false); }
BENCHMARK(BM_UpdateFileChangingNothing);
}  // namespace
