// How fast the request for all open files is built, by number of records.
// Bytes are counted as sent on the pipe (two per UTF-16 unit).
#include <benchmark/benchmark.h>

#include <string>

#include "bench/realistic_files.h"
#include "common/office_app.h"
#include "synclink/file_status_cache.h"

namespace {
void FillCache(FileStatusCache& cache, size_t count) {
  for (size_t i = 0; i < count; ++i) {
    const std::wstring path = DocumentPath(i);
    cache.AddFile(path, nullptr, static_cast<std::uint32_t>(i % 2), nullptr);
    // As after the first answer: the identifier is known and sent back.
    cache.Change(path, [&](FileStatusRecord& r) { r.sync.file_combo_id = L"8f3c2a91-" + std::to_wstring(100000 + i); });
  }
}

void BM_BuildRequest(benchmark::State& state) {
  OfficeApp = OfficeHost::Word;
  FileStatusCache cache;
  FillCache(cache, static_cast<size_t>(state.range(0)));
  size_t length = 0;
  for (auto _ : state) {
    const std::wstring request = cache.BuildRequest(L"", false);
    length = request.size();
    benchmark::DoNotOptimize(request.data());
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(length) * 2);
}
BENCHMARK(BM_BuildRequest)->Arg(10)->Arg(1000)->Arg(10000)->Unit(benchmark::kMicrosecond);
}  // namespace
